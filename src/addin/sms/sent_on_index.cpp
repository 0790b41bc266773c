#include "addin/sms/sent_on_index.h"

#include <functional>

namespace addin {
namespace {

constexpr std::size_t slotsAtFirst = 16;

std::size_t hashOf(StringView sentOn) { return std::hash<StringView>()(sentOn); }

}  // namespace

void SentOnIndex::makeRoom() {
  if (2 * (used_ + 1) <= slots_.size()) return;
  std::vector<Slot> before(slots_.empty() ? slotsAtFirst : 2 * slots_.size());
  before.swap(slots_);
  for (const Slot& slot : before) {
    if (!slot.first) continue;
    std::size_t place = slot.hash & (slots_.size() - 1);
    while (slots_[place].first) place = nextOf(place);
    slots_[place] = slot;
  }
}

void SentOnIndex::insert(clstextmessage& record) {
  const std::size_t hash = hashOf(record.m_strSentOn);
  Slot& slot = slots_[placeOf(record.m_strSentOn, hash)];
  if (!slot.first) {
    slot = {hash, &record, &record};
    ++used_;
    return;
  }
  // Most records come last. One whose SentOn was written later may belong further in front.
  clstextmessage** link = slot.last->m_nOrder < record.m_nOrder ? &slot.last->m_objNext : &slot.first;
  while (*link && (*link)->m_nOrder < record.m_nOrder) link = &(*link)->m_objNext;
  record.m_objNext = *link;
  *link = &record;
  if (!record.m_objNext) slot.last = &record;
}

void SentOnIndex::remove(clstextmessage& record) {
  const std::size_t place = placeOf(record.m_strSentOn, hashOf(record.m_strSentOn));
  Slot& slot = slots_[place];
  clstextmessage* before = nullptr;
  clstextmessage** link = &slot.first;
  while (*link != &record) {
    before = *link;
    link = &before->m_objNext;
  }
  *link = record.m_objNext;
  if (slot.last == &record) slot.last = before;
  record.m_objNext = nullptr;
  if (!slot.first) freeSlot(place);
}

clstextmessage* SentOnIndex::first(StringView sentOn) const {
  return slots_.empty() ? nullptr : slots_[placeOf(sentOn, hashOf(sentOn))].first;
}

// The slot of this text, or the free one where it would go.
std::size_t SentOnIndex::placeOf(StringView sentOn, std::size_t hash) const {
  std::size_t place = hash & (slots_.size() - 1);
  while (slots_[place].first && (slots_[place].hash != hash || slots_[place].first->m_strSentOn != sentOn))
    place = nextOf(place);
  return place;
}

// A search ends at a free slot, so those behind it that would have gone there move up.
void SentOnIndex::freeSlot(std::size_t place) {
  const std::size_t mask = slots_.size() - 1;
  for (std::size_t next = nextOf(place); slots_[next].first; next = nextOf(next)) {
    const std::size_t wanted = slots_[next].hash & mask;
    if (((next - wanted) & mask) < ((next - place) & mask)) continue;
    slots_[place] = slots_[next];
    place = next;
  }
  slots_[place] = {};
  --used_;
}

}  // namespace addin
