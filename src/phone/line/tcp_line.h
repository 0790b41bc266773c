// A TCP connection to a modem server or a simulated phone.
#pragma once

#include "phone/line/asio_line.h"

namespace phone {

class TcpLine final : public AsioLine<asio::ip::tcp::socket> {
 public:
  TcpLine(const std::string& host, const std::string& port, Instant deadline);
};

}  // namespace phone
