#include "servers/modem/win/line_thread.h"

#include <deque>
#include <utility>

#include <process.h>

#include "com/errors.h"
#include "com/windows.h"

extern "C" IMAGE_DOS_HEADER __ImageBase;  // the linker's name for where this module begins

namespace servers::modem {
namespace {

constexpr const wchar_t* windowClassName = L"Marrick Line";
constexpr UINT answersWait = WM_APP;
constexpr DWORD retryInterval = 3000;  // milliseconds between two attempts to find a modem
// For what cannot be interrupted: a connection being made, a port's driver that is busy with its device.
constexpr DWORD longestEnd = 5000;

HINSTANCE thisModule() noexcept { return reinterpret_cast<HINSTANCE>(&__ImageBase); }

class CriticalSection {
 public:
  CriticalSection() { InitializeCriticalSection(&section_); }
  CriticalSection(const CriticalSection&) = delete;
  CriticalSection& operator=(const CriticalSection&) = delete;
  ~CriticalSection() { DeleteCriticalSection(&section_); }
  void enter() { EnterCriticalSection(&section_); }
  void leave() { LeaveCriticalSection(&section_); }

 private:
  CRITICAL_SECTION section_;
};

class Inside {
 public:
  explicit Inside(CriticalSection& section) : section_(section) { section_.enter(); }
  Inside(const Inside&) = delete;
  Inside& operator=(const Inside&) = delete;
  ~Inside() { section_.leave(); }

 private:
  CriticalSection& section_;
};

class OwnHandle {
 public:
  explicit OwnHandle(HANDLE handle) : handle_(handle) {
    if (!handle_) com::check(HRESULT_FROM_WIN32(GetLastError()));
  }
  OwnHandle(const OwnHandle&) = delete;
  OwnHandle& operator=(const OwnHandle&) = delete;
  ~OwnHandle() { CloseHandle(handle_); }
  HANDLE get() const { return handle_; }

 private:
  HANDLE handle_;
};

// All that the two threads share. Whoever stays longer keeps it.
class Exchange final : public Mailbox {
 public:
  explicit Exchange(HWND window) : window_(window) {}

  // The phone's thread.
  void ask(Letter letter) {
    const Inside inside(section_);
    if (!line_) return;  // the modem of that letter is lost
    letters_.push_back(std::move(letter));
    line_->wake();
  }
  Wire::Answer nextAnswer() {
    const Inside inside(section_);
    if (answers_.empty()) return nullptr;
    Wire::Answer answer = std::move(answers_.front());
    answers_.pop_front();
    announced_ = false;
    announce();  // before the answer is acted upon: that may serve messages itself
    return answer;
  }
  // Nothing comes any more from then on.
  void end() noexcept {
    const Inside inside(section_);
    ended_ = true;
    window_ = nullptr;
    letters_.clear();
    answers_.clear();
    if (line_) line_->end();
    SetEvent(end_.get());
  }

  // The line's thread.
  std::optional<Letter> take() override {
    const Inside inside(section_);
    if (letters_.empty()) return std::nullopt;
    Letter letter = std::move(letters_.front());
    letters_.pop_front();
    return letter;
  }
  void give(Wire::Answer answer) override {
    const Inside inside(section_);
    if (ended_) return;
    answers_.push_back(std::move(answer));
    announce();
  }
  void lineIs(phone::Line* line) noexcept override {
    const Inside inside(section_);
    line_ = line;
    if (ended_ && line_) line_->end();
  }
  // False when it is over.
  bool wait(DWORD milliseconds) const { return WaitForSingleObject(end_.get(), milliseconds) == WAIT_TIMEOUT; }

 private:
  // One message at a time, and one answer for each. When the message cannot be posted, the next answer tries again.
  void announce() {
    if (!announced_ && !answers_.empty()) announced_ = PostMessageW(window_, answersWait, 0, 0) != FALSE;
  }

