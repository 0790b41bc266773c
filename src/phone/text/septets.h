// Septets packed into octets (3GPP TS 23.038, 6.1.2.1): septet k lies in bits 7k to 7k+6, the lowest bit first.
#pragma once

#include <cstddef>

#include "phone/text/octets.h"

namespace phone {

constexpr std::size_t octetsOfSeptets(std::size_t septets, std::size_t fillBits = 0) {
  return (septets * 7 + fillBits + 7) / 8;
}

// The bits between a header of that many octets (its length octet included) and the next septet's beginning.
constexpr std::size_t fillBitsAfter(std::size_t headerOctets) { return (7 - headerOctets * 8 % 7) % 7; }

// Leaves `fillBits` (0 to 6) bits empty in front. The bits that remain at the end are zero.
Octets packSeptets(SeptetsView septets, std::size_t fillBits = 0);

// Fewer than `count` septets when the octets end before.
Septets unpackSeptets(OctetsView octets, std::size_t count, std::size_t fillBits = 0);

}  // namespace phone
