#include "phonesim/handset/memory.h"

#include <utility>

namespace phonesim {

std::optional<int> Memory::add(StoredPdu message) {
  if (used() >= capacity) return std::nullopt;
  int number = 1;
  for (const auto& [taken, stored] : slots) {
    if (taken != number) break;
    ++number;
  }
  slots.emplace(number, std::move(message));
  return number;
}

std::string_view nameOf(Place place) { return place == Place::Phone ? "ME" : "SM"; }

std::string_view nameOf(View view) {
  switch (view) {
    case View::Phone:
      return "ME";
    case View::Sim:
      return "SM";
    case View::Both:
      return "MT";
  }
  return "";
}

std::optional<View> viewNamed(std::string_view name) {
  for (const View view : {View::Phone, View::Sim, View::Both})
    if (name == nameOf(view)) return view;
  return std::nullopt;
}

std::span<const Place> Memories::placesOf(View view) {
  static constexpr std::array both{Place::Sim, Place::Phone};
  switch (view) {
    case View::Phone:
      return std::span(both).subspan(1);
    case View::Sim:
      return std::span(both).first(1);
    case View::Both:
      break;
  }
  return both;
}

bool Memories::isThere(View view) const {
  for (const Place place : placesOf(view))
    if (at(place).capacity == 0) return false;
  return true;
}

View Memories::nearest(View view) const {
  if (isThere(view)) return view;
  return isThere(View::Sim) ? View::Sim : View::Phone;
}

int Memories::capacity(View view) const {
  int sum = 0;
  for (const Place place : placesOf(view)) sum += at(place).capacity;
  return sum;
}

int Memories::used(View view) const {
  int sum = 0;
  for (const Place place : placesOf(view)) sum += at(place).used();
  return sum;
}

std::optional<Slot> Memories::slotOf(View view, int index) const {
  if (index < 1) return std::nullopt;
  for (const Place place : placesOf(view)) {
    if (index <= at(place).capacity) return Slot{place, index};
    index -= at(place).capacity;
  }
  return std::nullopt;
}

int Memories::indexOf(View view, Slot slot) const {
  int before = 0;
  for (const Place place : placesOf(view)) {
    if (place == slot.place) break;
    before += at(place).capacity;
  }
  return before + slot.number;
}

StoredPdu* Memories::find(Slot slot) {
  auto& slots = at(slot.place).slots;
  const auto found = slots.find(slot.number);
  return found == slots.end() ? nullptr : &found->second;
}

std::vector<Slot> Memories::occupied(View view) const {
  std::vector<Slot> all;
  for (const Place place : placesOf(view))
    for (const auto& [number, stored] : at(place).slots) all.push_back({place, number});
  return all;
}

std::optional<Slot> Memories::add(View view, StoredPdu message) {
  for (const Place place : placesOf(view))
    if (const auto number = at(place).add(message)) return Slot{place, *number};
  return std::nullopt;
}

}  // namespace phonesim
