#include "phonesim/handset/state.h"

#include <algorithm>
#include <charconv>

#include "phone/pdu/address.h"
#include "phone/pdu/hex.h"
#include "phone/text/ucs2.h"

namespace phonesim {

namespace {

constexpr std::string_view firstLine = "phonesim-memory 1";
constexpr std::size_t mostQueued = 10000;

template <class N>
std::optional<N> decimal(std::string_view text) {
  N value{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

std::string_view takeWord(std::string_view& line) {
  const auto end = std::min(line.find(' '), line.size());
  const auto word = line.substr(0, end);
  line.remove_prefix(std::min(end + 1, line.size()));
  return word;
}

std::optional<Octets> pduIn(std::string_view digits) {
  auto pdu = digits.empty() || digits.size() > 2 * longestPdu ? std::nullopt : phone::fromHex(digits);
  return pdu;
}

std::optional<Place> placeNamed(std::string_view name) {
  for (const Place place : {Place::Phone, Place::Sim})
    if (name == nameOf(place)) return place;
  return std::nullopt;
}

// Printable, without blanks: it comes back in an answer or in another line of this file.
bool isPlainWord(std::string_view text) {
  if (text.size() > 64) return false;
  for (const char c : text)
    if (c <= ' ' || c > '~' || c == '"') return false;
  return true;
}

bool readMemory(State& state, std::string_view rest) {
  const auto place = placeNamed(takeWord(rest));
  const auto capacity = decimal<int>(rest);
  if (!place || !capacity || *capacity < 0 || *capacity > maximalCapacity) return false;
  state.memories.at(*place).capacity = *capacity;
  return true;
}

bool readMessage(State& state, std::string_view rest) {
  const auto place = placeNamed(takeWord(rest));
  const auto slot = decimal<int>(takeWord(rest));
  const auto status = decimal<int>(takeWord(rest));
  auto pdu = pduIn(rest);
  if (!place || !slot || !status || *status < 0 || *status >= allStatuses || !pdu) return false;
  Memory& memory = state.memories.at(*place);
  if (*slot < 1 || *slot > memory.capacity) return false;
  return memory.slots.try_emplace(*slot, StoredPdu{static_cast<Status>(*status), std::move(*pdu)}).second;
}

std::string withType(const phone::Address& number) {
  const std::u16string shown = phone::shown(number);
  const std::string text(shown.begin(), shown.end());
  if (phone::parseNumber(shown) == number) return text;
  return text + '/' + std::to_string(phone::typeOctet(number));
}

std::optional<phone::Address> typedNumber(std::string_view text) {
  const auto end = std::min(text.find('/'), text.size());
  auto number = phone::parseNumber(std::u16string(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(end)));
  if (!number || end == text.size()) return number;
  const auto type = decimal<std::uint8_t>(text.substr(end + 1));
  if (!type || *type < 128) return std::nullopt;
  phone::setType(*number, *type);
  return number->type == phone::NumberType::Alphanumeric ? std::nullopt : number;
}

bool readContact(State& state, std::string_view rest) {
  const auto place = placeNamed(takeWord(rest));
  const auto index = decimal<int>(takeWord(rest));
  const std::string_view number = takeWord(rest);
  const auto name = phone::fromHex(rest);
  if (!place || !index || *index < 1 || *index > PhoneBook::capacity || !name) return false;
  if (name->size() % 2 != 0 || name->size() > 2 * longestName) return false;
  const auto read = isPlainWord(number) ? typedNumber(number) : std::nullopt;
  if (!read) return false;
  PhoneBook& book = state.contacts.at(*place);
  if (book.entries().contains(*index)) return false;
  book.put(*index, {*read, phone::fromUcs2(*name)});
  return true;
}

bool readQueued(State& state, std::string_view word, std::string_view rest) {
  Travelling message;
  if (word == "travelling") {
    message.number = takeWord(rest);
    message.mark = takeWord(rest);
    if (message.number.empty() || !isPlainWord(message.number) || !isMark(message.mark)) return false;
  }
  auto pdu = pduIn(rest);
  if (!pdu || state.waiting.size() + state.travelling.size() >= mostQueued) return false;
  if (word == "waiting") {
    state.waiting.push_back(std::move(*pdu));
  } else {
    message.pdu = std::move(*pdu);
    state.travelling.push_back(std::move(message));
  }
  return true;
}

bool readLine(State& state, std::string_view line) {
  const std::string_view word = takeWord(line);
  if (word == "memory") return readMemory(state, line);
  if (word == "message") return readMessage(state, line);
  if (word == "contact") return readContact(state, line);
  if (word == "waiting" || word == "travelling") return readQueued(state, word, line);
  if (word == "taken") {
    if (!isMark(line) || state.taken.size() >= State::mostTaken) return false;
    state.taken.emplace_back(line);
    return true;
  }
  if (word == "centre") {
    if (!isPlainWord(line)) return false;
    state.centre = line;
    return true;
  }
  if (word == "reference") {
    const auto reference = decimal<std::uint8_t>(line);
    if (reference) state.reference = *reference;
    return reference.has_value();
  }
  return false;
}

}  // namespace

bool isMark(std::string_view text) { return !text.empty() && isPlainWord(text); }

std::string toText(const State& state) {
  std::string text(firstLine);
  text += "\ncentre " + state.centre + "\nreference " + std::to_string(state.reference) + '\n';
  for (const Place place : {Place::Phone, Place::Sim})
    text += "memory " + std::string(nameOf(place)) + ' ' + std::to_string(state.memories.at(place).capacity) + '\n';
  for (const Place place : {Place::Phone, Place::Sim}) {
    for (const auto& [slot, message] : state.memories.at(place).slots) {
      text += "message " + std::string(nameOf(place)) + ' ' + std::to_string(slot) + ' ' +
              std::to_string(static_cast<int>(message.status)) + ' ' + phone::toHex(message.pdu) + '\n';
    }
  }
  for (const Place place : {Place::Phone, Place::Sim}) {
    for (const auto& [index, contact] : state.contacts.at(place).entries()) {
      text += "contact " + std::string(nameOf(place)) + ' ' + std::to_string(index) + ' ' + withType(contact.number) +
              ' ' + phone::toHex(phone::toUcs2(contact.name)) + '\n';
    }
  }
  if (state.unacknowledged) text += "waiting " + phone::toHex(*state.unacknowledged) + '\n';
  for (const Octets& pdu : state.waiting) text += "waiting " + phone::toHex(pdu) + '\n';
  for (const Travelling& message : state.travelling)
    text += "travelling " + message.number + ' ' + message.mark + ' ' + phone::toHex(message.pdu) + '\n';
  for (const std::string& mark : state.taken) text += "taken " + mark + '\n';
  return text;
}

ReadState fromText(std::string_view text, State defaults) {
  ReadState result{std::move(defaults)};
  bool first = true;
  while (!text.empty()) {
    const auto end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.ends_with('\r')) line.remove_suffix(1);
    const bool understood = first ? line == firstLine : line.empty() || readLine(result.state, line);
    if (!understood) ++result.passedOver;
    first = false;
  }
  return result;
}

}  // namespace phonesim
