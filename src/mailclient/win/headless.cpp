#include "mailclient/win/headless.h"

#include <cstdio>
#include <deque>

#include "com/bridge.h"
#include "mailclient/console.h"
#include "mailclient/win/addin_loader.h"

namespace mailclient::win {
namespace {

constexpr UINT lineArrived = WM_APP + 1;
constexpr const wchar_t* windowClass = L"Marrick mail client console";

// Lines of standard input, read on a thread of their own and posted to the window that executes them, as Windows does
// with a user's input: a command can arrive in the wait of another one.
class LineReader {
 public:
  explicit LineReader(HWND window) : window_(window) {
    InitializeCriticalSection(&lock_);
    thread_ = CreateThread(nullptr, 0, &LineReader::read, this, 0, nullptr);
  }
  LineReader(const LineReader&) = delete;
  LineReader& operator=(const LineReader&) = delete;
  ~LineReader() {
    // Nothing can end a read of standard input; the process is about to.
    TerminateThread(thread_, 0);
    CloseHandle(thread_);
    DeleteCriticalSection(&lock_);
  }

  bool take(std::string& line) {
    EnterCriticalSection(&lock_);
    const bool any = !lines_.empty();
    if (any) {
      line = std::move(lines_.front());
      lines_.pop_front();
    }
    LeaveCriticalSection(&lock_);
    return any;
  }

 private:
  // Not through the C run time: its lock would stay with this thread when the process ends.
  static DWORD WINAPI read(void* self) {
    auto& reader = *static_cast<LineReader*>(self);
    const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    std::string pending;
    char buffer[512];
    DWORD count = 0;
    while (ReadFile(input, buffer, sizeof buffer, &count, nullptr) && count != 0) {
      pending.append(buffer, count);
      for (std::size_t end = pending.find('\n'); end != std::string::npos; end = pending.find('\n')) {
        reader.put(pending.substr(0, end));
        pending.erase(0, end + 1);
      }
    }
    if (!pending.empty()) reader.put(std::move(pending));
    reader.put("quit");
    return 0;
  }
  void put(std::string line) {
    EnterCriticalSection(&lock_);
    lines_.push_back(std::move(line));
    LeaveCriticalSection(&lock_);
    PostMessageW(window_, lineArrived, 0, 0);
  }

  HWND window_;
  CRITICAL_SECTION lock_{};
  HANDLE thread_ = nullptr;
  std::deque<std::string> lines_;
};

class Headless final : public ConsoleHost {
 public:
  Headless(MailClient& client, const HeadlessOptions& options)
      : client_(client), options_(options), addIns_(client), console_(client, *this) {}

  int run() {
    createWindow();
    LineReader lines(window_);
    lines_ = &lines;
    if (options_.explorer) client_.windows().openExplorer(client_.store().defaultFolder(DefaultFolder::Inbox));
    addIns_.loadAtStartup();
    answer("0 ready");
    MSG message{};
    while (GetMessageW(&message, nullptr, 0, 0) > 0) dispatch(message);
    DestroyWindow(window_);
    return 0;
  }

  void answer(const std::string& line) override {
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
  }

  bool waitUntil(const std::function<bool()>& condition, std::int32_t milliseconds) override {
    const DWORD start = GetTickCount();
    while (!condition()) {
      const DWORD passed = GetTickCount() - start;
      if (passed >= static_cast<DWORD>(milliseconds)) return false;
      MsgWaitForMultipleObjectsEx(0, nullptr, static_cast<DWORD>(milliseconds) - passed, QS_ALLINPUT,
                                  MWMO_INPUTAVAILABLE);
      MSG message{};
      while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        if (message.message == WM_QUIT) {
          PostQuitMessage(static_cast<int>(message.wParam));
          return false;
        }
        dispatch(message);
      }
    }
    return true;
  }

  void connectAddIn(const String& progId) override { addIns_.connect(progId, ConnectMode::AfterStartup); }
  void disconnectAddIn(const String& progId, std::int32_t removeMode) override {
    addIns_.disconnect(progId, removeMode);
  }

  void quit() override {
    client_.quit();
    addIns_.shutDown();
    client_.saveSettings();
    PostQuitMessage(0);
  }

 private:
  static void dispatch(const MSG& message) {
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }

  void createWindow() {
    WNDCLASSW windows{};
    windows.lpfnWndProc = &Headless::procedure;
    windows.hInstance = GetModuleHandleW(nullptr);
    windows.lpszClassName = windowClass;
    RegisterClassW(&windows);
    window_ = CreateWindowExW(0, windowClass, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, windows.hInstance, nullptr);
    SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
  }

  static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wide, LPARAM extra) {
    auto* const self = reinterpret_cast<Headless*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (message != lineArrived || !self) return DefWindowProcW(window, message, wide, extra);
    com::guarded([&]() -> HRESULT {
      std::string line;
      if (self->lines_->take(line)) self->console_.execute(line);
      return S_OK;
    });
    return 0;
  }

  MailClient& client_;
  HeadlessOptions options_;
  AddInLoader addIns_;
  Console console_;
  HWND window_ = nullptr;
  LineReader* lines_ = nullptr;
};

}  // namespace

int runHeadless(const ClientPtr& client, const HeadlessOptions& options) { return Headless(*client, options).run(); }

}  // namespace mailclient::win
