#include "phone/joining/joining.h"

#include <algorithm>
#include <deque>
#include <map>
#include <set>
#include <utility>

#include "phone/joining/grouping.h"
#include "phone/joining/joined_text.h"
#include "phone/joining/part.h"

namespace phone {
namespace {

// Of long messages that were handed over and deleted: enough for what a network may still repeat.
constexpr std::size_t rememberedParts = 1024;

Status statusOf(const Group& group) {
  Status status = Status::StoredSent;
  for (const Part* part : group.parts) {
    Status own = part->status;
    // What the phone calls unread or read depends on who read it; this is about who was told.
    if (own <= Status::ReceivedRead)
      own = part->unread && group.handedOver == 0 ? Status::ReceivedUnread : Status::ReceivedRead;
    status = std::min(status, own);
  }
  return status;
}

// When the newest of the different parts was first seen: a part that keeps coming again makes nobody wait.
Joining::Instant newestOf(const Group& group) {
  Joining::Instant newest = Joining::Instant::min();
  for (std::size_t at = 0; at < group.parts.size();) {
    const int number = group.parts[at]->number();
    Joining::Instant seen = Joining::Instant::max();
    for (; at < group.parts.size() && group.parts[at]->number() == number; ++at)
      seen = std::min(seen, group.parts[at]->firstSeen);
    newest = std::max(newest, seen);
  }
  return newest;
}

JoinedMessage messageOf(const Group& group) {
  const Part& first = *group.parts.front();
  JoinedMessage message{.handle = first.slot,
                        .status = statusOf(group),
                        .kind = first.message.kind,
                        .serviceCentre = first.message.serviceCentre,
                        .peer = first.message.peer,
                        .text = joinedText(group),
                        .complete = group.complete,
                        .handedOver = group.handedOver != 0};
  for (auto part = group.parts.rbegin(); part != group.parts.rend(); ++part) {
    message.slots.push_back((*part)->slot);
    message.contents.push_back((*part)->sequence);
  }
  for (const Part* part : group.parts)
    if (!message.timeStamp) message.timeStamp = part->message.timeStamp;
  return message;
}

}  // namespace

class Joining::State {
 public:
  void update(Memory memory, std::span<const StoredPdu> listing, Instant now) {
    std::map<int, const StoredPdu*> listed;
    for (const StoredPdu& stored : listing) listed[stored.index] = &stored;
    std::erase_if(parts_, [&](const auto& entry) {
      const auto& [slot, part] = entry;
      if (slot.memory != memory) return false;
      const auto found = listed.find(slot.index);
      return found == listed.end() || found->second->pdu != part.pdu;
    });
    for (const auto& [index, stored] : listed) see({memory, index}, *stored, now);
    regroup();
  }

  std::vector<JoinedMessage> messages(Instant now) const {
    std::vector<JoinedMessage> result;
    for (const Group& group : groups_)
      if (!isGoing(group) && isThere(group, now) && !isRepeatedFragment(group)) result.push_back(messageOf(group));
    std::ranges::sort(result, {}, &JoinedMessage::handle);
    return result;
  }

  std::optional<Instant> nextDue(Instant now) const {
    std::optional<Instant> next;
    for (const Group& group : groups_)
      if (!isThere(group, now)) next = std::min(next.value_or(Instant::max()), newestOf(group) + patience);
    return next;
  }

  void handedOver(const JoinedMessage& message) {
    if (message.handedOver) return;
    ++handOvers_;
    std::set<Group*> groups;
    for (std::size_t at = 0; at < message.slots.size(); ++at) {
      const auto found = parts_.find(message.slots[at]);
      if (found == parts_.end() || found->second.sequence != message.contents[at]) continue;
      Part& part = found->second;
      if (part.handedOver != 0 || part.deletion != 0) continue;
      part.handedOver = handOvers_;
      part.unread = false;
      known_.insert(part.slot);
      groups.insert(groupWith(part.slot));
    }
    // Usually nothing has changed in between, and the groups stay as they are.
    if (!std::ranges::all_of(groups, markHandedOver)) regroup();
  }

  void takeBack(const JoinedMessage& message) {
    for (std::size_t at = 0; at < message.slots.size(); ++at) {
      const auto found = parts_.find(message.slots[at]);
      if (found == parts_.end() || found->second.sequence != message.contents[at]) continue;
      Part& part = found->second;
      if (part.handedOver == 0 || part.deletion != 0) continue;
      part.handedOver = 0;
      part.unread = true;
      known_.erase(part.slot);
    }
    regroup();
  }

  std::vector<Slot> slotsToDelete(Slot slot) const {
    const Group* group = groupWith(slot);
    if (group == nullptr || !mayBeDeleted(*group, slot)) return {};
    std::vector<Slot> slots;
    for (auto part = group->parts.rbegin(); part != group->parts.rend(); ++part)
      if (!(*part)->confirmedGone) slots.push_back((*part)->slot);
    return slots;
  }

  std::string pdu(Slot slot) const {
    const auto found = parts_.find(slot);
    return found == parts_.end() || found->second.confirmedGone ? std::string() : found->second.pdu;
  }

