#include <limits>

#include <gtest/gtest.h>

#include "addin/platform/date.h"
#include "com/windows.h"
#include "support/errors.h"
#include "win32/system.h"

namespace win32_tests {
namespace {

using platform::String;

std::string toAnsi(platform::StringView text) { return win32::system().locale.toAnsi(text); }
String fromAnsi(std::string_view text) { return win32::system().locale.fromAnsi(text); }

String dateText(const platform::DateParts& parts) {
  return win32::system().locale.dateText(*platform::dateFromParts(parts));
}

TEST(Locale, TheTestsRunInWesternEuropeanAndAmericanEnglish) {
  EXPECT_EQ(GetACP(), 1252u);
  EXPECT_EQ(GetUserDefaultLCID(), 0x409u);
}

TEST(Locale, ToAnsi_CharactersOfTheCodePage_AreOneByteEach) {
  EXPECT_EQ(toAnsi(u"a\u00C5\u20AC\u0178"), "a\xC5\x80\x9F");
  EXPECT_EQ(toAnsi(u""), "");
  EXPECT_EQ(toAnsi(String(u"a\0b\x01", 4)), std::string("a\0b\x01", 4));
}

TEST(Locale, ToAnsi_CharactersWithoutAPlace_AreQuestionMarksAndNoLookalikes) {
  EXPECT_EQ(toAnsi(u"\u65E5-\u0101"), "?-?");
  EXPECT_EQ(toAnsi(u"\U0001F600"), "??");
  EXPECT_EQ(toAnsi(String(1, char16_t{0xD83D})), "?");
}

TEST(Locale, FromAnsi_EveryByte_ComesBackTheSame) {
  std::string bytes;
  for (int b = 0; b < 256; ++b) bytes += static_cast<char>(b);
  const String text = fromAnsi(bytes);
  ASSERT_EQ(text.size(), 256u);
  EXPECT_EQ(text[0x80], u'\u20AC');
  EXPECT_EQ(text[0x81], char16_t{0x81});
  EXPECT_EQ(text[0xE5], u'\u00E5');
  EXPECT_EQ(toAnsi(text), bytes);
  EXPECT_EQ(fromAnsi(""), u"");
}

TEST(Locale, DateText_IsTheUsersShortDateAndTime) {
  EXPECT_EQ(dateText({2001, 2, 3, 4, 5, 6}), u"2/3/2001 4:05:06 AM");
  EXPECT_EQ(dateText({2001, 12, 31, 13, 0, 0}), u"12/31/2001 1:00:00 PM");
}

TEST(Locale, DateText_MidnightHasNoTimeAndDayZeroNoDate) {
  EXPECT_EQ(dateText({2001, 2, 3, 0, 0, 0}), u"2/3/2001");
  EXPECT_EQ(dateText({1899, 12, 30, 4, 5, 6}), u"4:05:06 AM");
}

TEST(Locale, DateText_OutsideTheCalendar_IsAnError) {
  EXPECT_NE(testing_support::errorNumberOf([] { win32::system().locale.dateText(platform::Date{1e9}); }), 0);
}

}  // namespace
}  // namespace win32_tests
