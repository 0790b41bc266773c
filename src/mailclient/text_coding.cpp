#include "mailclient/text_coding.h"

#include <array>
#include <cstdint>

namespace mailclient {
namespace {

constexpr char32_t replacement = 0xFFFD;
constexpr std::string_view hexDigits = "0123456789ABCDEF";

bool isHigh(char16_t c) { return c >= 0xD800 && c < 0xDC00; }
bool isLow(char16_t c) { return c >= 0xDC00 && c < 0xE000; }

void appendUtf8(std::string& to, char32_t c) {
  const auto put = [&](char32_t byte) { to += static_cast<char>(static_cast<unsigned char>(byte)); };
  if (c < 0x80) {
    put(c);
  } else if (c < 0x800) {
    put(0xC0 | c >> 6);
    put(0x80 | (c & 63));
  } else if (c < 0x10000) {
    put(0xE0 | c >> 12);
    put(0x80 | (c >> 6 & 63));
    put(0x80 | (c & 63));
  } else {
    put(0xF0 | c >> 18);
    put(0x80 | (c >> 12 & 63));
    put(0x80 | (c >> 6 & 63));
    put(0x80 | (c & 63));
  }
}

// One character at the start of `bytes`, which it is taken from; false when the first byte starts none.
bool takeUtf8(std::string_view& bytes, char32_t& c) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
  const unsigned char first = byte(0);
  const std::size_t length = first < 0x80   ? 1
                             : first < 0xC2 ? 0
                             : first < 0xE0 ? 2
                             : first < 0xF0 ? 3
                             : first < 0xF5 ? 4
                                            : 0;
  if (length == 0 || length > bytes.size()) return false;
  c = length == 1 ? first : first & (0xFFu >> (length + 1));
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0) != 0x80) return false;
    c = c << 6 | (byte(i) & 63);
  }
  constexpr std::array<char32_t, 5> smallest{0, 0, 0x80, 0x800, 0x10000};
  if (c < smallest[length] || c > 0x10FFFF || (c >= 0xD800 && c < 0xE000)) return false;
  bytes.remove_prefix(length);
  return true;
}

int hexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

}  // namespace

std::string toUtf8(StringView text) {
  std::string bytes;
  bytes.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t c = text[i];
    if (isHigh(text[i]) && i + 1 < text.size() && isLow(text[i + 1])) {
      c = 0x10000 + ((c - 0xD800) << 10) + (text[i + 1] - 0xDC00u);
      ++i;
    } else if (isHigh(text[i]) || isLow(text[i])) {
      c = replacement;
    }
    appendUtf8(bytes, c);
  }
  return bytes;
}

String fromUtf8(std::string_view bytes) {
  String text;
  text.reserve(bytes.size());
  while (!bytes.empty()) {
    char32_t c = replacement;
    if (!takeUtf8(bytes, c)) {
      c = replacement;
      bytes.remove_prefix(1);
    }
    if (c < 0x10000) {
      text += static_cast<char16_t>(c);
    } else {
      text += static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10));
      text += static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
    }
  }
  return text;
}

bool isUtf8(std::string_view bytes) {
  char32_t c = 0;
  while (!bytes.empty())
    if (!takeUtf8(bytes, c)) return false;
  return true;
}

String fromLatin1(std::string_view bytes) {
  String text;
  text.reserve(bytes.size());
  for (const char c : bytes) text += static_cast<char16_t>(static_cast<unsigned char>(c));
  return text;
}

std::string escapeExactly(StringView text) {
  std::string escaped;
  escaped.reserve(text.size());
  for (const char16_t c : text) {
    if (c == u' ') {
      escaped += '_';
    } else if (c > u' ' && c < 0x7F && c != u'%' && c != u'_') {
      escaped += static_cast<char>(c);
    } else {
      escaped += '%';
      for (int shift = 12; shift >= 0; shift -= 4) escaped += hexDigits[(c >> shift) & 15];
    }
  }
  return escaped;
}

String unescapeExactly(std::string_view escaped) {
  std::string packed;
  packed.reserve(escaped.size());
  for (const char c : escaped)
    if (c != ' ' && c != '\t' && c != '\r' && c != '\n') packed += c;
  String text;
  text.reserve(packed.size());
  for (std::size_t i = 0; i < packed.size(); ++i) {
    const char c = packed[i];
    int unit = -1;
    if (c == '%' && i + 4 < packed.size()) {
      unit = 0;
      for (std::size_t k = 1; k <= 4 && unit >= 0; ++k) {
        const int digit = hexValue(packed[i + k]);
        unit = digit < 0 ? -1 : unit * 16 + digit;
      }
    }
    if (unit >= 0) {
      text += static_cast<char16_t>(unit);
      i += 4;
    } else {
      text += c == '_' ? u' ' : static_cast<char16_t>(static_cast<unsigned char>(c));
    }
  }
  return text;
}

namespace {

bool endsLine(std::string_view rest) { return rest.empty() || rest.substr(0, 2) == "\r\n"; }

}  // namespace

std::string toQuotedPrintable(std::string_view bytes) {
  constexpr std::size_t longestLine = 75;  // one more for the "=" of a soft break
  std::string text;
  text.reserve(bytes.size() + bytes.size() / 8);
  std::size_t column = 0;
  const auto put = [&](std::string_view piece) {
    if (column + piece.size() > longestLine) {
      text += "=\r\n";
      column = 0;
    }
    text += piece;
    column += piece.size();
  };
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const char c = bytes[i];
    if (c == '\r' && bytes.substr(i, 2) == "\r\n") {
      text += "\r\n";
      column = 0;
      ++i;
    } else if ((c > ' ' && c < 0x7F && c != '=') || ((c == ' ' || c == '\t') && !endsLine(bytes.substr(i + 1)))) {
      put({&c, 1});
    } else {
      const auto byte = static_cast<unsigned char>(c);
      const std::array<char, 3> code{'=', hexDigits[byte >> 4], hexDigits[byte & 15]};
      put({code.data(), code.size()});
    }
  }
  return text;
}

std::string fromQuotedPrintable(std::string_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    // Blanks at a line's end were added on the way: what belongs there is encoded.
    while (!line.empty() && (line.back() == '\r' || line.back() == ' ' || line.back() == '\t')) line.remove_suffix(1);
    const bool soft = !line.empty() && line.back() == '=';
    if (soft) line.remove_suffix(1);
    for (std::size_t i = 0; i < line.size(); ++i) {
      const int high = line[i] == '=' && i + 2 < line.size() ? hexValue(line[i + 1]) : -1;
      const int low = high >= 0 ? hexValue(line[i + 2]) : -1;
      if (low >= 0) {
        bytes += static_cast<char>(high * 16 + low);
        i += 2;
      } else {
        bytes += line[i];
      }
    }
    if (!soft && end != std::string_view::npos) bytes += "\r\n";
  }
  return bytes;
}

std::string fromBase64(std::string_view text) {
  constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string bytes;
  std::uint32_t bits = 0;
  int count = 0;
  for (const char c : text) {
    if (c == '=') break;
    const std::size_t value = alphabet.find(c);
    if (value == std::string_view::npos) continue;
    bits = bits << 6 | static_cast<std::uint32_t>(value);
    count += 6;
    if (count < 8) continue;
    count -= 8;
    bytes += static_cast<char>(static_cast<unsigned char>(bits >> count));
  }
  return bytes;
}

std::uint64_t fingerprint(std::string_view bytes) {
  std::uint64_t hash = 14695981039346656037u;
  for (const char c : bytes) hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211u;
  return hash;
}

}  // namespace mailclient
