#include "mailclient/maildir_names.h"

#include <algorithm>

namespace mailclient {
namespace {

// Base64 of UTF-16, big end first, with "," for "/" and without padding.
constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+,";

bool isPlain(char16_t c) {
  constexpr StringView refused = u"&./\\:*?\"<>|;";
  return c >= u' ' && c < 0x7F && refused.find(c) == StringView::npos;
}

void appendEncoded(std::string& to, StringView units) {
  std::uint32_t bits = 0;
  int count = 0;
  to += '&';
  for (const char16_t unit : units) {
    bits = bits << 16 | unit;
    for (count += 16; count >= 6; count -= 6) to += alphabet[bits >> (count - 6) & 63];
  }
  if (count > 0) to += alphabet[bits << (6 - count) & 63];
  to += '-';
}

std::string encoded(StringView name) {
  std::string result;
  for (std::size_t i = 0; i < name.size();) {
    // Windows drops blanks at the end of a name.
    const bool plain = isPlain(name[i]) && !(name[i] == u' ' && i + 1 == name.size());
    if (plain) {
      result += static_cast<char>(name[i++]);
      continue;
    }
    if (name[i] == u'&') {
      result += "&-";
      ++i;
      continue;
    }
    const std::size_t start = i;
    while (i < name.size() && name[i] != u'&' && (!isPlain(name[i]) || (name[i] == u' ' && i + 1 == name.size()))) ++i;
    appendEncoded(result, name.substr(start, i - start));
  }
  return result;
}

std::optional<String> decoded(std::string_view text) {
  String name;
  while (!text.empty()) {
    const char c = text.front();
    text.remove_prefix(1);
    if (c != '&') {
      name += static_cast<char16_t>(static_cast<unsigned char>(c));
      continue;
    }
    const std::size_t end = text.find('-');
    if (end == std::string_view::npos) return std::nullopt;
    if (end == 0) name += u'&';
    std::uint32_t bits = 0;
    int count = 0;
    for (const char digit : text.substr(0, end)) {
      const std::size_t value = alphabet.find(digit);
      if (value == std::string_view::npos) return std::nullopt;
      bits = bits << 6 | static_cast<std::uint32_t>(value);
      count += 6;
      if (count < 16) continue;
      count -= 16;
      name += static_cast<char16_t>(bits >> count);
    }
    text.remove_prefix(end + 1);
  }
  return name;
}

}  // namespace

std::string folderDirectory(const std::vector<String>& path) {
  std::string directory;
  for (const String& name : path) directory += "." + encoded(name);
  return directory;
}

std::optional<std::vector<String>> folderNames(std::string_view directory) {
  if (directory.size() < 2 || directory.front() != '.' || directory == "..") return std::nullopt;
  std::vector<String> path;
  while (!directory.empty()) {
    directory.remove_prefix(1);
    const std::size_t dot = directory.find('.');
    const auto name = decoded(directory.substr(0, dot));
    if (!name || name->empty()) return std::nullopt;
    path.push_back(*name);
    directory = dot == std::string_view::npos ? std::string_view() : directory.substr(dot);
  }
  return path;
}

FlaggedName parseName(const std::string& name) {
  for (const std::string_view mark : {":2,", ";2,"})
    if (const std::size_t at = name.rfind(mark); at != std::string::npos)
      return {name.substr(0, at), name.substr(at + mark.size())};
  return {name, {}};
}

std::string joinName(const FlaggedName& name, char separator) { return name.base + separator + "2," + name.flags; }

FlaggedName withFlag(FlaggedName name, char flag, bool set) {
  std::erase(name.flags, flag);
  if (set) name.flags.insert(std::upper_bound(name.flags.begin(), name.flags.end(), flag), flag);
  return name;
}

}  // namespace mailclient
