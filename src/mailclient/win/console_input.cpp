#include "mailclient/win/console_input.h"

#include <cstdio>
#include <deque>

#include "com/errors.h"

namespace mailclient::win {
namespace {

constexpr UINT lineArrived = WM_APP + 1;
constexpr const wchar_t* windowClass = L"Marrick mail client console";

}  // namespace

class ConsoleInput::Reader {
 public:
  explicit Reader(std::function<void(const std::string&)> execute) : execute_(std::move(execute)) {
    WNDCLASSW windows{};
    windows.lpfnWndProc = &Reader::procedure;
    windows.hInstance = GetModuleHandleW(nullptr);
    windows.lpszClassName = windowClass;
    RegisterClassW(&windows);
    window_ = CreateWindowExW(0, windowClass, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, windows.hInstance, nullptr);
    SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    InitializeCriticalSection(&lock_);
    InitializeCriticalSection(&working_);
    thread_ = CreateThread(nullptr, 0, &Reader::read, this, 0, nullptr);
  }
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;
  ~Reader() {
    // Nothing can end a read of standard input; the process is about to. Whatever else the thread was at is finished
    // first: ended inside the heap or the message queue, it would leave their locks behind, and the end would hang.
    EnterCriticalSection(&working_);
    TerminateThread(thread_, 0);
    CloseHandle(thread_);
    DeleteCriticalSection(&lock_);
    SetWindowLongPtrW(window_, GWLP_USERDATA, 0);
    DestroyWindow(window_);
  }

 private:
  // Not through the C run time: its lock would stay with this thread when the process ends.
  static DWORD WINAPI read(void* self) {
    auto& reader = *static_cast<Reader*>(self);
    const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    std::string pending;
    char buffer[512];
    DWORD count = 0;
    while (ReadFile(input, buffer, sizeof buffer, &count, nullptr) && count != 0) {
      EnterCriticalSection(&reader.working_);
      pending.append(buffer, count);
      for (std::size_t end = pending.find('\n'); end != std::string::npos; end = pending.find('\n')) {
        reader.put(pending.substr(0, end));
        pending.erase(0, end + 1);
      }
      LeaveCriticalSection(&reader.working_);
    }
    EnterCriticalSection(&reader.working_);
    if (!pending.empty()) reader.put(std::move(pending));
    reader.put("quit");
    LeaveCriticalSection(&reader.working_);
    return 0;
  }

  void put(std::string line) {
    EnterCriticalSection(&lock_);
    lines_.push_back(std::move(line));
    LeaveCriticalSection(&lock_);
    PostMessageW(window_, lineArrived, 0, 0);
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

  static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wide, LPARAM extra) {
    auto* const self = reinterpret_cast<Reader*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (message != lineArrived || !self) return DefWindowProcW(window, message, wide, extra);
    com::guarded([&]() -> HRESULT {
      std::string line;
      if (self->take(line)) self->execute_(line);
      return S_OK;
    });
    return 0;
  }

  std::function<void(const std::string&)> execute_;
  HWND window_ = nullptr;
  CRITICAL_SECTION lock_{};     // of the lines
  CRITICAL_SECTION working_{};  // held by the thread whenever it does not read
  HANDLE thread_ = nullptr;
  std::deque<std::string> lines_;
};

ConsoleInput::ConsoleInput(std::function<void(const std::string&)> execute)
    : reader_(std::make_unique<Reader>(std::move(execute))) {}
ConsoleInput::~ConsoleInput() = default;

void writeAnswer(const std::string& line) {
  std::fwrite(line.data(), 1, line.size(), stdout);
  std::fputc('\n', stdout);
  std::fflush(stdout);
}

bool serveUntil(const std::function<bool()>& condition, unsigned long milliseconds) {
  const DWORD start = GetTickCount();
  while (!condition()) {
    const DWORD passed = GetTickCount() - start;
    if (passed >= milliseconds) return false;
    MsgWaitForMultipleObjectsEx(0, nullptr, milliseconds - passed, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
    MSG message{};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
      if (message.message == WM_QUIT) {
        PostQuitMessage(static_cast<int>(message.wParam));
        return false;
      }
      TranslateMessage(&message);
      DispatchMessageW(&message);
    }
  }
  return true;
}

}  // namespace mailclient::win
