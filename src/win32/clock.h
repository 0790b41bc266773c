// Time as Windows tells it.
#pragma once

#include "addin/platform/system.h"

namespace win32 {

class Clock final : public platform::Clock {
 public:
  std::int32_t ticks() override;
  platform::Date now() override;
  void sleep(std::int32_t milliseconds) override;
};

}  // namespace win32
