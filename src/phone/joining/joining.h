// The messages on a phone, long ones joined from their parts (3GPP TS 23.040, 9.2.3.24.1 and 9.2.3.24.8).
//
// Parts arrive in any order, in either memory, several times or never, and references are used again. The rules:
//
// * Parts belong together when kind, sender, reference, its width and the total are the same. When that leaves a choice
//   (the reference was used again), those nearest in time belong together, and never any that are a day apart.
// * A complete message is there at once. An incomplete one waits until its newest part was first seen ten minutes ago,
//   and is then there as it stands, the gap marked in its text.
// * What was handed over stays as it was: a part that comes later makes a message of its own, and one that was handed
//   over before (networks repeat deliveries) is not shown again.
// * A received message that lies in several slots with every octet the same is one message. (Two memories may be one
//   under two names, and phones store a delivery twice.)
// * Deleting a message deletes all its slots, and no part of a long one is deleted before all of it was handed over.
//
// Nothing here is kept beyond the object's life: after a restart the parts are still on the phone and are joined anew.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "phone/joining/stored.h"
#include "phone/pdu/decode.h"

namespace phone {

// A message of one slot or several.
struct JoinedMessage {
  Slot handle;                               // stands for the message: the slot of its first part
  std::vector<Slot> slots = {};              // all, duplicates included, in the order of deletion: the handle goes last
  std::vector<std::uint64_t> contents = {};  // of these slots, told apart from what may lie in them later
  Status status = Status::ReceivedUnread;    // unread when any part is unread and the message was not handed over yet
  PduKind kind = PduKind::Undecodable;       // never a status report: those are skipped
  std::optional<Address> serviceCentre = {};
  Address peer = {};
  std::optional<TimeStamp> timeStamp = {};  // of the first part that has one
  std::u16string text = {};
  bool complete = true;
  bool handedOver = false;
  friend bool operator==(const JoinedMessage&, const JoinedMessage&) = default;
};

class Joining {
 public:
  using Instant = std::chrono::steady_clock::time_point;  // of the caller's clock

  static constexpr std::chrono::minutes patience{10};

  Joining();
  ~Joining();
  Joining(Joining&&) noexcept;
  Joining& operator=(Joining&&) noexcept;

  // The whole present content of one memory. What is in a slot with the same PDU as before keeps its age, and stays
  // unread although reading it has made it read on the phone. An index listed twice counts once (the last).
  void update(Memory memory, std::span<const StoredPdu> listing, Instant now);

  // All messages that can be handed over, in the order of their handles; those of a deletion that is under way are not
  // among them.
  std::vector<JoinedMessage> messages(Instant now) const;

  // When the next incomplete message's time is up, if one waits.
  std::optional<Instant> nextDue(Instant now) const;

  // This message, as messages() gave it, was handed over, and is read from then on. Parts that have come since are not
  // among what was handed over.
  void handedOver(const JoinedMessage& message);

  // It did not arrive: this message, as messages() gave it then or later, was not handed over and is unread.
  void takeBack(const JoinedMessage& message);

  // The slots to delete, in this order, when the message with that slot is to go; of a deletion that was begun, those
  // that are left. Empty when there is no message, when it is a long one that was not handed over, or when another
  // message was handed over from that slot and is gone.
  std::vector<Slot> slotsToDelete(Slot slot) const;

  // What is known to lie in that slot, in hexadecimal; empty when nothing does. To be compared before it is deleted:
  // the slot may have been used again since the update.
  std::string pdu(Slot slot) const;

  // The phone has confirmed that this slot is deleted. From then on the message's other slots are leftovers.
  void deleted(Slot slot);

  // Slots that should be deleted as soon as the phone can: the rest of a deletion that failed half-way, and repeated
  // deliveries of parts that were handed over already.
  std::vector<Slot> leftovers(Instant now) const;

 private:
  class State;
  std::unique_ptr<State> state_;
};

}  // namespace phone
