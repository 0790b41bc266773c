#include "phonesim/handset/answer_text.h"

#include <array>
#include <cstdio>

#include "phone/pdu/hex.h"

namespace phonesim {

namespace {

constexpr std::string_view neverInside = "\"\r\n";

// The octet whose code begins there, when it is one that is written so.
std::optional<char> octetCodedAt(std::string_view text, std::size_t at) {
  if (text[at] != '\\' || at + 3 > text.size()) return std::nullopt;
  const auto octets = phone::fromHex(text.substr(at + 1, 2));
  if (!octets) return std::nullopt;
  const char octet = static_cast<char>(octets->front());
  return octet == '\\' || neverInside.find(octet) != neverInside.npos ? std::optional(octet) : std::nullopt;
}

std::string code(char octet) { return '\\' + phone::toHex(phone::Octets{static_cast<std::uint8_t>(octet)}); }

}  // namespace

std::string stringConstant(std::string_view octets) {
  std::string text = "\"";
  for (std::size_t at = 0; at < octets.size(); ++at) {
    const bool coded = neverInside.find(octets[at]) != neverInside.npos || octetCodedAt(octets, at);
    text += coded ? code(octets[at]) : std::string(1, octets[at]);
  }
  return text + '"';
}

std::string fromConstant(std::string_view constant) {
  std::string octets;
  for (std::size_t at = 0; at < constant.size(); ++at) {
    const auto coded = octetCodedAt(constant, at);
    octets += coded.value_or(constant[at]);
    if (coded) at += 2;
  }
  return octets;
}

std::string quotedText(std::u16string_view text, CharacterSet set) { return stringConstant(inCharacterSet(text, set)); }

std::string numberAndType(const std::optional<phone::Address>& number, CharacterSet set) {
  const phone::Address told = number.value_or(phone::Address{});
  return quotedText(phone::shown(told), set) + ',' + std::to_string(phone::typeOctet(told));
}

std::string bookNumberAndType(const std::optional<phone::Address>& number) {
  return numberAndType(number, CharacterSet::Ira);
}

std::string quotedTime(const phone::TimeStamp& time) {
  std::array<char, 80> text{};
  std::snprintf(text.data(), text.size(), "\"%02d/%02d/%02d,%02d:%02d:%02d%+03d\"", time.year % 100, time.month,
                time.day, time.hour, time.minute, time.second, time.quarters.value_or(0));
  return text.data();
}

}  // namespace phonesim
