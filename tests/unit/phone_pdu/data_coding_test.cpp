// Every data coding scheme (3GPP TS 23.038, 4).

#include "phone/pdu/data_coding.h"

#include <gtest/gtest.h>

namespace phone {
namespace {

// The standard's table once more, read row by row.
DataCoding byTheTable(unsigned octet) {
  DataCoding coding;
  if (octet <= 0x7F) {
    constexpr Alphabet alphabets[] = {Alphabet::Gsm7, Alphabet::EightBit, Alphabet::Ucs2, Alphabet::Gsm7};
    coding.alphabet = alphabets[octet / 4 % 4];
    coding.reserved = octet / 4 % 4 == 3;
    coding.compressed = octet / 32 % 2 == 1;
    coding.deleteWhenRead = octet >= 0x40;
    if (octet / 16 % 2 == 1) coding.messageClass = static_cast<int>(octet % 4);
  } else if (octet <= 0xBF) {
    coding.reserved = true;
  } else if (octet <= 0xCF) {
    coding.waiting = Waiting::Discard;
  } else if (octet <= 0xDF) {
    coding.waiting = Waiting::Store;
  } else if (octet <= 0xEF) {
    coding.waiting = Waiting::Store;
    coding.alphabet = Alphabet::Ucs2;
  } else {
    coding.alphabet = octet / 4 % 2 == 1 ? Alphabet::EightBit : Alphabet::Gsm7;
    coding.messageClass = static_cast<int>(octet % 4);
  }
  return coding;
}

TEST(DataCoding, EveryValue) {
  for (unsigned octet = 0; octet < 0x100; ++octet)
    EXPECT_EQ(dataCodingOf(static_cast<std::uint8_t>(octet)), byTheTable(octet)) << std::hex << octet;
}

TEST(DataCoding, OftenSeen) {
  EXPECT_EQ(dataCodingOf(0x00), DataCoding{});
  EXPECT_EQ(dataCodingOf(0x08), DataCoding{.alphabet = Alphabet::Ucs2});
  EXPECT_EQ(dataCodingOf(0x04), DataCoding{.alphabet = Alphabet::EightBit});
  EXPECT_EQ(dataCodingOf(0x10), DataCoding{.messageClass = 0});
  EXPECT_EQ(dataCodingOf(0xF0), DataCoding{.messageClass = 0});
  EXPECT_EQ(dataCodingOf(0x11), DataCoding{.messageClass = 1});
  EXPECT_EQ(dataCodingOf(0xF1), DataCoding{.messageClass = 1});
  EXPECT_EQ(dataCodingOf(0xF5), (DataCoding{.alphabet = Alphabet::EightBit, .messageClass = 1}));
  EXPECT_EQ(dataCodingOf(0xF6), (DataCoding{.alphabet = Alphabet::EightBit, .messageClass = 2}));
  EXPECT_EQ(dataCodingOf(0x18), (DataCoding{.alphabet = Alphabet::Ucs2, .messageClass = 0}));
}

TEST(DataCoding, PlainOctets) {
  EXPECT_EQ(dataCodingOctet(Alphabet::Gsm7), 0x00);
  EXPECT_EQ(dataCodingOctet(Alphabet::EightBit), 0x04);
  EXPECT_EQ(dataCodingOctet(Alphabet::Ucs2), 0x08);
}

}  // namespace
}  // namespace phone
