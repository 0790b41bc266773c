#include "phonesim/console/console.h"

#include <algorithm>
#include <charconv>

#include "phone/pdu/deliver.h"
#include "phone/pdu/hex.h"
#include "phone/text/gsm_alphabet.h"
#include "phonesim/handset/errors.h"
#include "phonesim/handset/port.h"

namespace phonesim {

struct Console::Command {
  std::u16string_view name;
  std::size_t least;  // words behind the name
  std::size_t most;
  std::string (Console::*run)(const Words&);
};

namespace {

constexpr std::size_t longestTyped = 65536;

int numberIn(const std::u16string& word, int least, int most) {
  const std::string digits = toUtf8(word);
  int value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (error != std::errc() || end != digits.data() + digits.size() || value < least || value > most)
    throw ConsoleError('"' + digits + "\" is not a number from " + std::to_string(least) + " to " +
                       std::to_string(most));
  return value;
}

// The word at that position, or a value for one that was left out.
int numberAt(const std::vector<std::u16string>& words, std::size_t position, int least, int most, int absent) {
  return position < words.size() ? numberIn(words[position], least, most) : absent;
}

template <class Value, std::size_t N>
Value oneOf(const std::u16string& word, const std::pair<std::u16string_view, Value> (&choices)[N]) {
  std::string names;
  for (const auto& [name, value] : choices) {
    if (word == name) return value;
    names += (names.empty() ? "" : ", ") + toUtf8(name);
  }
  throw ConsoleError(inQuotes(word) + " is none of: " + names);
}

constexpr std::pair<std::u16string_view, Place> places[] = {{u"ME", Place::Phone}, {u"SM", Place::Sim}};
constexpr std::pair<std::u16string_view, Status> statuses[] = {{u"unread", Status::ReceivedUnread},
                                                               {u"read", Status::ReceivedRead},
                                                               {u"unsent", Status::StoredUnsent},
                                                               {u"sent", Status::StoredSent}};
constexpr std::pair<std::u16string_view, Operation> operations[] = {{u"send", Operation::Send},
                                                                    {u"list", Operation::List},
                                                                    {u"read", Operation::Read},
                                                                    {u"write", Operation::Write},
                                                                    {u"delete", Operation::Delete}};
constexpr std::pair<std::u16string_view, Registration> registrations[] = {{u"off", Registration::Off},
                                                                          {u"home", Registration::Home},
                                                                          {u"searching", Registration::Searching},
                                                                          {u"denied", Registration::Denied},
                                                                          {u"roaming", Registration::Roaming}};

template <class Value, std::size_t N>
std::string nameIn(Value value, const std::pair<std::u16string_view, Value> (&choices)[N]) {
  const auto found = std::ranges::find(choices, value, &std::pair<std::u16string_view, Value>::second);
  return found == std::end(choices) ? "?" : toUtf8(found->first);
}

phone::Address senderIn(const std::u16string& word) {
  if (auto number = phone::parseNumber(word)) return *number;
  if (word.empty() || word.size() > phone::mostNameLetters || !phone::fitsGsmAlphabet(word))
    throw ConsoleError(inQuotes(word) + " is neither a number nor a name of at most eleven letters");
  return {phone::NumberType::Alphanumeric, 0, word};
}

Octets pduIn(const std::u16string& word) {
  auto pdu = phone::fromHex(toUtf8(word));
  if (!pdu || pdu->size() > longestPdu || !phone::tpduLength(*pdu))
    throw ConsoleError(inQuotes(word) + " is no PDU in hexadecimal");
  return *pdu;
}

std::string describe(const Octets& pdu) {
  const phone::Message message = phone::decodePdu(pdu);
  std::string text = inQuotes(phone::shown(message.peer));
  if (message.timeStamp) text += ' ' + toUtf8(phone::twelveDigits(*message.timeStamp));
  if (message.concatenation)
    text += " part " + std::to_string(message.concatenation->part) + '/' + std::to_string(message.concatenation->total);
  return text + ' ' + inQuotes(message.content.text);
}

phone::Deliver delivery(Handset& handset, const phone::Address& sender) {
  const std::string& centre = handset.state().centre;
  return {.serviceCentre = phone::parseNumber(std::u16string(centre.begin(), centre.end())),
          .originator = sender,
          .timeStamp = handset.time(),
          .data = {}};
}

std::string nameOf(Handset::Arrival arrival) {
  return arrival == Handset::Arrival::Direct ? "direct" : arrival == Handset::Arrival::Stored ? "stored" : "waiting";
}

}  // namespace

const Console::Command* Console::find(std::u16string_view name) {
  static constexpr Command commands[] = {
      {u"help", 0, 0, &Console::help},         {u"status", 0, 0, &Console::status},
      {u"list", 0, 1, &Console::list},         {u"sent", 0, 1, &Console::sent},
      {u"deliver", 2, 2, &Console::deliver},   {u"deliver-pdu", 1, 1, &Console::deliverPdu},
      {u"store", 3, 3, &Console::store},       {u"fill", 1, 2, &Console::fill},
      {u"take", 2, 2, &Console::take},         {u"clear", 1, 1, &Console::clear},
      {u"capacity", 2, 2, &Console::capacity}, {u"centre", 1, 1, &Console::centre},
      {u"fail", 1, 3, &Console::fail},         {u"late", 1, 2, &Console::late},
      {u"slow", 2, 2, &Console::slow},         {u"speed", 1, 1, &Console::speed},
      {u"lose", 0, 1, &Console::lose},         {u"garble", 0, 1, &Console::garble},
      {u"halve", 0, 1, &Console::halve},       {u"silent", 0, 0, &Console::silent},
      {u"speak", 0, 0, &Console::speak},       {u"noise", 1, 1, &Console::noise},
      {u"restart", 0, 0, &Console::restart},   {u"unplug", 0, 0, &Console::unplug},
      {u"plug", 0, 0, &Console::plug},         {u"network", 1, 1, &Console::network},
      {u"signal", 1, 1, &Console::signal},     {u"sim", 1, 2, &Console::sim},
      {u"wait", 1, 1, &Console::wait},         {u"quit", 0, 0, &Console::quit},
      {u"contact", 3, 3, &Console::contact},   {u"contacts", 0, 0, &Console::contacts},
  };
  const auto found = std::ranges::find(commands, name, &Command::name);
  return found == std::end(commands) ? nullptr : &*found;
}

std::string_view Console::helpText() {
  return R"(deliver NUMBER TEXT       a message arrives; NUMBER may be a name of at most eleven letters
deliver-pdu PDU           the same with a PDU, service centre in front
list [ME|SM]              what is in the memories
store ME|SM STATUS PDU    puts a PDU there; STATUS: unread, read, unsent, sent
fill ME|SM [LEAVE]        fills the memory with old messages, but for LEAVE slots
take ME|SM SLOT           removes a message, as if somebody had deleted it on the phone
clear ME|SM               removes all
capacity ME|SM NUMBER     changes the number of slots; 0: there is no such memory
contact ME|SM NUMBER NAME  adds an entry to the phone book; NAME has at most 18 letters
contacts                  what is in the phone books
sent [clear]              what was sent since the start, and by which service centre; or forgets it
centre NUMBER             the service centre that the SIM knows; "" for none
fail OPERATION [COUNT [ERROR]]  the next operations fail with that +CMS ERROR; send, list, read, write, delete
lose [COUNT]              the next sends succeed, but their answers never come
late MS [COUNT]           the next results come that much later
slow send|list MS         how long a send takes, or each message of a listing
speed BITS                per second, as a serial line has it; 0: as fast as it can
garble [COUNT]            the next lines arrive with wrong characters
halve [COUNT]             of the next lines, only the first half arrives
silent                    the phone does not answer any more
speak                     it does again
noise LINE                an unsolicited line, at once, even into an answer
restart                   the phone starts again: its settings are the defaults
unplug, plug              the cable
network STATE             off, home, searching, denied, roaming
signal NUMBER             0 to 31
sim in [PIN]|out          puts the SIM in, with a PIN or without; takes it out
wait MS|sent|host         before the next line: time, a message sent, a program connected
status, help, quit)";
}

