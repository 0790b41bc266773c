#include "phone/line/serial_line.h"

#include "phone/line/serial_device.h"

namespace phone {

SerialLine::SerialLine(const std::string& device, std::uint32_t speed) {
  using Port = asio::serial_port_base;
  try {
    stream_.open(device);
    stream_.set_option(Port::baud_rate(speed));
    stream_.set_option(Port::character_size(8));
    stream_.set_option(Port::parity(Port::parity::none));
    stream_.set_option(Port::stop_bits(Port::stop_bits::one));
    stream_.set_option(Port::flow_control(Port::flow_control::none));
    takeDevice(stream_);
  } catch (const std::exception& error) {
    throw LineLost(device + ": " + error.what());
  }
}

}  // namespace phone
