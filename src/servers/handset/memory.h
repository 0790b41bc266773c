// The two message memories of the simulated handset, and their text form.
#pragma once

#include <array>
#include <map>
#include <string>
#include <string_view>

#include "servers/handset/phone.h"

namespace handset {

struct Memory {
  std::int16_t capacity = 0;  // 0 or less: nothing more fits, and the phone cannot tell how much does
  bool supported = true;
  std::map<std::int16_t, StoredMessage> slots;

  // Puts the message into the first free slot, from 1, and returns it; 0 when there is none.
  std::int16_t add(StoredMessage message);
  std::int16_t used() const { return static_cast<std::int16_t>(slots.size()); }
};

class Memories {
 public:
  Memories();

  // Null for a number that is no store.
  Memory* find(Store store);
  Memory& phone() { return memories_[0]; }
  Memory& sim() { return memories_[1]; }

  // One line per memory and per message, fields separated by tabs: "memory", store, capacity, supported (1 or 0), and
  // "message", store, slot, status, number, time stamp, text. Plain ASCII; everything else is written \uXXXX, a
  // backslash \\.
  std::string toText() const;
  // Lines that make no sense are skipped, and so are messages without a place.
  static Memories fromText(std::string_view text);

 private:
  std::array<Memory, 2> memories_;
};

// One message as its line without "message", as toText writes it.
std::string lineOf(const StoredMessage& message);

}  // namespace handset
