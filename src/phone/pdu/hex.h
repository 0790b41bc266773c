// Octets in hexadecimal, as the AT commands carry them (3GPP TS 27.005, 3.1 <pdu>).
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "phone/text/octets.h"

namespace phone {

// Upper case, without blanks.
std::string toHex(OctetsView octets);

// Nothing when the digits are odd in number or one of them is none. Both cases are accepted.
std::optional<Octets> fromHex(std::string_view digits);

}  // namespace phone
