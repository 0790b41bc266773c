#include "phone/pdu/address.h"

#include <algorithm>

#include "phone/text/gsm_alphabet.h"
#include "phone/text/septets.h"

namespace phone {
namespace {

constexpr std::u16string_view semiOctets = u"0123456789*#abc";  // F fills up
constexpr std::uint8_t filler = 0xF;

bool isDecimal(char16_t character) { return character >= u'0' && character <= u'9'; }

// What people put into numbers to make them readable, and what comes along when they are copied.
bool isPassedOver(char16_t character) {
  constexpr std::u16string_view marks = u" \t\r\n-()./\u00A0\u00AD\u202F\u2060\uFEFF";
  return marks.find(character) != marks.npos || (character >= 0x2000 && character <= 0x2015) ||
         (character >= 0x202A && character <= 0x202E) || (character >= 0x2066 && character <= 0x2069);
}

std::uint8_t semiOctet(char16_t digit) {
  const std::size_t value = semiOctets.find(digit);
  return value == semiOctets.npos ? filler : static_cast<std::uint8_t>(value);
}

void appendDigits(Octets& pdu, std::u16string_view digits) {
  for (std::size_t at = 0; at < digits.size(); at += 2) {
    const std::uint8_t second = at + 1 < digits.size() ? semiOctet(digits[at + 1]) : filler;
    pdu.push_back(static_cast<std::uint8_t>(second << 4 | semiOctet(digits[at])));
  }
}

// The filler is passed over wherever it stands: some senders count it as a digit.
std::u16string readDigits(OctetsView octets, std::size_t count) {
  std::u16string digits;
  for (std::size_t at = 0; at < count; ++at) {
    const unsigned value = octets[at / 2] >> (at % 2 * 4) & 0xF;
    if (value != filler) digits += semiOctets[value];
  }
  return digits;
}

Address withType(std::uint8_t octet) {
  Address address;
  setType(address, octet);
  return address;
}

}  // namespace

std::u16string shown(const Address& address) {
  return address.type == NumberType::International ? u"+" + address.value : address.value;
}

std::optional<Address> parseNumber(std::u16string_view typed) {
  Address address;
  bool decimals = false;
  for (const char16_t character : typed) {
    if (isPassedOver(character)) continue;
    if (character == u'+' && address.value.empty() && address.type == NumberType::Unknown) {
      address.type = NumberType::International;
    } else {
      if (semiOctets.find(character) == semiOctets.npos) return std::nullopt;
      decimals = decimals || isDecimal(character);
      address.value += character;
    }
  }
  if (!decimals || address.value.size() > mostDigits) return std::nullopt;
  return address;
}

std::uint8_t typeOctet(const Address& address) {
  return static_cast<std::uint8_t>(0x80 | static_cast<unsigned>(address.type) << 4 | (address.plan & 0xF));
}

void setType(Address& address, std::uint8_t typeOctet) {
  address.type = static_cast<NumberType>(typeOctet >> 4 & 7);
  address.plan = static_cast<std::uint8_t>(typeOctet & 0xF);
}

void appendAddress(Octets& pdu, const Address& address) {
  if (address.type == NumberType::Alphanumeric) {
    Septets name = toSeptets(address.value);
    if (name.size() > mostNameLetters) name.resize(mostNameLetters);
    const Octets packed = packSeptets(name);
    pdu.push_back(static_cast<std::uint8_t>((name.size() * 7 + 3) / 4));
    pdu.push_back(typeOctet(address));
    pdu.insert(pdu.end(), packed.begin(), packed.end());
    return;
  }
  const auto digits = std::u16string_view(address.value).substr(0, mostDigits);
  pdu.push_back(static_cast<std::uint8_t>(digits.size()));
  pdu.push_back(typeOctet(address));
  appendDigits(pdu, digits);
}

Address readAddress(OctetReader& reader) {
  const std::size_t length = reader.octet();
  if (length > mostDigits) throw BadPdu("a number of more than 20 digits");
  Address address = withType(reader.octet());
  const OctetsView octets = reader.take((length + 1) / 2);
  if (address.type == NumberType::Alphanumeric)
    address.value = fromSeptets(unpackSeptets(octets, length * 4 / 7));
  else
    address.value = readDigits(octets, length);
  return address;
}

void appendServiceCentre(Octets& pdu, const std::optional<Address>& address) {
  if (!address) {
    pdu.push_back(0);
    return;
  }
  const auto digits = std::u16string_view(address->value).substr(0, mostDigits);
  pdu.push_back(static_cast<std::uint8_t>(1 + (digits.size() + 1) / 2));
  pdu.push_back(typeOctet(*address));
  appendDigits(pdu, digits);
}

std::optional<Address> readServiceCentre(OctetReader& reader) {
  const std::size_t length = reader.octet();
  if (length == 0) return std::nullopt;
  if (length > 1 + mostDigits / 2) throw BadPdu("a service centre of more than 20 digits");
  Address address = withType(reader.octet());
  const OctetsView octets = reader.take(length - 1);
  address.value = readDigits(octets, octets.size() * 2);
  return address;
}

}  // namespace phone
