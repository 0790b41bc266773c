#include "win32/accelerators.h"

#include <algorithm>
#include <bitset>
#include <map>

namespace win32 {
namespace {

using platform::asciiUpper;
using platform::String;
using platform::StringView;

using Keys = std::bitset<128>;

bool isKey(char16_t c) {
  const char16_t upper = asciiUpper(c);
  return (upper >= u'A' && upper <= u'Z') || (c >= u'0' && c <= u'9');
}

std::size_t keyOf(char16_t c) { return asciiUpper(c); }

// Where the text's own "&" stands; npos when it has none ("&&" is a "&" that is shown).
std::size_t ownAccelerator(StringView text) {
  for (std::size_t i = 0; i + 1 < text.size(); ++i) {
    if (text[i] != u'&') continue;
    if (text[i + 1] != u'&') return i;
    ++i;
  }
  return StringView::npos;
}

std::size_t bestPlace(StringView text, const Keys& taken) {
  const auto isFree = [&](std::size_t i) { return isKey(text[i]) && !taken[keyOf(text[i])]; };
  for (std::size_t i = 0; i < text.size(); ++i)
    if (isFree(i) && (i == 0 || text[i - 1] == u' ')) return i;
  for (std::size_t i = 0; i < text.size(); ++i)
    if (isFree(i)) return i;
  return StringView::npos;
}

void appendFreeLetter(String& text, Keys& taken) {
  for (char16_t c = u'A'; c <= u'Z'; ++c) {
    if (taken[c]) continue;
    taken.set(c);
    text += u"(&";
    text += c;
    text += u')';
    return;
  }
}

void addAccelerator(String& text, Keys& taken) {
  if (std::none_of(text.begin(), text.end(), isKey)) {
    appendFreeLetter(text, taken);
    return;
  }
  const std::size_t place = bestPlace(text, taken);
  if (place == String::npos) return;
  taken.set(keyOf(text[place]));
  text.insert(place, 1, u'&');
}

}  // namespace

void addAccelerators(std::vector<AcceleratorText>& texts) {
  std::map<int, Keys> takenOn;
  for (const AcceleratorText& entry : texts) {
    const std::size_t own = ownAccelerator(entry.text);
    if (own != String::npos && isKey(entry.text[own + 1])) takenOn[entry.page].set(keyOf(entry.text[own + 1]));
  }
  Keys ownOfAnyPage;
  for (const auto& [page, keys] : takenOn) ownOfAnyPage |= keys;
  const auto addTo = [](AcceleratorText& entry, Keys& taken) {
    if (!entry.text.empty() && ownAccelerator(entry.text) == String::npos) addAccelerator(entry.text, taken);
  };
  Keys everywhere = ownOfAnyPage;
  for (AcceleratorText& entry : texts)
    if (entry.page == 0) addTo(entry, everywhere);
  for (AcceleratorText& entry : texts) {
    if (entry.page == 0) continue;
    Keys& taken = takenOn[entry.page];
    taken |= everywhere;
    addTo(entry, taken);
  }
}

}  // namespace win32
