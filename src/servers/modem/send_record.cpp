#include "servers/modem/send_record.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <vector>

#include "servers/common/fields.h"

namespace servers::modem {

using phone::Outcome;

namespace {

constexpr std::string_view heading = "sends 1\n";
constexpr std::array<std::string_view, 5> stateNames{"unsent", "open", "unknown", "untold", "settled"};

std::string lineOf(const SendRecord::Entry& entry) {
  std::array<char, 17> key{};
  const auto end = std::to_chars(key.data(), key.data() + key.size(), entry.key, 16).ptr;
  return std::string(key.data(), end) + ' ' + std::string(stateNames[static_cast<std::size_t>(entry.state)]) + ' ' +
         std::to_string(entry.asked) + ' ' + std::to_string(entry.reference) + ' ' + std::to_string(entry.partsSent) +
         ' ' + std::to_string(entry.day) + '\n';
}

// Nothing for a line that makes no sense.
std::optional<SendRecord::Entry> entryIn(std::string_view line) {
  const auto words = split(line, ' ');
  if (words.size() != 6) return std::nullopt;
  const auto key = numberIn<std::uint64_t>(words[0], 16);
  const auto state = std::find(stateNames.begin(), stateNames.end(), words[1]);
  const auto asked = numberIn<std::uint8_t>(words[2]);
  const auto reference = numberIn<std::uint8_t>(words[3]);
  const auto parts = numberIn<std::uint8_t>(words[4]);
  const auto day = numberIn<std::uint32_t>(words[5]);
  if (!key || state == stateNames.end() || !asked || !reference || !parts || !day) return std::nullopt;
  if (*asked > SendRecord::attempts) return std::nullopt;
  SendRecord::Entry entry;
  entry.key = *key;
  entry.state = static_cast<SendRecord::State>(state - stateNames.begin());
  entry.asked = *asked;
  entry.reference = *reference;
  entry.partsSent = *parts;
  entry.day = *day;
  return entry;
}

// Worth more than the process: forgetting it would send something twice.
bool isNoted(const SendRecord::Entry& entry) {
  using State = SendRecord::State;
  if (entry.state == State::Open || entry.state == State::Settled) return true;
  return entry.asked < SendRecord::attempts && (entry.state != State::Unsent || entry.partsSent > 0);
}

}  // namespace

phone::Milliseconds patienceFor(const handset::OutgoingMessage& message) {
  // The same count as the asker's own, odd as it is: 160 characters count as two messages.
  return phone::Milliseconds(25000) * static_cast<int>(message.text.size() / 160 + 1);
}

SendRecord::SendRecord(Scheduler& scheduler, const phone::Clock& clock, std::unique_ptr<SendNotes> notes)
    : scheduler_(scheduler), clock_(clock), notes_(std::move(notes)) {
  saved_ = notes_->load();
  load(saved_);
  tidyLater();
}

// FNV-1a, with a unit that no text has between the two. A chance of one in 2^64 for taking one message for another does
// no harm; a number that two versions of this program compute differently would.
std::uint64_t SendRecord::keyOf(const handset::OutgoingMessage& message) noexcept {
  std::uint64_t key = 0xCBF29CE484222325;
  const auto add = [&key](std::uint32_t unit) {
    for (int shift = 0; shift < 24; shift += 8) key = (key ^ ((unit >> shift) & 0xFF)) * 0x100000001B3;
  };
  for (const char16_t unit : message.destination) add(unit);
  add(0x10000);
  for (const char16_t unit : message.text) add(unit);
  return key;
}

SendRecord::Entry* SendRecord::find(std::uint64_t key) {
  const auto found = std::find_if(entries_.begin(), entries_.end(), [&](const Entry& e) { return e.key == key; });
  return found == entries_.end() ? nullptr : &*found;
}

SendRecord::Entry& SendRecord::request(const handset::OutgoingMessage& message) {
  expire();
  const std::uint64_t key = keyOf(message);
  Entry* entry = find(key);
  if (!entry) {
    if (entries_.size() >= most) {
      const auto old =
          std::find_if(entries_.begin(), entries_.end(), [](const Entry& e) { return e.state != State::Open; });
      if (old != entries_.end()) entries_.erase(old);
    }
    entry = &entries_.emplace_back();
    entry->key = key;
  } else if (entry->state == State::Settled || (entry->asked >= attempts && entry->state != State::Open)) {
    *entry = {};
    entry->key = key;
  }
  entry->asked = std::min(entry->asked + 1, attempts);
  touch(*entry);
  save();
  return *entry;
}

void SendRecord::begins(Entry& entry, std::uint8_t reference) {
  entry.state = State::Open;
  entry.reference = reference;
  touch(entry);
  save();
}

SendRecord::Asker::Asker(std::shared_ptr<SendRecord> record, std::uint64_t key)
    : record_(std::move(record)), key_(key) {
  record_->askers_.push_back(this);
}

void SendRecord::Asker::terminate() noexcept { std::erase(record_->askers_, this); }

void SendRecord::ended(Entry& entry, const Outcome& outcome, std::size_t partsSent, bool told) {
  using Hears = Asker::Hears;
  std::vector<std::pair<platform::Hold<Asker>, Hears>> askers;
  for (Asker* const asker : askers_)
    if (asker->key_ == entry.key) askers.emplace_back(platform::Hold(asker), asker->hears());
  for (const auto& [asker, hears] : askers) {
    if (hears == Hears::Yes) told = true;
    if (hears == Hears::Gone) left(entry, 1);
    std::erase(askers_, &*asker);
  }
  touch(entry);
  entry.partsSent = outcome.done() ? 0 : partsSent;
  if (outcome.done())
    entry.state = told ? State::Settled : State::Untold;
  else
    entry.state = outcome.kind == Outcome::Kind::Unknown ? State::Unknown : State::Unsent;
  // What is settled goes when the answer has had the time to arrive.
  if (entry.state != State::Settled) save();
  tidyLater();
  for (const auto& [asker, hears] : askers)
    if (!asker->hasEnded()) asker->ended(hears == Hears::Yes ? &outcome : nullptr);
}

void SendRecord::left(Entry& entry, int askers) { entry.asked = std::max(0, entry.asked - askers); }

void SendRecord::phoneFound() {
  if (phones_++ > 0) return;
  for (Entry& entry : entries_) entry.since = clock_.now();
}

void SendRecord::touch(Entry& entry) {
  entry.since = clock_.now();
  entry.day = notes_->today();
}

void SendRecord::expire() {
  if (phones_ == 0) return;
  std::erase_if(entries_, [now = clock_.now(), today = notes_->today()](const Entry& entry) {
    return entry.state != State::Open && (now - entry.since >= window || today - entry.day > mostDays);
  });
}

void SendRecord::tidy() {
  std::erase_if(entries_, [](const Entry& entry) { return entry.state == State::Settled; });
  expire();
  save();
  tidyLater();
}

void SendRecord::tidyLater() {
  const bool settled =
      std::any_of(entries_.begin(), entries_.end(), [](const Entry& e) { return e.state == State::Settled; });
  tidying_ = nullptr;
  if (entries_.empty() && saved_.empty()) return;
  const auto delay = settled ? settling : static_cast<std::int32_t>(window.count());
  tidying_ = scheduler_.after(delay, [this] { tidy(); });
}

void SendRecord::save() {
  std::string text(heading);
  for (const Entry& entry : entries_)
    if (isNoted(entry)) text += lineOf(entry);
  if (text == heading) text.clear();
  // What could not be saved is tried again with the next change, and by tidy().
  if (text != saved_ && notes_->save(text)) saved_ = std::move(text);
}

void SendRecord::load(std::string_view text) {
  if (!text.starts_with(heading)) return;
  text.remove_prefix(heading.size());
  for (const std::string_view line : split(text, '\n')) {
    if (entries_.size() == most) return;
    auto entry = entryIn(line);
    // A day that is still to come: somebody has set the clock.
    if (!entry || find(entry->key) || notes_->today() - entry->day > mostDays) continue;
    entry->since = clock_.now();
    if (entry->state == State::Settled) entry->state = State::Untold;
    if (entry->state == State::Open) {
      // Whether the asker has counted this as a failure depends on whether it lives. One failure too many does less
      // harm than one too few, after which the message would be sent again.
      entry->state = State::Unknown;
      entry->asked = std::max(0, entry->asked - 1);
    }
    entries_.push_back(*entry);
  }
}

}  // namespace servers::modem
