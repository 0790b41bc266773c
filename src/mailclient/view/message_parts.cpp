#include "mailclient/view/message_parts.h"

#include <algorithm>
#include <vector>

#include "addin/platform/convert.h"

namespace mailclient {
namespace {

// What the default alphabet has besides printable ASCII, and the ASCII that it lacks or has only behind an escape.
constexpr StringView beyondAscii = u"@£$¥èéùìòÇ\nØø\rÅåΔ_ΦΓΛΩΠΨΣΘΞÆæßÉ¤¡ÄÖÑÜ§¿äöñüà";
constexpr StringView escaped = u"\f^{}\\[~]|€";
constexpr StringView missingAscii = u"`";

bool contains(StringView set, char16_t c) { return set.find(c) != StringView::npos; }

// Places in the default alphabet; 0 when it lacks the character.
std::size_t placesInDefault(char16_t c) {
  if (contains(escaped, c)) return 2;
  if (contains(beyondAscii, c)) return 1;
  return c >= u' ' && c < 0x7F && !contains(missingAscii, c) ? 1 : 0;
}

std::vector<std::size_t> placesInUcs2(StringView text) {
  std::vector<std::size_t> places;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool pair =
        text[i] >= 0xD800 && text[i] < 0xDC00 && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF;
    places.push_back(pair ? 2 : 1);
    if (pair) ++i;
  }
  return places;
}

struct Room {
  std::size_t alone;
  std::size_t joined;
};

PartCount fill(const std::vector<std::size_t>& places, Room room, bool defaultAlphabet) {
  PartCount count{.defaultAlphabet = defaultAlphabet};
  for (const std::size_t p : places) count.characters += p;
  if (count.characters <= room.alone) {
    count.left = room.alone - count.characters;
    return count;
  }
  std::size_t used = 0;
  for (const std::size_t p : places) {
    if (used + p > room.joined) {
      ++count.parts;
      used = 0;
    }
    used += p;
  }
  count.left = room.joined - used;
  return count;
}

}  // namespace

PartCount countParts(StringView text) {
  std::vector<std::size_t> places(text.size());
  std::transform(text.begin(), text.end(), places.begin(), placesInDefault);
  if (std::find(places.begin(), places.end(), 0) == places.end()) return fill(places, {160, 153}, true);
  return fill(placesInUcs2(text), {70, 67}, false);
}

String describe(const PartCount& count) {
  const auto number = [](std::size_t n) { return static_cast<std::int32_t>(n); };
  return platform::concat(number(count.characters),
                          StringView(count.characters == 1 ? u" character, " : u" characters, "), number(count.parts),
                          StringView(count.parts == 1 ? u" message (" : u" messages ("), number(count.left),
                          StringView(u" left)"));
}

}  // namespace mailclient