  void deleted(Slot slot) {
    Group* group = groupWith(slot);
    if (group == nullptr || !mayBeDeleted(*group, slot)) return;
    parts_.at(slot).confirmedGone = true;  // kept until a listing shows that it is true: some phones only say so
    known_.erase(slot);
    if (isGoing(*group)) return;
    ++deletions_;
    for (Part* part : group->parts) {
      part->deletion = deletions_;
      if (group->isLong()) remember(part->pdu);
    }
  }

  std::vector<Slot> leftovers(Instant now) const {
    std::vector<Slot> slots;
    for (const Group& group : groups_) {
      const bool repeated = isThere(group, now) && isRepeatedFragment(group);
      for (const Part* part : group.parts)
        if (repeated || (part->deletion != 0 && !part->confirmedGone)) slots.push_back(part->slot);
    }
    std::ranges::sort(slots);
    return slots;
  }

 private:
  void see(Slot slot, const StoredPdu& stored, Instant now) {
    const auto [entry, isNew] = parts_.try_emplace(slot);
    Part& part = entry->second;
    if (isNew) {
      part.slot = slot;
      part.pdu = stored.pdu;
      part.message = decodePdu(std::string_view(stored.pdu));
      part.firstSeen = now;
      part.sequence = ++sightings_;
      if (const auto gone = gone_.find(part.pdu); gone != gone_.end()) part.repeated = gone->second;
    }
    part.status = stored.status;
    if (stored.status == Status::ReceivedUnread && part.handedOver == 0) part.unread = true;
    part.confirmedGone = false;
  }

  // What is being deleted stays together, and new parts have nothing to do with it. Status reports are no messages.
  void regroup() {
    std::vector<Part*> parts;
    std::map<std::uint64_t, std::vector<Part*>> going;
    for (auto& [slot, part] : parts_) {
      if (part.deletion != 0)
        going[part.deletion].push_back(&part);
      else if (part.message.kind != PduKind::StatusReport)
        parts.push_back(&part);
    }
    groups_ = groupsOf(parts);
    for (auto& [deletion, left] : going) groups_.push_back(groupOf(std::move(left)));
    groupBySlot_.clear();
    for (Group& group : groups_)
      for (const Part* part : group.parts) groupBySlot_[part->slot] = &group;
  }

  Group* groupWith(Slot slot) const {
    const auto found = groupBySlot_.find(slot);
    return found == groupBySlot_.end() ? nullptr : found->second;
  }

  // Whether all its parts were handed over together; if so, it is known from then on.
  static bool markHandedOver(Group* group) {
    const std::uint64_t handOver = group->parts.front()->handedOver;
    const auto together = [&](const Part* part) { return part->handedOver == handOver; };
    if (!std::ranges::all_of(group->parts, together)) return false;
    group->handedOver = handOver;
    return true;
  }

  static bool isGoing(const Group& group) { return group.parts.front()->deletion != 0; }

  static bool isThere(const Group& group, Instant now) {
    return isGoing(group) || group.complete || group.handedOver != 0 || newestOf(group) + patience <= now;
  }

  // A message of one slot needs no permission, unless whoever asks must mean the one that he was given from this slot
  // before and that somebody else has deleted.
  bool mayBeDeleted(const Group& group, Slot slot) const {
    return isGoing(group) || group.handedOver != 0 || (!group.isLong() && !known_.contains(slot));
  }

  // Parts of a long message that came again after it was handed over and deleted, and not as a whole.
  static bool isRepeatedFragment(const Group& group) {
    return !isGoing(group) && !group.complete && group.handedOver == 0 &&
           std::ranges::all_of(group.parts, [](const Part* part) { return part->repeated != 0; });
  }

  void remember(const std::string& pdu) {
    if (!gone_.insert_or_assign(pdu, deletions_).second) return;
    inOrder_.push_back(pdu);
    if (inOrder_.size() <= rememberedParts) return;
    gone_.erase(inOrder_.front());
    inOrder_.pop_front();
  }

  std::map<Slot, Part> parts_;
  std::vector<Group> groups_;  // of parts_
  std::map<Slot, Group*> groupBySlot_;
  std::set<Slot> known_;                       // where messages were handed over from and not deleted
  std::map<std::string, std::uint64_t> gone_;  // by deletion
  std::deque<std::string> inOrder_;            // gone_, the oldest first
  std::uint64_t sightings_ = 0;
  std::uint64_t handOvers_ = 0;
  std::uint64_t deletions_ = 0;
};

Joining::Joining() : state_(std::make_unique<State>()) {}
Joining::~Joining() = default;
Joining::Joining(Joining&&) noexcept = default;
Joining& Joining::operator=(Joining&&) noexcept = default;

void Joining::update(Memory memory, std::span<const StoredPdu> listing, Instant now) {
  state_->update(memory, listing, now);
}
std::vector<JoinedMessage> Joining::messages(Instant now) const { return state_->messages(now); }
std::optional<Joining::Instant> Joining::nextDue(Instant now) const { return state_->nextDue(now); }
void Joining::handedOver(const JoinedMessage& message) { state_->handedOver(message); }
void Joining::takeBack(const JoinedMessage& message) { state_->takeBack(message); }
std::vector<Slot> Joining::slotsToDelete(Slot slot) const { return state_->slotsToDelete(slot); }
std::string Joining::pdu(Slot slot) const { return state_->pdu(slot); }
void Joining::deleted(Slot slot) { state_->deleted(slot); }
std::vector<Slot> Joining::leftovers(Instant now) const { return state_->leftovers(now); }

}  // namespace phone
