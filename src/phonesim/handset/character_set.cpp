#include "phonesim/handset/character_set.h"

#include <utility>

#include "phone/pdu/hex.h"
#include "phone/text/gsm_alphabet.h"
#include "phone/text/ucs2.h"

namespace phonesim {

namespace {

constexpr CharacterSet characterSets[] = {CharacterSet::Gsm, CharacterSet::Ira, CharacterSet::Ucs2, CharacterSet::Hex};

constexpr char16_t lastOfSevenBits = 0x7F;

}  // namespace

std::string_view nameOf(CharacterSet set) {
  switch (set) {
    case CharacterSet::Gsm:
      return "GSM";
    case CharacterSet::Ira:
      return "IRA";
    case CharacterSet::Ucs2:
      return "UCS2";
    case CharacterSet::Hex:
      return "HEX";
  }
  return "";
}

std::optional<CharacterSet> characterSetNamed(std::string_view name) {
  for (const CharacterSet set : characterSets)
    if (name == nameOf(set)) return set;
  return std::nullopt;
}

std::string inCharacterSet(std::u16string_view text, CharacterSet set) {
  if (set == CharacterSet::Ucs2) return phone::toHex(phone::toUcs2(text));
  if (set != CharacterSet::Ira) return fromMessage(phone::toSeptets(text), set);
  std::string result;
  for (const char16_t c : text) result += c <= lastOfSevenBits ? static_cast<char>(c) : '?';
  return result;
}

std::optional<std::u16string> fromCharacterSet(std::string_view text, CharacterSet set) {
  if (set == CharacterSet::Ucs2) {
    const auto octets = phone::fromHex(text);
    if (!octets || octets->size() % 2 != 0) return std::nullopt;
    return phone::fromUcs2(*octets);
  }
  if (set == CharacterSet::Ira) {
    for (const char c : text)
      if (static_cast<unsigned char>(c) > lastOfSevenBits) return std::nullopt;
    return std::u16string(text.begin(), text.end());
  }
  const auto septets = toMessage(text, set);
  if (!septets) return std::nullopt;
  return phone::fromSeptets(*septets);
}

std::string fromMessage(phone::SeptetsView message, CharacterSet set) {
  if (set == CharacterSet::Gsm) return {message.begin(), message.end()};
  if (set == CharacterSet::Hex) return phone::toHex(message);
  return inCharacterSet(phone::fromSeptets(message), set);
}

std::optional<phone::Septets> toMessage(std::string_view typed, CharacterSet set) {
  if (set == CharacterSet::Ira || set == CharacterSet::Ucs2) {
    const auto text = fromCharacterSet(typed, set);
    if (!text) return std::nullopt;
    return phone::toSeptets(*text);
  }
  phone::Septets septets(typed.begin(), typed.end());
  if (set == CharacterSet::Hex) {
    auto octets = phone::fromHex(typed);
    if (!octets) return std::nullopt;
    septets = std::move(*octets);
  }
  for (const std::uint8_t septet : septets)
    if (septet > lastOfSevenBits) return std::nullopt;
  return septets;
}

}  // namespace phonesim
