// Anything that can happen to a phone's memories, one octet after the other: messages come and go, are handed over and
// deleted, time passes.

#include "phone/joining/joining.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "fuzz/check.h"
#include "phone/pdu/deliver.h"
#include "phone/pdu/hex.h"

namespace {

using namespace phone;
using namespace std::chrono_literals;

class Run {
 public:
  explicit Run(OctetsView input) : input_(input) {}

  void play() {
    while (!input_.empty() && steps_ < 300) {
      step();
      examine();
      ++steps_;
    }
  }

 private:
  unsigned next() {
    if (input_.empty()) return 0;
    const unsigned octet = input_.front();
    input_ = input_.subspan(1);
    return octet;
  }

  Slot slot() {
    const unsigned octet = next();
    return {.memory = octet & 1 ? Memory::Sim : Memory::Phone, .index = static_cast<int>(octet >> 1 & 15)};
  }

  void step() {
    switch (next() % 8) {
      case 0:
      case 1:
        phone_[slot()] = {statusOf(next()), piece()};
        break;
      case 2:
        phone_.erase(slot());
        break;
      case 3:
        phone_[slot()] = {statusOf(next()), anything()};
        break;
      case 4:
        list();
        break;
      case 5:
        now_ += std::chrono::seconds(next() * 8);
        break;
      case 6:
        handOver();
        break;
      default:
        remove();
        break;
    }
  }

  static Status statusOf(unsigned octet) { return static_cast<Status>(octet & 3); }

  // A part with few different numbers, so that they meet.
  std::string piece() {
    const unsigned numbers = next();
    const Concatenation place{.reference = static_cast<std::uint16_t>(numbers & 1),
                              .wide = (numbers & 2) != 0,
                              .total = static_cast<std::uint8_t>(numbers >> 2 & 3),
                              .part = static_cast<std::uint8_t>(numbers >> 4 & 3)};
    const unsigned rest = next();
    const std::u16string text(1, static_cast<char16_t>(u'a' + (rest & 3)));
    UserDataHeader header;
    header.elements.push_back(elementOf(place));
    return toHex(encodeDeliver({.originator = {.value = rest & 4 ? u"1" : u"2"},
                                .timeStamp = fromUtcSeconds(std::int64_t{1} << 30 | (rest >> 3) * 97, 0),
                                .data = writeUserData(header, text, Alphabet::Gsm7)})
                     .octets);
  }

  std::string anything() {
    Octets octets(next() % 48);
    for (auto& octet : octets) octet = static_cast<std::uint8_t>(next());
    return toHex(octets);
  }

  void list() {
    for (const Memory memory : {Memory::Phone, Memory::Sim}) {
      std::vector<StoredPdu> listing;
      for (const auto& [place, stored] : phone_)
        if (place.memory == memory) listing.push_back({place.index, stored.first, stored.second});
      joining_.update(memory, listing, now_);
    }
  }

  void handOver() {
    const auto messages = joining_.messages(now_);
    if (messages.empty()) return;
    const JoinedMessage& message = messages[next() % messages.size()];
    if (next() & 1) list();  // something may have come in between
    joining_.handedOver(message);
  }

  void remove() {
    for (const Slot part : joining_.slotsToDelete(slot())) {
      if (next() % 4 == 0) return;
      phone_.erase(part);
      joining_.deleted(part);
    }
  }

  void examine() const {
    std::set<Slot> seen;
    for (const JoinedMessage& message : joining_.messages(now_)) {
      fuzz::require(!message.slots.empty() && message.slots.back() == message.handle, "the handle goes last");
      fuzz::require(message.slots.size() == message.contents.size(), "each slot has its content");
      fuzz::require(message.kind != PduKind::StatusReport, "status reports are skipped");
      fuzz::require(message.complete != (message.text.find(u"missing]") != message.text.npos) ||
                        message.kind == PduKind::Undecodable || message.text.size() > 40,
                    "a gap is marked");
      for (const Slot& part : message.slots) fuzz::require(seen.insert(part).second, "a part is in one message");
      const bool deletable = !joining_.slotsToDelete(message.handle).empty();
      fuzz::require(!message.handedOver || deletable, "what was handed over can be deleted");
    }
    for (const Slot& left : joining_.leftovers(now_))
      fuzz::require(seen.insert(left).second, "a leftover is not shown");
    if (const auto due = joining_.nextDue(now_)) fuzz::require(*due > now_, "what is due is there");
  }

  OctetsView input_;
  int steps_ = 0;
  std::map<Slot, std::pair<Status, std::string>> phone_;
  Joining joining_;
  Joining::Instant now_{1h};
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size) {
  Run({input, size}).play();
  return 0;
}
