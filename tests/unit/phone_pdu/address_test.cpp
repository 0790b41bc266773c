// Numbers as people type them and as they travel (3GPP TS 23.040, 9.1.2.5).

#include "phone/pdu/address.h"

#include <random>

#include <gtest/gtest.h>

#include "unit/phone_pdu/pdu_fixture.h"

namespace phone {
namespace {

Octets encoded(const Address& address) {
  Octets pdu;
  appendAddress(pdu, address);
  return pdu;
}

Octets encodedCentre(const std::optional<Address>& address) {
  Octets pdu;
  appendServiceCentre(pdu, address);
  return pdu;
}

Address decoded(std::string_view hex) {
  const Octets octets = octetsOf(hex);
  OctetReader reader(octets);
  Address address = readAddress(reader);
  EXPECT_EQ(reader.left(), 0U) << hex;
  return address;
}

std::optional<Address> decodedCentre(std::string_view hex) {
  const Octets octets = octetsOf(hex);
  OctetReader reader(octets);
  std::optional<Address> address = readServiceCentre(reader);
  EXPECT_EQ(reader.left(), 0U) << hex;
  return address;
}

Address number(NumberType type, std::u16string value, std::uint8_t plan = 1) {
  return {.type = type, .plan = plan, .value = std::move(value)};
}

TEST(ParseNumber, PlusSign_MakesItInternational) {
  EXPECT_EQ(parseNumber(u"+46701740699"), number(NumberType::International, u"46701740699"));
  EXPECT_EQ(parseNumber(u"0701740699"), number(NumberType::Unknown, u"0701740699"));
  EXPECT_EQ(parseNumber(u"0046701740699"), number(NumberType::Unknown, u"0046701740699"));
  EXPECT_EQ(parseNumber(u"72404"), number(NumberType::Unknown, u"72404"));
}

TEST(ParseNumber, WhatMakesNumbersReadable_IsPassedOver) {
  const Address expected = number(NumberType::International, u"46701740699");
  for (const char16_t* typed : {u"+46 70 174 06 99", u"+46-70-1740699", u"+46 (70) 174-06-99", u"  +46.70/1740699\t",
                                u"(+46)701740699", u"\u202A+46\u00A070\u2011174\u20130699\u202C"})
    EXPECT_EQ(parseNumber(typed), expected);
}

TEST(ParseNumber, StarsHashesAndLetterDigits_AreDigits) {
  EXPECT_EQ(parseNumber(u"*21*070#"), number(NumberType::Unknown, u"*21*070#"));
  EXPECT_EQ(parseNumber(u"1abc"), number(NumberType::Unknown, u"1abc"));
}

TEST(ParseNumber, WhatIsNoNumber_IsRefused) {
  for (const char16_t* typed : {u"", u"+", u"   ", u"abc", u"*#", u"Bob", u"070x", u"07+0", u"++46", u"070;071", u"d1",
                                u"A1", u"\u0661\u0662", u"123456789012345678901", u"name@example"})
    EXPECT_EQ(parseNumber(typed), std::nullopt);
}

TEST(ParseNumber, TwentyDigits_AreTheMost) {
  EXPECT_EQ(parseNumber(u"+12345678901234567890"), number(NumberType::International, u"12345678901234567890"));
  EXPECT_EQ(parseNumber(u"+123456789012345678901"), std::nullopt);
}

TEST(Address, DigitsTravelInSwappedPairs) {
  EXPECT_EQ(encoded(numberOf(u"+46708251358")), octetsOf("0B 91 64 07 28 15 53 F8"));
  EXPECT_EQ(encoded(numberOf(u"0708251358")), octetsOf("0A 81 70 80 52 31 85"));
  EXPECT_EQ(encoded(numberOf(u"72404")), octetsOf("05 81 27 04 F4"));
  EXPECT_EQ(encoded(numberOf(u"*1#2abc")), octetsOf("07 81 1A 2B DC FE"));
}

TEST(Address, EveryTypeOfNumber_IsRead) {
  EXPECT_EQ(decoded("0B 91 64 07 28 15 53 F8"), number(NumberType::International, u"46708251358"));
  EXPECT_EQ(decoded("0A 81 70 80 52 31 85"), number(NumberType::Unknown, u"0708251358"));
  EXPECT_EQ(decoded("0A A1 70 80 52 31 85"), number(NumberType::National, u"0708251358"));
  EXPECT_EQ(decoded("05 B9 27 04 F4"), number(NumberType::NetworkSpecific, u"72404", 9));
  EXPECT_EQ(decoded("05 C9 27 04 F4"), number(NumberType::Subscriber, u"72404", 9));
  EXPECT_EQ(decoded("0B C8 72 38 88 09 00 F1"), number(NumberType::Subscriber, u"27838890001", 8));
  EXPECT_EQ(decoded("03 E1 21 F3"), number(NumberType::Abbreviated, u"123"));
  EXPECT_EQ(decoded("03 F1 21 F3"), number(NumberType::Reserved, u"123"));
  EXPECT_EQ(decoded("00 81"), number(NumberType::Unknown, u""));
  EXPECT_EQ(decoded("14 91 21 43 65 87 09 21 43 65 87 09"), number(NumberType::International, u"12345678901234567890"));
}

TEST(Address, IsShownWithItsPlusSign) {
  EXPECT_EQ(shown(decoded("0B 91 64 07 28 15 53 F8")), u"+46708251358");
  EXPECT_EQ(shown(decoded("0A A1 70 80 52 31 85")), u"0708251358");
  EXPECT_EQ(shown(decoded("0D D0 41 E1 90 58 34 1E 01")), u"ABCDEFG");
}

TEST(Address, FillerCountedAsADigit_IsPassedOver) {
  EXPECT_EQ(decoded("0C 91 64 07 28 15 53 F8").value, u"46708251358");
}

TEST(Address, Names_AreToldApartByTheirLength) {
  // Seven and eight letters both take seven octets.
  EXPECT_EQ(decoded("0D D0 41 E1 90 58 34 1E 01"), number(NumberType::Alphanumeric, u"ABCDEFG", 0));
  EXPECT_EQ(decoded("0E D0 41 E1 90 58 34 1E 91"), number(NumberType::Alphanumeric, u"ABCDEFGH", 0));
  EXPECT_EQ(decoded("0E D0 41 E1 90 58 34 1E 01").value, u"ABCDEFG@");
  EXPECT_EQ(decoded("00 D0").value, u"");
  EXPECT_EQ(decoded("02 D0 41").value, u"A");
}

TEST(Address, NamesOfEveryLength_TravelAndComeBack) {
  // ceil(7n/4) semi-octets: 2 4 6 7 9 11 13 14 16 18 20.
  const std::uint8_t lengths[] = {2, 4, 6, 7, 9, 11, 13, 14, 16, 18, 20};
  const std::u16string letters = u"Ä£ Büro_042";
  for (std::size_t size = 1; size <= 11; ++size) {
    const Address name = number(NumberType::Alphanumeric, letters.substr(0, size), 0);
    const Octets octets = encoded(name);
    EXPECT_EQ(octets[0], lengths[size - 1]);
    EXPECT_EQ(octets[1], 0xD0);
    EXPECT_EQ(octets.size(), 2 + (lengths[size - 1] + 1U) / 2);
    OctetReader reader(octets);
    EXPECT_EQ(readAddress(reader), name);
  }
  EXPECT_EQ(encoded(number(NumberType::Alphanumeric, u"TwelveLetter", 0)),
            encoded(number(NumberType::Alphanumeric, u"TwelveLette", 0)));
}

TEST(Address, TooLongOrCutShort_IsBad) {
  for (const char* hex : {"", "0B", "0B 91", "0B 91 64 07 28 15 53", "15 91 21 43 65 87 09 21 43 65 87 09 F1",
                          "FF 91 21", "0D D0 41 E1 90 58 34 1E"}) {
    const Octets octets = octetsOf(hex);
    OctetReader reader(octets);
    EXPECT_THROW(readAddress(reader), BadPdu) << hex;
  }
}

TEST(Address, AnyNumber_ComesBack) {
  constexpr std::u16string_view digits = u"0123456789*#abc";
  std::mt19937 random(99);
  for (int round = 0; round < 2000; ++round) {
    Address address;
    do address.type = static_cast<NumberType>(random() % 8);
    while (address.type == NumberType::Alphanumeric);
    address.plan = static_cast<std::uint8_t>(random() % 16);
    for (std::size_t left = random() % 21; left > 0; --left) address.value += digits[random() % digits.size()];
    const Octets octets = encoded(address);
    OctetReader reader(octets);
    ASSERT_EQ(readAddress(reader), address);
    ASSERT_EQ(reader.left(), 0U);
    const Octets centre = encodedCentre(address);
    OctetReader centreReader(centre);
    ASSERT_EQ(readServiceCentre(centreReader), address);
    ASSERT_EQ(centreReader.left(), 0U);
  }
}

TEST(ServiceCentre, LengthCountsOctets) {
  EXPECT_EQ(encodedCentre(numberOf(u"+27381000015")), octetsOf("07 91 72 83 01 00 10 F5"));
  EXPECT_EQ(decodedCentre("07 91 72 83 01 00 10 F5"), number(NumberType::International, u"27381000015"));
  EXPECT_EQ(encodedCentre(numberOf(u"+1234")), octetsOf("03 91 21 43"));
  EXPECT_EQ(decodedCentre("03 91 21 43"), number(NumberType::International, u"1234"));
}

TEST(ServiceCentre, None_IsAZero) {
  EXPECT_EQ(encodedCentre(std::nullopt), Octets{0});
  EXPECT_EQ(decodedCentre("00"), std::nullopt);
  EXPECT_EQ(decodedCentre("01 91"), number(NumberType::International, u""));
}

TEST(ServiceCentre, TooLongOrCutShort_IsBad) {
  for (const char* hex : {"", "07", "07 91 72 83", "0C 91 21 43 65 87 09 21 43 65 87 09 21", "FF"}) {
    const Octets octets = octetsOf(hex);
    OctetReader reader(octets);
    EXPECT_THROW(readServiceCentre(reader), BadPdu) << hex;
  }
}

}  // namespace
}  // namespace phone
