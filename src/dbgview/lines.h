// What a record that some program sent contains: lines of text. The record is nobody's promise: it may lack its NUL, be
// huge, or be empty.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace dbgview {

inline constexpr std::size_t longestRecord = 64 * 1024;  // bytes; the rest of a longer one is left out

// The text of a record, without its NUL and what comes behind it.
inline std::string textOfRecord(const char* data, std::size_t size) {
  if (!data) return {};
  const std::string_view all(data, std::min(size, longestRecord));
  return std::string(all.substr(0, all.find('\0')));
}

// For the window: one entry per line, without line ends. An empty text is one empty line.
inline std::vector<std::string> linesOf(std::string_view text) {
  std::vector<std::string> lines;
  do {
    const std::size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    while (line.ends_with('\r')) line.remove_suffix(1);
    lines.emplace_back(line);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  } while (!text.empty());
  return lines;
}

// For the log: as it came, with a line end.
inline std::string loggedText(std::string_view text) {
  std::string logged(text);
  if (!logged.ends_with('\n')) logged += "\r\n";
  return logged;
}

}  // namespace dbgview
