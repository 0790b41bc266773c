// Texts as user data (3GPP TS 23.040, 9.2.3.24): lengths in septets or octets, with and without a header.

#include "phone/pdu/user_data.h"

#include <gtest/gtest.h>

#include "phone/pdu/reader.h"
#include "phone/text/gsm_alphabet.h"
#include "phone/text/septets.h"
#include "unit/phone_pdu/pdu_fixture.h"

namespace phone {
namespace {

Content read(std::uint8_t coding, bool hasHeader, unsigned length, std::string_view hex) {
  return readUserData({.hasHeader = hasHeader, .length = static_cast<std::uint8_t>(length), .octets = octetsOf(hex)},
                      dataCodingOf(coding));
}

UserData data(bool hasHeader, unsigned length, std::string_view hex) {
  return {.hasHeader = hasHeader, .length = static_cast<std::uint8_t>(length), .octets = octetsOf(hex)};
}

std::string zeros(std::size_t octets) { return std::string(octets * 2, '0'); }

const UserDataHeader secondOfThree{.elements = {{.id = 0, .data = {0x2A, 3, 2}}}};
const UserDataHeader secondOfThreeWide{.elements = {{.id = 8, .data = {0x12, 0x34, 3, 2}}}};

TEST(WriteUserData, SevenBit_CountsSeptets) {
  EXPECT_EQ(writeUserData({}, u"hellohello", Alphabet::Gsm7), data(false, 10, "E8329BFD4697D9EC37"));
  EXPECT_EQ(writeUserData({}, u"", Alphabet::Gsm7), data(false, 0, ""));
  EXPECT_EQ(writeUserData({}, u"€", Alphabet::Gsm7), data(false, 2, "9B 32"));  // 1B | 65<<7 = 329B
}

TEST(WriteUserData, HeaderOf6_NeedsOneFillBit) {
  // 48 bits of header and one of fill are 7 septets; A is 41, shifted by one.
  EXPECT_EQ(writeUserData(secondOfThree, u"A", Alphabet::Gsm7), data(true, 8, "05 00 03 2A 03 02 82"));
}

TEST(WriteUserData, HeaderOf7_NeedsNone) {
  EXPECT_EQ(writeUserData(secondOfThreeWide, u"A", Alphabet::Gsm7), data(true, 9, "06 08 04 12 34 03 02 41"));
}

TEST(WriteUserData, OtherCodings_CountOctets) {
  EXPECT_EQ(writeUserData({}, u"AЖ", Alphabet::Ucs2), data(false, 4, "00 41 04 16"));
  EXPECT_EQ(writeUserData(secondOfThree, u"Ж", Alphabet::Ucs2), data(true, 8, "05 00 03 2A 03 02 04 16"));
  EXPECT_EQ(writeUserData({}, u"aé€", Alphabet::EightBit), data(false, 3, "61 E9 3F"));
  EXPECT_EQ(writeUserData(secondOfThree, Octets{1, 2}), data(true, 8, "05 00 03 2A 03 02 01 02"));
}

TEST(WriteUserData, FullMessages_Are140Octets) {
  EXPECT_EQ(writeUserData({}, std::u16string(160, u'a'), Alphabet::Gsm7).octets.size(), 140U);
  EXPECT_EQ(writeUserData({}, std::u16string(160, u'a'), Alphabet::Gsm7).length, 160);
  EXPECT_EQ(writeUserData(secondOfThree, std::u16string(153, u'a'), Alphabet::Gsm7).octets.size(), 140U);
  EXPECT_EQ(writeUserData(secondOfThree, std::u16string(153, u'a'), Alphabet::Gsm7).length, 160);
  EXPECT_EQ(writeUserData(secondOfThreeWide, std::u16string(152, u'a'), Alphabet::Gsm7).octets.size(), 140U);
  EXPECT_EQ(writeUserData(secondOfThreeWide, std::u16string(152, u'a'), Alphabet::Gsm7).length, 160);
  EXPECT_EQ(writeUserData({}, std::u16string(70, u'Ж'), Alphabet::Ucs2).octets.size(), 140U);
  EXPECT_EQ(writeUserData(secondOfThree, std::u16string(67, u'Ж'), Alphabet::Ucs2).octets.size(), 140U);
  EXPECT_EQ(writeUserData(secondOfThreeWide, std::u16string(66, u'Ж'), Alphabet::Ucs2).octets.size(), 139U);
}

TEST(ReadUserData, TextBehindAHeader_BeginsAtTheNextSeptet) {
  EXPECT_EQ(read(0x00, true, 8, "05 00 03 2A 03 02 82").text, u"A");
  EXPECT_EQ(read(0x00, true, 8, "05 00 03 2A 03 02 82").header, secondOfThree);
  EXPECT_EQ(read(0x00, true, 9, "06 08 04 12 34 03 02 41").text, u"A");
  EXPECT_EQ(read(0x08, true, 8, "05 00 03 2A 03 02 04 16").text, u"Ж");
}

TEST(ReadUserData, HeaderOfAnyLength_InSevenBitText) {
  for (std::size_t size = 0; size <= 120; ++size) {
    const UserDataHeader header{.elements = {{.id = 0x70, .data = Octets(size, 0x5A)}}};
    const UserData written = writeUserData(header, u"Text {1}", Alphabet::Gsm7);  // 10 septets
    // 3 octets and the element's data; in whole septets, rounded up.
    EXPECT_EQ(written.length, ((3 + size) * 8 + 6) / 7 + 10) << size;
    const Content content = readUserData(written, DataCoding{});
    EXPECT_EQ(content.text, u"Text {1}") << size;
    EXPECT_EQ(content.header, header);
  }
}

TEST(ReadUserData, EmptyHeader_IsNone) {
  // One octet of header and six bits of fill: two septets; A is 41, shifted by six: 1040.
  EXPECT_EQ(read(0x00, true, 3, "00 40 10").text, u"A");
  EXPECT_TRUE(read(0x00, true, 3, "00 40 10").header.elements.empty());
  EXPECT_EQ(read(0x08, true, 3, "00 00 41").text, u"A");
}

TEST(ReadUserData, MalformedHeader_IsPassedOver) {
  const Content content = read(0x08, true, 7, "04 00 03 2A 03 00 41");  // the element is one octet short
  EXPECT_TRUE(content.header.malformed);
  EXPECT_EQ(content.text, u"A");
}

TEST(ReadUserData, HeaderLongerThanTheUserData_IsBad) {
  EXPECT_THROW(read(0x08, true, 6, "06 00 03 2A 03 02"), BadPdu);
  EXPECT_THROW(read(0x08, true, 0, ""), BadPdu);
  EXPECT_THROW(read(0x00, true, 5, "05 00 03 2A 03"), BadPdu);  // 5 septets are 5 octets, the header 6
  EXPECT_THROW(read(0x00, true, 2, "FF FF"), BadPdu);
}

TEST(ReadUserData, LengthThatEndsWithTheHeader_LeavesNoText) {
  EXPECT_EQ(read(0x00, true, 6, "05 00 03 2A 03 02").text, u"");  // inside its last octet
  EXPECT_EQ(read(0x00, true, 7, "05 00 03 2A 03 02 00").text, u"");
  EXPECT_EQ(read(0x08, true, 6, "05 00 03 2A 03 02").text, u"");
  EXPECT_EQ(read(0x04, true, 6, "05 00 03 2A 03 02").text, u"");
}

TEST(ReadUserData, MoreThanAMessageHolds_IsBad) {
  EXPECT_EQ(read(0x00, false, 160, zeros(140)).text, std::u16string(160, u'@'));
  EXPECT_THROW(read(0x00, false, 161, zeros(141)), BadPdu);
  EXPECT_EQ(read(0x08, false, 140, zeros(140)).text, std::u16string(70, u'\0'));
  EXPECT_THROW(read(0x08, false, 141, zeros(141)), BadPdu);
  EXPECT_THROW(read(0x04, false, 255, zeros(255)), BadPdu);
}

TEST(ReadUserData, CutShort_IsBad) {
  EXPECT_THROW(read(0x00, false, 10, "E8329BFD4697D9EC"), BadPdu);
  EXPECT_THROW(read(0x08, false, 2, "00"), BadPdu);
}

TEST(ReadUserData, SevenSpareBits_AreNoCharacter) {
  EXPECT_EQ(read(0x00, false, 7, "41 E1 90 58 34 1E 01").text, u"ABCDEFG");
  EXPECT_EQ(read(0x00, false, 8, "41 E1 90 58 34 1E 01").text, u"ABCDEFG@");
}

TEST(ReadUserData, EightBitData_IsKeptAndShownSafely) {
  const Content content = read(0x04, false, 4, "48 69 00 1B");
  EXPECT_EQ(content.data, octetsOf("4869001B"));
  EXPECT_EQ(content.text, u"[8-bit data: 48 69 00 1B]");
  EXPECT_EQ(read(0xF5, false, 2, "48 69").text, u"Hi");
}

TEST(ReadUserData, CompressedText_CountsOctetsWhateverTheAlphabet) {
  for (const int coding : {0x20, 0x24, 0x28, 0x68}) {
    const Content content = read(static_cast<std::uint8_t>(coding), false, 2, "48 69");
    EXPECT_EQ(content.text, u"[Compressed text: 48 69]") << coding;
    EXPECT_EQ(content.data, octetsOf("4869"));
  }
}

TEST(ReadUserData, ReservedCodings_AreSevenBit) {
  for (const int coding : {0x0C, 0x1F, 0x4C, 0x80, 0x9A, 0xBF, 0xC8, 0xD0, 0xF8})
    EXPECT_EQ(read(static_cast<std::uint8_t>(coding), false, 10, "E8329BFD4697D9EC37").text, u"hellohello") << coding;
  EXPECT_EQ(read(0xE0, false, 2, "04 16").text, u"Ж");
}

TEST(ReadUserData, NationalTables_AreThoseOfTheHeader) {
  // 24 01 01: Turkish single shift. Three octets of element, one of length: 32 bits and 3 of fill are 5 septets.
  const UserDataHeader turkish{.elements = {{.id = 0x24, .data = {1}}}};
  const UserData written = writeUserData(turkish, u"[kahve]", Alphabet::Gsm7);
  EXPECT_EQ(readUserData(written, DataCoding{}).text, u"[kahve]");
  Octets octets = octetsOf("03240101");
  const Octets text = packSeptets(Septets{escapeSeptet, 's', 'i', escapeSeptet, 's', 'e'}, fillBitsAfter(4));
  octets.insert(octets.end(), text.begin(), text.end());
  EXPECT_EQ(readUserData({.hasHeader = true, .length = 5 + 6, .octets = octets}, DataCoding{}).text, u"şişe");
}

TEST(ReadUserData, NationalTablesThatAreNotKnown_AreAsIfTheyWereNotNamed) {
  // The second of three parts, with the main table and the extension of one language.
  const UserDataHeader plain{.elements = {{.id = 0, .data = {0x2A, 3, 2}}}};
  for (std::uint8_t language = 4; language <= 14; ++language) {
    UserDataHeader named = plain;
    named.elements.push_back({.id = 0x25, .data = {language}});
    named.elements.push_back({.id = 0x24, .data = {language}});
    const Content content = readUserData(writeUserData(named, u"[kahve] \u20AC", Alphabet::Gsm7), DataCoding{});
    EXPECT_EQ(content.text, u"[kahve] \u20AC") << int{language};
    EXPECT_EQ(concatenationOf(content.header), concatenationOf(plain)) << int{language};
  }
  // Turkish, Hindi: 24 01 01 24 01 06. Seven octets are eight septets without a fill bit.
  Octets octets = octetsOf("06240101240106");
  const Octets text = packSeptets(Septets{escapeSeptet, 's', 'i', escapeSeptet, 's', 'e'}, fillBitsAfter(7));
  octets.insert(octets.end(), text.begin(), text.end());
  EXPECT_EQ(readUserData({.hasHeader = true, .length = 8 + 6, .octets = octets}, DataCoding{}).text, u"şişe");
}

TEST(EncodeText, ShortTexts_HaveNoHeader) {
  const EncodedText encoded = encodeText(u"hellohello", 7);
  EXPECT_EQ(encoded.alphabet, Alphabet::Gsm7);
  EXPECT_EQ(encoded.parts, std::vector{data(false, 10, "E8329BFD4697D9EC37")});
  EXPECT_EQ(encodeText(u"", 7).parts, std::vector{data(false, 0, "")});
  EXPECT_EQ(encodeText(std::u16string(160, u'a'), 7).parts.size(), 1U);
}

TEST(EncodeText, LongTexts_AreNumbered) {
  const EncodedText encoded = encodeText(std::u16string(150, u'Ж'), 0xA7);
  ASSERT_EQ(encoded.parts.size(), 3U);
  for (std::size_t part = 0; part < 3; ++part) {
    const Octets expectedHeader{5, 0, 3, 0xA7, 3, static_cast<std::uint8_t>(part + 1)};
    const Octets& octets = encoded.parts[part].octets;
    EXPECT_TRUE(encoded.parts[part].hasHeader);
    EXPECT_EQ(Octets(octets.begin(), octets.begin() + 6), expectedHeader);
    EXPECT_EQ(octets.size(), part < 2 ? 140U : 6U + 2 * (150 - 134));
    EXPECT_EQ(encoded.parts[part].length, octets.size());
  }
}

TEST(EncodeText, 255Parts_CountTo255) {
  const EncodedText encoded = encodeText(std::u16string(255 * 153, u'a'), 0);
  ASSERT_EQ(encoded.parts.size(), 255U);
  const Content last = readUserData(encoded.parts.back(), DataCoding{});
  EXPECT_EQ(concatenationOf(last.header), (Concatenation{.reference = 0, .wide = false, .total = 255, .part = 255}));
  EXPECT_THROW(encodeText(std::u16string(255 * 153 + 1, u'a'), 0), TextTooLong);
}

}  // namespace
}  // namespace phone
