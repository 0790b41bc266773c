#include "phone/pdu/data_coding.h"

namespace phone {
namespace {

// 00xx xxxx and 01xx xxxx.
DataCoding general(std::uint8_t octet) {
  DataCoding coding;
  coding.deleteWhenRead = (octet & 0x40) != 0;
  coding.compressed = (octet & 0x20) != 0;
  if (octet & 0x10) coding.messageClass = octet & 3;
  switch (octet >> 2 & 3) {
    case 1:
      coding.alphabet = Alphabet::EightBit;
      break;
    case 2:
      coding.alphabet = Alphabet::Ucs2;
      break;
    case 3:
      coding.reserved = true;
      break;
    default:
      break;
  }
  return coding;
}

}  // namespace

DataCoding dataCodingOf(std::uint8_t octet) {
  DataCoding coding;
  switch (octet >> 4) {
    case 0xC:
      coding.waiting = Waiting::Discard;
      return coding;
    case 0xD:
      coding.waiting = Waiting::Store;
      return coding;
    case 0xE:
      coding.waiting = Waiting::Store;
      coding.alphabet = Alphabet::Ucs2;
      return coding;
    case 0xF:
      // Bit 3 is reserved and has no meaning.
      if (octet & 4) coding.alphabet = Alphabet::EightBit;
      coding.messageClass = octet & 3;
      return coding;
    default:
      break;
  }
  if (octet < 0x80) return general(octet);
  coding.reserved = true;
  return coding;
}

std::uint8_t dataCodingOctet(Alphabet alphabet) {
  switch (alphabet) {
    case Alphabet::EightBit:
      return 0x04;
    case Alphabet::Ucs2:
      return 0x08;
    default:
      return 0x00;
  }
}

}  // namespace phone
