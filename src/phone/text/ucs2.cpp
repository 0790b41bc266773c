#include "phone/text/ucs2.h"

namespace phone {

Octets toUcs2(std::u16string_view text) {
  Octets octets;
  octets.reserve(text.size() * 2);
  for (const char16_t unit : text) {
    octets.push_back(static_cast<std::uint8_t>(unit >> 8));
    octets.push_back(static_cast<std::uint8_t>(unit & 0xFF));
  }
  return octets;
}

std::u16string fromUcs2(OctetsView octets) {
  std::u16string text;
  text.reserve(octets.size() / 2 + 1);
  for (std::size_t at = 0; at + 1 < octets.size(); at += 2)
    text += static_cast<char16_t>(octets[at] << 8 | octets[at + 1]);
  if (octets.size() % 2 != 0) text += u'\uFFFD';
  return text;
}

}  // namespace phone
