#include "servers/modem/description.h"

#include <array>

namespace servers::modem {

using phone::Modem;
using phone::Registration;
using phone::SimState;

namespace {

constexpr const char* untold = "the modem does not tell";

std::string aboutSim(Modem& modem) {
  static constexpr std::array states{"ready", "wants its PIN", "none", untold};
  return std::string("SIM: ") + states[static_cast<std::size_t>(modem.simState())];
}

std::string aboutNetwork(Modem& modem) {
  static constexpr std::array states{"none, and none is looked for", "the SIM's own",
                                     "none yet, it is looked for",   "it refuses the SIM",
                                     "the modem does not know",      "another one, roaming"};
  const auto registration = modem.registration();
  return std::string("network: ") + (registration ? states[static_cast<std::size_t>(*registration)] : untold);
}

// 3GPP TS 27.007, 8.5; the ends of the scale stand for all that is beyond.
std::string aboutSignal(Modem& modem) {
  constexpr int weakest = -113, step = 2, most = 31;
  const auto signal = modem.signal();
  if (!signal) return std::string("signal: ") + untold;
  const char* const beyond = *signal == 0 ? " or less" : *signal == most ? " or more" : "";
  return "signal: " + std::to_string(weakest + step * *signal) + " dBm" + beyond;
}

std::string aboutServiceCentre(Modem& modem) {
  const auto centre = modem.serviceCentre();
  if (!centre) return std::string("service centre on the SIM: ") + untold;
  return "service centre on the SIM: " + (centre->empty() ? "none" : '"' + *centre + '"');
}

}  // namespace

std::span<const Particular> particulars() noexcept {
  static constexpr std::array<Particular, 4> all{&aboutSim, &aboutNetwork, &aboutSignal, &aboutServiceCentre};
  return all;
}

}  // namespace servers::modem
