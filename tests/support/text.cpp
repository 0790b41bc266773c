#include "support/text.h"

#include <algorithm>

namespace testing_support {
namespace {

constexpr char32_t replacement = 0xFFFD;

bool isHighSurrogate(char16_t c) { return c >= 0xD800 && c <= 0xDBFF; }
bool isLowSurrogate(char16_t c) { return c >= 0xDC00 && c <= 0xDFFF; }

void appendUtf8(std::string& to, char32_t c) {
  const auto tail = [&](int shift) { to += static_cast<char>(0x80 | ((c >> shift) & 0x3F)); };
  if (c < 0x80) {
    to += static_cast<char>(c);
  } else if (c < 0x800) {
    to += static_cast<char>(0xC0 | (c >> 6));
    tail(0);
  } else if (c < 0x10000) {
    to += static_cast<char>(0xE0 | (c >> 12));
    tail(6);
    tail(0);
  } else {
    to += static_cast<char>(0xF0 | (c >> 18));
    tail(12);
    tail(6);
    tail(0);
  }
}

char asciiLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

}  // namespace

std::string utf8(platform::StringView text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char16_t c = text[i];
    if (isHighSurrogate(c) && i + 1 < text.size() && isLowSurrogate(text[i + 1])) {
      const char16_t low = text[++i];
      appendUtf8(result, 0x10000 + ((char32_t{c} - 0xD800) << 10) + (char32_t{low} - 0xDC00));
    } else {
      appendUtf8(result, isHighSurrogate(c) || isLowSurrogate(c) ? replacement : char32_t{c});
    }
  }
  return result;
}

bool sameAnsiName(std::string_view a, std::string_view b) noexcept {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return asciiLower(x) == asciiLower(y); });
}

}  // namespace testing_support
