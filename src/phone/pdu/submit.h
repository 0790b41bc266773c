// Messages to be sent: SMS-SUBMIT (3GPP TS 23.040, 9.2.2.2).
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "phone/pdu/address.h"
#include "phone/pdu/user_data.h"
#include "phone/text/octets.h"

namespace phone {

// The octets behind the service centre: what +CMGS= and +CMGW= announce (3GPP TS 27.005, 4.3).
struct EncodedPdu {
  Octets octets = {};  // service centre included
  std::size_t tpduLength = 0;
  friend bool operator==(const EncodedPdu&, const EncodedPdu&) = default;
};

struct Submit {
  std::optional<Address> serviceCentre = {};  // none: the one that the phone has stored
  Address destination = {};
  std::optional<std::chrono::minutes> validity = {};  // none: the service centre's own
  bool statusReport = false;
};

// One PDU per part, in order. `reference` must differ between long messages to the same destination that may be on
// their way at the same time; the caller counts. Throws TextTooLong.
std::vector<EncodedPdu> encodeSubmit(const Submit& submit, std::u16string_view text, std::uint8_t reference);
EncodedPdu encodeSubmit(const Submit& submit, std::uint8_t dataCoding, const UserData& data);

// The octet of a relative validity period (9.2.3.12.1): the shortest that is not shorter than asked for, 63 weeks at
// most.
std::uint8_t relativeValidity(std::chrono::minutes period);
std::chrono::minutes relativeValidityPeriod(std::uint8_t octet);

}  // namespace phone
