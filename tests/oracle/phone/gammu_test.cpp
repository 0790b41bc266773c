// Our PDUs as libgammu reads them, and its own as we do.

#include <cstring>
#include <memory>
#include <tuple>
#include <vector>

#include <gammu.h>
#include <gtest/gtest.h>

#include "oracle/phone/generator.h"
#include "phone/pdu/decode.h"
#include "phone/pdu/deliver.h"
#include "phone/pdu/hex.h"
#include "phone/pdu/submit.h"
#include "phone/text/segments.h"

namespace phone {
namespace {

using oracle::Generator;

constexpr std::u16string_view sevenBitLetters =
    u"@£$¥èéùìòÇ\nØø\rÅåΔ_ΦΓΛΩΠΨΣΘΞÆæßÉ !\"#¤%&'()*+,-./0123456789:;<=>?¡ABCDEFGHIJKLMNOPQRSTUVWXYZÄÖÑÜ§¿"
    u"abcdefghijklmnopqrstuvwxyzäöñüà^{}\\[~]|€";
constexpr std::u16string_view wideLetters = u"abc ЖжЯ中文€ñ☺\u200D";
constexpr std::u16string_view emoji = u"\U0001F600";

// Its texts: UTF-16, the high octet first, ended by a zero.
std::u16string fromGammu(const unsigned char* text) {
  std::u16string result;
  for (; text[0] != 0 || text[1] != 0; text += 2) result += static_cast<char16_t>(text[0] << 8 | text[1]);
  return result;
}

void toGammu(unsigned char* out, std::u16string_view text) {
  for (const char16_t unit : text) {
    *out++ = static_cast<unsigned char>(unit >> 8);
    *out++ = static_cast<unsigned char>(unit & 0xFF);
  }
  out[0] = out[1] = 0;
}

class GammuTest : public testing::Test {
 protected:
  // Any text that it can tell back: no zero, no halves of surrogate pairs.
  std::u16string anyText(bool sevenBit, std::size_t most) {
    if (sevenBit) return generator.text(sevenBitLetters, most);
    std::u16string text = u"Ж";
    for (std::size_t left = generator.below(most); left > 1; --left) {
      if (generator.below(10) == 0)
        text += emoji;
      else
        text += wideLetters[generator.below(wideLetters.size())];
    }
    return text;
  }

  void read(const Octets& pdu) {
    std::memset(sms.get(), 0, sizeof *sms);
    std::size_t end = 0;
    ASSERT_EQ(GSM_DecodePDUFrame(GSM_GetGlobalDebug(), sms.get(), pdu.data(), pdu.size(), &end, TRUE), ERR_NONE)
        << toHex(pdu);
    ASSERT_EQ(end, pdu.size()) << toHex(pdu);
  }

  // Whether it understood the same header: the reference and which part.
  void expectPart(std::uint8_t reference, std::size_t part, std::size_t total) {
    if (total == 1) {
      ASSERT_EQ(sms->UDH.Type, UDH_NoUDH);
      return;
    }
    ASSERT_EQ(sms->UDH.ID8bit, reference);
    ASSERT_EQ(sms->UDH.PartNumber, static_cast<int>(part));
    ASSERT_EQ(sms->UDH.AllParts, static_cast<int>(total));
  }

