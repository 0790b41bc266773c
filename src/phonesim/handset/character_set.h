// The character set of what travels on the line as text (+CSCS; 3GPP TS 27.007, 5.5): strings in quotes, and messages
// in text mode.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "phone/text/octets.h"

namespace phonesim {

enum class CharacterSet { Gsm, Ira, Ucs2, Hex };

std::string_view nameOf(CharacterSet set);
std::optional<CharacterSet> characterSetNamed(std::string_view name);

// What the set lacks becomes a question mark.
std::string inCharacterSet(std::u16string_view text, CharacterSet set);
inline std::string inCharacterSet(std::string_view ascii, CharacterSet set) {
  return inCharacterSet(std::u16string(ascii.begin(), ascii.end()), set);
}
// Nothing when it is not written in that set.
std::optional<std::u16string> fromCharacterSet(std::string_view text, CharacterSet set);

// A message of the 7-bit alphabet: 3GPP TS 27.005, 3.1, <data>. Hexadecimal is the alphabet's own codes, one by one.
std::string fromMessage(phone::SeptetsView message, CharacterSet set);
std::optional<phone::Septets> toMessage(std::string_view typed, CharacterSet set);

}  // namespace phonesim
