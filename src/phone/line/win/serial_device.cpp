#include "phone/line/serial_device.h"

namespace phone {

void takeDevice(asio::serial_port& port) {
  // Ports are open for one program at a time anyway.
  EscapeCommFunction(port.native_handle(), SETDTR);
  EscapeCommFunction(port.native_handle(), SETRTS);
}

}  // namespace phone
