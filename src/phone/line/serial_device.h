// What the systems do differently about serial ports.
#pragma once

#include <asio.hpp>

namespace phone {

// Keeps other programs out, and tells the modem that there is a computer: many stay silent until DTR is on.
void takeDevice(asio::serial_port& port);

}  // namespace phone
