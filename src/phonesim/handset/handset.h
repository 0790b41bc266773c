// The handset behind all its ports: identity, SIM, memories, the radio, and what goes wrong on purpose.
//
// It does nothing by itself: hosts give it commands through ports (port.h), the network gives it messages, whoever
// plays with it gives it faults. There is no clock in it but the caller's.
#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "phone/pdu/decode.h"
#include "phonesim/handset/state.h"

namespace phonesim {

class Port;

// Any clock that does not run backwards.
using Time = std::chrono::milliseconds;

struct Identity {
  std::string manufacturer = "Marrick";
  std::string model = "Simulated handset";
  std::string revision = "1.0.0";
  std::string imei = "004999010640000";
  std::string imsi = "001010123456789";
  std::string number = "+46700000001";  // its own
};

enum class SimState { Ready, PinNeeded, PukNeeded, Absent };

// As +CREG tells it (3GPP TS 27.007, 7.2).
enum class Registration { Off = 0, Home = 1, Searching = 2, Denied = 3, Roaming = 5 };

enum class Operation { Send, List, Read, Write, Delete };

inline constexpr int fastestLine = 10'000'000;  // bits per second

// What whoever plays with the handset has prepared.
struct Faults {
  struct Failure {
    int times = 0;
    int error = 0;  // a +CMS ERROR
  };
  std::map<Operation, Failure> failures;  // the next `times` operations
  int lostAnswers = 0;                    // the next sends succeed, but their answers never come
  int lateAnswers = 0;                    // the next results come later by `lateness`
  Time lateness{0};
  int garbledLines = 0;  // the next lines arrive with wrong characters
  int halvedLines = 0;   // of the next lines, only the first half arrives
  bool silent = false;   // no answer, whatever is asked

  // Not faults, but how long things take.
  Time sendTime{0};     // from the end of the PDU to the result
  Time listingTime{0};  // each message of a listing
  int lineSpeed = 0;    // bits per second; 0: octets take no time
};

// A message that the network has taken.
struct Submission {
  std::string destination;  // as people write it
  std::u16string text;      // of this part
  Octets submit;            // the PDU as the host gave it
  Octets deliver;           // as the destination will receive it
};

// What the handset is connected with: the message centre and whoever watches.
class Network {
 public:
  virtual phone::TimeStamp time() = 0;
  virtual void take(const Submission& message) = 0;
  virtual void stored(Slot) {}             // a message has arrived there
  virtual void directly(const Octets&) {}  // a message went straight to a host

 protected:
  ~Network() = default;
};

class Handset {
 public:
  Handset(Identity identity, State state, Network& network);

  const Identity& identity() const { return identity_; }
  phone::Address number() const;  // its own
  const State& state() const { return state_; }
  PhoneBook& contacts(Place place) { return state_.contacts.at(place); }
  Memories& memories() { return state_.memories; }
  Faults& faults() { return faults_; }

  // True once after every change of what is to be remembered: save it before the host hears of it.
  bool takeChanged() { return std::exchange(changed_, false); }
  void changed() { changed_ = true; }

  // ---- what the network does ----
  // A message arrives: at a host that wants it directly, in a memory, or in the queue when there is no room.
  enum class Arrival { Direct, Stored, Waiting };
  Arrival deliver(Octets pdu);
  // Room has come about, or a host wants messages now: what waits may arrive.
  void deliverWaiting();
  // One that another handset has sent. The same mark again is the same message: it is not taken twice.
  void deliverMarked(const std::string& mark, Octets pdu);
  // Messages for other handsets that have not arrived there.
  void keepTravelling(Travelling message) { state_.travelling.push_back(std::move(message)), changed(); }
  void forgetTravelling(std::string_view mark);
  void setRegistration(Registration registration);
  Registration registration() const { return radioOn_ ? registration_ : Registration::Off; }
  void setSignal(int bars) { signal_ = bars; }
  bool isRegistered() const;
  int signal() const;  // 99: unknown

  // ---- what a host does ----
  struct SendResult {
    int error = 0;  // a +CMS ERROR, or 0
    std::uint8_t reference = 0;
  };
  // A complete PDU, service centre in front, that decodes as a Submit.
  SendResult send(const Octets& pdu, const phone::Message& message);
  // Consumes one of the failures that were prepared.
  std::optional<int> failureOf(Operation operation);

  std::optional<phone::Address> centre() const;
  void setCentre(std::string centre) { state_.centre = std::move(centre), changed(); }
  View arrivals() const { return state_.memories.nearest(arrivals_); }  // mem3 of +CPMS
  void setArrivals(View view) { arrivals_ = view; }
  void setRadio(bool on);
  bool isRadioOn() const { return radioOn_; }

  // What a host says of the last message that it got directly (+CNMA). False when none is open.
  bool acknowledge(bool kept);
  bool awaitsAcknowledgement(const Port& port) const { return acknowledges_ == &port; }
  // It will not come from there any more: the message goes elsewhere.
  void giveUpAcknowledgement(const Port& port);
  phone::TimeStamp time() const { return network_.time(); }

  // ---- the SIM ----
  SimState sim() const { return sim_; }
  void insertSim(std::string pin);  // empty: none is asked for
  void removeSim() { sim_ = SimState::Absent; }
  bool enterPin(const std::string& pin);
  bool enterPuk(const std::string& puk, std::string newPin);
  bool asksForPin() const { return asksForPin_; }
  // Both want the present PIN, also of a SIM that asks for none. Three wrong ones in a row, and it wants the PUK.
  bool lockSim(bool lock, const std::string& pin);
  bool changePin(const std::string& pin, std::string newPin);

  static constexpr std::string_view usualPin = "0000";

  // Every port, for as long as it lives.
  void attach(Port& port) { ports_.push_back(&port); }
  void detach(Port& port);
  const std::vector<Port*>& ports() const { return ports_; }

  static constexpr std::string_view puk = "12345678";

 private:
  bool isPin(const std::string& pin);
  std::optional<Arrival> arrive(const Octets& pdu);
  void report(const phone::Message& message, std::uint8_t reference);
  bool asksFor(int reports) const;  // whether any host does, with +CNMI
  void storeReport(const Octets& pdu);

  Identity identity_;
  State state_;
  Network& network_;
  Faults faults_;
  std::vector<Port*> ports_;
  const Port* acknowledges_ = nullptr;  // has the message that nobody has acknowledged yet
  View arrivals_ = View::Both;
  SimState sim_ = SimState::Ready;
  std::string pin_{usualPin};
  bool asksForPin_ = false;
  int triesLeft_ = 3;
  Registration registration_ = Registration::Home;
  int signal_ = 23;
  bool radioOn_ = true;
  Arrival lastArrival_ = Arrival::Waiting;
  bool changed_ = false;
};

}  // namespace phonesim
