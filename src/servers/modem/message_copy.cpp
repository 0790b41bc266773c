#include "servers/modem/message_copy.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace servers::modem {

using handset::StoredMessage;
using phone::Instant;
using phone::JoinedMessage;
using phone::Memory;
using phone::Slot;
using phone::StoredPdu;

namespace {

// A text that has come by way of a store ends at the first of these.
platform::String withoutEnds(platform::String text) {
  std::ranges::replace(text, u'\0', u'\uFFFD');
  return text;
}

phone::Joining::Instant moment(Instant now) { return phone::Joining::Instant(now); }

}  // namespace

handset::Store storeOf(Memory memory) noexcept {
  return memory == Memory::Phone ? handset::Store::Phone : handset::Store::Sim;
}

std::optional<Memory> memoryOf(handset::Store store) noexcept {
  if (store == handset::Store::Phone) return Memory::Phone;
  if (store == handset::Store::Sim) return Memory::Sim;
  return std::nullopt;
}

void MessageCopy::take(Memory memory, const std::vector<StoredPdu>& listing, Instant now) {
  Slots& present = slots(memory);
  present.erase(present.begin(), present.lower_bound(firstKept));
  for (const StoredPdu& message : listing)
    if (message.index < firstKept) put({memory, message.index}, message);
  // Whatever was announced and is not there any more, somebody else has deleted.
  std::erase_if(announced_, [memory](Slot slot) { return slot.memory == memory; });
  update(memory, now);
}

void MessageCopy::takeOne(Slot slot, StoredPdu message, Instant now) {
  if (isKeptHere(slot)) return;
  put(slot, std::move(message));
  update(slot.memory, now);
}

void MessageCopy::put(Slot slot, StoredPdu message) {
  if (announced_.erase(slot) > 0 && message.status == phone::Status::ReceivedRead)
    message.status = phone::Status::ReceivedUnread;
  slots(slot.memory).insert_or_assign(slot.index, std::move(message));
}

void MessageCopy::keep(const std::string& pdu, Memory memory, Instant now) {
  int index = firstKept;
  while (slots(memory).contains(index)) ++index;
  if (index > INT16_MAX) return;
  put({memory, index}, {index, phone::Status::ReceivedUnread, pdu});
  update(memory, now);
}

void MessageCopy::update(Memory memory, Instant now) {
  std::vector<StoredPdu> all;
  for (const auto& [index, message] : slots(memory)) all.push_back(message);
  joining_.update(memory, all, moment(now));
}

std::size_t MessageCopy::used(Memory memory) const {
  const Slots& present = slots(memory);
  return static_cast<std::size_t>(std::distance(present.begin(), present.lower_bound(firstKept)));
}

std::vector<JoinedMessage> MessageCopy::messages(Memory memory, std::int32_t filter, Instant now) const {
  auto result = joining_.messages(moment(now));
  std::erase_if(result, [&](const JoinedMessage& message) {
    const bool wanted = filter == handset::allStatuses || filter == static_cast<std::int32_t>(message.status);
    return message.handle.memory != memory || !wanted;
  });
  return result;
}

StoredMessage MessageCopy::shown(const JoinedMessage& message) {
  return {storeOf(message.handle.memory),
          static_cast<std::int16_t>(message.handle.index),
          static_cast<handset::Status>(message.status),
          phone::shown(message.peer),
          withoutEnds(message.text),
          message.timeStamp ? phone::twelveDigits(*message.timeStamp) : platform::String()};
}

void MessageCopy::takeBack(const StoredMessage& message) {
  if (message.status != handset::Status::ReceivedUnread) return;
  // Handed over messages are there at any time.
  for (const JoinedMessage& present : joining_.messages({})) {
    StoredMessage listed = shown(present);
    listed.status = message.status;
    if (present.handedOver && listed == message) joining_.takeBack(present);
  }
}

std::vector<MessageCopy::Deletion> MessageCopy::toDelete(Slot slot) const {
  return withPdus(joining_.slotsToDelete(slot));
}

std::vector<MessageCopy::Deletion> MessageCopy::leftovers(Instant now) const {
  return withPdus(joining_.leftovers(moment(now)));
}

std::vector<MessageCopy::Deletion> MessageCopy::withPdus(const std::vector<Slot>& wanted) const {
  std::vector<Deletion> deletions;
  for (const Slot slot : wanted)
    if (const auto found = slots(slot.memory).find(slot.index); found != slots(slot.memory).end())
      deletions.push_back({slot, found->second.pdu});
  return deletions;
}

void MessageCopy::deleted(const Deletion& deletion) {
  Slots& present = slots(deletion.slot.memory);
  const auto found = present.find(deletion.slot.index);
  if (found == present.end() || found->second.pdu != deletion.pdu) return;
  joining_.deleted(deletion.slot);
  present.erase(found);
}

}  // namespace servers::modem
