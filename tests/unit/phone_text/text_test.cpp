// UCS-2 and 8-bit data as text.

#include <gtest/gtest.h>

#include "phone/text/eight_bit.h"
#include "phone/text/ucs2.h"

namespace phone {
namespace {

TEST(Ucs2, HighOctetFirst_AndSurrogatePairsAsTheyAre) {
  // U+1F600 is D83D DE00 in UTF-16.
  EXPECT_EQ(toUcs2(u"AЖ\U0001F600"), (Octets{0x00, 0x41, 0x04, 0x16, 0xD8, 0x3D, 0xDE, 0x00}));
  EXPECT_EQ(fromUcs2(Octets{0x00, 0x41, 0x04, 0x16, 0xD8, 0x3D, 0xDE, 0x00}), u"AЖ\U0001F600");
  EXPECT_EQ(toUcs2(u""), Octets{});
  EXPECT_EQ(fromUcs2({}), u"");
}

TEST(Ucs2, HalfAPair_StaysForTheOtherHalfInTheNextPart) {
  const std::u16string half(1, static_cast<char16_t>(0xD83D));
  EXPECT_EQ(fromUcs2(Octets{0xD8, 0x3D}), half);
  EXPECT_EQ(toUcs2(half), (Octets{0xD8, 0x3D}));
}

TEST(Ucs2, OddOctet_IsMarked) {
  EXPECT_EQ(fromUcs2(Octets{0x00, 0x41, 0x04}), u"A\uFFFD");
  EXPECT_EQ(fromUcs2(Octets{0x04}), u"\uFFFD");
}

TEST(EightBit, PrintableData_IsShownAsLatin1) {
  EXPECT_EQ(showEightBit(Octets{'H', 'i', ' ', 0xE9, 0xFF, 0xA0, '\r', '\n', '\t', '~'}), u"Hi éÿ\u00A0\r\n\t~");
  EXPECT_EQ(showEightBit({}), u"");
}

TEST(EightBit, AnyControlCharacter_MakesItHexadecimal) {
  EXPECT_EQ(showEightBit(Octets{'H', 0x00, 0xFE}), u"[8-bit data: 48 00 FE]");
  for (unsigned octet = 0; octet < 0x100; ++octet) {
    const bool control =
        (octet < 0x20 && octet != '\n' && octet != '\r' && octet != '\t') || (octet >= 0x7F && octet <= 0x9F);
    const std::u16string text = showEightBit(Octets{static_cast<std::uint8_t>(octet)});
    EXPECT_EQ(text.size(), control ? 16U : 1U) << octet;
  }
}

TEST(Compressed, IsShownInHexadecimal) { EXPECT_EQ(showCompressed(Octets{'H', 'i'}), u"[Compressed text: 48 69]"); }

}  // namespace
}  // namespace phone
