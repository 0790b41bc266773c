// Numbers and names of senders, receivers and service centres (3GPP TS 23.040, 9.1.2.5; TS 24.011, 8.2.5.1).
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "phone/pdu/reader.h"
#include "phone/text/octets.h"

namespace phone {

enum class NumberType : std::uint8_t {
  Unknown = 0,
  International = 1,
  National = 2,
  NetworkSpecific = 3,
  Subscriber = 4,
  Alphanumeric = 5,
  Abbreviated = 6,
  Reserved = 7,
};

inline constexpr std::uint8_t planTelephone = 1;  // E.164

struct Address {
  NumberType type = NumberType::Unknown;
  std::uint8_t plan = planTelephone;  // 0 to 15
  // Digits (0-9 * # a b c) without a plus sign, or the name of an alphanumeric sender, which cannot be answered.
  std::u16string value = {};
  friend bool operator==(const Address&, const Address&) = default;
};

inline constexpr std::size_t mostDigits = 20;       // of a sender or receiver
inline constexpr std::size_t mostNameLetters = 11;  // of an alphanumeric sender

// As people write it: an international number begins with a plus sign.
std::u16string shown(const Address& address);

// The number in what somebody typed. Blanks, hyphens, dots, slashes, parentheses and invisible marks of direction are
// passed over; a plus sign in front makes it international, and without one the network is left to make sense of it
// (type "unknown", as if it had been dialled). Nothing when there is anything else, no digit at all, or more than 20.
std::optional<Address> parseNumber(std::u16string_view typed);

// The type octet: 91, 81, D0 ...
std::uint8_t typeOctet(const Address& address);
void setType(Address& address, std::uint8_t typeOctet);

// A sender or receiver, as a TPDU has it. The value must be what parseNumber() or a decoded PDU gives: at most 20
// digits, or at most 11 letters of the 7-bit alphabet; longer ones are cut.
void appendAddress(Octets& pdu, const Address& address);
Address readAddress(OctetReader& reader);

// A service centre, in front of the TPDU. None: "the one that the phone has stored".
void appendServiceCentre(Octets& pdu, const std::optional<Address>& address);
std::optional<Address> readServiceCentre(OctetReader& reader);

}  // namespace phone
