// A serial port: eight bits, no parity, one stop bit, no handshake.
//
// Without a handshake a three-wire cable works too; commands and messages are short, and what a modem loses all the
// same shows in the lengths that it announces.
#pragma once

#include "phone/line/asio_line.h"

namespace phone {

class SerialLine final : public AsioLine<asio::serial_port> {
 public:
  SerialLine(const std::string& device, std::uint32_t speed);
};

}  // namespace phone
