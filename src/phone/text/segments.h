// How a text is carried: its alphabet, and the pieces it is cut into when it is longer than one message. Whoever counts
// messages and whoever sends them asks here.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace phone {

enum class Alphabet { Gsm7, EightBit, Ucs2 };

// The capacity of one message's user data (3GPP TS 23.040, 9.2.3.24), in septets, octets or UTF-16 units, alone and
// behind the header of a long message with an 8-bit reference.
constexpr std::size_t capacityAlone(Alphabet alphabet) {
  return alphabet == Alphabet::Gsm7 ? 160 : alphabet == Alphabet::EightBit ? 140 : 70;
}
constexpr std::size_t capacityOfPart(Alphabet alphabet) {
  return alphabet == Alphabet::Gsm7 ? 153 : alphabet == Alphabet::EightBit ? 134 : 67;
}
inline constexpr std::size_t mostParts = 255;

class TextTooLong : public std::runtime_error {
 public:
  TextTooLong();
};

// The 7-bit alphabet when it has every character, UCS-2 otherwise.
Alphabet alphabetFor(std::u16string_view text);

struct Segments {
  Alphabet alphabet = Alphabet::Gsm7;
  std::vector<std::u16string_view> parts = {};  // of the text that was given; one, empty, for an empty text
};

// Neither a character of two septets nor a surrogate pair is ever cut: a part then holds one unit less. Throws
// TextTooLong above 255 parts.
Segments segmentsOf(std::u16string_view text);

}  // namespace phone
