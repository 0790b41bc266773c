#include "phonesim/console/words.h"

#include <cstdint>
#include <optional>
#include <utility>

#include "phone/text/ucs2.h"

namespace phonesim {

namespace {

constexpr char16_t replacement = 0xFFFD;

// The code point that begins at `at`, which moves behind it.
char32_t takeCodePoint(std::string_view utf8, std::size_t& at) {
  const auto octet = [&](std::size_t i) { return static_cast<std::uint8_t>(utf8[i]); };
  const std::uint8_t first = octet(at++);
  if (first < 0x80) return first;
  const std::size_t more = first >= 0xF0 && first < 0xF5 ? 3 : first >= 0xE0 ? 2 : first >= 0xC2 ? 1 : 0;
  static constexpr char32_t least[] = {0, 0x80, 0x800, 0x10000};
  if (more == 0 || first >= 0xF5 || at + more > utf8.size()) return replacement;
  char32_t code = first & (0x3Fu >> more);
  for (std::size_t i = 0; i < more; ++i) {
    if ((octet(at + i) & 0xC0) != 0x80) return replacement;
    code = code << 6 | (octet(at + i) & 0x3Fu);
  }
  if (code < least[more] || code > 0x10FFFF || (code >= 0xD800 && code < 0xE000)) return replacement;
  at += more;
  return code;
}

void appendUtf8(std::string& text, char32_t code) {
  const auto put = [&](char32_t octet) { text += static_cast<char>(static_cast<std::uint8_t>(octet)); };
  if (code < 0x80) {
    put(code);
  } else if (code < 0x800) {
    put(0xC0 | code >> 6), put(0x80 | (code & 0x3F));
  } else if (code < 0x10000) {
    put(0xE0 | code >> 12), put(0x80 | (code >> 6 & 0x3F)), put(0x80 | (code & 0x3F));
  } else {
    put(0xF0 | code >> 18), put(0x80 | (code >> 12 & 0x3F)), put(0x80 | (code >> 6 & 0x3F)), put(0x80 | (code & 0x3F));
  }
}

std::optional<unsigned> hexDigit(char16_t c) {
  if (c >= '0' && c <= '9') return c - u'0';
  if (c >= 'A' && c <= 'F') return c - u'A' + 10u;
  if (c >= 'a' && c <= 'f') return c - u'a' + 10u;
  return std::nullopt;
}

// What a backslash at `at` stands for; `at` moves to its last character.
char16_t unescape(std::u16string_view line, std::size_t& at) {
  const char16_t kind = ++at < line.size() ? line[at] : u'\0';
  switch (kind) {
    case u'"':
    case u'\\':
      return kind;
    case u'n':
      return u'\n';
    case u'r':
      return u'\r';
    case u't':
      return u'\t';
    case u'u':
      break;
    default:
      throw ConsoleError("unknown escape");
  }
  unsigned unit = 0;
  for (int i = 0; i < 4; ++i) {
    const auto digit = ++at < line.size() ? hexDigit(line[at]) : std::nullopt;
    if (!digit) throw ConsoleError("four hexadecimal digits are missing");
    unit = unit << 4 | *digit;
  }
  return static_cast<char16_t>(unit);
}

}  // namespace

std::u16string fromUtf8(std::string_view utf8) {
  std::u16string text;
  for (std::size_t at = 0; at < utf8.size();) {
    const char32_t code = takeCodePoint(utf8, at);
    if (code < 0x10000) {
      text += static_cast<char16_t>(code);
    } else {
      text += static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10));
      text += static_cast<char16_t>(0xDC00 + ((code - 0x10000) & 0x3FF));
    }
  }
  return text;
}

std::string toUtf8(std::u16string_view text) {
  std::string utf8;
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t code = text[i];
    if (phone::isHighSurrogate(text[i]) && i + 1 < text.size() && phone::isLowSurrogate(text[i + 1])) {
      code = 0x10000 + ((code - 0xD800) << 10) + (text[i + 1] - 0xDC00u);
      ++i;
    } else if (phone::isHighSurrogate(text[i]) || phone::isLowSurrogate(text[i])) {
      code = replacement;
    }
    appendUtf8(utf8, code);
  }
  return utf8;
}

std::vector<std::u16string> splitWords(std::string_view utf8) {
  const std::u16string line = fromUtf8(utf8);
  std::vector<std::u16string> words;
  std::optional<std::u16string> word;
  bool open = false;
  for (std::size_t i = 0; i < line.size(); ++i) {
    const char16_t c = line[i];
    if (open && c == u'\\') {
      *word += unescape(line, i);
    } else if (c == u'"') {
      open = !open;
      if (!word) word.emplace();
    } else if (!open && (c == u' ' || c == u'\t')) {
      if (word) words.push_back(*std::exchange(word, std::nullopt));
    } else {
      if (!word) word.emplace();
      *word += c;
    }
  }
  if (open) throw ConsoleError("the quotes stay open");
  if (word) words.push_back(std::move(*word));
  return words;
}

std::string inQuotes(std::u16string_view text) {
  static constexpr char digits[] = "0123456789ABCDEF";
  std::u16string result = u"\"";
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char16_t c = text[i];
    const bool pair = phone::isHighSurrogate(c) && i + 1 < text.size() && phone::isLowSurrogate(text[i + 1]);
    if (c == u'"' || c == u'\\') {
      result += {u'\\', c};
    } else if (c == u'\n') {
      result += u"\\n";
    } else if (c == u'\r') {
      result += u"\\r";
    } else if (pair) {
      result += {c, text[++i]};
    } else if (c < 0x20 || c == 0x7F || phone::isHighSurrogate(c) || phone::isLowSurrogate(c)) {
      result += u"\\u";
      for (int shift = 12; shift >= 0; shift -= 4) result += static_cast<char16_t>(digits[c >> shift & 0xF]);
    } else {
      result += c;
    }
  }
  return toUtf8(result + u'"');
}

}  // namespace phonesim
