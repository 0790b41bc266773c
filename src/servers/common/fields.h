// Reading the servers' own files: lines of fields, some of them numbers.
#pragma once

#include <charconv>
#include <optional>
#include <string_view>
#include <vector>

namespace servers {

// What is between the separators, the empty pieces too.
inline std::vector<std::string_view> split(std::string_view text, char separator) {
  std::vector<std::string_view> pieces;
  while (true) {
    const std::size_t end = text.find(separator);
    pieces.push_back(text.substr(0, end));
    if (end == std::string_view::npos) return pieces;
    text.remove_prefix(end + 1);
  }
}

// A number of that type and nothing else.
template <class N>
std::optional<N> numberIn(std::string_view text, int base = 10) {
  N value{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

}  // namespace servers
