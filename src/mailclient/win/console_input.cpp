#include "mailclient/win/console_input.h"

#include <cstdio>
#include <deque>

#include "com/errors.h"

namespace mailclient::win {
namespace {

constexpr UINT lineArrived = WM_APP + 1;
constexpr const wchar_t* windowClass = L"Marrick mail client console";

}  // namespace

// What the reading thread and the window share. It outlives both: nothing can end a read of standard input.
class ConsoleInput::Lines {
 public:
  explicit Lines(HWND window) : window_(window) { InitializeCriticalSection(&lock_); }
  Lines(const Lines&) = delete;
  Lines& operator=(const Lines&) = delete;
  ~Lines() { DeleteCriticalSection(&lock_); }

  void put(std::string line) {
    const Locked locked(lock_);
    lines_.push_back(std::move(line));
    if (window_) PostMessageW(window_, lineArrived, 0, 0);
  }

  bool take(std::string& line) {
    const Locked locked(lock_);
    if (lines_.empty()) return false;
    line = std::move(lines_.front());
    lines_.pop_front();
    return true;
  }

  // Nobody takes lines any more.
  void close() {
    const Locked locked(lock_);
    window_ = nullptr;
  }

 private:
  class Locked {
   public:
    explicit Locked(CRITICAL_SECTION& section) : section_(section) { EnterCriticalSection(&section_); }
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;
    ~Locked() { LeaveCriticalSection(&section_); }

   private:
    CRITICAL_SECTION& section_;
  };

  CRITICAL_SECTION lock_{};
  HWND window_;
  std::deque<std::string> lines_;
};

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
    lines_ = std::make_shared<Lines>(window_);
    auto forThread = std::make_unique<std::shared_ptr<Lines>>(lines_);
    const HANDLE thread = CreateThread(nullptr, 0, &Reader::read, forThread.get(), 0, nullptr);
    if (!thread) return;
    (void)forThread.release();
    CloseHandle(thread);
  }
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;
  // The thread is left at its reading until endProcess(): one that is terminated may leave a lock of the system behind,
  // and then the end of the process hangs.
  ~Reader() {
    lines_->close();
    SetWindowLongPtrW(window_, GWLP_USERDATA, 0);
    DestroyWindow(window_);
  }

 private:
  // Not through the C run time, whose lock would be held all the time.
  static DWORD WINAPI read(void* parameter) {
    const std::unique_ptr<std::shared_ptr<Lines>> lines(static_cast<std::shared_ptr<Lines>*>(parameter));
    const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    std::string pending;
    char buffer[512];
    DWORD count = 0;
    while (ReadFile(input, buffer, sizeof buffer, &count, nullptr) && count != 0) {
      pending.append(buffer, count);
      for (std::size_t end = pending.find('\n'); end != std::string::npos; end = pending.find('\n')) {
        (*lines)->put(pending.substr(0, end));
        pending.erase(0, end + 1);
      }
    }
    if (!pending.empty()) (*lines)->put(std::move(pending));
    (*lines)->put("quit");
    return 0;
  }

  static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wide, LPARAM extra) {
    auto* const self = reinterpret_cast<Reader*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (message != lineArrived || !self) return DefWindowProcW(window, message, wide, extra);
    com::guarded([&]() -> HRESULT {
      std::string line;
      if (self->lines_->take(line)) self->execute_(line);
      return S_OK;
    });
    return 0;
  }

  std::function<void(const std::string&)> execute_;
  HWND window_ = nullptr;
  std::shared_ptr<Lines> lines_;
};

ConsoleInput::ConsoleInput(std::function<void(const std::string&)> execute)
    : reader_(std::make_unique<Reader>(std::move(execute))) {}
ConsoleInput::~ConsoleInput() = default;

void endProcess(int code) {
  std::fflush(nullptr);
  TerminateProcess(GetCurrentProcess(), static_cast<UINT>(code));
}

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
