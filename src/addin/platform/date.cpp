#include "addin/platform/date.h"

#include <chrono>
#include <cmath>

namespace platform {
namespace {

constexpr std::chrono::sys_days epoch = std::chrono::year{1899} / 12 / 30;
constexpr double secondsPerDay = 86400.0;

bool isBetween(std::int32_t value, std::int32_t low, std::int32_t high) { return value >= low && value <= high; }

}  // namespace

std::optional<Date> dateFromParts(const DateParts& p) {
  if (!isBetween(p.year, 100, 9999) || !isBetween(p.month, 1, 12) || !isBetween(p.day, 1, 31)) return std::nullopt;
  if (!isBetween(p.hour, 0, 23) || !isBetween(p.minute, 0, 59) || !isBetween(p.second, 0, 59)) return std::nullopt;
  const auto date = std::chrono::year{p.year} / std::chrono::month{static_cast<unsigned>(p.month)} /
                    std::chrono::day{static_cast<unsigned>(p.day)};
  if (!date.ok()) return std::nullopt;
  const double days = static_cast<double>((std::chrono::sys_days{date} - epoch).count());
  const double time = (p.hour * 3600 + p.minute * 60 + p.second) / secondsPerDay;
  return Date{days < 0 ? days - time : days + time};  // before the epoch the time of day counts away from zero
}

bool isInCalendar(Date date) noexcept {
  constexpr double before = -657435;  // the day before 1 January 100
  constexpr double after = 2958466;   // 1 January 10000
  return date.days > before && date.days < after;
}

DateParts partsOf(Date date) {
  if (!isInCalendar(date)) raiseError(6);
  double days = std::trunc(date.days);
  auto seconds = static_cast<std::int32_t>(std::lround(std::fabs(date.days - days) * secondsPerDay));
  if (seconds >= 86400) {
    days += 1;
    seconds -= 86400;
  }
  const std::chrono::year_month_day civil{epoch + std::chrono::days{static_cast<std::int32_t>(days)}};
  return {static_cast<std::int32_t>(civil.year()),
          static_cast<std::int32_t>(static_cast<unsigned>(civil.month())),
          static_cast<std::int32_t>(static_cast<unsigned>(civil.day())),
          seconds / 3600,
          seconds / 60 % 60,
          seconds % 60};
}

}  // namespace platform
