#include "phonesim/handset/handset.h"

#include <algorithm>
#include <utility>

#include "phone/pdu/deliver.h"
#include "phonesim/handset/errors.h"
#include "phonesim/handset/port.h"
#include "phonesim/handset/submit_bits.h"

namespace phonesim {

namespace {

constexpr int pinTries = 3;

std::string ascii(std::u16string_view text) {
  std::string result;
  for (const char16_t c : text) result += c < 0x80 ? static_cast<char>(c) : '?';
  return result;
}

std::u16string wide(std::string_view text) { return {text.begin(), text.end()}; }

phone::Address addressOf(std::string_view number) {
  return phone::parseNumber(wide(number)).value_or(phone::Address{});
}

}  // namespace

phone::Address Handset::number() const { return addressOf(identity_.number); }
std::optional<phone::Address> Handset::centre() const { return phone::parseNumber(wide(state_.centre)); }

Handset::Handset(Identity identity, State state, Network& network)
    : identity_(std::move(identity)), state_(std::move(state)), network_(network) {}

Handset::Arrival Handset::deliver(Octets pdu) {
  // Behind those that wait already: parts of a long message would change places.
  state_.waiting.push_back(std::move(pdu));
  changed();
  lastArrival_ = Arrival::Waiting;
  deliverWaiting();
  return state_.waiting.empty() ? lastArrival_ : Arrival::Waiting;
}

void Handset::deliverWaiting() {
  while (!state_.waiting.empty()) {
    const auto arrival = arrive(state_.waiting.front());
    if (!arrival) return;
    lastArrival_ = *arrival;
    state_.waiting.pop_front();
    changed();
  }
}

std::optional<Handset::Arrival> Handset::arrive(const Octets& pdu) {
  if (sim_ != SimState::Ready || !isRegistered()) return std::nullopt;
  const auto messageClass = phone::dataCodingOf(phone::decodePdu(pdu).dataCoding).messageClass;
  for (Port* const port : ports_) {
    if (!port->takesDirectly(messageClass)) continue;
    if (state_.unacknowledged) return std::nullopt;  // one at a time
    if (port->settings.smsService == 1) {
      state_.unacknowledged = pdu;
      acknowledges_ = port;
    }
    port->announceMessage(pdu);
    network_.directly(pdu);
    return Arrival::Direct;
  }
  const View view = messageClass == 2 ? state_.memories.nearest(View::Sim) : arrivals();
  const auto slot = state_.memories.add(view, {Status::ReceivedUnread, pdu});
  if (!slot) return std::nullopt;
  for (Port* const port : ports_) port->announceStored(*slot);
  network_.stored(*slot);
  return Arrival::Stored;
}

bool Handset::acknowledge(bool kept) {
  if (!state_.unacknowledged) return false;
  const Octets pdu = *std::exchange(state_.unacknowledged, std::nullopt);
  acknowledges_ = nullptr;
  changed();
  // One that the host could not keep is tried again with the next occasion, not at once: it would come without end.
  if (kept)
    deliverWaiting();
  else
    state_.waiting.push_front(pdu);
  return true;
}

void Handset::detach(Port& port) {
  std::erase(ports_, &port);
  giveUpAcknowledgement(port);
}

void Handset::giveUpAcknowledgement(const Port& port) {
  if (acknowledges_ != &port) return;
  acknowledge(false);
  deliverWaiting();
}

bool Handset::isRegistered() const {
  return registration() == Registration::Home || registration() == Registration::Roaming;
}

void Handset::deliverMarked(const std::string& mark, Octets pdu) {
  if (std::ranges::find(state_.taken, mark) != state_.taken.end()) return;
  state_.taken.push_back(mark);
  if (state_.taken.size() > State::mostTaken) state_.taken.pop_front();
  deliver(std::move(pdu));
}

void Handset::forgetTravelling(std::string_view mark) {
  if (std::erase_if(state_.travelling, [&](const Travelling& message) { return message.mark == mark; }) > 0) changed();
}

void Handset::setRegistration(Registration registration) {
  if (std::exchange(registration_, registration) == registration) return;
  for (Port* const port : ports_) port->announceRegistration();
  deliverWaiting();
}

void Handset::setRadio(bool on) {
  if (std::exchange(radioOn_, on) == on) return;
  for (Port* const port : ports_) port->announceRegistration();
  deliverWaiting();
}

int Handset::signal() const { return isRegistered() ? signal_ : 99; }

std::optional<int> Handset::failureOf(Operation operation) {
  const auto found = faults_.failures.find(operation);
  if (found == faults_.failures.end()) return std::nullopt;
  const int error = found->second.error;
  if (--found->second.times <= 0) faults_.failures.erase(found);
  return error;
}

Handset::SendResult Handset::send(const Octets& pdu, const phone::Message& message) {
  if (!message.serviceCentre && state_.centre.empty()) return {.error = cms::centreAddressUnknown};
  if (!isRegistered()) return {.error = cms::noNetworkService};
  if (const auto error = failureOf(Operation::Send)) return {.error = *error};
  // Not worth writing the whole memory anew for: the next change takes it along.
  ++state_.reference;
  const phone::Deliver deliver{
      .serviceCentre = message.serviceCentre ? message.serviceCentre : centre(),
      .originator = number(),
      .protocolId = message.protocolId,
      .dataCoding = message.dataCoding,
      .timeStamp = network_.time(),
      .data = message.data,
  };
  network_.take({ascii(phone::shown(message.peer)), message.content.text, pdu, phone::encodeDeliver(deliver).octets});
  if (message.firstOctet & submit_bits::statusReport) report(message, state_.reference);
  return {.reference = state_.reference};
}

void Handset::report(const phone::Message& message, std::uint8_t reference) {
  const phone::StatusReport report{
      .serviceCentre = message.serviceCentre ? message.serviceCentre : centre(),
      .reference = reference,
      .recipient = message.peer,
      .timeStamp = network_.time(),
      .dischargeTime = network_.time(),
      .status = 0,
  };
  const Octets pdu = phone::encodeStatusReport(report).octets;
  for (Port* const port : ports_) port->announceReport(pdu);
  if (!asksFor(Routing::directReports) && asksFor(Routing::storedReports)) storeReport(pdu);
}

bool Handset::asksFor(int reports) const {
  return std::ranges::any_of(ports_, [=](const Port* port) { return port->settings.routing.reports == reports; });
}

// Where messages arrive. Without room it is lost: a report is not worth keeping the messages behind it waiting.
void Handset::storeReport(const Octets& pdu) {
  const auto slot = state_.memories.add(arrivals(), {Status::ReceivedUnread, pdu});
  if (!slot) return;
  changed();
  for (Port* const port : ports_) port->announceStoredReport(*slot);
  network_.stored(*slot);
}

void Handset::insertSim(std::string pin) {
  asksForPin_ = !pin.empty();
  pin_ = asksForPin_ ? std::move(pin) : std::string(usualPin);
  triesLeft_ = pinTries;
  sim_ = asksForPin_ ? SimState::PinNeeded : SimState::Ready;
  deliverWaiting();
}

// Counts.
bool Handset::isPin(const std::string& pin) {
  if (pin == pin_) {
    triesLeft_ = pinTries;
    return true;
  }
  if (--triesLeft_ == 0) sim_ = SimState::PukNeeded;
  return false;
}

bool Handset::enterPin(const std::string& pin) {
  if (!isPin(pin)) return false;
  sim_ = SimState::Ready;
  deliverWaiting();
  return true;
}

bool Handset::lockSim(bool lock, const std::string& pin) {
  if (!isPin(pin)) return false;
  asksForPin_ = lock;
  return true;
}

bool Handset::changePin(const std::string& pin, std::string newPin) {
  if (!isPin(pin)) return false;
  pin_ = std::move(newPin);
  return true;
}

bool Handset::enterPuk(const std::string& entered, std::string newPin) {
  if (entered != puk) return false;
  insertSim(std::move(newPin));
  sim_ = SimState::Ready;
  deliverWaiting();
  return true;
}

}  // namespace phonesim
