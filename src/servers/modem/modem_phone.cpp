#include "servers/modem/modem_phone.h"

#include <algorithm>

#include "addin/platform/runtime_error.h"

namespace servers::modem {

using handset::OutgoingMessage;
using handset::Phone;
using handset::Store;
using phone::Instant;
using phone::Memory;
using phone::Milliseconds;
using phone::Modem;
using phone::Outcome;
using phone::Slot;
using platform::Counted;
using platform::Hold;
using platform::Ref;

namespace {

constexpr std::int32_t refreshDelay = 300;  // after a deletion: more of them may follow
constexpr std::int32_t retryDelay = 30000;  // after a listing that failed
// A modem that does not say when messages arrive is looked at when somebody asks, but not more often than this; one
// that does, now and then, in case that a notice got lost.
constexpr Milliseconds silentAge{50000};
constexpr Milliseconds announcingAge{600000};
// An answer that is on its way when the asker stops waiting would be taken for the answer to its next question.
constexpr Milliseconds answerMargin{500};

// Of announced messages that are read one by one; more of them are left to a listing.
constexpr std::size_t mostReadings = 16;

std::size_t at(Memory memory) { return static_cast<std::size_t>(memory); }

}  // namespace

// A request under way. Its work is dropped with it.
struct ModemPhone::Pending final : Counted {
  OnMessage onMessage;
  OnEnd onEnd;
  std::vector<phone::JoinedMessage> toList;
  std::size_t listed = 0;
  Ref<Counted> work;
  Ref<Counted> waiting;  // for a message that is open

  void drop() {
    work = nullptr;
    waiting = nullptr;
  }
};

// What the asker holds: letting it go forgets the callbacks.
struct ModemPhone::Forgetting final : Counted {
  explicit Forgetting(Ref<Pending> p) : pending(std::move(p)) {}
  ~Forgetting() override {
    pending.get()->onMessage = nullptr;
    pending.get()->onEnd = nullptr;
  }
  Ref<Pending> pending;
};

// The pending request keeps it, and the phone keeps the request.
struct ModemPhone::Waiting final : SendRecord::Asker {
  // Nobody listens any more after `u`.
  Waiting(ModemPhone& o, Pending& p, std::uint64_t key, Instant u)
      : Asker(o.record_, key), owner(o), pending(p), until(u) {}

  Hears hears() override {
    if (!owner.isHeard_()) owner.abandoned();
    if (!pending.onEnd) return Hears::Gone;
    return owner.clock_.now() < until ? Hears::Yes : Hears::TooLate;
  }
  void ended(const Outcome* outcome) override {
    if (!outcome) pending.onEnd = nullptr;
    owner.end(pending, outcome ? phone::resultCode(*outcome) : handset::success);
  }

