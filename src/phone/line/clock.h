// The time that limits are measured in. It only ever moves forward, whatever happens to the calendar; in tests it is
// moved by hand.
#pragma once

#include <chrono>

namespace phone {

using Milliseconds = std::chrono::milliseconds;
using Instant = std::chrono::milliseconds;  // since some moment that stays the same while the program runs

class Clock {
 public:
  virtual Instant now() const = 0;

 protected:
  ~Clock() = default;
};

}  // namespace phone
