// The service centre's time stamp (3GPP TS 23.040, 9.2.3.11).
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "phone/text/octets.h"

namespace phone {

struct TimeStamp {
  int year = 2000;  // 1970 to 2069: two digits travel
  int month = 1;
  int day = 1;
  int hour = 0;
  int minute = 0;
  int second = 0;
  // The local time's distance from UTC in quarters of an hour (-56 to 56), when it makes sense.
  std::optional<int> quarters = {};
  friend bool operator==(const TimeStamp&, const TimeStamp&) = default;
};

inline constexpr std::size_t timeStampOctets = 7;

// The first seven octets. Nothing when the date is none (all zero, or digits that are not decimal); a time of day that
// is none becomes 0, a zone that is none is left out.
std::optional<TimeStamp> readTimeStamp(OctetsView octets);

// A missing zone is written as UTC.
void appendTimeStamp(Octets& pdu, const TimeStamp& stamp);

// Twelve digits YYMMDDhhmmss, local time as the digits of the stamp say.
std::u16string twelveDigits(const TimeStamp& stamp);

// Seconds since 1970 in UTC; without a zone, the digits are taken for UTC.
std::int64_t utcSeconds(const TimeStamp& stamp);
// The same moment shown in another zone.
TimeStamp fromUtcSeconds(std::int64_t seconds, int quarters);

}  // namespace phone
