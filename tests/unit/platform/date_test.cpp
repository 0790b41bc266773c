#include "addin/platform/date.h"

#include <gtest/gtest.h>

#include "support/errors.h"

namespace platform {
namespace {

using testing_support::errorNumberOf;

double daysOf(const DateParts& parts) {
  const auto date = dateFromParts(parts);
  EXPECT_TRUE(date.has_value());
  return date ? date->days : 0;
}

TEST(Date, DayZero_Is30December1899) {
  EXPECT_EQ(daysOf({1899, 12, 30}), 0.0);
  EXPECT_EQ(daysOf({1899, 12, 31}), 1.0);
  EXPECT_EQ(daysOf({1900, 1, 1}), 2.0);
  EXPECT_EQ(daysOf({2001, 2, 3}), 36925.0);
  EXPECT_EQ(partsOf(Date{0}), (DateParts{1899, 12, 30}));
}

TEST(Date, TimeOfDay_IsTheFraction) {
  EXPECT_EQ(daysOf({2001, 2, 3, 12, 0, 0}), 36925.5);
  EXPECT_EQ(daysOf({1899, 12, 30, 6, 0, 0}), 0.25);
  EXPECT_EQ(partsOf(Date{36925.75}), (DateParts{2001, 2, 3, 18, 0, 0}));
}

TEST(Date, BeforeDayZero_TheTimeOfDayCountsAwayFromZero) {
  EXPECT_EQ(daysOf({1899, 12, 29, 18, 0, 0}), -1.75);
  EXPECT_EQ(partsOf(Date{-1.75}), (DateParts{1899, 12, 29, 18, 0, 0}));
  EXPECT_EQ(partsOf(Date{-1}), (DateParts{1899, 12, 29}));
  EXPECT_EQ(partsOf(Date{-0.5}), (DateParts{1899, 12, 30, 12, 0, 0}));
}

TEST(Date, LeapYears) {
  EXPECT_TRUE(dateFromParts({2000, 2, 29}));
  EXPECT_TRUE(dateFromParts({2004, 2, 29}));
  EXPECT_FALSE(dateFromParts({1900, 2, 29}));
  EXPECT_FALSE(dateFromParts({2001, 2, 29}));
  EXPECT_FALSE(dateFromParts({2000, 2, 30}));
  EXPECT_EQ(daysOf({2000, 3, 1}) - daysOf({2000, 2, 28}), 2.0);
  EXPECT_EQ(daysOf({1900, 3, 1}) - daysOf({1900, 2, 28}), 1.0);
}

TEST(Date, ImpossibleParts_AreNoDate) {
  EXPECT_FALSE(dateFromParts({2001, 0, 1}));
  EXPECT_FALSE(dateFromParts({2001, 13, 1}));
  EXPECT_FALSE(dateFromParts({2001, 1, 0}));
  EXPECT_FALSE(dateFromParts({2001, 4, 31}));
  EXPECT_FALSE(dateFromParts({2001, 1, 1, 24, 0, 0}));
  EXPECT_FALSE(dateFromParts({2001, 1, 1, 0, 60, 0}));
  EXPECT_FALSE(dateFromParts({2001, 1, 1, 0, 0, 60}));
  EXPECT_FALSE(dateFromParts({2001, -1, 1}));
  EXPECT_FALSE(dateFromParts({2001, 1, 1, -1, 0, 0}));
  EXPECT_FALSE(dateFromParts({99, 1, 1}));
  EXPECT_FALSE(dateFromParts({10000, 1, 1}));
}

TEST(Date, EndsOfTheCalendar) {
  EXPECT_EQ(daysOf({100, 1, 1}), -657434.0);
  EXPECT_EQ(daysOf({9999, 12, 31}), 2958465.0);
  EXPECT_EQ(partsOf(Date{-657434}), (DateParts{100, 1, 1}));
  EXPECT_EQ(partsOf(Date{2958465.5}), (DateParts{9999, 12, 31, 12, 0, 0}));
}

TEST(Date, PartsOf_RoundsToTheNearestSecond_IntoTheNextDay) {
  constexpr double second = 1 / 86400.0;
  EXPECT_EQ(partsOf(Date{36925 + 1.4 * second}), (DateParts{2001, 2, 3, 0, 0, 1}));
  EXPECT_EQ(partsOf(Date{36925 + 1.6 * second}), (DateParts{2001, 2, 3, 0, 0, 2}));
  EXPECT_EQ(partsOf(Date{36926 - 0.4 * second}), (DateParts{2001, 2, 4}));
  EXPECT_EQ(partsOf(Date{-(1 + 1 - 0.4 * second)}), (DateParts{1899, 12, 30}));
}

TEST(Date, EverySecondOfADay_SurvivesTheRoundTrip) {
  for (std::int32_t s = 0; s < 86400; s += 7) {
    const DateParts parts{2026, 12, 31, s / 3600, s / 60 % 60, s % 60};
    ASSERT_EQ(partsOf(*dateFromParts(parts)), parts);
  }
}

TEST(Date, PartsOf_OutsideTheCalendar_IsOverflow) {
  for (const double days : {-657435.0, 2958466.0, 1e300, -1e300, std::numeric_limits<double>::quiet_NaN()})
    EXPECT_EQ(errorNumberOf([&] { partsOf(Date{days}); }), 6) << days;
}

}  // namespace
}  // namespace platform
