// What a reader sees of 8-bit data, which has no alphabet of its own (3GPP TS 23.038, 6.2.2).
#pragma once

#include <string>

#include "phone/text/octets.h"

namespace phone {

// As ISO 8859-1 when that gives nothing but printable characters and line ends; otherwise the octets in hexadecimal,
// which no display stumbles over, after a word that says what they are.
std::u16string showEightBit(OctetsView data);

// Compressed text (3GPP TS 23.042) is recognised, not decompressed: no network carries it. In hexadecimal.
std::u16string showCompressed(OctetsView data);

}  // namespace phone
