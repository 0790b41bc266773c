#include "addin/platform/convert.h"

#include <limits>

#include <gtest/gtest.h>

#include "support/errors.h"
#include "support/fake_object.h"
#include "support/native_system.h"

namespace platform {
namespace {

using testing_support::errorNumberOf;
using testing_support::fake;

constexpr std::int32_t longest = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();

struct NumberCase {
  StringView text;
  double expected;
};

class NumberFromText : public testing::TestWithParam<NumberCase> {};

TEST_P(NumberFromText, IsReadAsAutomationDoes) { EXPECT_EQ(CDbl(GetParam().text), GetParam().expected); }

INSTANTIATE_TEST_SUITE_P(
    Texts, NumberFromText,
    testing::Values(NumberCase{u"0", 0}, NumberCase{u"7", 7}, NumberCase{u" 7 ", 7}, NumberCase{u"\t7\r\n", 7},
                    NumberCase{u"+7", 7}, NumberCase{u"-7", -7}, NumberCase{u"- 7", -7}, NumberCase{u"7-", -7},
                    NumberCase{u"7+", 7}, NumberCase{u"(5)", -5}, NumberCase{u"( 5 )", -5}, NumberCase{u"1,000", 1000},
                    NumberCase{u"1,234,567.5", 1234567.5}, NumberCase{u".5", 0.5}, NumberCase{u"5.", 5},
                    NumberCase{u"-.5", -0.5}, NumberCase{u"2.5", 2.5}, NumberCase{u"1e3", 1000},
                    NumberCase{u"1E+3", 1000}, NumberCase{u"1d2", 100}, NumberCase{u"25E-1", 2.5},
                    NumberCase{u"007", 7}, NumberCase{u"&H10", 16}, NumberCase{u"&hff", 255}, NumberCase{u"&O17", 15},
                    NumberCase{u" &H10 ", 16}, NumberCase{u"&H10000", 65536}, NumberCase{u"&HFFFF", 65535},
                    NumberCase{u"&H7FFFFFFF", 2147483647}, NumberCase{u"-&H10", 16}, NumberCase{u"$1,000.50", 1000.5},
                    NumberCase{u"-$12", -12}, NumberCase{u"12 $", 12}, NumberCase{u"-(5)", -5}, NumberCase{u"(-5)", -5},
                    NumberCase{u"(5)-", -5}, NumberCase{u"+-1", -1}, NumberCase{u"1.5,0", 1.5}, NumberCase{u"1,,2", 12},
                    NumberCase{u"\u00A07\u3000", 7}, NumberCase{u"1e-400", 0}));

class NoNumber : public testing::TestWithParam<StringView> {};

TEST_P(NoNumber, IsATypeMismatch) {
  EXPECT_EQ(errorNumberOf([] { CDbl(GetParam()); }), 13);
  EXPECT_EQ(errorNumberOf([] { CLng(GetParam()); }), 13);
  EXPECT_EQ(errorNumberOf([] { CInt(GetParam()); }), 13);
  EXPECT_EQ(errorNumberOf([] { CBool(GetParam()); }), 13);
  EXPECT_EQ(errorNumberOf([] { CDate(GetParam()); }), 13);
}

INSTANTIATE_TEST_SUITE_P(Texts, NoNumber,
                         testing::Values(u"", u" ", u"12abc", u"abc", u"yes", u".", u"+", u"-", u"(5", u"5)", u"1 2",
                                         u"--5", u"-5-", u",5", u"1e", u"1e+", u"&H", u"&HG", u"&O8", u"&", u"1.2.3",
                                         StringView(u"5\0", 2), u"\uFF15", u"()", u"$", u"$$5", u"$5$", u"$1e3", u"++5",
                                         u"((5))", u"(5", u"5%", u"&17", u"0x10", u"1e400x", u"&HFFFFFFFFFFFFFFFFFx"));

TEST(Convert, CLng_OfHalves_GoesToTheEvenNeighbour) {
  EXPECT_EQ(CLng(u"2.5"), 2);
  EXPECT_EQ(CLng(u"3.5"), 4);
  EXPECT_EQ(CLng(u"-2.5"), -2);
  EXPECT_EQ(CLng(u"-3.5"), -4);
  EXPECT_EQ(CLng(0.5), 0);
  EXPECT_EQ(CLng(1.5), 2);
  EXPECT_EQ(CLng(2.500001), 3);
  EXPECT_EQ(CInt(u"2.5"), 2);
  EXPECT_EQ(CInt(3.5), 4);
}

TEST(Convert, CLng_AtTheEdges_RoundsFirstAndThenLooksAtTheRange) {
  EXPECT_EQ(CLng(u"2147483647"), longest);
  EXPECT_EQ(CLng(u"-2147483648"), lowest);
  EXPECT_EQ(CLng(2147483647.4), longest);
  EXPECT_EQ(CLng(-2147483648.5), lowest);
  EXPECT_EQ(errorNumberOf([] { CLng(2147483647.5); }), 6);
  EXPECT_EQ(errorNumberOf([] { CLng(u"2147483648"); }), 6);
  EXPECT_EQ(errorNumberOf([] { CLng(u"-2147483649"); }), 6);
  EXPECT_EQ(errorNumberOf([] { CLng(u"1e300"); }), 6);
  EXPECT_EQ(errorNumberOf([] { CLng(u"1e400"); }), 6);
  EXPECT_EQ(errorNumberOf([] { CLng(std::numeric_limits<double>::quiet_NaN()); }), 6);
}

TEST(Convert, HexadecimalAndOctal_AreNumbersOfTheWidthThatReadsThem) {
  EXPECT_EQ(CInt(u"&H7FFF"), 32767);
  EXPECT_EQ(CInt(u"&HFFFF"), -1);
  EXPECT_EQ(CInt(u"&O177777"), -1);
  EXPECT_EQ(errorNumberOf([] { CInt(u"&H10000"); }), 6);
  EXPECT_EQ(CLng(u"&HFFFF"), 65535);
  EXPECT_EQ(CLng(u"&HFFFFFFFF"), -1);
  EXPECT_EQ(CLng(u"&H80000000"), lowest);
  EXPECT_EQ(errorNumberOf([] { CLng(u"&H100000000"); }), 6);
  EXPECT_EQ(errorNumberOf([] { CDbl(u"&H80000000"); }), 6);
  EXPECT_EQ(errorNumberOf([] { CLng(u"&HFFFFFFFFFFFFFFFFF"); }), 6);
}

TEST(Convert, CInt_AtTheEdges_IsOverflowBeyondSixteenBits) {
  EXPECT_EQ(CInt(u"32767"), 32767);
  EXPECT_EQ(CInt(u"-32768"), -32768);
  EXPECT_EQ(CInt(Variant(32767)), 32767);
  EXPECT_EQ(errorNumberOf([] { CInt(u"32768"); }), 6);
  EXPECT_EQ(errorNumberOf([] { CInt(Variant(-32769)); }), 6);
  EXPECT_EQ(errorNumberOf([] { CInt(u"32767.5"); }), 6);
}

TEST(Convert, EmptyVariant_IsZeroFalseAndEmptyText) {
  EXPECT_EQ(CLng(Variant()), 0);
  EXPECT_EQ(CInt(Variant()), 0);
  EXPECT_EQ(CDbl(Variant()), 0.0);
  EXPECT_FALSE(CBool(Variant()));
  EXPECT_EQ(CStr(Variant()), u"");
  EXPECT_EQ(CDate(Variant()), Date{0});
}

TEST(Convert, Null_IsInvalidUseOfNull) {
  EXPECT_EQ(errorNumberOf([] { CLng(Null()); }), 94);
  EXPECT_EQ(errorNumberOf([] { CStr(Null()); }), 94);
  EXPECT_EQ(errorNumberOf([] { CBool(Null()); }), 94);
}

TEST(Convert, ErrorCode_IsATypeMismatch) {
  EXPECT_EQ(errorNumberOf([] { CLng(missing); }), 13);
  EXPECT_EQ(errorNumberOf([] { CStr(missing); }), 13);
  EXPECT_EQ(errorNumberOf([] { CBool(missing); }), 13);
}

TEST(Convert, CBool_OfText_KnowsTheWordsInAnyCaseAndNumbers) {
  for (const StringView text : {u"True", u"TRUE", u"true", u"#TRUE#", u"0.4", u"1", u"-1", u" 2 ", u"&H10"})
    EXPECT_TRUE(CBool(text)) << testing::PrintToString(text);
  for (const StringView text : {u"False", u"fALSE", u"#FALSE#", u"0", u"0.0", u" 0 ", u"(0)"})
    EXPECT_FALSE(CBool(text)) << testing::PrintToString(text);
}

TEST(Convert, CBool_OfWordsWithBlanksAround_IsATypeMismatch) {
  for (const StringView text : {u" True", u"True ", u"yes", u"no", u"on", u"#TRUE", u"#True#", u"T"})
    EXPECT_EQ(errorNumberOf([&] { CBool(text); }), 13) << testing::PrintToString(text);
}

TEST(Convert, Boolean_AsNumberIsMinusOneOrZero_AndAsTextAWord) {
  EXPECT_EQ(CLng(true), -1);
  EXPECT_EQ(CLng(false), 0);
  EXPECT_EQ(CInt(true), -1);
  EXPECT_EQ(CDbl(true), -1.0);
  EXPECT_EQ(CStr(true), u"True");
  EXPECT_EQ(CStr(false), u"False");
}

TEST(Convert, CBool_OfNumbers_IsFalseForZeroOnly) {
  EXPECT_FALSE(CBool(Variant(0)));
  EXPECT_TRUE(CBool(Variant(-1)));
  EXPECT_TRUE(CBool(Variant(2)));
  EXPECT_TRUE(CBool(0.0001));
}

TEST(Convert, CStr_OfNumbers) {
  EXPECT_EQ(CStr(Variant(0)), u"0");
  EXPECT_EQ(CStr(Variant(lowest)), u"-2147483648");
  EXPECT_EQ(CStr(Variant(longest)), u"2147483647");
  EXPECT_EQ(CStr(Variant(std::int16_t{-32768})), u"-32768");
  EXPECT_EQ(CStr(2.5), u"2.5");
  EXPECT_EQ(CStr(0.1), u"0.1");
  EXPECT_EQ(CStr(100.0), u"100");
  EXPECT_EQ(CStr(1.0 / 3.0), u"0.333333333333333");
  EXPECT_EQ(CStr(1e15), u"1E+15");
  EXPECT_EQ(CStr(999999999999999.0), u"999999999999999");
  EXPECT_EQ(CStr(-1.5e-7), u"-1.5E-07");
  EXPECT_EQ(CStr(1e-5), u"1E-05");
  EXPECT_EQ(CStr(0.0001), u"0.0001");
  EXPECT_EQ(CStr(1e100), u"1E+100");
  EXPECT_EQ(CStr(0.1 + 0.2), u"0.3");
  EXPECT_EQ(CStr(-90298183978377.25), u"-90298183978377.3");
  EXPECT_EQ(CStr(999999999999999.5), u"1E+15");
  EXPECT_EQ(CStr(-0.0), u"0");
}

TEST(Convert, CStr_OfText_KeepsEveryUnit) {
  const String text(u" a\0\xD83D ", 5);
  EXPECT_EQ(CStr(text), text);
}

TEST(Convert, CStr_OfADate_IsInTheUsersLocale) {
  const testing_support::NativeSystem system;
  EXPECT_EQ(CStr(Date{36925.0 + (4 * 3600 + 5 * 60 + 6) / 86400.0}), u"2/3/2001 4:05:06 AM");
  EXPECT_EQ(CStr(Date{36925}), u"2/3/2001");
  EXPECT_EQ(CStr(Date{0.5}), u"12:00:00 PM");
  EXPECT_EQ(CStr(Date{0}), u"12:00:00 AM");
  EXPECT_EQ(concat(u"Time: ", Date{36925.5}), u"Time: 2/3/2001 12:00:00 PM");
}

TEST(Convert, CDate_TakesDatesAndNumbers_ButNoTextOfADate) {
  EXPECT_EQ(CDate(Date{36925.25}), Date{36925.25});
  EXPECT_EQ(CDate(36925.25), Date{36925.25});
  EXPECT_EQ(CDate(Variant(2)), Date{2});
  EXPECT_EQ(CDate(u"2.5"), Date{2.5});
  EXPECT_EQ(errorNumberOf([] { CDate(u"2/3/2001"); }), 13);
}

TEST(Convert, CDate_OutsideTheCalendar_IsOverflow) {
  EXPECT_EQ(CDate(-657434.0), Date{-657434});  // 1 January 100
  EXPECT_EQ(CDate(2958465.0), Date{2958465});  // 31 December 9999
  EXPECT_EQ(errorNumberOf([] { CDate(-657435.0); }), 6);
  EXPECT_EQ(errorNumberOf([] { CDate(2958466.0); }), 6);
  EXPECT_EQ(errorNumberOf([] { CDate(u"1e300"); }), 6);
}

TEST(Convert, CLng_OfADate_IsTheRoundedDay) { EXPECT_EQ(CLng(Date{36925.75}), 36926); }

TEST(Convert, Object_IsReadThroughItsDefaultMember) {
  const auto folder = fake("Folder");
  folder->value(u"", u"12");
  EXPECT_EQ(CStr(folder->object()), u"12");
  EXPECT_EQ(CLng(folder->object()), 12);
  EXPECT_TRUE(CBool(folder->object()));
}

TEST(Convert, Object_WhoseDefaultMemberIsAnObject_IsFollowed) {
  const auto inner = fake("Inner");
  inner->value(u"", 5);
  const auto outer = fake("Outer");
  outer->value(u"", inner->object());
  EXPECT_EQ(CLng(outer->object()), 5);
}

TEST(Convert, Object_ThatIsItsOwnDefault_IsATypeMismatchAndNoHang) {
  const auto endless = fake("Endless");
  endless->value(u"", endless->object());
  EXPECT_EQ(errorNumberOf([&] { CStr(endless->object()); }), 13);
  endless->removed(u"");
}

TEST(Convert, Object_WithoutADefaultMember_Is438_AndNothingIs91) {
  const auto plain = fake("Plain");
  EXPECT_EQ(errorNumberOf([&] { CStr(plain->object()); }), 438);
  EXPECT_EQ(errorNumberOf([] { CStr(Object()); }), 91);
  EXPECT_EQ(errorNumberOf([] { CLng(Object()); }), 91);
  EXPECT_EQ(errorNumberOf([] { CBool(Object()); }), 91);
}

TEST(Convert, CObj_OfNoObject_IsObjectRequired) {
  EXPECT_EQ(errorNumberOf([] { CObj(Variant()); }), 424);
  EXPECT_EQ(errorNumberOf([] { CObj(u"text"); }), 424);
  EXPECT_FALSE(CObj(Object()));
}

TEST(Convert, ByReferenceValue_IsReadLikeThePlainOne) {
  Variant place(u"42");
  EXPECT_EQ(CLng(Variant::byRef(place)), 42);
  EXPECT_EQ(CStr(Variant::byRef(place)), u"42");
  place = Variant();
  EXPECT_EQ(CLng(Variant::byRef(place)), 0);
}

TEST(Convert, Concat_JoinsEveryKindOfPiece) {
  EXPECT_EQ(concat(u"a", 5, true, std::int16_t{-3}, StringView(u"z"), String(u"!"), Variant(2.5)), u"a5True-3z!2.5");
  EXPECT_EQ(concat(), u"");
}

TEST(Convert, To_ReadsEveryReadableType) {
  enum Colour : std::int32_t { Red = 3 };
  EXPECT_EQ(to<Colour>(u"3"), Red);
  EXPECT_EQ(to<std::int16_t>(Variant(3)), 3);
  EXPECT_EQ(to<double>(u"3"), 3.0);
  EXPECT_EQ(errorNumberOf([] { to<Opaque>(Variant(3)); }), 13);
  Variant place(7);
  EXPECT_EQ(to<Variant>(Variant::byRef(place)), Variant(7));
}

}  // namespace
}  // namespace platform
