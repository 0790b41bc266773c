#include "phonesim/simulator.h"

#include <algorithm>
#include <ctime>
#include <fstream>
#include <iostream>

#include "phone/pdu/deliver.h"
#include "phonesim/memory_file.h"

namespace phonesim {

namespace {

constexpr std::string_view usualCentre = "+46700000000";

State initialState(const Options& options, std::string& notice) {
  State state;
  state.centre = usualCentre;
  std::string setAside;
  if (!options.memoryFile.empty()) state = loadState(options.memoryFile, std::move(state), setAside);
  if (!setAside.empty()) notice = "not all of " + options.memoryFile + " makes sense: it is kept as " + setAside;
  const auto resize = [](Memory& memory, std::optional<int> capacity) {
    if (!capacity) return;
    if (!memory.slots.empty() && memory.slots.rbegin()->first > *capacity)
      throw std::runtime_error("there are messages in slots above " + std::to_string(*capacity));
    memory.capacity = *capacity;
  };
  resize(state.memories.at(Place::Phone), options.phoneCapacity);
  resize(state.memories.at(Place::Sim), options.simCapacity);
  if (options.centre) state.centre = *options.centre;
  return state;
}

}  // namespace

Simulator::Simulator(Options options)
    : options_(std::move(options)),
      handset_(options_.identity, initialState(options_, loadNotice_), *this),
      alarm_(loop_, [this] { pump(); }) {
  handset_.faults().lineSpeed = options_.lineSpeed;
  if (!options_.pin.empty()) handset_.insertSim(options_.pin);
}

Simulator::~Simulator() {
  if (!options_.terminalLink.empty()) removeLink(options_.terminalLink);
}

void Simulator::run() {
  if (!loadNotice_.empty()) notice(loadNotice_);
  if (options_.exchange) {
    exchange_.emplace(
        loop_, options_.network, options_.identity.number,
        [this](const std::string& mark, Octets pdu) {
          handset_.deliverMarked(mark, std::move(pdu));
          pump();
        },
        [this](const std::string& mark, bool arrived) {
          if (arrived) handset_.forgetTravelling(mark);
          loop_.post([this] { pump(); });
        });
    notice("network " + toText(exchange_->endpoint()));
  }
  if (options_.control) {
    controlListener_.emplace(loop_, *options_.control, [this](std::shared_ptr<Stream> stream) { addOperator(stream); });
    notice("control " + toText(controlListener_->endpoint()));
  }
  openLines();
  if (!options_.script.empty()) readScript();
  if (options_.console) readConsole();
  // That the file cannot be written is told now, not after the first message.
  handset_.changed();
  save();
  loop_.post([this] { pump(); });
  loop_.run();
  handset_.changed();
  save();
}

void Simulator::openLines() {
  if (listener_)
    listener_->reopen();
  else if (options_.listen)
    listener_.emplace(loop_, *options_.listen, [this](std::shared_ptr<Stream> stream) { addLine(stream, "tcp"); });
  if (listener_) notice("tcp " + toText(listener_->endpoint()));
  if (!options_.terminal) return;
  const Terminal terminal = openTerminal(loop_);
  if (!options_.terminalLink.empty()) linkTerminal(options_.terminalLink, terminal.path);
  addLine(terminal.stream, "");
  notice("terminal " + terminal.path);
}

void Simulator::addLine(std::shared_ptr<Stream> stream, const std::string& name) {
  lines_.emplace_back(handset_, stream);
  const auto line = std::prev(lines_.end());
  line->used = !name.empty();
  if (!name.empty()) notice(name + " connected");
  stream->onOctets = [this, line](std::string_view octets) {
    line->used = true;
    line->port.receive(octets, EventLoop::now());
    pump();
  };
  stream->onClosed = [this, line, name] {
    lines_.erase(line);
    notice(name + " disconnected");
    pump();
  };
  stream->start();
  loop_.post([this] { pump(); });
}

Simulator::Operator& Simulator::addOperator(std::shared_ptr<Stream> stream) {
  operators_.push_back({nullptr, stream, {}});
  const auto place = std::prev(operators_.end());
  place->console =
      std::make_unique<Console>(handset_, *this, [place](const std::string& line) { place->answers += line + '\n'; });
  if (stream) {
    stream->onOctets = [this, place](std::string_view octets) {
      place->console->receive(octets);
      pump();
    };
    stream->onClosed = [this, place] { operators_.erase(place); };
    stream->start();
  }
  return *place;
}

void Simulator::readScript() {
  std::ifstream file(options_.script, std::ios::binary);
  if (!file) throw std::runtime_error(options_.script + " cannot be read");
  const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  addOperator(nullptr).console->receive(text + '\n');
}

void Simulator::readConsole() {
  Console& console = *addOperator(nullptr).console;
  readStandardInput(loop_, [this, &console](std::string_view typed) {
    console.receive(typed.empty() ? "\nquit\n" : typed);
    pump();
  });
}

phone::TimeStamp Simulator::time() {
  const std::time_t now = std::time(nullptr);
  // The difference between the same moment here and in UTC, both taken as UTC.
  const std::tm* const here = std::localtime(&now);
  phone::TimeStamp local{here->tm_year + 1900,
                         here->tm_mon + 1,
                         here->tm_mday,
                         here->tm_hour,
                         here->tm_min,
                         std::min(here->tm_sec, 59),
                         0};
  local.quarters = static_cast<int>((phone::utcSeconds(local) - now) / (15 * 60));
  return local;
}

void Simulator::take(const Submission& message) {
  sent_.push_back(message);
  notice("sent " + message.destination + ' ' + inQuotes(message.text));
  Travelling travelling{message.destination, newMark(), message.deliver};
  const bool reachable =
      sameNumber(message.destination, options_.identity.number) || (exchange_ && exchange_->knows(message.destination));
  if (!reachable) {
    if (options_.elsewhere == Elsewhere::Lost) return;
    if (options_.elsewhere == Elsewhere::Answered) {
      const phone::Message sent = phone::decodePdu(message.submit), received = phone::decodePdu(message.deliver);
      travelling.pdu = phone::encodeDeliver({.serviceCentre = received.serviceCentre,
                                             .originator = sent.peer,
                                             .dataCoding = sent.dataCoding,
                                             .timeStamp = time(),
                                             .data = sent.data})
                           .octets;
    }
    travelling.number = options_.identity.number;
  }
  handset_.keepTravelling(std::move(travelling));
}

void Simulator::stored(Slot slot) {
  notice("stored " + std::string(nameOf(slot.place)) + ' ' + std::to_string(slot.number));
}

void Simulator::directly(const Octets&) { notice("handed over"); }

void Simulator::setPlugged(bool plugged) {
  if (std::exchange(plugged_, plugged) == plugged) return;
  if (plugged) {
    openLines();
    return;
  }
  if (listener_) listener_->close();
  lines_.clear();
  if (!options_.terminalLink.empty()) removeLink(options_.terminalLink);
  notice("unplugged");
}

bool Simulator::hasHost() const { return std::ranges::any_of(lines_, &Line::used); }

// Messages to itself arrive at once, the others when their handset can be reached.
void Simulator::travel() {
  std::vector<Travelling> own;
  std::ranges::copy_if(handset_.state().travelling, std::back_inserter(own), [this](const Travelling& message) {
    return sameNumber(message.number, options_.identity.number);
  });
  for (const Travelling& message : own) {
    handset_.forgetTravelling(message.mark);
    handset_.deliver(message.pdu);
  }
  if (exchange_) exchange_->work(handset_.state().travelling);
}

// What has come in is worked off; what has changed is saved; then only is it told: to whoever watches first, who may
// then rely on having seen what a program at a port has an answer to.
void Simulator::pump() {
  const Time now = EventLoop::now();
  std::vector<std::pair<std::shared_ptr<Stream>, std::string>> output;
  const auto collect = [&] {
    for (Line& line : lines_) output.emplace_back(line.stream, line.port.take(now));
  };
  collect();
  travel();
  for (Operator& who : operators_) who.console->advance(now);
  collect();
  save();
  std::cout << std::exchange(notices_, {});
  for (Operator& who : operators_) {
    const std::string answers = std::exchange(who.answers, {});
    if (who.stream)
      who.stream->write(answers);
    else
      std::cout << answers;
  }
  std::cout << std::flush;
  for (const auto& [stream, octets] : output)
    if (!octets.empty()) stream->write(octets);
  if (quits_)
    loop_.stop();
  else
    wakeLater();
}

void Simulator::save() {
  if (!handset_.takeChanged() || options_.memoryFile.empty()) return;
  try {
    saveState(options_.memoryFile, handset_.state());
  } catch (const std::exception& error) {
    notice(std::string("not saved: ") + error.what());
  }
}

void Simulator::wakeLater() {
  std::optional<Time> next;
  const auto consider = [&](std::optional<Time> time) {
    if (time && (!next || *time < *next)) next = time;
  };
  for (const Line& line : lines_) consider(line.port.nextOutput());
  for (const Operator& who : operators_) consider(who.console->nextWork());
  if (exchange_ && !handset_.state().travelling.empty()) consider(exchange_->nextWork());
  if (next)
    alarm_.set(*next);
  else
    alarm_.cancel();
}

std::string Simulator::newMark() {
  static constexpr char digits[] = "0123456789ABCDEF";
  std::string mark;
  for (int i = 0; i < 2; ++i) {
    auto bits = static_cast<std::uint32_t>(random_());
    for (int j = 0; j < 8; ++j, bits >>= 4) mark += digits[bits & 0xF];
  }
  return mark;
}

}  // namespace phonesim
