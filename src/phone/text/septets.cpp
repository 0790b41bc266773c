#include "phone/text/septets.h"

namespace phone {

Octets packSeptets(SeptetsView septets, std::size_t fillBits) {
  Octets octets(octetsOfSeptets(septets.size(), fillBits));
  std::size_t bit = fillBits;
  for (const std::uint8_t septet : septets) {
    const unsigned shifted = static_cast<unsigned>(septet & 0x7F) << (bit % 8);
    octets[bit / 8] |= static_cast<std::uint8_t>(shifted);
    // The last septet may end with its octet: then there is no next one.
    if (shifted > 0xFF) octets[bit / 8 + 1] |= static_cast<std::uint8_t>(shifted >> 8);
    bit += 7;
  }
  return octets;
}

Septets unpackSeptets(OctetsView octets, std::size_t count, std::size_t fillBits) {
  Septets septets;
  septets.reserve(count);
  for (std::size_t bit = fillBits; septets.size() < count && bit + 7 <= octets.size() * 8; bit += 7) {
    unsigned value = octets[bit / 8];
    if (bit % 8 > 1) value |= static_cast<unsigned>(octets[bit / 8 + 1]) << 8;
    septets.push_back(static_cast<std::uint8_t>(value >> (bit % 8) & 0x7F));
  }
  return septets;
}

}  // namespace phone
