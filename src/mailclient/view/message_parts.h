// How a text travels: in which alphabet, and in how many messages.
#pragma once

#include <cstddef>

#include "mailclient/types.h"

namespace mailclient {

struct PartCount {
  bool defaultAlphabet = true;  // 7-bit GSM 03.38; otherwise UCS-2
  std::size_t characters = 0;   // as the alphabet counts them: some take two places
  std::size_t parts = 1;
  std::size_t left = 0;  // places left in the last part
  friend bool operator==(const PartCount&, const PartCount&) = default;
};

// One message holds 160 characters of the default alphabet or 70 others. In several each part gives some of its room to
// what joins them: 153 or 67 are left. A character that takes two places is never cut.
PartCount countParts(StringView text);

// "12 characters, 1 message (148 left)".
String describe(const PartCount& count);

}  // namespace mailclient
