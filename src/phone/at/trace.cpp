#include "phone/at/trace.h"

#include <array>

#include "phone/at/characters.h"

namespace phone::at {

namespace {

constexpr std::array<std::string_view, 14> harmless = {"SM",  "ME",  "MT",   "SR",     "BM",      "TA",   "GSM",
                                                       "IRA", "HEX", "UCS2", "8859-1", "PCCP437", "PCDN", "UTF-8"};
constexpr std::size_t longNumber = 5;
constexpr std::size_t longHex = 8;

bool isHarmless(std::string_view text) {
  return text.empty() || std::find(harmless.begin(), harmless.end(), text) != harmless.end();
}

// The end of the run of characters like the first.
template <class Like>
std::size_t endOfRun(std::string_view line, std::size_t begin, Like like) {
  while (begin < line.size() && like(line[begin])) ++begin;
  return begin;
}

// The end of what must not be shown and begins here; `begin` itself when that is nothing.
std::size_t endOfSecret(std::string_view line, std::size_t begin) {
  // Not in the middle of a word: "+CGREG" is no number.
  if (begin > 0 && (isLetter(line[begin - 1]) || isDigit(line[begin - 1]))) return begin;
  const std::size_t digits = endOfRun(line, begin, isDigit);
  if (digits - begin >= longNumber) return endOfRun(line, digits, isHexDigit);
  const std::size_t hex = endOfRun(line, begin, isHexDigit);
  return hex - begin >= longHex ? hex : begin;
}

std::string maskedSyntax(std::string_view line) {
  std::string shown;
  for (std::size_t i = 0; i < line.size();) {
    if (line[i] == '"') {
      const std::size_t end = std::min(line.find('"', i + 1), line.size());
      const std::string_view text = line.substr(i + 1, end - i - 1);
      shown += '"';
      shown += isHarmless(text) ? text : std::string_view("***");
      if (end < line.size()) shown += '"';
      i = end + 1;
    } else if (const std::size_t end = endOfSecret(line, i); end > i) {
      shown += "***";
      i = end;
    } else {
      shown += line[i++];
    }
  }
  return shown;
}

}  // namespace

std::string masked(std::string_view line, Content content) {
  switch (content) {
    case Content::Syntax:
      return maskedSyntax(line);
    case Content::Pdu:
      return "<" + std::to_string(line.size() / 2) + " octets>";
    case Content::Unknown:
      break;
  }
  return "<" + std::to_string(line.size()) + " characters>";
}

void Trace::write(std::string_view direction, std::string_view line, Content content) const {
  sink_(std::string(direction) + (everything_ ? std::string(line) : masked(line, content)));
}

}  // namespace phone::at
