#include "phonesim/handset/phone_book.h"

namespace phonesim {

std::optional<int> PhoneBook::freeIndex() const {
  int index = 1;
  for (const auto& [taken, contact] : entries_) {
    if (taken != index) break;
    ++index;
  }
  return index <= capacity ? std::optional(index) : std::nullopt;
}

}  // namespace phonesim
