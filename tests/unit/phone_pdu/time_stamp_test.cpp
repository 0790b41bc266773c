// Time stamps (3GPP TS 23.040, 9.2.3.11): swapped decimal digits, and a zone with its sign in the middle.

#include "phone/pdu/time_stamp.h"

#include <random>

#include <gtest/gtest.h>

#include "unit/phone_pdu/pdu_fixture.h"

namespace phone {
namespace {

TimeStamp stampOf(int year, int month, int day, int hour, int minute, int second, std::optional<int> quarters) {
  return {
      .year = year, .month = month, .day = day, .hour = hour, .minute = minute, .second = second, .quarters = quarters};
}

std::optional<TimeStamp> read(std::string_view hex) { return readTimeStamp(octetsOf(hex)); }

Octets written(const TimeStamp& stamp) {
  Octets octets;
  appendTimeStamp(octets, stamp);
  return octets;
}

TEST(TimeStamp, DigitsAreSwapped) {
  EXPECT_EQ(read("99 30 92 51 61 95 80"), stampOf(1999, 3, 29, 15, 16, 59, 8));
  EXPECT_EQ(written(stampOf(1999, 3, 29, 15, 16, 59, 8)), octetsOf("99 30 92 51 61 95 80"));
  EXPECT_EQ(read("40 20 92 32 95 95 00"), stampOf(2004, 2, 29, 23, 59, 59, 0));
}

TEST(TimeStamp, Zones) {
  struct Zone {
    const char* octet;
    int quarters;
  };
  for (const auto& [octet, quarters] :
       {Zone{"00", 0}, {"40", 4}, {"0A", -20}, {"8A", -28}, {"32", 23}, {"49", -14}, {"65", 56}, {"8C", -48}}) {
    const std::string hex = std::string("62 11 12 10 20 30 ") + octet;
    EXPECT_EQ(read(hex), stampOf(2026, 11, 21, 1, 2, 3, quarters)) << octet;
    EXPECT_EQ(written(stampOf(2026, 11, 21, 1, 2, 3, quarters)), octetsOf(hex)) << octet;
  }
  EXPECT_EQ(read("62 11 12 10 20 30 08"), stampOf(2026, 11, 21, 1, 2, 3, 0));  // minus zero
}

TEST(TimeStamp, ZoneThatIsNone_IsLeftOut) {
  for (const char* octet : {"A0", "F0", "FF", "75", "97", "0F" /* -70 quarters */, "A8"})
    EXPECT_EQ(read(std::string("62 11 12 10 20 30 ") + octet), stampOf(2026, 11, 21, 1, 2, 3, std::nullopt)) << octet;
}

TEST(TimeStamp, YearsTurnAtSeventy) {
  EXPECT_EQ(read("96 10 10 00 00 00 00")->year, 2069);
  EXPECT_EQ(read("07 10 10 00 00 00 00")->year, 1970);
  EXPECT_EQ(read("00 10 10 00 00 00 00")->year, 2000);
}

TEST(TimeStamp, DateThatIsNone_GivesNoStamp) {
  for (const char* hex :
       {"00 00 00 00 00 00 00", "62 00 12 00 00 00 00", "62 31 12 00 00 00 00", "62 11 00 00 00 00 00",
        "62 20 03 00 00 00 00" /* 30 February */, "52 20 92 00 00 00 00" /* 29 February 2025 */, "F2 11 12 00 00 00 00",
        "2F 11 12 00 00 00 00", "62 F1 12 00 00 00 00", "62 11 A2 00 00 00 00", "FF FF FF FF FF FF FF", "62 11 12"})
    EXPECT_EQ(read(hex), std::nullopt) << hex;
}

TEST(TimeStamp, TimeOfDayThatIsNone_LeavesTheDate) {
  EXPECT_EQ(read("62 11 12 42 06 06 00"), stampOf(2026, 11, 21, 0, 0, 0, 0));  // 24:60:60
  EXPECT_EQ(read("62 11 12 F1 20 3A 00"), stampOf(2026, 11, 21, 0, 2, 0, 0));
}

TEST(TimeStamp, TwelveDigits_AreTheLocalTime) {
  EXPECT_EQ(twelveDigits(stampOf(2026, 1, 2, 3, 4, 5, -20)), u"260102030405");
  EXPECT_EQ(twelveDigits(stampOf(1999, 12, 31, 23, 59, 58, std::nullopt)), u"991231235958");
}

TEST(TimeStamp, Utc_IsLocalTimeWithoutTheOffset) {
  // 1 January 2000 was day 10957.
  constexpr std::int64_t newYear2000 = std::int64_t{10957} * 86400;
  EXPECT_EQ(utcSeconds(stampOf(2000, 1, 1, 0, 0, 0, 0)), newYear2000);
  EXPECT_EQ(utcSeconds(stampOf(2000, 1, 1, 0, 0, 0, std::nullopt)), newYear2000);
  EXPECT_EQ(utcSeconds(stampOf(2000, 1, 1, 1, 0, 0, 4)), newYear2000);
  EXPECT_EQ(utcSeconds(stampOf(1999, 12, 31, 19, 0, 0, -20)), newYear2000);
  EXPECT_EQ(utcSeconds(stampOf(2000, 1, 1, 5, 45, 7, 23)), newYear2000 + 7);
  EXPECT_EQ(utcSeconds(stampOf(1970, 1, 1, 0, 0, 0, 0)), 0);
}

TEST(TimeStamp, SameMomentInAnotherZone) {
  constexpr std::int64_t newYear2000 = std::int64_t{10957} * 86400;
  EXPECT_EQ(fromUtcSeconds(newYear2000, -20), stampOf(1999, 12, 31, 19, 0, 0, -20));
  EXPECT_EQ(fromUtcSeconds(newYear2000 + 86399, 0), stampOf(2000, 1, 1, 23, 59, 59, 0));
  EXPECT_EQ(fromUtcSeconds(newYear2000, 56), stampOf(2000, 1, 1, 14, 0, 0, 56));
  EXPECT_EQ(fromUtcSeconds(0, 0), stampOf(1970, 1, 1, 0, 0, 0, 0));
}

TEST(TimeStamp, AnyMoment_ComesBack) {
  std::mt19937_64 random(7);
  for (int round = 0; round < 5000; ++round) {
    const auto seconds = static_cast<std::int64_t>(86400 + random() % (std::uint64_t{3155000000} - 2 * 86400));
    const int quarters = static_cast<int>(random() % 113) - 56;
    const TimeStamp stamp = fromUtcSeconds(seconds, quarters);
    ASSERT_EQ(readTimeStamp(written(stamp)), stamp);
    ASSERT_EQ(utcSeconds(stamp), seconds);
  }
}

}  // namespace
}  // namespace phone
