// Numbers in texts, as automation reads them (US English).
#pragma once

#include <cstdint>
#include <optional>

#include "addin/platform/text.h"

namespace platform {

struct TextNumber {
  double value = 0;                   // of a decimal number
  std::optional<std::uint64_t> bits;  // of one in hexadecimal or octal, whose sign depends on the width that reads it
};

// Blanks, one plus, one minus, one dollar sign and parentheses (for a negative number) may stand around the number, in
// any order; commas anywhere between its digits; an exponent, which an amount of dollars cannot have, is marked with E
// or D. &H17 is hexadecimal, &O17 octal,
// and a sign changes nothing there. Nothing when the text is no number; error 6 when it is beyond a double or 64 bits.
std::optional<TextNumber> readNumber(StringView text);

// Up to 15 digits, a half in the sixteenth rounded away from zero: 0.1, -2.5, 1E+15, 1E-05.
String numberText(double number);

}  // namespace platform
