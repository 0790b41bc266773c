// What the tests of PDUs share.
#pragma once

#include <string>
#include <string_view>

#include "phone/pdu/address.h"
#include "phone/pdu/hex.h"

namespace phone {

inline Octets octetsOf(std::string_view hex) {
  std::string digits;
  for (const char character : hex)
    if (character != ' ') digits += character;
  return fromHex(digits).value();
}

inline Address numberOf(std::u16string_view typed) { return parseNumber(typed).value(); }

}  // namespace phone
