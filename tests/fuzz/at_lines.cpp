// Any octets as what a modem says: the same lines come out however they arrive, and none that a reader could not keep;
// whatever looks at lines stands every one of them, and a masked line shows no number.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "fuzz/check.h"
#include "phone/at/characters.h"
#include "phone/at/fields.h"
#include "phone/at/line_reader.h"
#include "phone/at/result.h"
#include "phone/at/trace.h"
#include "phone/modem/entry.h"

namespace {

using namespace phone;
using namespace phone::at;
using Lines = std::vector<std::string>;

Lines linesOf(std::string_view octets, std::size_t piece, bool& prompt) {
  LineReader reader;
  Lines lines;
  for (std::size_t begin = 0; begin < octets.size(); begin += piece) {
    reader.take(octets.substr(begin, piece));
    while (auto line = reader.next()) lines.push_back(std::move(*line));
  }
  prompt = reader.endsWithPrompt();
  return lines;
}

bool showsNumber(std::string_view line) {
  std::size_t digits = 0;
  for (const char c : line) {
    digits = isDigit(c) ? digits + 1 : 0;
    if (digits >= 5) return true;
  }
  return false;
}

void examine(const std::string& line) {
  fuzz::require(!line.empty() && line.size() <= LineReader::longestLine, "a line has a length that can be kept");
  fuzz::require(std::none_of(line.begin(), line.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20; }),
                "a line has no control characters");
  const auto result = parseResult(line);
  fuzz::require(!result || result->kind >= Result::Kind::CmsError || result->code == 0,
                "only numbered errors have codes");
  for (const Field& field : fieldsOf(line))
    fuzz::require(field.text.size() <= line.size(), "a field is part of its line");
  for (const std::string& word : wordsOf(line)) fuzz::require(!word.empty(), "a word is not empty");
  const std::string shown = masked(line, Content::Syntax);
  // Digits in the middle of a word are no number.
  fuzz::require(!showsNumber(shown) || std::any_of(line.begin(), line.end(), isLetter), "numbers are masked");
  const auto entry = entryOfListing({line, line});
  fuzz::require(!entry || entry->message.index >= 0, "a slot has a number");
  const Entry reading = entryOfReading({line, line}, 3);
  fuzz::require(reading.message.index == 3, "a slot keeps its number");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string octets(reinterpret_cast<const char*>(data), size);
  bool promptAtOnce = false, promptByOctet = false;
  const Lines atOnce = linesOf(octets, std::max<std::size_t>(octets.size(), 1), promptAtOnce);
  const Lines byOctet = linesOf(octets, 1, promptByOctet);
  fuzz::require(atOnce == byOctet && promptAtOnce == promptByOctet, "lines do not depend on how they arrive");
  for (const std::string& line : atOnce) examine(line);
  return 0;
}
