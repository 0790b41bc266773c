// Submits as a host's settings and commands make them (3GPP TS 23.040, 9.2.2.2).
#pragma once

#include "phone/pdu/address.h"
#include "phone/pdu/user_data.h"
#include "phonesim/handset/text_mode.h"

namespace phonesim {

// With the parameters of +CSMP; whether they make sense is decodePdu()'s business.
Octets submitFrom(const TextParameters& parameters, const phone::Address& destination, const phone::UserData& data);

// The same message to somebody else. Every other octet stays what it is; `submit` must decode as a Submit.
Octets withDestination(const Octets& submit, const phone::Address& destination);

}  // namespace phonesim
