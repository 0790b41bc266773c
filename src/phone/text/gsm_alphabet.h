// The GSM 7-bit default alphabet and its extension table (3GPP TS 23.038, 6.2.1). Texts are written with these alone;
// a message that arrives may be written with others (national_language.h).
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "phone/text/octets.h"

namespace phone {

inline constexpr std::uint8_t escapeSeptet = 0x1B;

// How many septets a character takes: 1, or 2 when it is of the extension table, or 0 when the alphabet lacks it.
std::size_t septetsOf(char16_t character);

// The number of septets of a text (unpacked, without a header), characters that the alphabet lacks not counted.
std::size_t septetCount(std::u16string_view text);

bool fitsGsmAlphabet(std::u16string_view text);

// A character that the alphabet lacks becomes a question mark: callers ask fitsGsmAlphabet() first.
Septets toSeptets(std::u16string_view text);

struct Code {
  std::uint8_t septet;
  char16_t character;
};
extern const std::span<const Code> extensionTable;

// What septets mean.
struct SeptetTables {
  std::span<const Code> instead = {};  // of the main table's characters
  std::span<const Code> extension = extensionTable;
};

// Any sequence of septets is text: after an escape, a code that the extension table lacks stands for its character in
// the main table, and a second escape is a blank. An escape at the very end is a blank too.
std::u16string fromSeptets(SeptetsView septets, const SeptetTables& tables = {});

}  // namespace phone
