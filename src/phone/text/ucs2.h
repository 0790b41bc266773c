// UCS-2 as it is used: UTF-16, the high octet first (3GPP TS 23.038, 6.2.3). A surrogate pair counts two units.
#pragma once

#include <string>
#include <string_view>

#include "phone/text/octets.h"

namespace phone {

Octets toUcs2(std::u16string_view text);

// Half a surrogate pair stays as it is: its other half may be at the beginning of a long message's next part. A last
// octet without its other half becomes U+FFFD, so that the damage shows.
std::u16string fromUcs2(OctetsView octets);

constexpr bool isHighSurrogate(char16_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
constexpr bool isLowSurrogate(char16_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

}  // namespace phone
