// The calendar behind Date: days since 30 December 1899, Gregorian, years 100 to 9999.
#pragma once

#include <cstdint>
#include <optional>

#include "addin/platform/variant.h"

namespace platform {

struct DateParts {
  std::int32_t year = 1899;
  std::int32_t month = 12;  // 1 to 12
  std::int32_t day = 30;    // 1 to 31
  std::int32_t hour = 0;
  std::int32_t minute = 0;
  std::int32_t second = 0;
  friend bool operator==(const DateParts&, const DateParts&) = default;
};

// Nothing when the parts name no moment of the calendar (30 February, 24:00:00).
std::optional<Date> dateFromParts(const DateParts& parts);

// True for a moment of the calendar.
bool isInCalendar(Date date) noexcept;

// Rounded to the nearest second. Error 6 outside the calendar.
DateParts partsOf(Date date);

}  // namespace platform
