// One pending phone operation.
#pragma once

#include "addin/common/basGlobal.h"

namespace addin {

enum enTransactionType : std::int32_t { Send = 1, Read = 2, List = 3 };

class clsTransaction : public Counted {
 public:
  std::int32_t TransactionID = 0;  // as the SMS object returned it for the request
  String EntryID;                  // of the mail item that the request concerns
  enTransactionType TransactionType = enTransactionType{};
};

}  // namespace addin
