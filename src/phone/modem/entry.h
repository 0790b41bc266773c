// Messages as +CMGL and +CMGR list them in PDU mode (3GPP TS 27.005, 3.4.2 and 3.4.3).
#pragma once

#include <optional>
#include <string_view>

#include "phone/at/dialogue.h"
#include "phone/joining/stored.h"

namespace phone {

struct Entry {
  StoredPdu message;
  bool whole = false;  // the status makes sense, and the PDU has the announced length
};

// From "+CMGL: <index>,<stat>,[<alpha>],<length>" and its PDU. Nothing when there is no telling which slot it is.
std::optional<Entry> entryOfListing(const at::Information& information);

// From "+CMGR: <stat>,[<alpha>],<length>" and its PDU.
Entry entryOfReading(const at::Information& information, int index);

}  // namespace phone