void Console::receive(std::string_view octets) {
  for (const char c : octets) {
    if (c == '\n') {
      if (typed_.ends_with('\r')) typed_.pop_back();
      lines_.push_back(std::exchange(typed_, {}));
    } else if (typed_.size() < longestTyped) {
      typed_ += c;
    }
  }
}

void Console::advance(Time now) {
  now_ = now;
  if (waitsUntil_ && *waitsUntil_ <= now) waitsUntil_.reset();
  if (waitsForSent_ && host_.sent().size() > *waitsForSent_) waitsForSent_.reset();
  if (waitsForHost_ && host_.hasHost()) waitsForHost_ = false;
  while (!lines_.empty() && !isWaiting()) {
    const std::string line = std::move(lines_.front());
    lines_.pop_front();
    execute(line);
  }
}

void Console::execute(const std::string& line) {
  try {
    const Words words = splitWords(line);
    if (words.empty() || words[0].starts_with(u'#')) return;
    const Command* const command = find(words[0]);
    if (!command) throw ConsoleError("no command " + inQuotes(words[0]) + "; try help");
    if (words.size() - 1 < command->least || words.size() - 1 > command->most)
      throw ConsoleError(toUtf8(words[0]) + ": wrong number of words; try help");
    const std::string told = (this->*command->run)(words);
    answer_(told.empty() ? "ok" : "ok " + told);
  } catch (const std::exception& error) {
    answer_(std::string("error ") + error.what());
  }
}