  ModemPhone& owner;
  Pending& pending;
  Instant until;
};

ModemPhone::ModemPhone(Scheduler& scheduler, const phone::Clock& clock, std::shared_ptr<SendRecord> record,
                       std::function<bool()> isHeard, std::unique_ptr<Wire> wire, std::uint8_t reference)
    : scheduler_(scheduler),
      clock_(clock),
      record_(std::move(record)),
      isHeard_(std::move(isHeard)),
      reference_(reference),
      wire_(std::move(wire)) {
  wire_->open({[this](Presence presence) { found(std::move(presence)); }, [this] { lost(); },
               [this](const phone::Notice& notice) { noticed(notice); }});
}

ModemPhone::~ModemPhone() = default;

void ModemPhone::terminate() noexcept {
  wire_.reset();
  connected_ = false;
  sends_.clear();
  refreshing_ = {};
  for (const auto& pending : std::exchange(pending_, {})) pending.get()->drop();
}

void ModemPhone::requireConnected() const {
  if (!connected_) platform::raiseError(handset::notConnected, u"SMS_OBJECT", u"The phone is not connected");
}

Memory ModemPhone::memoryOfStore(Store store) const {
  const auto memory = memoryOf(store);
  if (!memory) platform::raiseError(5);
  return *memory;
}

std::optional<Memory> ModemPhone::supportedMemory(Store store) const {
  const auto memory = memoryOf(store);
  return memory && isSupported(*memory) ? memory : std::nullopt;
}

bool ModemPhone::isStorageSupported(Store store) {
  requireConnected();
  return supportedMemory(store).has_value();
}

std::int16_t ModemPhone::storageCapacity(Store store) {
  requireConnected();
  return static_cast<std::int16_t>(std::min(presence_.capacity[at(memoryOfStore(store))], INT16_MAX));
}

std::int16_t ModemPhone::storageUsed(Store store) {
  requireConnected();
  return static_cast<std::int16_t>(std::min<std::size_t>(copy_.used(memoryOfStore(store)), INT16_MAX));
}

Ref<ModemPhone::Pending> ModemPhone::begin(OnEnd onEnd) {
  auto pending = platform::make<Pending>();
  pending.get()->onEnd = std::move(onEnd);
  pending_.push_back(pending);
  return pending;
}

Phone::Request ModemPhone::asked(const Ref<Pending>& pending) const { return platform::make<Forgetting>(pending); }

void ModemPhone::endLater(Pending& pending, std::int32_t result) {
  pending.work = scheduler_.after(0, [this, request = &pending, result] { end(*request, result); });
}

void ModemPhone::end(Pending& pending, std::int32_t result) {
  const Hold<ModemPhone> keep(this);
  const Ref<Pending> kept(&pending);
  const OnEnd onEnd = std::exchange(pending.onEnd, nullptr);
  std::erase_if(pending_, [&](const Ref<Pending>& p) { return p.get() == &pending; });
  if (onEnd) onEnd(result);
}

Phone::Request ModemPhone::list(Store store, std::int32_t filter, OnMessage onMessage, OnEnd onEnd) {
  requireConnected();
  const auto pending = begin(std::move(onEnd));
  const auto memory = supportedMemory(store);
  if (!memory) {
    endLater(*pending.get(), handset::invalidStore);
    return asked(pending);
  }
  pending.get()->onMessage = std::move(onMessage);
  pending.get()->toList = copy_.messages(*memory, filter, clock_.now());
  pending.get()->work = scheduler_.after(0, [this, listing = pending.get()] { listNext(*listing); });
  const Milliseconds age = clock_.now() - refreshed_[at(*memory)];
  if (age >= (presence_.announces ? announcingAge : silentAge)) refreshSoon(*memory);
  return asked(pending);
}

// One message, or the end, per piece of work.
void ModemPhone::listNext(Pending& listing) {
  const Hold<ModemPhone> keep(this);
  const Ref<Pending> kept(&listing);
  if (listing.listed == listing.toList.size()) return end(listing, handset::success);

  const phone::JoinedMessage& message = listing.toList[listing.listed++];
  listing.work = scheduler_.after(0, [this, next = &listing] { listNext(*next); });
  const OnMessage onMessage = listing.onMessage;
  if (!onMessage) return;
  copy_.handedOver(message);
  onMessage(MessageCopy::shown(message));
}

void ModemPhone::giveBack(const handset::StoredMessage& message) { copy_.takeBack(message); }

Phone::Request ModemPhone::remove(Store store, std::int16_t index, OnEnd onEnd) {
  requireConnected();
  const auto pending = begin(std::move(onEnd));
  const auto memory = supportedMemory(store);
  if (!memory) {
    endLater(*pending.get(), handset::invalidStore);
    return asked(pending);
  }
  auto deletions = copy_.toDelete({*memory, index});
  if (deletions.empty()) {
    endLater(*pending.get(), handset::emptySlot);
    return asked(pending);
  }
  // The handle goes last, and with a failure the rest stays: the message can be asked for again. The line's thread gets
  // the request's address, the phone's thread keeps the request.
  ask([this, deletions = std::move(deletions), request = pending.get()](Modem& modem) -> Wire::Answer {
    std::vector<Removal> removals;
    for (const MessageCopy::Deletion& one : deletions) {
      removals.push_back({one, MessageCopy::isKeptHere(one.slot) ? Outcome{} : modem.remove(one.slot, one.pdu)});
      const Outcome::Kind kind = removals.back().outcome.kind;
      if (kind != Outcome::Kind::Done && kind != Outcome::Kind::Empty) break;
    }
    return [this, removals = std::move(removals), request] { removed(Ref<Pending>(request), removals); };
  });
  return asked(pending);
}

void ModemPhone::removed(const Ref<Pending>& pending, const std::vector<Removal>& removals) {
  const Hold<ModemPhone> keep(this);
  std::int32_t result = handset::emptySlot;
  for (const Removal& removal : removals) {
    const std::int32_t code = phone::resultCode(removal.outcome);
    if (code != handset::emptySlot) result = code;
    if (code != handset::emptySlot && code != handset::success) break;
    copy_.deleted(removal.deletion);
    refreshSoon(removal.deletion.slot.memory);
  }
  end(*pending.get(), result);
}

Phone::Request ModemPhone::send(const OutgoingMessage& message, OnEnd onEnd) {
  using State = SendRecord::State;
  requireConnected();
  const auto pending = begin(std::move(onEnd));
  SendRecord::Entry& entry = record_->request(message);
  Outcome outcome{Outcome::Kind::Unknown};
  if (entry.state == State::Untold) {
    outcome = {};
    record_->ended(entry, outcome, 0, true);
  } else if (entry.state == State::Unsent) {
    outcome = handOver(entry, message);
  }
  if (entry.state == State::Open) {
    const Instant until = clock_.now() + patienceFor(message) - answerMargin;
    pending.get()->waiting = platform::make<Waiting>(*this, *pending.get(), entry.key, until);
  } else {
    endLater(*pending.get(), phone::resultCode(outcome));
  }
  return asked(pending);
}

// Noted before the modem can have it.
Outcome ModemPhone::handOver(SendRecord::Entry& entry, const OutgoingMessage& message) {
  const std::uint8_t reference = entry.partsSent > 0 ? entry.reference : reference_++;
  auto sending = std::make_shared<phone::Sending>();
  const Outcome prepared =
      Modem::prepare(message.serviceCentre, message.destination, message.text, reference, *sending);
  if (!prepared.done()) {
    record_->ended(entry, prepared, entry.partsSent, true);
    return prepared;
  }
  if (entry.partsSent < sending->parts.size()) sending->sent = entry.partsSent;
  record_->begins(entry, reference);
  sends_.push_back({entry.key, sending});
  ask([this, key = entry.key, sending](Modem& modem) -> Wire::Answer {
    const Outcome outcome = modem.send(*sending);
    return [this, key, outcome] { sent(key, outcome); };
  });
  return {};
}

void ModemPhone::sent(std::uint64_t key, const Outcome& outcome) {
  const Hold<ModemPhone> keep(this);
  const auto open = std::find_if(sends_.begin(), sends_.end(), [key](const OpenSend& s) { return s.key == key; });
  if (open == sends_.end()) return;
  const OpenSend ended = std::move(*open);
  sends_.erase(open);
  if (SendRecord::Entry* const entry = record_->find(key)) record_->ended(*entry, outcome, ended.sending->sent);
}

void ModemPhone::abandoned() {
  for (const auto& pending : pending_)
    if (pending.get()->waiting) pending.get()->onEnd = nullptr;
}

void ModemPhone::ask(Wire::Deed deed) {
  if (wire_) wire_->ask(presence_.life, std::move(deed));
}

void ModemPhone::found(Presence presence) {
  const Hold<ModemPhone> keep(this);
  presence_ = std::move(presence);
  name_.clear();
  for (const char octet : presence_.name) name_ += static_cast<unsigned char>(octet);
  connected_ = true;
  for (const Memory memory : {Memory::Phone, Memory::Sim}) {
    taken(memory, presence_.listings[at(memory)]);
    if (!presence_.listings[at(memory)].outcome.done()) refreshSoon(memory);
  }
  presence_.listings = {};
  record_->phoneFound();
  removeLeftovers();
  watchers_.tell(true);
}

void ModemPhone::lost() {
  const Hold<ModemPhone> keep(this);
  connected_ = false;
  const auto sends = std::exchange(sends_, {});
  record_->phoneLost();
  refreshing_ = {};
  reading_.clear();
  // The askers may hold on to their requests; nothing comes of them any more.
  for (const auto& pending : std::exchange(pending_, {})) pending.get()->drop();
  watchers_.tell(false);
  // What was open was not done: with an outcome that is unknown it would have been answered before. Those who have
  // asked another phone for it are told.
  for (const OpenSend& open : sends)
    if (SendRecord::Entry* const entry = record_->find(open.key))
      record_->ended(*entry, {Outcome::Kind::NoAnswer}, open.sending->sent);
}

void ModemPhone::noticed(const phone::Notice& notice) {
  using Kind = phone::Notice::Kind;
  if (notice.kind == Kind::Direct)
    copy_.keep(notice.pdu, isSupported(Memory::Sim) ? Memory::Sim : Memory::Phone, clock_.now());
  if (notice.kind != Kind::Stored || !connected_) return;
  if (notice.slot) return readSlot(*notice.slot);
  for (const Memory memory : {Memory::Phone, Memory::Sim}) refreshSoon(memory);
}

// Each slot once at a time, and not very many: a send should not wait behind them.
void ModemPhone::readSlot(Slot slot) {
  copy_.announced(slot);
  if (const auto asked = reading_.find(slot); asked != reading_.end()) {
    asked->second = true;
    return;
  }
  if (reading_.size() == mostReadings) return refreshSoon(slot.memory);
  reading_.emplace(slot, false);
  ask([this, slot](Modem& modem) -> Wire::Answer {
    const phone::Reading reading = modem.read(slot);
    return [this, slot, reading] {
      const auto asked = reading_.extract(slot);
      const bool announcedAgain = !asked.empty() && asked.mapped();
      if (!reading.outcome.done() || !reading.whole) return refreshSoon(slot.memory);
      copy_.takeOne(slot, reading.message, clock_.now());
      removeLeftovers();
      if (announcedAgain) readSlot(slot);
    };
  });
}

// What was there is not forgotten because it cannot be read now.
void ModemPhone::taken(Memory memory, const phone::Listing& listing) {
  if (listing.outcome.done()) {
    copy_.take(memory, listing.messages, clock_.now());
    refreshed_[at(memory)] = clock_.now();
    return;
  }
  for (const phone::StoredPdu& message : listing.messages)
    copy_.takeOne({memory, message.index}, message, clock_.now());
}

void ModemPhone::refreshSoon(Memory memory) {
  auto& work = refreshing_[at(memory)];
  if (work || !connected_ || !isSupported(memory)) return;
  work = scheduler_.after(refreshDelay, [this, memory] { refresh(memory); });
}

void ModemPhone::refresh(Memory memory) {
  refreshing_[at(memory)] = nullptr;
  ask([this, memory](Modem& modem) -> Wire::Answer {
    phone::Listing listing = modem.list(memory);
    return [this, memory, listing = std::move(listing)] {
      taken(memory, listing);
      if (listing.outcome.done()) return removeLeftovers();
      refreshing_[at(memory)] = scheduler_.after(retryDelay, [this, memory] { refresh(memory); });
    };
  });
}

// Without looking at the memory again: with a phone that only says that it deletes, that would never end.
void ModemPhone::removeLeftovers() {
  for (auto& leftover : copy_.leftovers(clock_.now()))
    ask([this, leftover](Modem& modem) -> Wire::Answer {
      const Outcome outcome = modem.remove(leftover.slot, leftover.pdu);
      return [this, leftover, outcome] {
        if (outcome.done() || outcome.kind == Outcome::Kind::Empty) copy_.deleted(leftover);
      };
    });
}

}  // namespace servers::modem
