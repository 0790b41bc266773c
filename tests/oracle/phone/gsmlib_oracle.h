// What gsmlib makes of a PDU. Its headers are older than today's C++: they stay behind this one.
#pragma once

#include <string>

namespace oracle {

struct GsmlibMessage {
  bool decoded = false;
  std::string error;
  std::string number;  // with a plus sign when it is international
  std::string serviceCentre;
  std::string text;  // ISO 8859-1
  int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
};

GsmlibMessage gsmlibDecode(const std::string& hex, bool received);

}  // namespace oracle