std::string Console::help(const Words&) {
  std::string_view rest = helpText();
  while (!rest.empty()) {
    const auto end = std::min(rest.find('\n'), rest.size());
    tell(std::string(rest.substr(0, end)));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return "";
}

std::string Console::status(const Words&) {
  const Memories& memories = handset_.state().memories;
  tell("number " + handset_.identity().number);
  tell("centre " + handset_.state().centre);
  for (const auto& [name, place] : places)
    tell("memory " + toUtf8(name) + ' ' + std::to_string(memories.at(place).used()) + " of " +
         std::to_string(memories.at(place).capacity));
  tell("waiting " + std::to_string(handset_.state().waiting.size() + (handset_.state().unacknowledged ? 1 : 0)));
  tell("travelling " + std::to_string(handset_.state().travelling.size()));
  tell("sent " + std::to_string(host_.sent().size()));
  tell("network " + nameIn(handset_.registration(), registrations));
  tell(std::string("plugged ") + (host_.isPlugged() ? "in" : "out"));
  tell("ports " + std::to_string(handset_.ports().size()));
  return "";
}

std::string Console::list(const Words& words) {
  int count = 0;
  for (const auto& [name, place] : places) {
    if (words.size() > 1 && oneOf(words[1], places) != place) continue;
    for (const auto& [slot, message] : handset_.memories().at(place).slots) {
      tell(toUtf8(name) + ' ' + std::to_string(slot) + ' ' + nameIn(message.status, statuses) + ' ' +
           describe(message.pdu));
      ++count;
    }
  }
  return std::to_string(count);
}

std::string Console::contact(const Words& words) {
  const Place place = oneOf(words[1], places);
  const auto number = phone::parseNumber(words[2]);
  if (!number) throw ConsoleError(inQuotes(words[2]) + " is no number");
  if (words[3].size() > longestName) throw ConsoleError(inQuotes(words[3]) + " is too long");
  PhoneBook& book = handset_.contacts(place);
  const auto index = book.freeIndex();
  if (!index) throw ConsoleError("the phone book is full");
  book.put(*index, {*number, words[3]});
  handset_.changed();
  return toUtf8(words[1]) + ' ' + std::to_string(*index);
}

std::string Console::contacts(const Words&) {
  int count = 0;
  for (const auto& [name, place] : places) {
    for (const auto& [index, entry] : handset_.contacts(place).entries()) {
      tell(toUtf8(name) + ' ' + std::to_string(index) + ' ' + toUtf8(phone::shown(entry.number)) + ' ' +
           inQuotes(entry.name));
      ++count;
    }
  }
  return std::to_string(count);
}

std::string Console::sent(const Words& words) {
  if (words.size() > 1) {
    static constexpr std::pair<std::u16string_view, bool> choices[] = {{u"clear", true}};
    oneOf(words[1], choices);
    host_.clearSent();
    return "";
  }
  for (const Submission& message : host_.sent()) {
    const auto centre = phone::decodePdu(message.submit).serviceCentre;
    tell(message.destination + ' ' + describe(message.submit) + (centre ? " by " + toUtf8(phone::shown(*centre)) : ""));
  }
  return std::to_string(host_.sent().size());
}

std::string Console::deliver(const Words& words) {
  const phone::Deliver like = delivery(handset_, senderIn(words[1]));
  std::string last;
  for (const auto& part : phone::encodeDeliver(like, words[2], ++reference_))
    last = nameOf(handset_.deliver(part.octets));
  return last;
}

std::string Console::deliverPdu(const Words& words) { return nameOf(handset_.deliver(pduIn(words[1]))); }

std::string Console::store(const Words& words) {
  const Place place = oneOf(words[1], places);
  const auto slot = handset_.memories().at(place).add({oneOf(words[2], statuses), pduIn(words[3])});
  if (!slot) throw ConsoleError("the memory is full");
  handset_.changed();
  return std::to_string(*slot);
}

std::string Console::fill(const Words& words) {
  Memory& memory = handset_.memories().at(oneOf(words[1], places));
  const int leave = numberAt(words, 2, 0, maximalCapacity, 0);
  const phone::Deliver like = delivery(handset_, *phone::parseNumber(u"+46700000099"));
  int count = 0;
  for (; memory.used() < memory.capacity - leave; ++count) {
    const std::string text = "Old message " + std::to_string(count + 1);
    const auto parts = phone::encodeDeliver(like, std::u16string(text.begin(), text.end()), 0);
    memory.add({Status::ReceivedRead, parts.front().octets});
  }
  handset_.changed();
  return std::to_string(count);
}

std::string Console::take(const Words& words) {
  const Slot slot{oneOf(words[1], places), numberIn(words[2], 1, maximalCapacity)};
  if (!handset_.memories().find(slot)) throw ConsoleError("that slot is empty");
  handset_.memories().remove(slot);
  handset_.changed();
  handset_.deliverWaiting();
  return "";
}

std::string Console::clear(const Words& words) {
  Memory& memory = handset_.memories().at(oneOf(words[1], places));
  const int count = memory.used();
  memory.slots.clear();
  handset_.changed();
  handset_.deliverWaiting();
  return std::to_string(count);
}

std::string Console::capacity(const Words& words) {
  Memory& memory = handset_.memories().at(oneOf(words[1], places));
  const int capacity = numberIn(words[2], 0, maximalCapacity);
  if (!memory.slots.empty() && memory.slots.rbegin()->first > capacity)
    throw ConsoleError("there is a message in slot " + std::to_string(memory.slots.rbegin()->first));
  memory.capacity = capacity;
  handset_.changed();
  handset_.deliverWaiting();
  return "";
}

std::string Console::centre(const Words& words) {
  if (!words[1].empty() && !phone::parseNumber(words[1])) throw ConsoleError(inQuotes(words[1]) + " is no number");
  handset_.setCentre(words[1].empty() ? "" : toUtf8(phone::shown(*phone::parseNumber(words[1]))));
  return "";
}

// Times and milliseconds.
constexpr int enough = 1000000;

std::string Console::fail(const Words& words) {
  const Operation operation = oneOf(words[1], operations);
  constexpr int networkOutOfOrder = 38;
  const int usual = operation == Operation::Send ? networkOutOfOrder : cms::memoryFailure;
  handset_.faults().failures[operation] = {numberAt(words, 2, 1, enough, 1), numberAt(words, 3, 1, 999, usual)};
  return "";
}

std::string Console::late(const Words& words) {
  handset_.faults().lateness = Time(numberIn(words[1], 0, enough));
  handset_.faults().lateAnswers = numberAt(words, 2, 1, enough, 1);
  return "";
}

std::string Console::slow(const Words& words) {
  static constexpr std::pair<std::u16string_view, Time Faults::*> choices[] = {{u"send", &Faults::sendTime},
                                                                               {u"list", &Faults::listingTime}};
  handset_.faults().*oneOf(words[1], choices) = Time(numberIn(words[2], 0, enough));
  return "";
}

std::string Console::speed(const Words& words) {
  handset_.faults().lineSpeed = numberIn(words[1], 0, fastestLine);
  return "";
}

std::string Console::lose(const Words& words) {
  handset_.faults().lostAnswers = numberAt(words, 1, 1, enough, 1);
  return "";
}

std::string Console::garble(const Words& words) {
  handset_.faults().garbledLines = numberAt(words, 1, 1, enough, 1);
  return "";
}

std::string Console::halve(const Words& words) {
  handset_.faults().halvedLines = numberAt(words, 1, 1, enough, 1);
  return "";
}

std::string Console::silent(const Words&) {
  handset_.faults().silent = true;
  return "";
}

std::string Console::speak(const Words&) {
  handset_.faults().silent = false;
  return "";
}

std::string Console::noise(const Words& words) {
  for (Port* const port : handset_.ports()) port->interject(toUtf8(words[1]));
  return "";
}

std::string Console::restart(const Words&) {
  for (Port* const port : handset_.ports()) port->restart();
  return "";
}

std::string Console::unplug(const Words&) {
  host_.setPlugged(false);
  return "";
}

std::string Console::plug(const Words&) {
  host_.setPlugged(true);
  return "";
}

std::string Console::network(const Words& words) {
  handset_.setRegistration(oneOf(words[1], registrations));
  return "";
}

std::string Console::signal(const Words& words) {
  handset_.setSignal(numberIn(words[1], 0, 31));
  return "";
}

std::string Console::sim(const Words& words) {
  static constexpr std::pair<std::u16string_view, bool> choices[] = {{u"in", true}, {u"out", false}};
  if (oneOf(words[1], choices))
    handset_.insertSim(words.size() > 2 ? toUtf8(words[2]) : "");
  else
    handset_.removeSim();
  return "";
}

std::string Console::wait(const Words& words) {
  if (words[1] == u"sent")
    waitsForSent_ = host_.sent().size();
  else if (words[1] == u"host")
    waitsForHost_ = !host_.hasHost();
  else
    waitsUntil_ = now_ + Time(numberIn(words[1], 0, enough));
  return "";
}

std::string Console::quit(const Words&) {
  host_.quit();
  return "";
}

}  // namespace phonesim
