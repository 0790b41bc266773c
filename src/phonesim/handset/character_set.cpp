#include "phonesim/handset/character_set.h"

#include "phone/pdu/hex.h"
#include "phone/text/gsm_alphabet.h"
#include "phone/text/ucs2.h"

namespace phonesim {

namespace {

constexpr CharacterSet characterSets[] = {CharacterSet::Gsm, CharacterSet::Ira, CharacterSet::Ucs2, CharacterSet::Hex};

std::optional<std::string> onlyAscii(std::u16string_view text) {
  std::string result;
  for (const char16_t c : text) {
    if (c < 0x20 || c > 0x7E) return std::nullopt;
    result += static_cast<char>(c);
  }
  return result;
}

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

std::string inCharacterSet(std::string_view ascii, CharacterSet set) {
  const std::u16string wide(ascii.begin(), ascii.end());
  const phone::Septets septets = phone::toSeptets(wide);
  switch (set) {
    case CharacterSet::Gsm:
      return {septets.begin(), septets.end()};
    case CharacterSet::Ira:
      return std::string(ascii);
    case CharacterSet::Ucs2:
      return phone::toHex(phone::toUcs2(wide));
    case CharacterSet::Hex:
      return phone::toHex(septets);
  }
  return "";
}

std::optional<std::string> fromCharacterSet(std::string_view text, CharacterSet set) {
  if (set == CharacterSet::Ira) return onlyAscii(std::u16string(text.begin(), text.end()));
  if (set == CharacterSet::Gsm) {
    for (const char c : text)
      if (static_cast<unsigned char>(c) > 0x7F) return std::nullopt;
    return onlyAscii(phone::fromSeptets(phone::Septets(text.begin(), text.end())));
  }
  const auto octets = phone::fromHex(text);
  if (!octets) return std::nullopt;
  if (set == CharacterSet::Ucs2) return onlyAscii(phone::fromUcs2(*octets));
  for (const auto octet : *octets)
    if (octet > 0x7F) return std::nullopt;
  return onlyAscii(phone::fromSeptets(*octets));
}

}  // namespace phonesim
