// The line to a phone: octets both ways, a serial port or a TCP connection.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "phone/line/clock.h"

namespace phone {

// There is no phone any more at the other end: nothing more can be done over this line.
class PhoneGone : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The line itself broke: cable pulled out, connection closed, port refused.
class LineLost final : public PhoneGone {
 public:
  using PhoneGone::PhoneGone;
};

// Belongs to one thread; wake and end may be called from any. Once it has thrown LineLost it always does.
class Line {
 public:
  virtual ~Line() = default;

  // Returns when all octets are on their way. LineLost, too, when they are not taken by `deadline`: a device that takes
  // nothing will not take the next command either.
  virtual void write(std::string_view octets, Instant deadline) = 0;

  // The octets that have come, as soon as there are any; none when none came by `deadline`, or after wake.
  virtual std::string read(Instant deadline) = 0;

  // The read that is under way, or else the next one, returns.
  virtual void wake() noexcept = 0;

  // What is under way, and whatever is asked later, ends with LineLost.
  virtual void end() noexcept = 0;
};

}  // namespace phone
