// The thread's message queue, and with it timers, other threads' and programs' sent messages, and incoming COM calls.
#pragma once

#include "addin/platform/system.h"

namespace win32 {

class Pump final : public platform::Pump {
 public:
  // While a quit message is pending every wait returns false, at once.
  bool wait(std::int32_t milliseconds) override;
};

}  // namespace win32
