#include "phone/line/open_line.h"

#include "phone/line/serial_line.h"
#include "phone/line/tcp_line.h"

namespace phone {

std::unique_ptr<Line> openLine(const LineName& name, Instant deadline) {
  switch (name.kind) {
    case LineName::Kind::Serial:
      return std::make_unique<SerialLine>(name.device, name.speed);
    case LineName::Kind::Tcp:
      return std::make_unique<TcpLine>(name.device, name.port, deadline);
    case LineName::Kind::Simulated:
      break;
  }
  throw LineLost("the simulated handset has no line");
}

}  // namespace phone
