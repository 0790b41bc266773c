// Messages to be sent, octet by octet (3GPP TS 23.040, 9.2.2.2).

#include "phone/pdu/submit.h"

#include <gtest/gtest.h>

#include "unit/phone_pdu/pdu_fixture.h"

namespace phone {
namespace {

using namespace std::chrono_literals;

std::vector<std::string> encoded(const Submit& submit, std::u16string_view text, std::uint8_t reference = 0) {
  std::vector<std::string> pdus;
  for (const EncodedPdu& pdu : encodeSubmit(submit, text, reference)) {
    pdus.push_back(toHex(pdu.octets));
    // What the length announces is what is left behind the service centre.
    EXPECT_EQ(pdu.octets.size(), 1U + pdu.octets[0] + pdu.tpduLength);
  }
  return pdus;
}

TEST(Submit, WithValidityPeriod) {
  // 11: submit, relative validity. 00: reference. 0B 91 ...: +46708251358. 00 00: protocol, 7-bit. AA: four days.
  EXPECT_EQ(encoded({.destination = numberOf(u"+46708251358"), .validity = 4 * 24h}, u"hellohello"),
            std::vector<std::string>{"0011000B916407281553F80000AA0AE8329BFD4697D9EC37"});
  EXPECT_EQ(
      encodeSubmit({.destination = numberOf(u"+46708251358"), .validity = 4 * 24h}, u"hellohello", 0)[0].tpduLength,
      23U);
}

TEST(Submit, WithoutValidityPeriod_AndWithServiceCentre) {
  EXPECT_EQ(
      encoded({.serviceCentre = numberOf(u"+27381000015"), .destination = numberOf(u"0708251358")}, u"hellohello"),
      std::vector<std::string>{"07917283010010F501000A81708052318500000AE8329BFD4697D9EC37"});
}

TEST(Submit, StatusReport_IsABit) {
  EXPECT_EQ(encoded({.destination = numberOf(u"72404"), .statusReport = true}, u"A"),
            std::vector<std::string>{"0021000581"
                                     "2704F4"
                                     "0000"
                                     "0141"});
}

TEST(Submit, Ucs2) {
  EXPECT_EQ(encoded({.destination = numberOf(u"72404")}, u"Ж\U0001F600"), std::vector<std::string>{"0001000581"
                                                                                                   "2704F4"
                                                                                                   "0008"
                                                                                                   "06"
                                                                                                   "0416D83DDE00"});
}

TEST(Submit, EmptyText) {
  EXPECT_EQ(encoded({.destination = numberOf(u"72404")}, u""), std::vector<std::string>{"0001000581"
                                                                                        "2704F4"
                                                                                        "0000"
                                                                                        "00"});
}

TEST(Submit, LongText_HasTheHeaderBitInEveryPart) {
  const auto pdus = encoded({.destination = numberOf(u"72404"), .validity = 24h}, std::u16string(68 + 67, u'Ж'), 0x2A);
  ASSERT_EQ(pdus.size(), 3U);
  std::string full;
  for (int unit = 0; unit < 67; ++unit) full += "0416";
  // 51: submit, relative validity, header. 8C: 140 octets.
  EXPECT_EQ(pdus[0],
            "0051000581"
            "2704F4"
            "0008"
            "A7"
            "8C"
            "0500032A0301" +
                full);
  EXPECT_EQ(pdus[1],
            "0051000581"
            "2704F4"
            "0008"
            "A7"
            "8C"
            "0500032A0302" +
                full);
  EXPECT_EQ(pdus[2],
            "0051000581"
            "2704F4"
            "0008"
            "A7"
            "08"
            "0500032A0303"
            "0416");
}

TEST(Submit, TooLongText_IsRefused) {
  EXPECT_THROW(encodeSubmit({.destination = numberOf(u"72404")}, std::u16string(255 * 67 + 1, u'Ж'), 0), TextTooLong);
}

// The octet and what it means, by the standard's four lines.
TEST(RelativeValidity, EveryOctet_IsItsOwnPeriod) {
  for (unsigned octet = 0; octet < 0x100; ++octet) {
    std::chrono::minutes expected{};
    if (octet <= 143)
      expected = 5min * (octet + 1);
    else if (octet <= 167)
      expected = 12h + 30min * (octet - 143);
    else if (octet <= 196)
      expected = 24h * (octet - 166);
    else
      expected = 24h * 7 * (octet - 192);
    EXPECT_EQ(relativeValidityPeriod(static_cast<std::uint8_t>(octet)), expected) << octet;
    EXPECT_EQ(relativeValidity(expected), octet);
  }
}

TEST(RelativeValidity, Examples) {
  EXPECT_EQ(relativeValidity(24h), 0xA7);
  EXPECT_EQ(relativeValidity(4 * 24h), 0xAA);
  EXPECT_EQ(relativeValidity(63 * 7 * 24h), 0xFF);
}

TEST(RelativeValidity, IsNeverShorterThanAskedFor) {
  EXPECT_EQ(relativeValidity(0min), 0);
  EXPECT_EQ(relativeValidity(-5min), 0);
  EXPECT_EQ(relativeValidity(1min), 0);
  EXPECT_EQ(relativeValidity(6min), 1);
  EXPECT_EQ(relativeValidity(12h + 1min), 144);
  EXPECT_EQ(relativeValidity(24h + 1min), 168);
  EXPECT_EQ(relativeValidity(30 * 24h + 1min), 197);
  EXPECT_EQ(relativeValidity(200 * 7 * 24h), 0xFF);
  for (int minutes = 1; minutes <= 63 * 7 * 24 * 60; minutes += 37) {
    const std::uint8_t octet = relativeValidity(std::chrono::minutes(minutes));
    ASSERT_GE(relativeValidityPeriod(octet).count(), minutes);
    ASSERT_TRUE(octet == 0 || relativeValidityPeriod(static_cast<std::uint8_t>(octet - 1)).count() < minutes);
  }
}

}  // namespace
}  // namespace phone