  Generator generator{20261121};
  std::unique_ptr<GSM_SMSMessage> sms = std::make_unique<GSM_SMSMessage>();
};

TEST_F(GammuTest, ReadsOurDelivers) {
  int parts = 0;
  for (int round = 0; round < 4000; ++round) {
    const Deliver deliver{
        .serviceCentre = generator.number(), .originator = generator.number(), .timeStamp = generator.timeStamp()};
    const std::u16string text = anyText(round % 2 == 0, round % 4 < 2 ? 160 : 700);
    const auto reference = static_cast<std::uint8_t>(round);
    const auto pdus = encodeDeliver(deliver, text, reference);
    std::u16string joined;
    for (std::size_t at = 0; at < pdus.size(); ++at) {
      ASSERT_NO_FATAL_FAILURE(read(pdus[at].octets));
      ASSERT_EQ(sms->PDU, SMS_Deliver);
      ASSERT_EQ(fromGammu(sms->Number), shown(deliver.originator)) << toHex(pdus[at].octets);
      ASSERT_EQ(fromGammu(sms->SMSC.Number), shown(*deliver.serviceCentre)) << toHex(pdus[at].octets);
      const GSM_DateTime& time = sms->DateTime;
      const TimeStamp& stamp = deliver.timeStamp;
      ASSERT_EQ(std::tuple(time.Year, time.Month, time.Day, time.Hour, time.Minute, time.Second),
                std::tuple(stamp.year, stamp.month, stamp.day, stamp.hour, stamp.minute, stamp.second))
          << toHex(pdus[at].octets);
      ASSERT_EQ(time.Timezone, *stamp.quarters * 15 * 60) << toHex(pdus[at].octets);
      ASSERT_NO_FATAL_FAILURE(expectPart(reference, at + 1, pdus.size()));
      joined += fromGammu(sms->Text);
      ++parts;
    }
    ASSERT_EQ(joined, text) << toHex(pdus[0].octets);
  }
  EXPECT_GT(parts, 8000);
}

TEST_F(GammuTest, ReadsOurSubmits) {
  int parts = 0;
  for (int round = 0; round < 2000; ++round) {
    Submit submit{.destination = generator.number()};
    if (generator.below(2)) submit.serviceCentre = generator.number();
    const auto validity = static_cast<std::uint8_t>(generator.below(256));
    if (generator.below(2)) submit.validity = relativeValidityPeriod(validity);
    const std::u16string text = anyText(round % 2 == 0, round % 4 < 2 ? 160 : 700);
    const auto reference = static_cast<std::uint8_t>(round);
    const auto pdus = encodeSubmit(submit, text, reference);
    std::u16string joined;
    for (std::size_t at = 0; at < pdus.size(); ++at) {
      ASSERT_NO_FATAL_FAILURE(read(pdus[at].octets));
      ASSERT_EQ(sms->PDU, SMS_Submit);
      ASSERT_EQ(fromGammu(sms->Number), shown(submit.destination)) << toHex(pdus[at].octets);
      ASSERT_EQ(fromGammu(sms->SMSC.Number), submit.serviceCentre ? shown(*submit.serviceCentre) : u"");
      ASSERT_TRUE(!submit.validity || sms->SMSC.Validity.Relative == validity) << toHex(pdus[at].octets);
      ASSERT_NO_FATAL_FAILURE(expectPart(reference, at + 1, pdus.size()));
      joined += fromGammu(sms->Text);
      ++parts;
    }
    ASSERT_EQ(joined, text) << toHex(pdus[0].octets);
  }
  EXPECT_GT(parts, 4000);
}

TEST_F(GammuTest, ReadsNamesAsSenders_AndWideReferences) {
  constexpr std::u16string_view letters = u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789 ";
  for (int round = 0; round < 1000; ++round) {
    std::u16string name(1, letters[generator.below(52)]);
    while (name.size() < 11 && generator.below(8) != 0) name += letters[generator.below(62)];
    const Concatenation part{.reference = static_cast<std::uint16_t>(generator.below(0x10000)),
                             .wide = true,
                             .total = 3,
                             .part = static_cast<std::uint8_t>(1 + generator.below(3))};
    const std::u16string text = generator.text(sevenBitLetters, 76);
    const Deliver deliver{.originator = {.type = NumberType::Alphanumeric, .plan = 0, .value = name},
                          .timeStamp = generator.timeStamp(),
                          .data = writeUserData({.elements = {elementOf(part)}}, text, Alphabet::Gsm7)};
    const Octets pdu = encodeDeliver(deliver).octets;
    ASSERT_NO_FATAL_FAILURE(read(pdu));
    ASSERT_EQ(fromGammu(sms->Number), name) << toHex(pdu);
    ASSERT_EQ(fromGammu(sms->Text), text) << toHex(pdu);
    ASSERT_EQ(sms->UDH.ID16bit, part.reference) << toHex(pdu);
    ASSERT_EQ(sms->UDH.PartNumber, part.part);
    ASSERT_EQ(sms->UDH.AllParts, 3);
  }
}

TEST_F(GammuTest, CountsAsManyMessages) {
  std::vector<unsigned char> text(2 * 2002);
  for (int round = 0; round < 3000; ++round) {
    const bool sevenBit = round % 2 == 0;
    const std::u16string any = anyText(sevenBit, 1000);
    toGammu(text.data(), any);
    // It is told whether there is a header in each part.
    const std::size_t expected = segmentsOf(any).parts.size();
    int messages = 0;
    std::size_t left = 0;
    GSM_SMSCounter(GSM_GetGlobalDebug(), text.data(), expected == 1 ? UDH_NoUDH : UDH_ConcatenatedMessages,
                   sevenBit ? SMS_Coding_Default_No_Compression : SMS_Coding_Unicode_No_Compression, &messages, &left);
    ASSERT_EQ(expected, static_cast<std::size_t>(messages)) << any.size() << " units";
  }
}

// What its encoder laid out in a buffer with fixed places, as the PDU that it stands for.
Octets pduOf(const unsigned char* buffer, int end, const GSM_SMSMessageLayout& layout, bool submit) {
  const auto append = [](Octets& pdu, const unsigned char* from, int count) {
    pdu.insert(pdu.end(), from, from + count);
  };
  Octets pdu;
  append(pdu, buffer + layout.SMSCNumber, buffer[layout.SMSCNumber] + 1);
  pdu.push_back(buffer[layout.firstbyte]);
  if (submit) pdu.push_back(buffer[layout.TPMR]);
  append(pdu, buffer + layout.Number, 2 + (buffer[layout.Number] + 1) / 2);
  pdu.push_back(buffer[layout.TPPID]);
  pdu.push_back(buffer[layout.TPDCS]);
  if (submit)
    pdu.push_back(buffer[layout.TPVP]);
  else
    append(pdu, buffer + layout.DateTime, 7);
  pdu.push_back(buffer[layout.TPUDL]);
  append(pdu, buffer + layout.Text, end - layout.Text);
  return pdu;
}

TEST_F(GammuTest, WritesWhatWeRead) {
  for (int round = 0; round < 4000; ++round) {
    const bool submit = round % 2 == 0;
    const bool sevenBit = generator.below(2) == 0;
    std::u16string text = anyText(sevenBit, 30 + generator.below(40));
    while (!sevenBit && text.size() > 70) text.pop_back();
    const Address number = generator.number();
    const Address centre = generator.number();
    TimeStamp stamp = generator.timeStamp();
    stamp.quarters = 0;  // it reads zones and writes none
    std::memset(sms.get(), 0, sizeof *sms);
    sms->PDU = submit ? SMS_Submit : SMS_Deliver;
    sms->Coding = sevenBit ? SMS_Coding_Default_No_Compression : SMS_Coding_Unicode_No_Compression;
    sms->Class = -1;
    sms->UDH.Type = UDH_NoUDH;
    sms->SMSC.Format = SMS_FORMAT_Text;
    sms->SMSC.Validity.Format = SMS_Validity_RelativeFormat;
    sms->SMSC.Validity.Relative = SMS_VALID_1_Day;
    toGammu(sms->Number, shown(number));
    toGammu(sms->SMSC.Number, shown(centre));
    toGammu(sms->Text, text);
    sms->Length = static_cast<int>(text.size());
    sms->DateTime = {.Timezone = 0,
                     .Second = stamp.second,
                     .Minute = stamp.minute,
                     .Hour = stamp.hour,
                     .Day = stamp.day,
                     .Month = stamp.month,
                     .Year = stamp.year};
    unsigned char buffer[1000] = {};
    int end = 0;
    const GSM_SMSMessageLayout& layout = submit ? PHONE_SMSSubmit : PHONE_SMSDeliver;
    ASSERT_EQ(GSM_EncodeSMSFrame(GSM_GetGlobalDebug(), sms.get(), buffer, layout, &end, TRUE), ERR_NONE);
    const Octets pdu = pduOf(buffer, end, layout, submit);
    const Message message = decodePdu(pdu);
    ASSERT_EQ(message.kind, submit ? PduKind::Submit : PduKind::Deliver) << toHex(pdu);
    ASSERT_EQ(shown(message.peer), shown(number)) << toHex(pdu);
    ASSERT_EQ(shown(*message.serviceCentre), shown(centre)) << toHex(pdu);
    ASSERT_EQ(message.content.text, text) << toHex(pdu);
    ASSERT_EQ(message.timeStamp, submit ? std::nullopt : std::optional(stamp)) << toHex(pdu);
  }
}

}  // namespace
}  // namespace phone
