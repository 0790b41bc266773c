// What the message commands have in common.
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

// The number that an argument has, in quotes or not, in whatever character set the host has chosen, with the type octet
// (129, 145, 161) that may stand behind it.
std::optional<phone::Address> numberIn(const Call& call, std::size_t position);

}  // namespace phonesim
