// The records of a coltextmessage by their time-stamp text: a flat hash table, and a chain for each text.
//
// A lookup touches one slot and then only records of that time stamp, so that it takes about as long among 100,000
// records as among 1,000. The records of one text are chained in the order of adding.
#pragma once

#include <vector>

#include "addin/sms/clstextmessage.h"

namespace addin {

class SentOnIndex {
 public:
  // Room for one more text; called before each insert, which then cannot fail.
  void makeRoom();

  // Under the record's present SentOn; whoever changes that removes the record first. Keeps no reference.
  void insert(clstextmessage& record);
  void remove(clstextmessage& record);

  // The record with exactly this SentOn that was added first, or null; the others follow through m_objNext.
  clstextmessage* first(StringView sentOn) const;

 private:
  struct Slot {
    std::size_t hash = 0;
    clstextmessage* first = nullptr;  // null: a free slot
    clstextmessage* last = nullptr;
  };

  std::size_t placeOf(StringView sentOn, std::size_t hash) const;
  std::size_t nextOf(std::size_t place) const { return (place + 1) & (slots_.size() - 1); }
  void freeSlot(std::size_t place);

  std::vector<Slot> slots_;  // a power of two of them, at most half in use; the next ones take what collides
  std::size_t used_ = 0;
};

}  // namespace addin
