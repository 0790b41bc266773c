#include "mailclient/view/collate.h"

#include <algorithm>

namespace mailclient {
namespace {

// The plain letters of U+00C0 to U+00FF; a blank where there is none.
constexpr StringView plainLetters = u"aaaaaaaceeeeiiii nooooo ouuuuy saaaaaaaceeeeiiii nooooo ouuuuy y";

char16_t plain(char16_t c) {
  if (c >= u'A' && c <= u'Z') return static_cast<char16_t>(c + 32);
  if (c >= 0xC0 && c <= 0xFF && plainLetters[c - 0xC0u] != u' ') return plainLetters[c - 0xC0u];
  return c;
}

}  // namespace

int collate(StringView a, StringView b) {
  const std::size_t common = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < common; ++i) {
    const char16_t left = plain(a[i]);
    const char16_t right = plain(b[i]);
    if (left != right) return left < right ? -1 : 1;
  }
  if (a.size() != b.size()) return a.size() < b.size() ? -1 : 1;
  return a.compare(b);
}

bool beginsAlike(StringView text, StringView start) {
  return text.size() >= start.size() && std::equal(start.begin(), start.end(), text.begin(),
                                                   [](char16_t a, char16_t b) { return plain(a) == plain(b); });
}

}  // namespace mailclient
