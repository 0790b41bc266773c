#include "phone/modem/modem.h"

#include <algorithm>

#include "phone/at/characters.h"
#include "phone/at/fields.h"
#include "phone/pdu/hex.h"

namespace phone {

using at::after;
using at::Answer;
using at::Command;

namespace {

constexpr Milliseconds listingLimit{30000};  // for each message
constexpr Milliseconds slotLimit{25000};
constexpr int mostSlots = 255;  // to look at when the modem does not tell how many there are
constexpr int mostDoubted = 2000;
constexpr int mostSilent = 10;  // slots without an answer, in one listing

// From 6 on: for messages alone, at home and roaming; for emergency calls alone; with calls by other means than the
// preferred ones, at home and roaming.
constexpr std::array registrations{Registration::No,     Registration::Home,    Registration::Searching,
                                   Registration::Denied, Registration::Unknown, Registration::Roaming,
                                   Registration::Home,   Registration::Roaming, Registration::No,
                                   Registration::Home,   Registration::Roaming};

std::string command(std::string_view name, int index) { return std::string(name) + std::to_string(index); }

// "+CSCA: "<number>",<type>": the number may come as hexadecimal, in the character set HEX or UCS2, if the modem did
// not let that be changed.
std::string plainNumber(const std::string& text) {
  const auto octets = text.size() > 6 && text.find_first_of("+*#") == std::string::npos ? fromHex(text) : std::nullopt;
  if (!octets) return text;
  std::string number;
  for (const std::uint8_t octet : *octets)
    if (octet != 0) number += static_cast<char>(octet);
  const bool plausible = std::all_of(number.begin(), number.end(), [](char c) { return c == '+' || at::isDigit(c); });
  return plausible && !number.empty() ? number : text;
}

// Of an answer without a message. What was damaged on its way may have been one; lines that nobody knows and that come
// `again` are just something that this modem says.
Outcome outcomeOfEmptyReading(const Answer& answer, bool again) {
  if (!answer.result || (!answer.result->ok() && !saysEmpty(*answer.result))) return outcomeOf(answer.result);
  const bool damaged = answer.messagesWithoutHeader > 0 || (answer.strangeLines > 0 && !again);
  return {damaged ? Outcome::Kind::NoAnswer : Outcome::Kind::Empty};
}

}  // namespace

Modem::Modem(Line& line, const Clock& clock, at::Trace* trace)
    : clock_(clock),
      dialogue_(
          line, clock, [this](const at::Unsolicited& unsolicited) { hear(unsolicited); }, trace) {}

void Modem::hear(const at::Unsolicited& unsolicited) {
  const std::string_view line = unsolicited.line;
  if (const auto text = after("+CMTI", line)) return hearStored(*text);
  if (after("+CMT", line)) return notices_.push_back({Notice::Kind::Direct, {}, unsolicited.data});
  if (after("^SMMEMFULL", line) || at::sameWord(line, "+SMS FULL"))
    return notices_.push_back({Notice::Kind::MemoryFull, {}, {}});
  // Everything else is noise.
}

// "<mem>,<index>"
void Modem::hearStored(std::string_view text) {
  const auto fields = at::fieldsOf(text);
  const auto index = fields.back().number();
  Notice notice{Notice::Kind::Stored, {}, {}};
  for (const Memory memory : {Memory::Phone, Memory::Sim})
    if (fields.size() == 2 && index && *index >= 0 && *index <= mostIndex &&
        fields[0].text == this->memory(memory).name)
      notice.slot = Slot{memory, *index};
  notices_.push_back(notice);
}

Answer Modem::askListing() { return runPatiently({"AT+CMGL=4", "+CMGL", true, false, listingLimit}); }

Listing Modem::list(Memory which) {
  Listing listing;
  if (!isSupported(which)) return {{Outcome::Kind::NoMemory}, {}};
  ensureSetUp();
  Contents contents;
  Answer answer;
  for (int attempt = 0; attempt < 2 && !contents.complete; ++attempt) {
    if (attempt > 0) {
      // Perhaps it was switched off and on, and is back in text mode.
      setUp_ = false;
      ensureSetUp();
    }
    const auto result = choose(which);
    if (listing.outcome = outcomeOf(result); !listing.outcome.done()) break;
    answer = askListing();
    contents.take(answer);
  }
  if (listing.outcome.done()) {
    const int capacity = memory(which).capacity;
    if (!contents.complete) contents.doubtUnseen(capacity > 0 ? capacity : mostSlots);
    // More than is looked at: whatever lies there, it is not known.
    if (!contents.complete && capacity > mostDoubted) listing.outcome = {Outcome::Kind::NoAnswer};
    readDoubtful(which, contents, listing);
  }
  for (auto& [index, message] : contents.whole) listing.messages.push_back(std::move(message));
  // There is something, as it says itself, and neither the list nor any slot can be read: what there is is not known.
  if (!contents.complete && listing.messages.empty() && memory(which).used > 0 && listing.outcome.done())
    listing.outcome = outcomeOf(answer.result);
  return listing;
}

// Messages that did not come whole are doubtful. It is complete when there cannot be more than those seen. What was
// unread when it was first seen stays so, though having been listed it is read from then on.
void Modem::Contents::take(const Answer& answer) {
  const std::size_t known = whole.size() + doubtful.size();
  // Lines that nobody knows may be all that is left of an entry; if they come again and nothing else is new, they are
  // just something that this modem says.
  bool readable = answer.messagesWithoutHeader == 0;
  for (const at::Information& information : answer.information) {
    auto entry = entryOfListing(information);
    if (!entry) {
      readable = false;
      continue;
    }
    const int index = entry->message.index;
    if (!entry->whole) {
      if (!whole.contains(index)) doubtful.emplace(index, std::move(entry->message));
      continue;
    }
    const auto doubt = doubtful.find(index);
    if (doubt != doubtful.end() && doubt->second.status == Status::ReceivedUnread)
      entry->message.status = Status::ReceivedUnread;
    doubtful.erase(index);
    whole.emplace(index, std::move(entry->message));
  }
  const bool empty = answer.result && saysEmpty(*answer.result) && answer.information.empty();
  const bool nothingNew = ++listings > 1 && whole.size() + doubtful.size() == known;
  complete = readable && (answer.ok() || empty) && (answer.strangeLines == 0 || nothingNew);
}

// Some modems begin with slot 0, most with 1.
void Modem::Contents::doubtUnseen(int last) {
  for (int index = 0; index <= std::min(last, mostDoubted); ++index)
    if (!whole.contains(index)) doubtful.emplace(index, StoredPdu{index, Status::ReceivedRead, {}});
}

void Modem::readDoubtful(Memory which, Contents& contents, Listing& listing) {
  int silent = 0;
  for (auto& [index, seen] : contents.doubtful) {
    // One that does not even answer needs not be asked for thousands.
    if (silent < mostSilent) {
      Reading reading = read({which, index});
      if (reading.outcome.kind == Outcome::Kind::NoAnswer) reading = read({which, index});
      const bool unread = seen.status == Status::ReceivedUnread;
      if (reading.outcome.done()) seen = std::move(reading.message);
      if (unread) seen.status = Status::ReceivedUnread;
      if (reading.outcome.kind == Outcome::Kind::NoAnswer) {
        listing.outcome = reading.outcome;
        ++silent;
      }
    }
    // Refused and empty slots are none, unless something was seen there: better damaged than invisible.
    if (!seen.pdu.empty()) contents.whole.emplace(index, std::move(seen));
  }
}

Reading Modem::read(Slot slot) {
  if (!isSupported(slot.memory)) return {{Outcome::Kind::NoMemory}, {}, false};
  Reading reading;
  bool unread = false;
  // Twice is enough: what does not come whole comes damaged rather than not at all.
  for (int attempt = 0; attempt < 2; ++attempt) {
    ensureSetUp();
    if (const auto result = choose(slot.memory); !result || !result->ok()) return {outcomeOf(result), {}, false};
    const Answer answer = runPatiently({command("AT+CMGR=", slot.index), "+CMGR", true, false, slotLimit});
    if (answer.information.empty()) {
      reading = {outcomeOfEmptyReading(answer, attempt > 0), {}, false};
      if (answer.damaged() || dialogue_.heardReset()) continue;
      return reading;
    }
    Entry entry = entryOfReading(answer.information.back(), slot.index);
    // Having been read once, it is a read one for the modem.
    unread = unread || entry.message.status == Status::ReceivedUnread;
    if (unread) entry.message.status = Status::ReceivedUnread;
    reading = {{}, std::move(entry.message), entry.whole};
    if (entry.whole) break;
  }
  return reading;
}

// Refusing to read a slot is how some modems say that it is empty; only the listing can tell.
Reading Modem::readForSure(Slot slot) {
  const Reading reading = read(slot);
  if (reading.outcome.kind != Outcome::Kind::Refused) return reading;
  const Listing listing = list(slot.memory);
  if (!listing.outcome.done()) return reading;
  for (const StoredPdu& message : listing.messages)
    if (message.index == slot.index) return {{}, message};
  return {{Outcome::Kind::Empty}, {}, false};
}

// What did not work is begun from the beginning: the message may be gone by now, which only the slot can tell, and a
// modem that was busy may have begun anew, and be about another memory.
Outcome Modem::remove(Slot slot, std::string_view expected) {
  const Instant end = clock_.now() + usualPatience;
  bool asked = false;
  for (bool again = false;;) {
    const bool askedBefore = asked;
    const Outcome outcome = removeChecked(slot, expected, asked);
    if (askedBefore && outcome.kind == Outcome::Kind::Empty) return {};
    const bool busy = outcome.kind == Outcome::Kind::Refused && isBusy(outcome.error);
    if (busy && clock_.now() + busyPause <= end)
      pause(busyPause);
    else if (outcome.kind != Outcome::Kind::NoAnswer || std::exchange(again, true))
      return outcome;
  }
}

// `asked` becomes true when the modem was told to delete.
Outcome Modem::removeChecked(Slot slot, std::string_view expected, bool& asked) {
  // Slots are used again: what was there when the memory was listed may have gone, and another message come.
  const Reading there = readForSure(slot);
  if (!there.outcome.done()) return there.outcome;
  if (!at::sameWord(there.message.pdu, expected)) return {there.whole ? Outcome::Kind::Empty : Outcome::Kind::NoAnswer};
  if (const auto result = choose(slot.memory); !result || !result->ok()) return outcomeOf(result);
  asked = true;
  // With one number: more than one modem refuses the flag, even 0.
  const Answer answer = run({command("AT+CMGD=", slot.index), {}, false, false, slotLimit});
  if (answer.result && saysEmpty(*answer.result)) return {Outcome::Kind::Empty};
  return outcomeOf(answer.result);
}

std::optional<std::string> Modem::serviceCentre() {
  ensureSetUp();
  const Answer answer = run({"AT+CSCA?", "+CSCA"});
  // "The address of the service centre is not known".
  if (answer.result && answer.result->isCms(330)) return std::string();
  if (!answer.ok() || answer.information.empty()) return std::nullopt;
  return plainNumber(at::fieldsOf(answer.information.back().text).front().text);
}

std::optional<Registration> Modem::registration() {
  ensureSetUp();
  const Answer answer = run({"AT+CREG?", "+CREG"});
  // The modem may say the same unasked, with one number less.
  for (const at::Information& information : answer.information) {
    const auto fields = at::fieldsOf(information.text);
    const auto state = fields.size() >= 2 ? fields[1].number() : std::nullopt;
    if (state && *state >= 0 && *state < std::ssize(registrations))
      return registrations[static_cast<std::size_t>(*state)];
  }
  return std::nullopt;
}

std::optional<int> Modem::signal() {
  ensureSetUp();
  const Answer answer = run({"AT+CSQ", "+CSQ"});
  if (!answer.ok() || answer.information.empty()) return std::nullopt;
  const auto strength = at::fieldsOf(answer.information.back().text).front().number();
  return strength && *strength >= 0 && *strength <= 31 ? strength : std::nullopt;
}

}  // namespace phone
