#include "addin/sms/coltextmessage.h"

namespace addin {

// What may fail comes first: a record is in its collection's index or in none.
void clstextmessage::SentOn(StringView text) {
  String fresh(text);
  if (!m_colOwner) {
    m_strSentOn = std::move(fresh);
    return;
  }
  m_colOwner->m_index.makeRoom();
  m_colOwner->m_index.remove(*this);
  m_strSentOn = std::move(fresh);
  m_colOwner->m_index.insert(*this);
}

coltextmessage::~coltextmessage() {
  for (std::int32_t i = 1; i <= m_col.Count(); ++i) m_col.Item(i)->m_colOwner = nullptr;
}

Ref<clstextmessage> coltextmessage::Add(StringView Recipient, StringView SentOn, StringView MessageBody,
                                        StringView sKey) {
  auto record = make<clstextmessage>();
  record->Recipient(Recipient);
  record->SentOn(SentOn);
  record->MessageBody(MessageBody);
  m_index.makeRoom();
  m_col.Add(record, sKey);
  record->m_colOwner = this;
  record->m_nOrder = ++m_nAdded;
  m_index.insert(*record);
  return record;
}

void coltextmessage::Remove(const Variant& vntIndexKey) {
  const Ref<clstextmessage> record = m_col.Item(vntIndexKey);
  m_col.Remove(vntIndexKey);
  m_index.remove(*record);
  record->m_colOwner = nullptr;
}

}  // namespace addin
