#include "phone/at/line_reader.h"

#include "phone/at/characters.h"

namespace phone::at {

void LineReader::take(std::string_view octets) {
  for (const char c : octets) {
    if (c == '\r' || c == '\n') {
      endLine();
    } else if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) {
      continue;
    } else if (partial_.size() < longestLine) {
      partial_ += c;
    } else {
      overlong_ = true;
    }
  }
}

void LineReader::endLine() {
  const std::string_view line = trimmed(partial_);
  if (!line.empty() && !overlong_) lines_.emplace_back(line);
  dropPartial();
}

std::optional<std::string> LineReader::next() {
  if (lines_.empty()) return std::nullopt;
  std::string line = std::move(lines_.front());
  lines_.pop_front();
  return line;
}

bool LineReader::endsWithPrompt() const { return lines_.empty() && !overlong_ && trimmed(partial_) == ">"; }

void LineReader::dropPartial() {
  partial_.clear();
  overlong_ = false;
}

}  // namespace phone::at
