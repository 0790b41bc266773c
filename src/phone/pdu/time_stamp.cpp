#include "phone/pdu/time_stamp.h"

#include <chrono>
#include <cstdlib>

namespace phone {
namespace {

constexpr int farthestZone = 14 * 4;  // no clock on earth is farther from UTC

std::optional<int> decimals(std::uint8_t octet, unsigned tensMask = 0xF) {
  const unsigned tens = octet & tensMask;
  const unsigned units = octet >> 4;
  if (tens > 9 || units > 9) return std::nullopt;
  return static_cast<int>(tens * 10 + units);
}

std::uint8_t swapped(int value) { return static_cast<std::uint8_t>(value % 10 << 4 | value / 10 % 10); }

int withinOrZero(std::optional<int> value, int most) { return value && *value <= most ? *value : 0; }

std::optional<int> readZone(std::uint8_t octet) {
  const std::optional<int> quarters = decimals(octet, 7);
  if (!quarters || *quarters > farthestZone) return std::nullopt;
  return octet & 8 ? -*quarters : *quarters;
}

std::chrono::sys_days dayOf(const TimeStamp& stamp) {
  using namespace std::chrono;
  return year(stamp.year) / month(static_cast<unsigned>(stamp.month)) / day(static_cast<unsigned>(stamp.day));
}

}  // namespace

std::optional<TimeStamp> readTimeStamp(OctetsView octets) {
  using namespace std::chrono;
  if (octets.size() < timeStampOctets) return std::nullopt;
  const auto years = decimals(octets[0]);
  const auto months = decimals(octets[1]);
  const auto days = decimals(octets[2]);
  if (!years || !months || !days) return std::nullopt;
  const int fullYear = *years < 70 ? 2000 + *years : 1900 + *years;
  if (!(year(fullYear) / month(static_cast<unsigned>(*months)) / day(static_cast<unsigned>(*days))).ok())
    return std::nullopt;
  return TimeStamp{.year = fullYear,
                   .month = *months,
                   .day = *days,
                   .hour = withinOrZero(decimals(octets[3]), 23),
                   .minute = withinOrZero(decimals(octets[4]), 59),
                   .second = withinOrZero(decimals(octets[5]), 59),
                   .quarters = readZone(octets[6])};
}

void appendTimeStamp(Octets& pdu, const TimeStamp& stamp) {
  for (const int value : {stamp.year % 100, stamp.month, stamp.day, stamp.hour, stamp.minute, stamp.second})
    pdu.push_back(swapped(value));
  const int quarters = stamp.quarters.value_or(0);
  pdu.push_back(static_cast<std::uint8_t>(swapped(std::abs(quarters)) | (quarters < 0 ? 8 : 0)));
}

std::u16string twelveDigits(const TimeStamp& stamp) {
  std::u16string digits;
  for (const int value : {stamp.year % 100, stamp.month, stamp.day, stamp.hour, stamp.minute, stamp.second}) {
    digits += static_cast<char16_t>(u'0' + value / 10 % 10);
    digits += static_cast<char16_t>(u'0' + value % 10);
  }
  return digits;
}

std::int64_t utcSeconds(const TimeStamp& stamp) {
  const std::int64_t days = dayOf(stamp).time_since_epoch().count();
  const std::int64_t minutes = days * 1440 + stamp.hour * 60 + stamp.minute - stamp.quarters.value_or(0) * 15;
  return minutes * 60 + stamp.second;
}

TimeStamp fromUtcSeconds(std::int64_t seconds, int quarters) {
  using namespace std::chrono;
  const sys_seconds local(std::chrono::seconds(seconds + quarters * 900));
  const sys_days midnight = floor<days>(local);
  const year_month_day date(midnight);
  const hh_mm_ss time(local - midnight);
  return {.year = static_cast<int>(date.year()),
          .month = static_cast<int>(static_cast<unsigned>(date.month())),
          .day = static_cast<int>(static_cast<unsigned>(date.day())),
          .hour = static_cast<int>(time.hours().count()),
          .minute = static_cast<int>(time.minutes().count()),
          .second = static_cast<int>(time.seconds().count()),
          .quarters = quarters};
}

}  // namespace phone
