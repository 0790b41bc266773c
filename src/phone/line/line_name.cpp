#include "phone/line/line_name.h"

#include <charconv>

namespace phone {

namespace {

// A prefix in any case of its ASCII letters; `lower` is in lower case.
bool startsWith(std::string_view text, std::string_view lower) {
  if (text.size() < lower.size()) return false;
  for (std::size_t i = 0; i < lower.size(); ++i) {
    const char c = text[i];
    if ((c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c) != lower[i]) return false;
  }
  return true;
}

std::optional<std::uint32_t> wholeNumber(std::string_view text) {
  std::uint32_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

std::optional<LineName> parseTcp(std::string_view address) {
  const std::size_t colon = address.rfind(':');
  if (colon == std::string_view::npos) return std::nullopt;
  std::string_view host = address.substr(0, colon);
  const auto port = wholeNumber(address.substr(colon + 1));
  if (!port || *port == 0 || *port > 65535) return std::nullopt;
  if (host.size() > 2 && host.front() == '[' && host.back() == ']')
    host = host.substr(1, host.size() - 2);
  else if (host.find(':') != std::string_view::npos)
    return std::nullopt;
  if (host.empty()) return std::nullopt;
  return LineName{LineName::Kind::Tcp, std::string(host), std::to_string(*port)};
}

}  // namespace

std::optional<LineName> parseLineName(std::string_view word) {
  if (startsWith(word, "tcp:")) return parseTcp(word.substr(4));
  if (word.size() == 3 && startsWith(word, "sim")) return LineName{LineName::Kind::Simulated, {}, {}};
  LineName name;
  if (const std::size_t at = word.rfind('@'); at != std::string_view::npos) {
    const auto speed = wholeNumber(word.substr(at + 1));
    if (!speed || *speed == 0) return std::nullopt;
    name.speed = *speed;
    word = word.substr(0, at);
  }
  // Whatever else has a colon is a mistake (a mistyped "tcp:"), not a device.
  if (word.empty() || word.find(':') != std::string_view::npos) return std::nullopt;
  name.device = word;
  return name;
}

LineNames parseLineNames(std::string_view list) {
  static constexpr std::string_view separators = ",; \t\r\n";
  LineNames result;
  for (std::size_t begin = 0; (begin = list.find_first_not_of(separators, begin)) != std::string_view::npos;) {
    const std::string_view word = list.substr(begin, list.find_first_of(separators, begin) - begin);
    begin += word.size();
    if (auto name = parseLineName(word))
      result.names.push_back(std::move(*name));
    else
      result.unreadable.emplace_back(word);
  }
  return result;
}

}  // namespace phone
