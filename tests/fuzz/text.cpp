// Any text and number: encoded and decoded, it is the same; no part holds more than it may.

#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz/check.h"
#include "phone/pdu/decode.h"
#include "phone/pdu/submit.h"

namespace {

using namespace phone;

// Mostly characters of the 7-bit alphabet: one foreign character is enough to leave it.
std::u16string textOf(OctetsView input) {
  if (input.empty()) return {};
  const bool wide = input[0] & 1;
  std::u16string text;
  for (std::size_t at = 1; at < input.size(); ++at) {
    if (!wide)
      text += static_cast<char16_t>(input[at]);
    else if (at + 1 < input.size())
      text += static_cast<char16_t>(input[at] << 8 | input[at + 1]), ++at;
  }
  return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size) {
  const std::u16string text = textOf({input, size});
  if (const auto number = parseNumber(text)) {
    fuzz::require(parseNumber(shown(*number)) == number, "a number that is shown can be typed");
    fuzz::require(decodePdu(encodeSubmit({.destination = *number}, u"", 0)[0].octets).peer == *number, "same number");
  }
  std::u16string joined;
  const auto pdus = encodeSubmit({.destination = {.value = u"1"}}, text, 7);
  for (const EncodedPdu& pdu : pdus) {
    const Message message = decodePdu(pdu.octets);
    fuzz::require(message.kind == PduKind::Submit, "can be decoded");
    fuzz::require(message.data.octets.size() <= 140, "fits into a message");
    fuzz::require(message.concatenation.has_value() == (pdus.size() > 1), "numbered when there are several");
    joined += message.content.text;
  }
  fuzz::require(joined == text, "same text");
  return 0;
}
