// One of the handset's serial ports: what a host writes comes in as octets, what it reads goes out as octets. Each port
// has its own settings and its own dialogue (ITU-T V.250; 3GPP TS 27.005, TS 27.007); memories and radio are shared.
//
//   port.receive("AT+CMGL=4\r", now);
//   while the port has something to say: write(port.take(now)), again at port.nextOutput()
#pragma once

#include <deque>
#include <functional>
#include <string>
#include <string_view>

#include "phonesim/handset/character_set.h"
#include "phonesim/handset/command_line.h"
#include "phonesim/handset/errors.h"
#include "phonesim/handset/handset.h"
#include "phonesim/handset/pace.h"
#include "phonesim/handset/text_mode.h"

namespace phonesim {

// New-message routing: +CNMI (3GPP TS 27.005, 3.4.1).
struct Routing {
  int mode = 0;
  int messages = 0;
  int broadcasts = 0;
  enum Reports { noReports = 0, directReports = 1, storedReports = 2 };
  int reports = noReports;
  int buffered = 0;
};

// What +CPBS chooses from: the SIM's, the phone's, the handset's own number.
enum class BookName { Sim, Phone, Own };

// What ATZ and AT&F put back.
struct Settings {
  bool echo = true;
  bool verbose = true;
  bool quiet = false;
  ErrorStyle errors = ErrorStyle::Plain;
  CharacterSet characters = CharacterSet::Gsm;
  View listing = View::Sim;           // mem1 of +CPMS, as it was asked for
  View writing = View::Sim;           // mem2
  int smsService = 0;                 // +CSMS
  int burst = 0;                      // +CMMS
  int registrationReports = 0;        // +CREG
  int packetRegistrationReports = 0;  // +CGREG
  int operatorFormat = 0;
  bool textMode = false;  // +CMGF
  bool details = false;   // +CSDH
  TextParameters text;
  struct Broadcasts {
    int mode = 0;
    std::string messages, codings;
  };
  Broadcasts broadcasts;  // +CSCB
  BookName phoneBook = BookName::Sim;
  struct Services {
    int caller = 0, called = 0, ring = 0, codes = 0, own = 0, other = 0, waiting = 0;
  };
  Services services;  // what is to be told of calls, should there be any
  Routing routing;
};

// How a command went.
struct Result {
  enum class Kind { Ok, Error, Plain, NoCarrier, Prompt };
  Kind kind = Kind::Ok;
  ErrorFamily family = ErrorFamily::Message;
  int number = 0;

  static Result ok() { return {}; }
  static Result cms(int number) { return {Kind::Error, ErrorFamily::Message, number}; }
  static Result cme(int number) { return {Kind::Error, ErrorFamily::Equipment, number}; }
  static Result plainError() { return {Kind::Plain}; }
  static Result noCarrier() { return {Kind::NoCarrier}; }
  static Result prompt() { return {Kind::Prompt}; }
};

// What a command says before its result, and how long it takes.
struct Answer {
  struct Information {
    std::string text;
    Time takes{0};
  };
  std::vector<Information> information;
  Time resultTakes{0};
  bool lost = false;  // neither information nor result ever arrive

  void line(std::string text, Time takes = Time{0}) { information.push_back({std::move(text), takes}); }
};

class Port {
 public:
  explicit Port(Handset& handset) : handset_(handset) { handset_.attach(*this); }
  ~Port() { handset_.detach(*this); }
  Port(const Port&) = delete;
  Port& operator=(const Port&) = delete;

  void receive(std::string_view octets, Time now);
  // What is to be written by now.
  std::string take(Time now);
  // When take() should be asked again without anything having happened; nothing when there is no need.
  std::optional<Time> nextOutput() const;

  // An unsolicited line, at once, whatever is going on.
  void interject(std::string_view line) { output_.push_front({Time{0}, framed(line)}); }
  // One as soon as no command is running.
  void announce(std::string line) { announcements_.push_back(std::move(line)); }
  // The phone starts again: all settings and everything half done are gone.
  void restart();

  // ---- for the handset ----
  bool takesDirectly(std::optional<int> messageClass) const;
  void announceMessage(const Octets& pdu);
  void announceStored(Slot slot);
  void announceRegistration();
  void announceReport(const Octets& pdu);
  void announceStoredReport(Slot slot);

  // ---- for the commands ----
  using Continuation = std::function<Result(Answer&, std::string_view typed)>;
  Settings settings;
  Handset& handset() const { return handset_; }
  View listing() const { return handset_.state().memories.nearest(settings.listing); }
  View writing() const { return handset_.state().memories.nearest(settings.writing); }
  // What is typed after the prompt goes there.
  enum class Typing { Digits, Text };
  void awaitData(Typing typing, Continuation continuation) {
    typing_ = typing;
    continuation_ = std::move(continuation);
  }
  // A PDU as this port tells it.
  TextView textView(const Octets& pdu) const;
  static std::string lengthAndPdu(const Octets& pdu);
  // The state, and the cell for reports that are to tell it.
  std::string registrationText(int reports) const;
  void setRouting(const Routing& routing);

 private:
  struct Piece {
    Time due;
    std::string octets;
  };

  void listen();
  bool isBusy() const { return !output_.empty() && output_.back().due > now_; }
  void work();
  void expireAcknowledgement();
  void typeCommand(char c);
  void typeData(char c);
  void typeDigit(char c);
  void typeText(char c);
  void execute(std::string line);
  void runCommands();
  bool say(const Answer& answer, const Result& result);
  void finish(const Result& result, Time takes);
  void emit(std::string octets, Time takes = Time{0});
  std::string framed(std::string_view text) const;
  std::string finalLine(const Result& result) const;
  void emitLine(std::string_view text, Time takes);
  void announceRouted(std::string line);
  void flushAnnouncements();

  Handset& handset_;
  Time now_{0};
  Pace arriving_, leaving_;  // on the line
  std::deque<char> input_;
  std::string line_;  // what was typed of the next command line
  bool lineTooLong_ = false;
  std::string lastLine_;  // for A/
  std::string rest_;      // commands of the present line that have not run yet
  Continuation continuation_;
  Typing typing_ = Typing::Digits;
  bool lineEnded_ = false;  // what was typed last
  std::string data_;
  std::deque<Piece> output_;
  std::deque<std::string> announcements_;
  std::optional<Time> acknowledgeBy_;  // the last message that was handed over
  std::deque<std::string> withheld_;   // for as long as +CNMI says mode 0
};

}  // namespace phonesim
