// Our PDUs as gsmlib reads them. It is a judge of 7-bit text in ISO 8859-1, of numbers and of local times; it turns
// the zone's sign round and does not know UCS-2.

#include <tuple>

#include <gtest/gtest.h>

#include "oracle/phone/generator.h"
#include "oracle/phone/gsmlib_oracle.h"
#include "phone/pdu/deliver.h"
#include "phone/pdu/hex.h"
#include "phone/pdu/submit.h"

namespace phone {
namespace {

using oracle::Generator;
using oracle::GsmlibMessage;

// Of the 7-bit alphabet, what ISO 8859-1 has too. Extension characters are another judge's.
constexpr std::u16string_view latinLetters =
    u"@£$¥èéùìòÇ\nØø\rÅå_ÆæßÉ !\"#¤%&'()*+,-./0123456789:;<=>?¡ABCDEFGHIJKLMNOPQRSTUVWXYZÄÖÑÜ§¿"
    u"abcdefghijklmnopqrstuvwxyzäöñüà";

std::string latin1(std::u16string_view text) {
  std::string result;
  for (const char16_t character : text) result += static_cast<char>(static_cast<unsigned char>(character));
  return result;
}

TEST(Gsmlib, ReadsOurDelivers) {
  Generator generator(1);
  for (int round = 0; round < 8000; ++round) {
    const Deliver deliver{
        .serviceCentre = generator.number(), .originator = generator.number(), .timeStamp = generator.timeStamp()};
    const std::u16string text = generator.text(latinLetters, 160);
    const std::string hex = toHex(encodeDeliver(deliver, text, 0)[0].octets);
    const GsmlibMessage read = oracle::gsmlibDecode(hex, true);
    ASSERT_TRUE(read.decoded) << hex << ": " << read.error;
    ASSERT_EQ(read.text, latin1(text)) << hex;
    ASSERT_EQ(read.number, latin1(shown(deliver.originator))) << hex;
    ASSERT_EQ(read.serviceCentre, latin1(shown(*deliver.serviceCentre))) << hex;
    const TimeStamp& stamp = deliver.timeStamp;
    ASSERT_EQ(std::tuple(read.year, read.month, read.day, read.hour, read.minute, read.second),
              std::tuple(stamp.year % 100, stamp.month, stamp.day, stamp.hour, stamp.minute, stamp.second))
        << hex;
  }
}

TEST(Gsmlib, ReadsOurSubmits_PartByPart) {
  Generator generator(2);
  int parts = 0;
  for (int round = 0; round < 4000; ++round) {
    const Submit submit{.destination = generator.number()};
    const std::u16string text = generator.text(latinLetters, round % 4 ? 160 : 800);
    std::string joined;
    for (const EncodedPdu& pdu : encodeSubmit(submit, text, static_cast<std::uint8_t>(round))) {
      const GsmlibMessage read = oracle::gsmlibDecode(toHex(pdu.octets), false);
      ASSERT_TRUE(read.decoded) << toHex(pdu.octets) << ": " << read.error;
      ASSERT_EQ(read.number, latin1(shown(submit.destination))) << toHex(pdu.octets);
      joined += read.text;
      ++parts;
    }
    ASSERT_EQ(joined, latin1(text));
  }
  EXPECT_GT(parts, 5000);
}

}  // namespace
}  // namespace phone
