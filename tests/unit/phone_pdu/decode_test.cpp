// Stored PDUs of every kind, decoded; and what cannot be.

#include "phone/pdu/decode.h"

#include <random>

#include <gtest/gtest.h>

#include "phone/pdu/deliver.h"
#include "phone/pdu/submit.h"
#include "unit/phone_pdu/pdu_fixture.h"

namespace phone {
namespace {

const std::string hello = "07917283010010F5040BC87238880900F10000993092516195800AE8329BFD4697D9EC37";

TEST(Decode, Deliver) {
  const Message message = decodePdu(hello);
  EXPECT_EQ(message.kind, PduKind::Deliver);
  EXPECT_EQ(shown(*message.serviceCentre), u"+27381000015");
  EXPECT_EQ(message.firstOctet, 0x04);
  EXPECT_EQ(message.peer, (Address{.type = NumberType::Subscriber, .plan = 8, .value = u"27838890001"}));
  EXPECT_EQ(message.protocolId, 0);
  EXPECT_EQ(message.dataCoding, 0);
  EXPECT_EQ(message.timeStamp,
            (TimeStamp{.year = 1999, .month = 3, .day = 29, .hour = 15, .minute = 16, .second = 59, .quarters = 8}));
  EXPECT_EQ(message.content.text, u"hellohello");
  EXPECT_EQ(message.data, (UserData{.hasHeader = false, .length = 10, .octets = octetsOf("E8329BFD4697D9EC37")}));
  EXPECT_EQ(message.concatenation, std::nullopt);
  EXPECT_EQ(message.validity, std::nullopt);
}

TEST(Decode, HexadecimalOfBothCases_AndOctets) {
  std::string lower = hello;
  for (char& digit : lower) digit = digit >= 'A' ? static_cast<char>(digit + 0x20) : digit;
  EXPECT_EQ(decodePdu(lower), decodePdu(hello));
  EXPECT_EQ(decodePdu(octetsOf(hello)), decodePdu(hello));
}

TEST(Decode, StoredSubmit_OfEveryValidityFormat) {
  for (const auto& [first, validity] :
       {std::pair{"01", ""}, {"11", "A7"}, {"09", "00112233445566"}, {"19", "62111210203000"}}) {
    const Message message = decodePdu("00" + std::string(first) +
                                      "17"
                                      "0B916407281553F8"
                                      "0000" +
                                      validity + "0AE8329BFD4697D9EC37");
    EXPECT_EQ(message.kind, PduKind::Submit) << first;
    EXPECT_EQ(message.reference, 0x17);
    EXPECT_EQ(shown(message.peer), u"+46708251358");
    EXPECT_EQ(message.content.text, u"hellohello") << first;
    EXPECT_EQ(message.serviceCentre, std::nullopt);
    EXPECT_EQ(message.timeStamp, std::nullopt);
    EXPECT_EQ(message.validity.has_value(), *validity == 'A');
  }
}

TEST(Decode, StatusReport_IsRecognised) {
  // 06, reference 17, recipient, two time stamps, status 00; the rest is optional.
  const std::string report =
      "0006170B916407281553F8"
      "62111210203040"
      "62111210304040"
      "00";
  for (const std::string& pdu : {report, report + "FF", report + "00"}) {
    const Message message = decodePdu(pdu);
    EXPECT_EQ(message.kind, PduKind::StatusReport);
    EXPECT_EQ(message.reference, 0x17);
    EXPECT_EQ(shown(message.peer), u"+46708251358");
    EXPECT_EQ(message.reportStatus, 0x00);
    EXPECT_EQ(twelveDigits(*message.timeStamp), u"261121010203");
  }
}

TEST(Decode, ReservedType_IsTakenForAReceivedMessage) {
  std::string pdu = hello;
  pdu.replace(16, 2, "07");
  EXPECT_EQ(decodePdu(pdu).kind, PduKind::Deliver);
  EXPECT_EQ(decodePdu(pdu).content.text, u"hellohello");
}

TEST(Decode, BadTimeStamp_KeepsTheMessage) {
  std::string pdu = hello;
  pdu.replace(pdu.find("99309251619580"), 14, "00000000000000");
  EXPECT_EQ(decodePdu(pdu).timeStamp, std::nullopt);
  EXPECT_EQ(decodePdu(pdu).content.text, u"hellohello");
}

TEST(Decode, NamesAsSenders) {
  const Message message = decodePdu(
      "00"
      "04"
      "0DD041E19058341E01"
      "0000"
      "62111210203000"
      "0141");
  EXPECT_EQ(message.peer, (Address{.type = NumberType::Alphanumeric, .plan = 0, .value = u"ABCDEFG"}));
  EXPECT_EQ(message.content.text, u"A");
}

TEST(Decode, Part_WithEitherWidthOfReference) {
  const Message narrow = decodePdu(
      "00"
      "44"
      "05812704F4"
      "0000"
      "62111210203000"
      "08"
      "0500032A030282");
  EXPECT_EQ(narrow.concatenation, (Concatenation{.reference = 0x2A, .wide = false, .total = 3, .part = 2}));
  EXPECT_EQ(narrow.content.text, u"A");
  const Message wide = decodePdu(
      "00"
      "44"
      "05812704F4"
      "0000"
      "62111210203000"
      "09"
      "060804123403"
      "02"
      "41");
  EXPECT_EQ(wide.concatenation, (Concatenation{.reference = 0x1234, .wide = true, .total = 3, .part = 2}));
  EXPECT_EQ(wide.content.text, u"A");
}

TEST(Decode, HeaderWithoutItsBit_IsText) {
  const Message message = decodePdu(
      "00"
      "04"
      "05812704F4"
      "0004"
      "62111210203000"
      "07"
      "0500032A030241");
  EXPECT_EQ(message.concatenation, std::nullopt);
  EXPECT_EQ(message.content.text, u"[8-bit data: 05 00 03 2A 03 02 41]");
}

TEST(Decode, OctetsBehindTheUserData_AreNotLookedAt) { EXPECT_EQ(decodePdu(hello + "FFFFFFFF"), decodePdu(hello)); }

TEST(Decode, WhatCannotBeDecoded_SaysSoAndShowsThePdu) {
  EXPECT_EQ(decodePdu(hello.substr(0, hello.size() - 2)).content.text,
            u"This message cannot be decoded: it ends too early. PDU: "
            u"07917283010010F5040BC87238880900F10000993092516195800AE8329BFD4697D9EC");
  EXPECT_EQ(decodePdu(std::string_view("07zz")).content.text,
            u"This message cannot be decoded: it is not hexadecimal. PDU: 07zz");
  EXPECT_EQ(decodePdu(std::string_view("07\r\xE4\x01")).content.text,
            u"This message cannot be decoded: it is not hexadecimal. PDU: 07???");
  EXPECT_EQ(decodePdu(std::string_view("")).content.text, u"This message cannot be decoded: it ends too early. PDU: ");
  EXPECT_EQ(decodePdu(std::string_view("00041581")).content.text,
            u"This message cannot be decoded: a number of more than 20 digits. PDU: 00041581");
  EXPECT_EQ(decodePdu(std::string_view("0C91")).content.text,
            u"This message cannot be decoded: a service centre of more than 20 digits. PDU: 0C91");
  EXPECT_EQ(decodePdu("000400810000" + std::string(14, '0') + "A1" + std::string(282, '0')).content.text.substr(0, 70),
            u"This message cannot be decoded: more user data than a message holds. P");
}

TEST(Decode, EveryBeginningOfAPdu_IsUndecodableAndHasNothingElse) {
  for (const std::string& whole : {hello, std::string("0011000B916407281553F80000AA0AE8329BFD4697D9EC37"),
                                   std::string("0006170B916407281553F8621112102030406211121030404000"),
                                   std::string("00440581"
                                               "2704F4"
                                               "0000"
                                               "62111210203000"
                                               "08"
                                               "0500032A030282")}) {
    ASSERT_NE(decodePdu(whole).kind, PduKind::Undecodable);
    for (std::size_t size = 0; size < whole.size(); size += 2) {
      const Message message = decodePdu(whole.substr(0, size));
      Message nothing;
      nothing.content.text = message.content.text;
      EXPECT_EQ(message, nothing);  // no half-read sender that somebody might take for true
      EXPECT_TRUE(
          message.content.text.ends_with(std::u16string(whole.begin(), whole.begin() + static_cast<long>(size))));
    }
  }
}

TEST(Decode, AnyOctets_GiveATextOrAMessage) {
  std::mt19937 random(123);
  int decodable = 0;
  for (int round = 0; round < 20000; ++round) {
    Octets octets(random() % 200);
    for (auto& octet : octets) octet = static_cast<std::uint8_t>(random());
    // Half of them look like PDUs in front.
    if (round % 2 && octets.size() > 3) {
      octets[0] = 0;
      octets[2] = static_cast<std::uint8_t>(octets[2] % 21);
    }
    const Message message = decodePdu(octets);
    if (message.kind != PduKind::Undecodable) ++decodable;
    ASSERT_TRUE(message.kind != PduKind::Undecodable || !message.content.text.empty());
  }
  EXPECT_GT(decodable, 500);
}

TEST(TpduLength, IsWhatStandsBehindTheServiceCentre) {
  EXPECT_EQ(tpduLength(octetsOf(hello)), 36U - 8U);
  EXPECT_EQ(tpduLength(octetsOf("0011000B")), 3U);
  EXPECT_EQ(tpduLength(octetsOf("00")), 0U);
  EXPECT_EQ(tpduLength(octetsOf("0791")), std::nullopt);
  EXPECT_EQ(tpduLength({}), std::nullopt);
}

Deliver deliverFrom(std::u16string_view number) {
  return {.serviceCentre = std::nullopt,
          .originator = numberOf(number),
          .timeStamp = {.year = 2026, .month = 11, .day = 21, .hour = 1, .minute = 2, .second = 3, .quarters = 0},
          .data = {}};
}

TEST(EncodeDeliver, OctetByOctet) {
  Deliver deliver = deliverFrom(u"+46708251358");
  deliver.serviceCentre = numberOf(u"+27381000015");
  const auto pdus = encodeDeliver(deliver, u"hellohello", 0);
  ASSERT_EQ(pdus.size(), 1U);
  EXPECT_EQ(toHex(pdus[0].octets),
            "07917283010010F5"
            "04"
            "0B916407281553F8"
            "0000"
            "62111210203000"
            "0AE8329BFD4697D9EC37");
  EXPECT_EQ(pdus[0].tpduLength, 28U);
  deliver.moreMessages = true;
  EXPECT_EQ(toHex(encodeDeliver(deliver, u"Ж", 0)[0].octets),
            "07917283010010F5"
            "00"
            "0B916407281553F8"
            "0008"
            "62111210203000"
            "020416");
}

TEST(EncodeStatusReport, OctetByOctet) {
  const Deliver like = deliverFrom(u"+46708251358");
  const EncodedPdu pdu = encodeStatusReport({.serviceCentre = std::nullopt,
                                             .reference = 0x17,
                                             .recipient = like.originator,
                                             .timeStamp = like.timeStamp,
                                             .dischargeTime = like.timeStamp,
                                             .status = 0x41});
  EXPECT_EQ(toHex(pdu.octets),
            "00"
            "0617"
            "0B916407281553F8"
            "62111210203000"
            "62111210203000"
            "41");
  EXPECT_EQ(pdu.tpduLength, 25U);
  EXPECT_EQ(decodePdu(pdu.octets).reportStatus, 0x41);
}

TEST(SentOn, AMessagesUserData_TravelsUnchanged) {
  const auto sent = encodeSubmit({.destination = numberOf(u"+46708251358")}, std::u16string(200, u'ä'), 9);
  for (const EncodedPdu& pdu : sent) {
    const Message submit = decodePdu(pdu.octets);
    Deliver deliver = deliverFrom(u"+46701740699");
    deliver.dataCoding = submit.dataCoding;
    deliver.data = submit.data;
    const Message arrived = decodePdu(encodeDeliver(deliver).octets);
    EXPECT_EQ(arrived.kind, PduKind::Deliver);
    EXPECT_EQ(arrived.content, submit.content);
    EXPECT_EQ(arrived.concatenation, submit.concatenation);
    EXPECT_EQ(shown(arrived.peer), u"+46701740699");
  }
}

// Encoding and then decoding gives back any text: what of it fits the 7-bit alphabet, what does not, and units that are
// half a surrogate pair.
TEST(Decode, AnyText_ComesBackFromSubmitAndDeliver) {
  constexpr std::u16string_view narrow = u"abcABC 0123@£$€[]{}~^|\\\f\r\nØåÄÖÜß";
  constexpr char16_t wide[] = {u'a', u'Ж', u'中', u'€', u'\0', 0xD83D, 0xDE00, 0xFFFF, 0xFEFF};
  std::mt19937 random(20261121);
  for (int round = 0; round < 1500; ++round) {
    const std::u16string_view letters = round % 2 ? narrow : std::u16string_view(wide, std::size(wide));
    std::u16string text;
    for (std::size_t left = random() % (round % 10 == 0 ? 3000 : 250); left > 0; --left)
      text += letters[random() % letters.size()];
    const auto reference = static_cast<std::uint8_t>(random());
    const auto submits = encodeSubmit({.destination = numberOf(u"+46708251358")}, text, reference);
    const auto delivers = encodeDeliver(deliverFrom(u"72404"), text, reference);
    ASSERT_EQ(submits.size(), delivers.size());
    std::u16string fromSubmits;
    std::u16string fromDelivers;
    for (std::size_t at = 0; at < submits.size(); ++at) {
      ASSERT_LE(submits[at].tpduLength, 164U);
      const Message submit = decodePdu(submits[at].octets);
      const Message deliver = decodePdu(delivers[at].octets);
      ASSERT_EQ(tpduLength(submits[at].octets), submits[at].tpduLength);
      ASSERT_EQ(tpduLength(delivers[at].octets), delivers[at].tpduLength);
      fromSubmits += submit.content.text;
      fromDelivers += deliver.content.text;
      if (submits.size() == 1) continue;
      const Concatenation expected{.reference = reference,
                                   .wide = false,
                                   .total = static_cast<std::uint8_t>(submits.size()),
                                   .part = static_cast<std::uint8_t>(at + 1)};
      ASSERT_EQ(submit.concatenation, expected);
      ASSERT_EQ(deliver.concatenation, expected);
    }
    ASSERT_EQ(fromSubmits, text);
    ASSERT_EQ(fromDelivers, text);
  }
}

}  // namespace
}  // namespace phone
