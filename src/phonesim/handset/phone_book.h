// The two phone books: numbered entries of a number and a name.
#pragma once

#include <array>
#include <map>
#include <optional>
#include <string>

#include "phone/pdu/address.h"
#include "phonesim/handset/memory.h"

namespace phonesim {

struct Contact {
  phone::Address number;
  std::u16string name;
  friend bool operator==(const Contact&, const Contact&) = default;
};

inline constexpr std::size_t longestName = 18;

class PhoneBook {
 public:
  static constexpr int capacity = 100;

  const std::map<int, Contact>& entries() const { return entries_; }
  int used() const { return static_cast<int>(entries_.size()); }
  // From 1 to `capacity`.
  void put(int index, Contact contact) { entries_[index] = std::move(contact); }
  void remove(int index) { entries_.erase(index); }
  // The first that is free; nothing when none is.
  std::optional<int> freeIndex() const;

 private:
  std::map<int, Contact> entries_;
};

class PhoneBooks {
 public:
  PhoneBook& at(Place place) { return books_[static_cast<std::size_t>(place)]; }
  const PhoneBook& at(Place place) const { return books_[static_cast<std::size_t>(place)]; }

 private:
  std::array<PhoneBook, 2> books_;
};

}  // namespace phonesim
