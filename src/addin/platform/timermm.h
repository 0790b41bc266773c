// The timer server (timermm.dll): timers whose ticks arrive on the thread that created them.
#pragma once

#include "addin/platform/object.h"

namespace platform::timermm {

inline constexpr StringView progIdTimer = u"timermm.Timer";
inline constexpr Guid clsidTimer{0x5D32FE61, 0x985F, 0x44E7, {0xAA, 0x09, 0x5E, 0xE8, 0x2B, 0xB2, 0x99, 0x76}};

struct TimerEvents {
  static constexpr Guid iid{0x9A1E40B4, 0x5815, 0x4A99, {0x99, 0xE2, 0xD1, 0x53, 0x64, 0xC7, 0xA5, 0x00}};
  static constexpr Event<std::int32_t> Timer{u"Timer", 1};  // Milliseconds since the timer was armed or last fired
};

// Dispatch identifiers of the members, for who serves them.
namespace dispid {
inline constexpr std::int32_t timerEnabled = 1, timerInterval = 2, timerResolution = 3, timerPeriodic = 4;
}  // namespace dispid

class Timer : public Object {
 public:
  using Object::Object;
  using Events = TimerEvents;
  void Enabled(bool on) const { let(u"Enabled", on); }
  void Interval(std::int32_t milliseconds) const { let(u"Interval", milliseconds); }
  void Periodic(std::int32_t periodic) const { let(u"Periodic", periodic); }  // 0: once per arming, 1: every interval
  void Resolution(std::int32_t milliseconds) const { let(u"Resolution", milliseconds); }
};

}  // namespace platform::timermm
