// Messages on a phone, for the tests of joining.
#pragma once

#include <algorithm>
#include <chrono>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "phone/joining/joining.h"
#include "phone/pdu/deliver.h"
#include "phone/pdu/hex.h"
#include "phone/pdu/submit.h"

namespace phone {

using namespace std::chrono_literals;

constexpr Slot me(int index) { return {.memory = Memory::Phone, .index = index}; }
constexpr Slot sim(int index) { return {.memory = Memory::Sim, .index = index}; }

inline void PrintTo(const Slot& slot, std::ostream* out) {
  *out << (slot.memory == Memory::Phone ? "ME " : "SM ") << slot.index;
}

// A received part; the message's numbers can be set to anything.
struct Piece {
  std::u16string text;
  int part = 1;
  int total = 1;
  std::uint16_t reference = 42;
  std::u16string sender = u"+46701234567";
  std::chrono::seconds sent = 0s;  // when the service centre had it, since the tests' beginning of time
  bool wide = false;
};

inline TimeStamp stampAt(std::chrono::seconds sent) {
  return fromUtcSeconds(std::int64_t{20000} * 86400 + sent.count(), 0);
}

inline std::string pduOf(const Piece& piece) {
  UserDataHeader header;
  if (piece.total != 1 || piece.part != 1)
    header.elements.push_back(elementOf({.reference = piece.reference,
                                         .wide = piece.wide,
                                         .total = static_cast<std::uint8_t>(piece.total),
                                         .part = static_cast<std::uint8_t>(piece.part)}));
  const Alphabet alphabet = alphabetFor(piece.text);
  return toHex(encodeDeliver({.originator = parseNumber(piece.sender).value(),
                              .dataCoding = dataCodingOctet(alphabet),
                              .timeStamp = stampAt(piece.sent),
                              .data = writeUserData(header, piece.text, alphabet)})
                   .octets);
}

class JoiningTest : public testing::Test {
 protected:
  // The phone.
  void put(Slot slot, const Piece& piece, Status status = Status::ReceivedUnread) { put(slot, pduOf(piece), status); }
  void put(Slot slot, const std::string& pdu, Status status = Status::ReceivedUnread) { phone[slot] = {status, pdu}; }
  void take(Slot slot) { phone.erase(slot); }
  void changeStatus(Slot slot, Status status) { phone.at(slot).first = status; }

  void list(Memory memory) {
    std::vector<StoredPdu> listing;
    for (const auto& [slot, entry] : phone)
      if (slot.memory == memory) listing.push_back({.index = slot.index, .status = entry.first, .pdu = entry.second});
    joining.update(memory, listing, now);
  }
  void list() {
    list(Memory::Phone);
    list(Memory::Sim);
  }

  std::vector<std::u16string> texts() const {
    std::vector<std::u16string> result;
    for (const JoinedMessage& message : joining.messages(now)) result.push_back(message.text);
    return result;
  }
  // Without what tells the slots' contents apart.
  JoinedMessage only() const {
    const auto messages = joining.messages(now);
    EXPECT_EQ(messages.size(), 1U);
    if (messages.empty()) return {};
    JoinedMessage message = messages.front();
    EXPECT_EQ(message.contents.size(), message.slots.size());
    message.contents.clear();
    return message;
  }
  // The message with that slot, if it is there.
  void handOver(Slot slot) {
    for (const JoinedMessage& message : joining.messages(now))
      if (std::ranges::find(message.slots, slot) != message.slots.end()) joining.handedOver(message);
  }

  // What somebody does who deletes a message and is not disturbed.
  void remove(Slot slot) {
    for (const Slot part : joining.slotsToDelete(slot)) {
      take(part);
      joining.deleted(part);
    }
    list();
  }

  using Texts = std::vector<std::u16string>;
  using Slots = std::vector<Slot>;

  std::map<Slot, std::pair<Status, std::string>> phone;
  Joining joining;
  Joining::Instant now{1h};
};

}  // namespace phone
