// The timer object of the timer server.
//
//   Enabled     True arms it: the interval starts anew, even when it was armed already. False disarms it.
//   Interval    milliseconds; error 5 below 0. Read when the timer is armed.
//   Resolution  milliseconds by which a tick may be late; kept, and not needed by the scheduler that runs here
//   Periodic    0: ticks once per arming, and is disarmed before its event. Otherwise ticks every interval.
//   [event] Timer(Milliseconds)   the interval that has run out, as it was set
//
// A tick is work of its own on the creating thread, never part of another call. A listener may arm, disarm or release
// the timer inside the event.
#pragma once

#include <functional>

#include "addin/platform/native.h"
#include "addin/platform/timermm.h"
#include "servers/common/scheduler.h"

namespace servers::timermm {

// How many milliseconds a minute lasts, asked at each arming and each tick. A test setting: 60000 in earnest. Intervals
// of at least a minute shrink (or grow) with it, shorter ones keep their length.
using MinuteLength = std::function<std::int32_t()>;

class Timer final : public platform::NativeObject {
 public:
  explicit Timer(
      Scheduler& scheduler, MinuteLength minute = [] { return 60000; })
      : scheduler_(scheduler), minute_(std::move(minute)) {}

  std::span<const platform::Member> members() const override;
  platform::Guid events() const override { return platform::timermm::TimerEvents::iid; }

  bool enabled() const { return bool(next_); }
  void setEnabled(bool on);
  std::int32_t interval() const { return interval_; }
  void setInterval(std::int32_t milliseconds);

 private:
  void terminate() noexcept override { next_ = nullptr; }
  void schedule();
  void tick();
  std::int32_t delay() const;

  Scheduler& scheduler_;
  MinuteLength minute_;
  std::int32_t interval_ = 1000;
  std::int32_t resolution_ = 0;
  std::int32_t periodic_ = 0;
  platform::Ref<platform::Counted> next_;  // set while armed
  std::int32_t armedInterval_ = 0;
  bool armedPeriodic_ = false;
};

}  // namespace servers::timermm
