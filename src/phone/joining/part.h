// What lies in one slot, and what is known of it beyond its octets. Used inside this folder only.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "phone/joining/joining.h"
#include "phone/joining/stored.h"
#include "phone/pdu/decode.h"

namespace phone {

struct Part {
  Slot slot;
  std::string pdu = {};
  Message message = {};
  Status status = Status::ReceivedUnread;
  bool unread = false;  // was unread when first seen, and was not handed over since
  Joining::Instant firstSeen = {};
  std::uint64_t sequence = 0;    // in the order of first sight
  std::uint64_t handedOver = 0;  // with which hand-over; 0: not yet
  std::uint64_t repeated = 0;    // the very same was deleted before, with this message; 0: it was not
  std::uint64_t deletion = 0;    // with which message it is being deleted; 0: it is not
  bool confirmedGone = false;    // the phone said that it deleted this slot

  // Where it stands in its message; a message of one slot is its own first and only part.
  int number() const { return message.concatenation ? message.concatenation->part : 1; }
  int total() const { return message.concatenation ? message.concatenation->total : 1; }
};

}  // namespace phone
