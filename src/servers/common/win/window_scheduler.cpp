#include "servers/common/win/window_scheduler.h"

#include <algorithm>
#include <map>
#include <optional>

#include "com/errors.h"
#include "com/windows.h"

extern "C" IMAGE_DOS_HEADER __ImageBase;  // the linker's name for where this module begins

namespace servers {
namespace {

using platform::Counted;
using platform::Ref;

constexpr const wchar_t* className = L"Marrick Servers Scheduler";
constexpr UINT runMessage = WM_APP;
constexpr UINT_PTR timerId = 1;

HINSTANCE ownInstance() noexcept { return reinterpret_cast<HINSTANCE>(&__ImageBase); }

// The waiting work of one thread, first due first.
class ThreadQueue final : public Counted {
 public:
  struct Moment {
    std::int64_t due;
    std::uint64_t sequence;
    friend auto operator<=>(const Moment&, const Moment&) = default;
  };

  static Ref<ThreadQueue> ofThisThread() {
    return current_ ? Ref<ThreadQueue>(current_) : platform::make<ThreadQueue>();
  }

  ThreadQueue() {
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = &windowProcedure;
    windowClass.hInstance = ownInstance();
    windowClass.lpszClassName = className;
    RegisterClassW(&windowClass);  // fails when another thread has done it
    window_ =
        CreateWindowExW(0, className, nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, windowClass.hInstance, nullptr);
    if (!window_) com::check(HRESULT_FROM_WIN32(GetLastError()));
    SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    current_ = this;
  }

  ~ThreadQueue() override {
    if (!window_) return;
    current_ = nullptr;
    SetWindowLongPtrW(window_, GWLP_USERDATA, 0);
    DestroyWindow(window_);
    UnregisterClassW(className, ownInstance());  // fails while another thread has a window
  }

  Moment add(std::int32_t milliseconds, Scheduler::Work work) {
    const Moment moment{now() + std::max(milliseconds, 0), sequence_++};
    work_.emplace(moment, std::move(work));
    if (work_.begin()->first == moment) wakeForFirst();
    return moment;
  }

  void cancel(Moment moment) noexcept {
    if (const auto gone = work_.extract(moment)) wakeForFirst();
  }

 private:
  static LRESULT CALLBACK windowProcedure(HWND window, UINT message, WPARAM w, LPARAM l) {
    auto* const queue = reinterpret_cast<ThreadQueue*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (!queue || (message != runMessage && message != WM_TIMER)) return DefWindowProcW(window, message, w, l);
    const Ref<ThreadQueue> keep(queue);
    return com::guardedOr<LRESULT>(0, [&] { return queue->runFirst(), 0; });
  }

  // One piece of work for one message. The next message is on its way before the work begins, because the work may
  // serve messages itself.
  void runFirst() {
    if (work_.empty()) return;
    if (work_.begin()->first.due > now()) return wakeForFirst();  // the timer was early, or for something cancelled
    const auto first = work_.extract(work_.begin());
    wakeForFirst();
    first.mapped()();
  }

  void wakeForFirst() noexcept {
    if (work_.empty()) {
      KillTimer(window_, timerId);
      return;
    }
    const std::int64_t left = work_.begin()->first.due - now();
    if (left <= 0) {
      PostMessageW(window_, runMessage, 0, 0);
    } else {
      SetTimer(window_, timerId, static_cast<UINT>(left), nullptr);
    }
  }

  // The tick count, which wraps after 49.7 days, made one that does not.
  std::int64_t now() noexcept {
    const DWORD ticks = GetTickCount();
    if (lastTicks_) elapsed_ += ticks - *lastTicks_;
    lastTicks_ = ticks;
    return elapsed_;
  }

  static inline thread_local ThreadQueue* current_ = nullptr;

  HWND window_ = nullptr;
  std::map<Moment, Scheduler::Work> work_;
  std::uint64_t sequence_ = 0;
  std::int64_t elapsed_ = 0;
  std::optional<DWORD> lastTicks_;
};

// Keeps the queue of its thread, and cancels its work.
class Ticket final : public Counted {
 public:
  Ticket(Ref<ThreadQueue> queue, ThreadQueue::Moment moment) : queue_(std::move(queue)), moment_(moment) {}
  ~Ticket() override { queue_.get()->cancel(moment_); }

 private:
  Ref<ThreadQueue> queue_;
  ThreadQueue::Moment moment_;
};

class WindowScheduler final : public Scheduler {
 public:
  Ref<Counted> after(std::int32_t milliseconds, Work work) override {
    auto queue = ThreadQueue::ofThisThread();
    const auto moment = queue->add(milliseconds, std::move(work));
    return platform::make<Ticket>(std::move(queue), moment);
  }
};

constinit WindowScheduler scheduler;

}  // namespace

Scheduler& windowScheduler() noexcept { return scheduler; }

}  // namespace servers
