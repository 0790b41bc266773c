// What commands that are given numbers and messages have in common.
#pragma once

#include <optional>

#include "phone/pdu/address.h"
#include "phonesim/handset/commands.h"

namespace phonesim {

inline constexpr int longestTpdu = 164;  // a Submit with everything that it can have

// A form that the command does not have.
inline Result unknownMessageForm() { return Result::cms(cms::operationNotSupported); }

// 3GPP TS 27.005 has one number for each format.
Result invalidParameter(const Settings& settings);
inline Result invalidParameter(const Call& call) { return invalidParameter(call.settings()); }

// The number that an argument has, in quotes or not, in the character set that the host has chosen or, as many a
// program has it, as if none had been.
std::optional<phone::Address> plainNumberIn(const Call& call, std::size_t position);
// Whether it would be one, had it fewer digits.
bool hasTooManyDigits(const Call& call, std::size_t position);
// Gives a number the type octet (129, 145, 161) that may stand in an argument; false for one that no number has.
bool applyTypeIn(const Call& call, std::size_t position, phone::Address& number);
// A number and the type behind it.
std::optional<phone::Address> numberIn(const Call& call, std::size_t position);

}  // namespace phonesim
