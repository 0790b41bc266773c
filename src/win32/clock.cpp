#include "win32/clock.h"

#include <algorithm>

#include "com/errors.h"

namespace win32 {

std::int32_t Clock::ticks() { return static_cast<std::int32_t>(GetTickCount()); }

platform::Date Clock::now() {
  SYSTEMTIME time{};
  GetLocalTime(&time);
  platform::Date date{};
  if (!SystemTimeToVariantTime(&time, &date.days)) com::check(E_INVALIDARG);
  return date;
}

void Clock::sleep(std::int32_t milliseconds) { Sleep(static_cast<DWORD>(std::max(milliseconds, 0))); }

}  // namespace win32
