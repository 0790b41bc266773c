// A keyed collection of text-message records, in the order of adding.
//
// Beside the collection stands an index by time-stamp text, so that the duplicate check finds the candidates of one
// time stamp without walking the others. The index follows when a record's SentOn is written later and when a record is
// removed.
#pragma once

#include "addin/platform/collection.h"
#include "addin/sms/sent_on_index.h"

namespace addin {

class coltextmessage : public Counted {
 public:
  ~coltextmessage() override;

  // Adds a record; an empty key adds it without one. Error 457 for a key that is there already.
  Ref<clstextmessage> Add(StringView Recipient, StringView SentOn, StringView MessageBody, StringView sKey = {});

  // By position (from 1, error 9) or by key (error 5).
  Ref<clstextmessage> Item(const Variant& vntIndexKey) const { return m_col.Item(vntIndexKey); }
  std::int32_t Count() const { return m_col.Count(); }
  void Remove(const Variant& vntIndexKey);

  // The collection's enumerator: for (const auto& record : collection) walks it in the order of adding.
  class Enumerator {
   public:
    Enumerator(const coltextmessage* collection, std::int32_t position)
        : collection_(collection), position_(position) {}
    Ref<clstextmessage> operator*() const { return collection_->Item(position_); }
    Enumerator& operator++() {
      ++position_;
      return *this;
    }
    // At the end as soon as the collection has no such position, so that removals during a walk do no harm.
    bool operator!=(const Enumerator& /*end*/) const { return position_ <= collection_->Count(); }

   private:
    const coltextmessage* collection_;
    std::int32_t position_;
  };
  Enumerator NewEnum() const { return {this, 1}; }
  Enumerator begin() const { return NewEnum(); }
  Enumerator end() const { return {this, 0}; }

  // The records whose SentOn is exactly this text, in the order of adding.
  class Candidates {
   public:
    explicit Candidates(const clstextmessage* record) : record_(record) {}
    const clstextmessage* operator*() const { return record_; }
    Candidates& operator++() {
      record_ = record_->m_objNext;
      return *this;
    }
    bool operator!=(const Candidates& other) const { return record_ != other.record_; }
    Candidates begin() const { return *this; }
    Candidates end() const { return Candidates(nullptr); }

   private:
    const clstextmessage* record_;
  };
  Candidates SentAt(StringView sentOn) const { return Candidates(m_index.first(sentOn)); }

 private:
  friend class clstextmessage;
  Collection<Ref<clstextmessage>> m_col;
  SentOnIndex m_index;  // m_col keeps the records
  std::uint64_t m_nAdded = 0;
};

}  // namespace addin
