#include "servers/timermm/timer.h"

#include <algorithm>
#include <limits>

namespace servers::timermm {

using namespace platform;

namespace {
constexpr std::int32_t realMinute = 60000;
}

std::span<const Member> Timer::members() const {
  namespace id = platform::timermm::dispid;
  static constexpr Member table[] = {
      property<&Timer::enabled, &Timer::setEnabled>(u"Enabled", id::timerEnabled),
      property<&Timer::interval, &Timer::setInterval>(u"Interval", id::timerInterval),
      field<&Timer::resolution_>(u"Resolution", id::timerResolution),
      field<&Timer::periodic_>(u"Periodic", id::timerPeriodic),
  };
  return table;
}

void Timer::setInterval(std::int32_t milliseconds) {
  if (milliseconds < 0) raiseError(5);
  interval_ = milliseconds;
}

void Timer::setEnabled(bool on) {
  next_ = nullptr;
  if (!on || hasEnded()) return;
  armedInterval_ = interval_;
  armedPeriodic_ = periodic_ != 0;
  schedule();
}

void Timer::schedule() {
  next_ = scheduler_.after(delay(), [this] { tick(); });
}

std::int32_t Timer::delay() const {
  if (armedInterval_ < realMinute) return armedInterval_;
  const std::int64_t length = std::int64_t{armedInterval_} * std::max(minute_(), 1) / realMinute;
  return static_cast<std::int32_t>(std::clamp<std::int64_t>(length, 1, std::numeric_limits<std::int32_t>::max()));
}

void Timer::tick() {
  const Hold<Timer> keep(this);  // a listener may release the timer
  const std::int32_t milliseconds = armedInterval_;
  if (armedPeriodic_) {
    schedule();
  } else {
    next_ = nullptr;
  }
  fire(platform::timermm::TimerEvents::Timer, milliseconds);
}

}  // namespace servers::timermm
