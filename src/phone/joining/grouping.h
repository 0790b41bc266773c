// Which parts make a message. Used inside this folder only.
#pragma once

#include <chrono>
#include <cstdint>
#include <vector>

#include "phone/joining/part.h"

namespace phone {

struct Group {
  std::vector<Part*> parts = {};  // by number; of the same number, the one that was seen first stands first
  std::uint64_t handedOver = 0;   // as in its parts
  bool complete = false;

  bool isLong() const { return parts.front()->total() > 1; }
};

// Parts of the same number, sender and text are taken for repetitions when their time stamps are this near.
inline constexpr std::chrono::minutes repetition{10};
// A reference that comes again after that long is another message's.
inline constexpr std::chrono::hours referenceAge{24};

// A group of parts that are known to belong together; at least one.
Group groupOf(std::vector<Part*> parts);

// Every part is in exactly one group.
std::vector<Group> groupsOf(const std::vector<Part*>& parts);

}  // namespace phone
