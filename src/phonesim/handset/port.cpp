#include "phonesim/handset/port.h"

#include <algorithm>
#include <utility>

#include "phone/pdu/hex.h"
#include "phonesim/handset/commands.h"

namespace phonesim {

namespace {

constexpr std::size_t longestLine = 1000;
constexpr std::size_t longestData = 1000;  // a PDU has at most 352 digits
constexpr std::size_t mostInput = 65536;
constexpr std::size_t mostWithheld = 50;

constexpr Time acknowledgementTime{15000};

constexpr char carriageReturn = '\r', lineFeed = '\n', backspace = '\b', rubout = '\x7F', escape = '\x1B',
               done = '\x1A';

// As an overrun of the line's buffer looks like.
std::string garbled(std::string text) {
  for (std::size_t i = 1; i < text.size(); i += 3)
    if (text[i] > ' ') text[i] = '~';
  return text;
}

std::string nameAndNumber(Slot slot) {
  return '"' + std::string(nameOf(slot.place)) + "\"," + std::to_string(slot.number);
}

}  // namespace

void Port::receive(std::string_view octets, Time now) {
  now_ = now;
  if (handset_.faults().silent) return;
  const std::size_t room = mostInput - std::min(mostInput, arriving_.underway());
  arriving_.send(octets.substr(0, room), now, handset_.faults().lineSpeed);
  listen();
}

// What does not fit into the buffer is lost, as on a line without a handshake.
void Port::listen() {
  const std::string octets = arriving_.arrived(now_);
  const std::size_t room = mostInput - std::min(mostInput, input_.size());
  input_.insert(input_.end(), octets.begin(),
                octets.begin() + static_cast<std::ptrdiff_t>(std::min(room, octets.size())));
}

std::string Port::take(Time now) {
  now_ = now;
  expireAcknowledgement();
  listen();
  while (true) {
    work();
    if (output_.empty() || output_.front().due > now_) break;
    if (!handset_.faults().silent) leaving_.send(output_.front().octets, now_, handset_.faults().lineSpeed);
    output_.pop_front();
  }
  return leaving_.arrived(now_);
}

std::optional<Time> Port::nextOutput() const {
  std::optional<Time> next = acknowledgeBy_;
  const auto consider = [&next](std::optional<Time> time) {
    if (time && (!next || *time < *next)) next = time;
  };
  if (!output_.empty()) consider(output_.front().due);
  consider(arriving_.next());
  consider(leaving_.next());
  return next;
}

void Port::restart() {
  settings = {};
  line_.clear();
  lineTooLong_ = false;
  lastLine_.clear();
  rest_.clear();
  continuation_ = nullptr;
  withheld_.clear();
  acknowledgeBy_.reset();
  handset_.giveUpAcknowledgement(*this);
  announcements_ = {"RDY", "+CFUN: 1"};
  if (handset_.sim() == SimState::Ready) announcements_.emplace_back("+CPIN: READY");
}

void Port::work() {
  while (!input_.empty() && !isBusy()) {
    const char c = input_.front();
    input_.pop_front();
    if (continuation_)
      typeData(c);
    else
      typeCommand(c);
  }
  flushAnnouncements();
}

void Port::typeCommand(char c) {
  if (c == lineFeed || c == '\0') return;
  if (c == escape) {
    line_.clear();
    lineTooLong_ = false;
    return;
  }
  if (settings.echo) emit(std::string(1, c));
  if (c == carriageReturn) {
    const std::string line = std::exchange(line_, {});
    if (std::exchange(lineTooLong_, false))
      finish(Result::plainError(), Time{0});
    else
      execute(line);
  } else if (c == backspace || c == rubout) {
    if (!line_.empty()) line_.pop_back();
  } else if (c == '/' && (line_ == "A" || line_ == "a")) {
    line_.clear();
    execute(lastLine_);
  } else if (line_.size() < longestLine) {
    line_ += c;
  } else {
    lineTooLong_ = true;
  }
}

void Port::typeData(char c) {
  if (c == escape) {
    continuation_ = nullptr;
    rest_.clear();
    finish(Result::ok(), Time{0});
  } else if (c == done) {
    const Continuation next = std::exchange(continuation_, nullptr);
    Answer answer;
    const Result result = next(answer, std::exchange(data_, {}));
    if (say(answer, result)) runCommands();
  } else if (typing_ == Typing::Digits) {
    typeDigit(c);
  } else {
    typeText(c);
  }
}

void Port::typeDigit(char c) {
  if (c == lineFeed || c == '\0') return;
  if (settings.echo) emit(std::string(1, c));
  if (c != carriageReturn && c != ' ' && data_.size() < longestData) data_ += c;
}

// The 7-bit alphabet has a character for each code, also for those that mean something else on a line.
void Port::typeText(char c) {
  const bool restOfLineEnd = std::exchange(lineEnded_, c == carriageReturn) && c == lineFeed;
  const bool raw = settings.characters == CharacterSet::Gsm;
  if (restOfLineEnd || (c == '\0' && !raw)) return;
  if (settings.echo) emit(c == carriageReturn ? "\r\n> " : std::string(1, c));
  if (!raw && (c == backspace || c == rubout)) {
    if (!data_.empty()) data_.pop_back();
  } else if (data_.size() < longestData) {
    data_ += c == carriageReturn ? lineFeed : c;
  }
}

void Port::execute(std::string line) {
  const auto body = bodyOf(line);
  if (!body) return;
  rest_ = *body;
  lastLine_ = std::move(line);
  runCommands();
}

void Port::runCommands() {
  while (rest_.find_first_not_of(" ;") != rest_.npos) {
    std::string_view body = rest_;
    const auto command = takeCommand(body);
    rest_ = command ? std::string(body) : "";
    if (!command) {
      finish(Result::plainError(), Time{0});
      return;
    }
    Answer answer;
    const Result result = run({*this, *command, answer});
    if (!say(answer, result)) return;
  }
  finish(Result::ok(), Time{0});
}

// True when the line's next command may run.
bool Port::say(const Answer& answer, const Result& result) {
  if (answer.lost) {
    rest_.clear();
    return false;
  }
  for (const Answer::Information& information : answer.information) emitLine(information.text, information.takes);
  if (result.kind == Result::Kind::Ok) return true;
  if (result.kind == Result::Kind::Prompt) {
    data_.clear();
    lineEnded_ = true;  // the command's, to which a line feed may still belong
    emit("\r\n> ");
    return false;
  }
  rest_.clear();
  finish(result, answer.resultTakes);
  return false;
}

void Port::finish(const Result& result, Time takes) {
  Faults& faults = handset_.faults();
  if (faults.lateAnswers > 0) {
    --faults.lateAnswers;
    takes += faults.lateness;
  }
  if (settings.quiet) return;
  if (settings.verbose)
    emitLine(finalLine(result), takes);
  else
    emit(finalLine(result) + '\r', takes);
}

std::string Port::finalLine(const Result& result) const {
  switch (result.kind) {
    case Result::Kind::Ok:
      return settings.verbose ? "OK" : "0";
    case Result::Kind::NoCarrier:
      return settings.verbose ? "NO CARRIER" : "3";
    case Result::Kind::Error:
      if (settings.errors != ErrorStyle::Plain) return errorLine(result.family, result.number, settings.errors);
      break;
    default:
      break;
  }
  return settings.verbose ? "ERROR" : "4";
}

void Port::emitLine(std::string_view text, Time takes) {
  Faults& faults = handset_.faults();
  if (faults.garbledLines > 0) {
    --faults.garbledLines;
    emit(framed(garbled(std::string(text))), takes);
  } else if (faults.halvedLines > 0) {
    --faults.halvedLines;
    emit("\r\n" + std::string(text.substr(0, text.size() / 2)), takes);
  } else {
    emit(framed(text), takes);
  }
}

void Port::emit(std::string octets, Time takes) {
  const Time start = output_.empty() ? now_ : std::max(now_, output_.back().due);
  const Time due = start + takes;
  if (!output_.empty() && output_.back().due == due)
    output_.back().octets += octets;
  else
    output_.push_back({due, std::move(octets)});
}

std::string Port::framed(std::string_view text) const {
  return (settings.verbose ? "\r\n" : "") + std::string(text) + "\r\n";
}

std::string Port::lengthAndPdu(const Octets& pdu) {
  return std::to_string(phone::tpduLength(pdu).value_or(pdu.size())) + "\r\n" + phone::toHex(pdu);
}

TextView Port::textView(const Octets& pdu) const {
  return {pdu, settings.characters, settings.details, handset_.centre()};
}

void Port::setRouting(const Routing& routing) {
  settings.routing = routing;
  if (routing.mode != 0) {
    if (routing.buffered == 0) std::ranges::move(withheld_, std::back_inserter(announcements_));
    withheld_.clear();
  }
  handset_.deliverWaiting();
}

bool Port::takesDirectly(std::optional<int> messageClass) const {
  const Routing& routing = settings.routing;
  if (routing.mode == 0) return false;
  return routing.messages == 2 ? messageClass != 2 : routing.messages == 3 && messageClass == 3;
}

void Port::announceMessage(const Octets& pdu) {
  if (settings.smsService == 1) acknowledgeBy_ = now_ + acknowledgementTime;
  announceRouted("+CMT: " + (settings.textMode ? textView(pdu).arrived() : ',' + lengthAndPdu(pdu)));
}

// A host that asked for messages and does not acknowledge them gets no more of them (3GPP TS 27.005, 3.4.4).
void Port::expireAcknowledgement() {
  if (!acknowledgeBy_ || (handset_.awaitsAcknowledgement(*this) && now_ < *acknowledgeBy_)) return;
  acknowledgeBy_.reset();
  if (!handset_.awaitsAcknowledgement(*this)) return;
  settings.routing.messages = 0;
  settings.routing.reports = 0;
  handset_.giveUpAcknowledgement(*this);
}

void Port::announceReport(const Octets& pdu) {
  if (settings.routing.reports != Routing::directReports) return;
  announceRouted("+CDS: " + (settings.textMode ? textView(pdu).reported() : lengthAndPdu(pdu)));
}

void Port::announceStored(Slot slot) {
  if (settings.routing.messages != 0) announceRouted("+CMTI: " + nameAndNumber(slot));
}

void Port::announceStoredReport(Slot slot) {
  if (settings.routing.reports == Routing::storedReports) announceRouted("+CDSI: " + nameAndNumber(slot));
}

void Port::announceRegistration() {
  const auto announceIfWanted = [this](const char* name, int reports) {
    if (reports > 0) announce(name + registrationText(reports));
  };
  announceIfWanted("+CREG: ", settings.registrationReports);
  announceIfWanted("+CGREG: ", settings.packetRegistrationReports);
}

std::string Port::registrationText(int reports) const {
  constexpr int withCell = 2;
  std::string text = std::to_string(static_cast<int>(handset_.registration()));
  if (reports == withCell && handset_.isRegistered()) text += R"(,"0001","0001")";
  return text;
}

void Port::announceRouted(std::string line) {
  if (settings.routing.mode != 0) {
    announce(std::move(line));
    return;
  }
  withheld_.push_back(std::move(line));
  if (withheld_.size() > mostWithheld) withheld_.pop_front();
}

// Not into an answer, and not into what a host is typing.
void Port::flushAnnouncements() {
  if (isBusy() || continuation_ || !line_.empty()) return;
  for (const std::string& line : std::exchange(announcements_, {})) emitLine(line, Time{0});
}

}  // namespace phonesim
