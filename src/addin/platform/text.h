// Text of the automation world: UTF-16, counted in code units.
#pragma once

#include <string>
#include <string_view>

namespace platform {

using String = std::u16string;
using StringView = std::u16string_view;

// Upper-case form of one ASCII letter; every other unit stays as it is.
constexpr char16_t asciiUpper(char16_t c) noexcept {
  return c >= u'a' && c <= u'z' ? static_cast<char16_t>(c - u'a' + u'A') : c;
}

// Names of members, collection keys and registry values compare without regard to the case of ASCII letters.
constexpr bool sameName(StringView a, StringView b) noexcept {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i)
    if (asciiUpper(a[i]) != asciiUpper(b[i])) return false;
  return true;
}

}  // namespace platform
