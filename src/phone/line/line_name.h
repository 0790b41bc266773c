// Names of lines, as a user writes them:
//
//   COM3, /dev/ttyUSB0        a serial port, at 115200 bit/s unless it says otherwise: COM3@9600
//   tcp:host:port             a modem server, or a simulated phone; tcp:[::1]:7001 with an address that has colons
//   sim                       the simulated handset that needs no line
//
// A list of them is separated by commas, semicolons or white space.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace phone {

struct LineName {
  enum class Kind : std::uint8_t { Serial, Tcp, Simulated };
  Kind kind = Kind::Serial;
  std::string device;  // or the host
  std::string port;    // of Tcp
  std::uint32_t speed = 115200;
  friend bool operator==(const LineName&, const LineName&) = default;
};

struct LineNames {
  std::vector<LineName> names;
  std::vector<std::string> unreadable;
};

std::optional<LineName> parseLineName(std::string_view word);
LineNames parseLineNames(std::string_view list);

}  // namespace phone
