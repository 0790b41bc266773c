#include "servers/modem/send_record.h"

#include <algorithm>

namespace servers::modem {

using phone::Outcome;

phone::Milliseconds patienceFor(const handset::OutgoingMessage& message) {
  // The same count as the asker's own, odd as it is: 160 characters count as two messages.
  return phone::Milliseconds(25000) * static_cast<int>(message.text.size() / 160 + 1);
}

SendRecord::Entry* SendRecord::find(platform::StringView destination, platform::StringView text) {
  const auto found = std::find_if(entries_.begin(), entries_.end(), [&](const Entry& entry) {
    return entry.destination == destination && entry.text == text;
  });
  return found == entries_.end() ? nullptr : &*found;
}

SendRecord::Entry& SendRecord::request(const handset::OutgoingMessage& message) {
  Entry* entry = find(message.destination, message.text);
  if (!entry) {
    if (entries_.size() >= most) {
      const auto old = std::find_if(entries_.begin(), entries_.end(), [](const Entry& e) { return !e.open; });
      if (old != entries_.end()) entries_.erase(old);
    }
    entry = &entries_.emplace_back(Entry{message.destination, message.text});
  } else if (entry->asked >= attempts && !entry->open) {
    *entry = Entry{message.destination, message.text};
  }
  ++entry->asked;
  return *entry;
}

void SendRecord::ended(Entry& entry, const Outcome& outcome, bool told) {
  entry.open = false;
  entry.unknown = outcome.kind == Outcome::Kind::Unknown;
  entry.toldTooLate = outcome.done() && !told;
  if (outcome.done() || entry.unknown) entry.sending.reset();
  // Done with: the same text is a new message.
  if (outcome.done() && told) entry.asked = 0;
}

void SendRecord::lost() {
  for (Entry& entry : entries_) entry.open = false;
}

}  // namespace servers::modem
