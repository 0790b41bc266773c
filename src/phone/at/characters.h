// ASCII, whatever the locale.
#pragma once

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>

namespace phone::at {

constexpr bool isDigit(char c) noexcept { return c >= '0' && c <= '9'; }
constexpr char upper(char c) noexcept { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }
constexpr bool isLetter(char c) noexcept { return upper(c) >= 'A' && upper(c) <= 'Z'; }
constexpr bool isHexDigit(char c) noexcept { return isDigit(c) || (upper(c) >= 'A' && upper(c) <= 'F'); }

inline bool allHex(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) { return isHexDigit(c); });
}

constexpr std::string_view trimmed(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

constexpr bool sameWord(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i)
    if (upper(a[i]) != upper(b[i])) return false;
  return true;
}

// What follows "+NAME:" in a line that begins with it, in any case and with spaces wherever a modem puts them.
constexpr std::optional<std::string_view> after(std::string_view name, std::string_view line) {
  if (!sameWord(line.substr(0, name.size()), name)) return std::nullopt;
  line = trimmed(line.substr(name.size()));
  if (line.empty() || line.front() != ':') return std::nullopt;
  return trimmed(line.substr(1));
}

inline std::optional<int> wholeNumber(std::string_view text) {
  text = trimmed(text);
  int number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (text.empty() || error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

}  // namespace phone::at
