// The character set of strings on the line (+CSCS; 3GPP TS 27.007, 5.5). The handset's own strings (numbers, the
// operator's name) are plain ASCII; only their clothing changes.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace phonesim {

enum class CharacterSet { Gsm, Ira, Ucs2, Hex };

std::string_view nameOf(CharacterSet set);
std::optional<CharacterSet> characterSetNamed(std::string_view name);

std::string inCharacterSet(std::string_view ascii, CharacterSet set);
// Nothing when it is not written in that set, or not ASCII.
std::optional<std::string> fromCharacterSet(std::string_view text, CharacterSet set);

}  // namespace phonesim
