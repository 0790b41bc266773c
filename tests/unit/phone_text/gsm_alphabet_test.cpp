// The 7-bit alphabet against the standard's own tables, as code points (3GPP TS 23.038, 6.2.1 and 6.2.1.1).

#include "phone/text/gsm_alphabet.h"

#include <array>
#include <map>
#include <string>

#include <gtest/gtest.h>

namespace phone {
namespace {

// 16 to a row, row by row; 1B is the escape.
constexpr std::array<unsigned, 128> standardTable{
    0x0040, 0x00A3, 0x0024, 0x00A5, 0x00E8, 0x00E9, 0x00F9, 0x00EC, 0x00F2, 0x00C7, 0x000A, 0x00D8, 0x00F8,
    0x000D, 0x00C5, 0x00E5, 0x0394, 0x005F, 0x03A6, 0x0393, 0x039B, 0x03A9, 0x03A0, 0x03A8, 0x03A3, 0x0398,
    0x039E, 0x001B, 0x00C6, 0x00E6, 0x00DF, 0x00C9, 0x0020, 0x0021, 0x0022, 0x0023, 0x00A4, 0x0025, 0x0026,
    0x0027, 0x0028, 0x0029, 0x002A, 0x002B, 0x002C, 0x002D, 0x002E, 0x002F, 0x0030, 0x0031, 0x0032, 0x0033,
    0x0034, 0x0035, 0x0036, 0x0037, 0x0038, 0x0039, 0x003A, 0x003B, 0x003C, 0x003D, 0x003E, 0x003F, 0x00A1,
    0x0041, 0x0042, 0x0043, 0x0044, 0x0045, 0x0046, 0x0047, 0x0048, 0x0049, 0x004A, 0x004B, 0x004C, 0x004D,
    0x004E, 0x004F, 0x0050, 0x0051, 0x0052, 0x0053, 0x0054, 0x0055, 0x0056, 0x0057, 0x0058, 0x0059, 0x005A,
    0x00C4, 0x00D6, 0x00D1, 0x00DC, 0x00A7, 0x00BF, 0x0061, 0x0062, 0x0063, 0x0064, 0x0065, 0x0066, 0x0067,
    0x0068, 0x0069, 0x006A, 0x006B, 0x006C, 0x006D, 0x006E, 0x006F, 0x0070, 0x0071, 0x0072, 0x0073, 0x0074,
    0x0075, 0x0076, 0x0077, 0x0078, 0x0079, 0x007A, 0x00E4, 0x00F6, 0x00F1, 0x00FC, 0x00E0,
};

const std::map<unsigned, unsigned> standardExtensions{{0x0A, 0x000C}, {0x14, 0x005E}, {0x28, 0x007B}, {0x29, 0x007D},
                                                      {0x2F, 0x005C}, {0x3C, 0x005B}, {0x3D, 0x007E}, {0x3E, 0x005D},
                                                      {0x40, 0x007C}, {0x65, 0x20AC}};

std::u16string one(unsigned codePoint) { return std::u16string(1, static_cast<char16_t>(codePoint)); }

Septets septets(std::initializer_list<unsigned> values) {
  Septets result;
  for (const unsigned value : values) result.push_back(static_cast<std::uint8_t>(value));
  return result;
}

TEST(GsmAlphabet, EveryCharacterOfTheMainTable_BothWays) {
  for (unsigned septet = 0; septet < 128; ++septet) {
    if (septet == 0x1B) continue;
    const std::u16string character = one(standardTable[septet]);
    EXPECT_EQ(fromSeptets(septets({septet})), character) << septet;
    EXPECT_EQ(toSeptets(character), septets({septet})) << septet;
  }
}

TEST(GsmAlphabet, EveryCharacterOfTheExtensionTable_BothWays) {
  for (const auto& [septet, codePoint] : standardExtensions) {
    EXPECT_EQ(fromSeptets(septets({0x1B, septet})), one(codePoint)) << septet;
    EXPECT_EQ(toSeptets(one(codePoint)), septets({0x1B, septet})) << septet;
    EXPECT_EQ(septetsOf(static_cast<char16_t>(codePoint)), 2U);
  }
}

TEST(GsmAlphabet, NoOtherCharacter_IsInIt) {
  std::map<unsigned, std::size_t> sizes;
  for (const unsigned codePoint : standardTable)
    if (codePoint != 0x1B) sizes[codePoint] = 1;
  for (const auto& [septet, codePoint] : standardExtensions) sizes[codePoint] = 2;
  ASSERT_EQ(sizes.size(), 137U);
  for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
    const std::size_t expected = sizes.contains(unit) ? sizes[unit] : 0;
    ASSERT_EQ(septetsOf(static_cast<char16_t>(unit)), expected) << std::hex << unit;
    ASSERT_EQ(fitsGsmAlphabet(one(unit)), expected != 0) << std::hex << unit;
  }
}

TEST(GsmAlphabet, EasilyMistakenCharacters) {
  EXPECT_FALSE(fitsGsmAlphabet(u"`"));
  EXPECT_FALSE(fitsGsmAlphabet(u"\t"));
  EXPECT_FALSE(fitsGsmAlphabet(u"ç"));  // only the capital
  EXPECT_TRUE(fitsGsmAlphabet(u"Ç"));
  EXPECT_FALSE(fitsGsmAlphabet(u"Α"));  // a Greek capital that looks like the Latin one is not it
  EXPECT_FALSE(fitsGsmAlphabet(u"\u001B"));
  EXPECT_FALSE(fitsGsmAlphabet(std::u16string(1, u'\0')));
}

TEST(GsmAlphabet, Zero_IsTheAtSignAndEndsNothing) {
  EXPECT_EQ(toSeptets(u"a@b"), septets({0x61, 0, 0x62}));
  EXPECT_EQ(fromSeptets(septets({0x61, 0, 0x62, 0})), u"a@b@");
}

TEST(GsmAlphabet, EscapeWithoutMeaning_ShowsTheMainTablesCharacter) {
  for (unsigned septet = 0; septet < 128; ++septet) {
    if (septet == 0x1B || standardExtensions.contains(septet)) continue;
    EXPECT_EQ(fromSeptets(septets({0x1B, septet})), one(standardTable[septet])) << septet;
  }
}

TEST(GsmAlphabet, TwoEscapesAndAnEscapeAtTheEnd_AreBlanks) {
  EXPECT_EQ(fromSeptets(septets({0x41, 0x1B, 0x1B, 0x42})), u"A B");
  EXPECT_EQ(fromSeptets(septets({0x41, 0x1B, 0x1B, 0x65})), u"A e");  // the second escape begins nothing
  EXPECT_EQ(fromSeptets(septets({0x41, 0x1B})), u"A ");
}

TEST(GsmAlphabet, Count_TakesTwoForExtensions) {
  EXPECT_EQ(septetCount(u""), 0U);
  EXPECT_EQ(septetCount(u"10 €"), 5U);
  EXPECT_EQ(septetCount(u"[]{}\\|~^€\f"), 20U);
}

TEST(GsmAlphabet, CharacterOutsideIt_BecomesAQuestionMark) {
  EXPECT_EQ(toSeptets(u"aЖb"), septets({0x61, 0x3F, 0x62}));
}

}  // namespace
}  // namespace phone
