#include "phone/line/serial_device.h"

#include <sys/ioctl.h>

namespace phone {

void takeDevice(asio::serial_port& port) {
  // Opening switched DTR and RTS on.
  ioctl(port.native_handle(), TIOCEXCL);
}

}  // namespace phone
