#include "addin/common/bastext.h"

#include <gtest/gtest.h>

#include "addin/platform/date.h"
#include "support/text.h"

namespace addin {
namespace {

using testing_support::utf8;

// A date that no test text means: it must survive a text that is no time stamp.
constexpr Date untouched{12345.0};

struct Parsed {
  bool result;
  Date date;
};
Parsed parsed(StringView text) {
  Date date = untouched;
  const bool result = ParseTimeStamp(text, date);
  return {result, date};
}

void expectMoment(StringView text, const DateParts& moment) {
  const Parsed p = parsed(text);
  EXPECT_TRUE(p.result) << utf8(text);
  EXPECT_EQ(partsOf(p.date), moment) << utf8(text);
}

void expectNoTimeStamp(StringView text) {
  const Parsed p = parsed(text);
  EXPECT_FALSE(p.result) << utf8(text);
  EXPECT_EQ(p.date, untouched) << utf8(text);
}

// GetBetween
// -----------------------------------------------------------------------------------------------------------

TEST(GetBetween, BothMarks_GivesWhatStandsBetweenThem) {
  EXPECT_EQ(GetBetween(u"Contact Name [+12 (34) 567 89 01]", u"[", u"]"), u"+12 (34) 567 89 01");
  EXPECT_EQ(GetBetween(u"Operator (+46701740699)", u"(", u")"), u"+46701740699");
  EXPECT_EQ(GetBetween(u"[x]", u"[", u"]"), u"x");
}

TEST(GetBetween, NothingBetweenTheMarks_GivesEmpty) { EXPECT_EQ(GetBetween(u"a[]b", u"[", u"]"), u""); }

TEST(GetBetween, NoStartMark_GivesEmpty) {
  EXPECT_EQ(GetBetween(u"+123]", u"[", u"]"), u"");
  EXPECT_EQ(GetBetween(u"", u"[", u"]"), u"");
}

TEST(GetBetween, NoEndMarkAfterTheStart_GivesEmpty) {
  EXPECT_EQ(GetBetween(u"Name [+123", u"[", u"]"), u"");
  EXPECT_EQ(GetBetween(u"a] Name [+123", u"[", u"]"), u"");  // one before the start does not count
}

TEST(GetBetween, SeveralMarks_TheFirstStartAndTheNextEnd) {
  EXPECT_EQ(GetBetween(u"] [a] [b]", u"[", u"]"), u"a");
  EXPECT_EQ(GetBetween(u"[[a]]", u"[", u"]"), u"[a");
}

// The end is looked for at the start mark, not behind it, so one mark for both finds itself.
TEST(GetBetween, SameMarkForBoth_GivesEmptyAndFailsNot) { EXPECT_EQ(GetBetween(u"|a|", u"|", u"|"), u""); }

TEST(GetBetween, LongStartMark_TheTextStartsOneCharacterAfterItsBeginning) {
  EXPECT_EQ(GetBetween(u"<<a>>", u"<<", u">>"), u"<a");
}

TEST(GetBetween, MarksAreComparedWithCase) {
  EXPECT_EQ(GetBetween(u"xaXbY", u"X", u"Y"), u"b");
  EXPECT_EQ(GetBetween(u"xay", u"X", u"Y"), u"");
}

// RemoveAll
// ------------------------------------------------------------------------------------------------------------

TEST(RemoveAll, EveryOccurrenceGoes_WhereverItStands) {
  EXPECT_EQ(RemoveAll(u" +12 34  5 ", u" "), u"+12345");
  EXPECT_EQ(RemoveAll(u"((1)(", u"("), u"1)");
  EXPECT_EQ(RemoveAll(u"(((", u"("), u"");
}

TEST(RemoveAll, NoOccurrence_LeavesTheText) {
  EXPECT_EQ(RemoveAll(u"+12345", u" "), u"+12345");
  EXPECT_EQ(RemoveAll(u"abc", u"B"), u"abc");
}

TEST(RemoveAll, EmptyText_GivesEmpty) {
  EXPECT_EQ(RemoveAll(u"", u" "), u"");
  EXPECT_EQ(RemoveAll(u"", u""), u"");
}

TEST(RemoveAll, NothingToRemove_LeavesTheTextAndEnds) { EXPECT_EQ(RemoveAll(u"abc", u""), u"abc"); }

TEST(RemoveAll, WhatTheRemovalBringsTogether_IsNotLookedAtAgain) {
  EXPECT_EQ(RemoveAll(u"aabb", u"ab"), u"ab");
  EXPECT_EQ(RemoveAll(u"aaa", u"aa"), u"a");
}

// ParseTimeStamp
// -------------------------------------------------------------------------------------------------------

TEST(ParseTimeStamp, TwelveDigits_YearMonthDayHourMinuteSecond) {
  expectMoment(u"010203040506", {2001, 2, 3, 4, 5, 6});
  expectMoment(u"991231235959", {1999, 12, 31, 23, 59, 59});
  expectMoment(u"490101000000", {2049, 1, 1, 0, 0, 0});
}

TEST(ParseTimeStamp, YearsFrom50_AreOfTheLastCentury) {
  expectMoment(u"500101000000", {1950, 1, 1, 0, 0, 0});
  expectMoment(u"000101000000", {2000, 1, 1, 0, 0, 0});
}

TEST(ParseTimeStamp, ElevenDigits_EndInTheMiddleOfTheSeconds) {
  expectMoment(u"01020304050", {2001, 2, 3, 4, 5, 0});
  expectMoment(u"01020304057", {2001, 2, 3, 4, 5, 7});
}

TEST(ParseTimeStamp, DigitsAfterTheTwelfth_AreIgnored) {
  expectMoment(u"01020304050699", {2001, 2, 3, 4, 5, 6});
  expectMoment(concat(u"010203040506", String(1000, u'9')), {2001, 2, 3, 4, 5, 6});
}

TEST(ParseTimeStamp, ShorterThanEleven_IsFalseAndLeavesTheResult) {
  expectNoTimeStamp(u"");
  expectNoTimeStamp(u"0102030405");
}

TEST(ParseTimeStamp, AnythingButDigits_IsFalseAndLeavesTheResult) {
  expectNoTimeStamp(u"01/02/03 04:05:06");
  expectNoTimeStamp(u"0102030405/6");
  expectNoTimeStamp(u"01020304050a");
  expectNoTimeStamp(u"a10203040506");
  expectNoTimeStamp(u"010203040506+04");
  expectNoTimeStamp(u"010203040506 ");
  expectNoTimeStamp(u" 010203040506");
  expectNoTimeStamp(u"-10203040506");
  expectNoTimeStamp(u"10203040506.5");
  expectNoTimeStamp(u"1020304050e6");
  expectNoTimeStamp(u"\u0660\u0661\u0660\u0662\u0660\u0663\u0660\u0664\u0660\u0665\u0660\u0666");  // Arabic-Indic
}

TEST(ParseTimeStamp, ImpossibleMoment_IsFalseAndLeavesTheResult) {
  expectNoTimeStamp(u"010003040506");  // month 0
  expectNoTimeStamp(u"011303040506");  // month 13: day and month are never exchanged
  expectNoTimeStamp(u"010200040506");  // day 0
  expectNoTimeStamp(u"010230040506");  // 30 February
  expectNoTimeStamp(u"010229040506");  // no leap year
  expectNoTimeStamp(u"010431040506");
  expectNoTimeStamp(u"010203240506");
  expectNoTimeStamp(u"010203046006");
  expectNoTimeStamp(u"010203040560");
  expectNoTimeStamp(u"000000000000");
}

TEST(ParseTimeStamp, LeapDays_Exist) {
  expectMoment(u"000229000000", {2000, 2, 29, 0, 0, 0});
  expectMoment(u"960229235959", {1996, 2, 29, 23, 59, 59});
}

// The order is year, month, day whatever the user's locale says.
TEST(ParseTimeStamp, AmbiguousDate_IsReadInTheOrderOfTheTimeStamp) {
  expectMoment(u"030405000000", {2003, 4, 5, 0, 0, 0});
  expectMoment(u"121110090807", {2012, 11, 10, 9, 8, 7});
}

}  // namespace
}  // namespace addin
