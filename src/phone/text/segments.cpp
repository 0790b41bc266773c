#include "phone/text/segments.h"

#include "phone/text/gsm_alphabet.h"
#include "phone/text/ucs2.h"

namespace phone {
namespace {

// The first character of the text: how many UTF-16 units it is, and how many units of capacity it takes.
struct Step {
  std::size_t units;
  std::size_t cost;
};

Step firstCharacter(std::u16string_view text, Alphabet alphabet) {
  if (alphabet == Alphabet::Gsm7) return {1, septetsOf(text.front())};
  const std::size_t units = text.size() > 1 && isHighSurrogate(text[0]) && isLowSurrogate(text[1]) ? 2 : 1;
  return {units, units};
}

// As much of the text as fits.
std::u16string_view piece(std::u16string_view text, Alphabet alphabet, std::size_t capacity) {
  std::size_t length = 0;
  while (length < text.size()) {
    const Step step = firstCharacter(text.substr(length), alphabet);
    if (step.cost > capacity) break;
    capacity -= step.cost;
    length += step.units;
  }
  return text.substr(0, length);
}

}  // namespace

TextTooLong::TextTooLong() : std::runtime_error("the text is longer than 255 parts hold") {}

Alphabet alphabetFor(std::u16string_view text) { return fitsGsmAlphabet(text) ? Alphabet::Gsm7 : Alphabet::Ucs2; }

Segments segmentsOf(std::u16string_view text) {
  Segments segments{.alphabet = alphabetFor(text), .parts = {}};
  if (piece(text, segments.alphabet, capacityAlone(segments.alphabet)).size() == text.size()) {
    segments.parts.push_back(text);
    return segments;
  }
  while (!text.empty()) {
    if (segments.parts.size() == mostParts) throw TextTooLong();
    segments.parts.push_back(piece(text, segments.alphabet, capacityOfPart(segments.alphabet)));
    text.remove_prefix(segments.parts.back().size());
  }
  return segments;
}

}  // namespace phone
