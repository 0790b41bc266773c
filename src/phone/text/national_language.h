// National language tables of the 7-bit alphabet (3GPP TS 23.038, 6.2.1.2 and annex A): a message's header may name a
// language for the main table ("locking shift") and one for the extension table ("single shift").
//
// Turkish, Spanish and Portuguese, which phones write without being asked. The other languages (4 to 13) have scripts
// of their own. A receiver that does not know an element's language takes the element for not there (3GPP TS 23.040,
// 9.2.3.24.15 for the single shift and 9.2.3.24.16 for the locking shift), which leaves the default tables: for these
// languages wrong characters, but as many as there were and the others of the message, and never none.
#pragma once

#include "phone/text/gsm_alphabet.h"

namespace phone {

// The national language identifiers of 3GPP TS 23.038, 6.2.1.2.4.
namespace national_language {
inline constexpr std::uint8_t none = 0;
inline constexpr std::uint8_t turkish = 1;
inline constexpr std::uint8_t spanish = 2;  // no main table of its own
inline constexpr std::uint8_t portuguese = 3;
}  // namespace national_language

constexpr bool isKnownLanguage(std::uint8_t language) {
  return language >= national_language::turkish && language <= national_language::portuguese;
}

SeptetTables tablesOf(std::uint8_t lockingShift, std::uint8_t singleShift);

}  // namespace phone
