#include "addin/sms/coltextmessage.h"

#include <algorithm>

namespace addin {

void clstextmessage::SentOn(StringView text) {
  if (m_colOwner) m_colOwner->removeFromIndex(*this);
  m_strSentOn = text;
  if (m_colOwner) m_colOwner->insertIntoIndex(*this);
}

coltextmessage::~coltextmessage() {
  for (const auto& entry : m_index)
    for (clstextmessage* const record : entry.second) record->m_colOwner = nullptr;
}

Ref<clstextmessage> coltextmessage::Add(StringView Recipient, StringView SentOn, StringView MessageBody,
                                        StringView sKey) {
  auto record = make<clstextmessage>();
  record->Recipient(Recipient);
  record->SentOn(SentOn);
  record->MessageBody(MessageBody);
  m_col.Add(record, sKey);
  record->m_colOwner = this;
  record->m_nOrder = ++m_nAdded;
  insertIntoIndex(*record);
  return record;
}

void coltextmessage::Remove(const Variant& vntIndexKey) {
  const Ref<clstextmessage> record = m_col.Item(vntIndexKey);
  m_col.Remove(vntIndexKey);
  removeFromIndex(*record);
  record->m_colOwner = nullptr;
}

const std::vector<clstextmessage*>& coltextmessage::SentAt(const String& sentOn) const {
  static constexpr std::vector<clstextmessage*> none;
  const auto at = m_index.find(sentOn);
  return at == m_index.end() ? none : at->second;
}

void coltextmessage::insertIntoIndex(clstextmessage& record) {
  auto& sameTime = m_index[record.SentOn()];
  const auto place =
      std::upper_bound(sameTime.begin(), sameTime.end(), record.m_nOrder,
                       [](std::uint64_t order, const clstextmessage* other) { return order < other->m_nOrder; });
  sameTime.insert(place, &record);
}

void coltextmessage::removeFromIndex(const clstextmessage& record) {
  const auto at = m_index.find(record.SentOn());
  std::erase(at->second, &record);
  if (at->second.empty()) m_index.erase(at);
}

}  // namespace addin
