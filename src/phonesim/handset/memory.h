// The two message memories of the handset: numbered slots of PDUs as they travel over the line, service centre in
// front.
//
// A host names a memory "ME" (phone), "SM" (SIM card) or "MT", which is both seen as one: its first indices are the
// SIM's slots, those after the SIM's capacity the phone's.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "phone/text/octets.h"

namespace phonesim {

using phone::Octets;

// 3GPP TS 27.005, 3.1.
enum class Status : std::uint8_t { ReceivedUnread = 0, ReceivedRead = 1, StoredUnsent = 2, StoredSent = 3 };
inline constexpr int allStatuses = 4;  // as a listing's filter

struct StoredPdu {
  Status status = Status::ReceivedUnread;
  Octets pdu;
  friend bool operator==(const StoredPdu&, const StoredPdu&) = default;
};

struct Memory {
  int capacity = 0;  // 0: the handset has no such memory
  std::map<int, StoredPdu> slots;

  int used() const { return static_cast<int>(slots.size()); }
  // Into the first free slot, from 1; its number, or nothing when the memory is full.
  std::optional<int> add(StoredPdu message);
};

inline constexpr int maximalCapacity = 10000;

enum class Place : std::uint8_t { Phone, Sim };
enum class View : std::uint8_t { Phone, Sim, Both };

// The names of 3GPP TS 27.005, 3.1, and back.
std::string_view nameOf(Place place);
std::string_view nameOf(View view);
std::optional<View> viewNamed(std::string_view name);

struct Slot {
  Place place = Place::Sim;
  int number = 0;
  friend bool operator==(const Slot&, const Slot&) = default;
};

class Memories {
 public:
  Memories(int phoneCapacity = 100, int simCapacity = 20) {
    at(Place::Phone).capacity = phoneCapacity, at(Place::Sim).capacity = simCapacity;
  }

  Memory& at(Place place) { return memories_[static_cast<std::size_t>(place)]; }
  const Memory& at(Place place) const { return memories_[static_cast<std::size_t>(place)]; }

  // Both as one are there when both are.
  bool isThere(View view) const;
  // The memory itself, or what the handset has in its place.
  View nearest(View view) const;
  int capacity(View view) const;
  int used(View view) const;

  // The slot behind an index; nothing when the memory has no such index.
  std::optional<Slot> slotOf(View view, int index) const;
  int indexOf(View view, Slot slot) const;
  // Null when the slot is empty.
  StoredPdu* find(Slot slot);
  void remove(Slot slot) { at(slot.place).slots.erase(slot.number); }
  // All that hold a message, by ascending index.
  std::vector<Slot> occupied(View view) const;
  // Both memories as one: the SIM first. Nothing when there is no room.
  std::optional<Slot> add(View view, StoredPdu message);

 private:
  static std::span<const Place> placesOf(View view);

  std::array<Memory, 2> memories_;
};

}  // namespace phonesim
