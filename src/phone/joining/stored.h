// Places in the phone's memories, and what lies there (3GPP TS 27.005, 3.1 and 3.2.3).
#pragma once

#include <compare>
#include <cstdint>
#include <string>

namespace phone {

enum class Memory : std::uint8_t { Phone, Sim };  // "ME", "SM"

struct Slot {
  Memory memory = Memory::Phone;
  int index = 0;  // some phones begin with 0
  friend auto operator<=>(const Slot&, const Slot&) = default;
};

// The highest that can be told to those who ask for messages, in 16 bits, and still leaves room for numbers that no
// phone has. No real memory comes near it.
inline constexpr int mostIndex = 29999;

// <stat>
enum class Status : std::uint8_t { ReceivedUnread = 0, ReceivedRead = 1, StoredUnsent = 2, StoredSent = 3 };

// An entry of a listing.
struct StoredPdu {
  int index = 0;
  Status status = Status::ReceivedUnread;
  std::string pdu = {};  // in hexadecimal, as listed
  friend bool operator==(const StoredPdu&, const StoredPdu&) = default;
};

}  // namespace phone
