// The server's own copy of the two memories, from which it answers without waiting for the line.
#pragma once

#include <array>
#include <map>
#include <set>
#include <vector>

#include "phone/joining/joining.h"
#include "phone/line/clock.h"
#include "servers/handset/phone.h"

namespace servers::modem {

handset::Store storeOf(phone::Memory memory) noexcept;
std::optional<phone::Memory> memoryOf(handset::Store store) noexcept;

class MessageCopy {
 public:
  // What a slot holds, and must still hold when it is to be deleted.
  struct Deletion {
    phone::Slot slot;
    std::string pdu;
  };

  // All that is in a memory.
  void take(phone::Memory memory, const std::vector<phone::StoredPdu>& listing, phone::Instant now);
  // One that is said to lie where kept ones do (see there) is passed over: no phone has such a slot.
  void takeOne(phone::Slot slot, phone::StoredPdu message, phone::Instant now);
  // The phone says that a message has arrived there. The next one that is seen there is unread, whatever the phone says
  // of it: it may have been read in vain before.
  void announced(phone::Slot slot) { announced_.insert(slot); }
  // A message that the phone has stored nowhere lies here, as if in that memory, in a slot that no phone has, until it
  // is deleted.
  void keep(const std::string& pdu, phone::Memory memory, phone::Instant now);
  static bool isKeptHere(phone::Slot slot) noexcept { return slot.index >= firstKept; }

  // Slots in use on the phone.
  std::size_t used(phone::Memory memory) const;

  // With that status or handset::allStatuses, in the order of their slots.
  std::vector<phone::JoinedMessage> messages(phone::Memory memory, std::int32_t filter, phone::Instant now) const;
  // As whoever asks for it sees it.
  static handset::StoredMessage shown(const phone::JoinedMessage& message);
  void handedOver(const phone::JoinedMessage& message) { joining_.handedOver(message); }
  // It did not get there: that message, as it was shown, is to be handed over as unread once more.
  void takeBack(const handset::StoredMessage& message);

  // What has to go with the message in that slot; nothing when none was handed over from there.
  std::vector<Deletion> toDelete(phone::Slot slot) const;
  // Rests of messages that are gone.
  std::vector<Deletion> leftovers(phone::Instant now) const;
  // Another message that has come there since is not meant.
  void deleted(const Deletion& deletion);

 private:
  static constexpr int firstKept = phone::mostIndex + 1;

  using Slots = std::map<int, phone::StoredPdu>;
  Slots& slots(phone::Memory memory) { return slots_[static_cast<std::size_t>(memory)]; }
  const Slots& slots(phone::Memory memory) const { return slots_[static_cast<std::size_t>(memory)]; }
  void put(phone::Slot slot, phone::StoredPdu message);
  void update(phone::Memory memory, phone::Instant now);
  std::vector<Deletion> withPdus(const std::vector<phone::Slot>& wanted) const;

  std::array<Slots, 2> slots_;
  std::set<phone::Slot> announced_;  // and not seen yet
  phone::Joining joining_;
};

}  // namespace servers::modem
