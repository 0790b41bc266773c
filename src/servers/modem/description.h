// What a person wants to know of a modem when nothing is sent or nothing arrives: whether it has a SIM, a network and a
// service centre. The driver itself works without.
#pragma once

#include <span>
#include <string>

#include "phone/modem/modem.h"

namespace servers::modem {

// Asks the modem; a line for the trace, also when it does not tell.
using Particular = std::string (*)(phone::Modem&);

std::span<const Particular> particulars() noexcept;

}  // namespace servers::modem
