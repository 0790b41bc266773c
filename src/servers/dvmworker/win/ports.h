// The phones of this computer, as its user lists them in the value "Ports" (text; settings.h has the key):
//
//   COM3                 a modem at a serial port; COM3@9600 when it needs that speed
//   tcp:host:port        a modem that is reached over the network, or phonesim
//   sim                  the simulated handset
//
// Several are separated by blanks, commas or semicolons; what is none of these is passed over. Empty or missing: the
// serial ports of the system, also those that come later.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "phone/line/line_name.h"
#include "servers/handset/phone.h"
#include "servers/modem/send_record.h"

namespace servers::dvmworker {

struct Ports {
  std::vector<phone::LineName> names;  // each once
  bool serialOnes = false;             // and the serial ports of the system
};

Ports portsOfUser();
std::vector<phone::LineName> serialPortsOfSystem();

// What is known of the messages that were sent before, for all phones.
std::shared_ptr<modem::SendRecord> recordOfSends();

// A modem there. Not for Kind::Simulated. `isHeard` as of modem::ModemPhone.
platform::Ref<handset::Phone> modemAt(const phone::LineName& name, std::shared_ptr<modem::SendRecord> record,
                                      std::function<bool()> isHeard);

}  // namespace servers::dvmworker
