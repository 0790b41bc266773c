#include "phone/pdu/hex.h"

namespace phone {
namespace {

std::optional<std::uint8_t> digitValue(char digit) {
  if (digit >= '0' && digit <= '9') return static_cast<std::uint8_t>(digit - '0');
  if (digit >= 'A' && digit <= 'F') return static_cast<std::uint8_t>(digit - 'A' + 10);
  if (digit >= 'a' && digit <= 'f') return static_cast<std::uint8_t>(digit - 'a' + 10);
  return std::nullopt;
}

}  // namespace

std::string toHex(OctetsView octets) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string text;
  text.reserve(octets.size() * 2);
  for (const std::uint8_t octet : octets) {
    text += digits[octet >> 4];
    text += digits[octet & 0xF];
  }
  return text;
}

std::optional<Octets> fromHex(std::string_view digits) {
  if (digits.size() % 2 != 0) return std::nullopt;
  Octets octets;
  octets.reserve(digits.size() / 2);
  for (std::size_t at = 0; at < digits.size(); at += 2) {
    const auto high = digitValue(digits[at]);
    const auto low = digitValue(digits[at + 1]);
    if (!high || !low) return std::nullopt;
    octets.push_back(static_cast<std::uint8_t>(*high << 4 | *low));
  }
  return octets;
}

}  // namespace phone