  CriticalSection section_;
  OwnHandle end_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
  HWND window_;
  std::deque<Letter> letters_;
  std::deque<Wire::Answer> answers_;
  phone::Line* line_ = nullptr;
  bool announced_ = false;
  bool ended_ = false;
};

// What the line's thread begins with.
struct Beginning {
  std::shared_ptr<Exchange> exchange;
  LineWorker::Opener opener;
  const phone::Clock& clock;
  WireEvents events;
  std::unique_ptr<phone::at::Trace> trace;
};

void work(Beginning& beginning) {
  LineWorker worker(std::move(beginning.opener), beginning.clock, *beginning.exchange, std::move(beginning.events),
                    beginning.trace.get());
  for (DWORD pause = 0; beginning.exchange->wait(pause);)
    pause = com::guardedOr(false, [&] { return worker.step(); }) ? 0 : retryInterval;
}

unsigned __stdcall runLine(void* argument) {
  const std::unique_ptr<Beginning> beginning(static_cast<Beginning*>(argument));
  com::guardedOr(false, [&] { return work(*beginning), true; });
  return 0;
}

class LineThread final : public Wire {
 public:
  LineThread(LineWorker::Opener opener, const phone::Clock& clock, std::unique_ptr<phone::at::Trace> trace)
      : opener_(std::move(opener)), clock_(clock), trace_(std::move(trace)), window_(newWindow()) {}
  LineThread(const LineThread&) = delete;
  LineThread& operator=(const LineThread&) = delete;
  ~LineThread() override {
    if (exchange_) exchange_->end();
    SetWindowLongPtrW(window_, GWLP_USERDATA, 0);
    DestroyWindow(window_);
    if (thread_) WaitForSingleObject(thread_->get(), longestEnd);
  }

  void open(WireEvents events) override {
    exchange_ = std::make_shared<Exchange>(window_);
    SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(exchange_.get()));
    auto beginning =
        std::make_unique<Beginning>(Beginning{exchange_, opener_, clock_, std::move(events), std::move(trace_)});
    thread_ = std::make_unique<OwnHandle>(
        reinterpret_cast<HANDLE>(_beginthreadex(nullptr, 0, &runLine, beginning.get(), 0, nullptr)));
    static_cast<void>(beginning.release());  // the thread's now
  }

  void ask(std::uint32_t life, Deed deed) override {
    if (exchange_) exchange_->ask({life, std::move(deed)});
  }

 private:
  static HWND newWindow() {
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = &windowProcedure;
    windowClass.hInstance = thisModule();
    windowClass.lpszClassName = windowClassName;
    RegisterClassW(&windowClass);  // fails when another line has done it
    const HWND window = CreateWindowExW(0, windowClassName, nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                        windowClass.hInstance, nullptr);
    if (!window) com::check(HRESULT_FROM_WIN32(GetLastError()));
    return window;
  }

  static LRESULT CALLBACK windowProcedure(HWND window, UINT message, WPARAM w, LPARAM l) {
    auto* const exchange = reinterpret_cast<Exchange*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (!exchange || message != answersWait) return DefWindowProcW(window, message, w, l);
    // The answer may let the wire go, and all of this with it.
    return com::guardedOr<LRESULT>(0, [&] {
      if (const Wire::Answer answer = exchange->nextAnswer()) answer();
      return 0;
    });
  }

  LineWorker::Opener opener_;
  const phone::Clock& clock_;
  std::unique_ptr<phone::at::Trace> trace_;
  HWND window_;
  std::shared_ptr<Exchange> exchange_;
  std::unique_ptr<OwnHandle> thread_;
};

}  // namespace

std::unique_ptr<Wire> makeLineThread(LineWorker::Opener opener, const phone::Clock& clock,
                                     std::unique_ptr<phone::at::Trace> trace) {
  return std::make_unique<LineThread>(std::move(opener), clock, std::move(trace));
}

}  // namespace servers::modem
