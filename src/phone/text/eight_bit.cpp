#include "phone/text/eight_bit.h"

#include <algorithm>
#include <string_view>

namespace phone {
namespace {

bool isPrintable(std::uint8_t octet) {
  return (octet >= 0x20 && octet <= 0x7E) || octet >= 0xA0 || octet == '\n' || octet == '\r' || octet == '\t';
}

std::u16string inHexadecimal(std::u16string_view what, OctetsView data) {
  constexpr std::u16string_view digits = u"0123456789ABCDEF";
  std::u16string text = u"[";
  text += what;
  for (const std::uint8_t octet : data) {
    text += u' ';
    text += digits[octet >> 4];
    text += digits[octet & 0xF];
  }
  return text += u']';
}

}  // namespace

std::u16string showEightBit(OctetsView data) {
  if (std::ranges::all_of(data, isPrintable)) return {data.begin(), data.end()};
  return inHexadecimal(u"8-bit data:", data);
}

std::u16string showCompressed(OctetsView data) { return inHexadecimal(u"Compressed text:", data); }

}  // namespace phone
