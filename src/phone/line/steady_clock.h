// The clock of the machine.
#pragma once

#include "phone/line/clock.h"

namespace phone {

class SteadyClock final : public Clock {
 public:
  Instant now() const override {
    return std::chrono::duration_cast<Milliseconds>(std::chrono::steady_clock::now().time_since_epoch());
  }
};

}  // namespace phone
