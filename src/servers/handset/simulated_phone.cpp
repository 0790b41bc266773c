#include "servers/handset/simulated_phone.h"

#include <algorithm>

#include "addin/platform/convert.h"

namespace handset {

using namespace platform;

namespace {
constexpr StringView source = u"SMS_OBJECT";
constexpr std::int32_t nothingYet = 1;  // of a deed that goes on
}  // namespace

// A request under way. Its work is dropped with it.
struct SimulatedPhone::Pending final : Counted {
  OnMessage onMessage;
  OnEnd onEnd;
  std::vector<StoredMessage> toList;
  std::size_t listed = 0;
  Ref<Counted> work;
};

// What the asker holds: letting it go forgets the callbacks.
struct SimulatedPhone::Forgetting final : Counted {
  explicit Forgetting(Ref<Pending> p) : pending(std::move(p)) {}
  ~Forgetting() override {
    pending.get()->onMessage = nullptr;
    pending.get()->onEnd = nullptr;
  }
  Ref<Pending> pending;
};

SimulatedPhone::SimulatedPhone(servers::Scheduler& scheduler, String name, Memories memories)
    : scheduler_(scheduler), name_(std::move(name)), memories_(std::move(memories)) {}
SimulatedPhone::~SimulatedPhone() = default;

void SimulatedPhone::terminate() noexcept { dropPending(); }

// The askers may hold on to their requests; nothing comes of them any more.
void SimulatedPhone::dropPending() noexcept {
  for (const auto& pending : std::exchange(pending_, {})) pending.get()->work = nullptr;
}

void SimulatedPhone::requirePlugged() const {
  if (!plugged_) raiseError(notConnected, source, u"The phone is not connected");
}

Memory& SimulatedPhone::memoryOf(Store store) {
  Memory* const memory = memories_.find(store);
  if (!memory) raiseError(5);
  return *memory;
}

Memory* SimulatedPhone::supportedMemory(Store store) {
  Memory* const memory = memories_.find(store);
  return memory && memory->supported ? memory : nullptr;
}

bool SimulatedPhone::isStorageSupported(Store store) {
  requirePlugged();
  return supportedMemory(store) != nullptr;
}

std::int16_t SimulatedPhone::storageCapacity(Store store) {
  requirePlugged();
  if (capacityFails_) raiseError(noCapacity, source, u"The phone does not tell its capacity");
  return memoryOf(store).capacity;
}

std::int16_t SimulatedPhone::storageUsed(Store store) {
  requirePlugged();
  return memoryOf(store).used();
}

// `deed` is what happens when the request succeeds; it returns the result, or nothingYet.
Phone::Request SimulatedPhone::begin(Operation operation, OnEnd onEnd, std::function<std::int32_t(Pending&)> deed) {
  requirePlugged();
  Outcome outcome;
  if (auto& script = scripts_[operation]; !script.empty()) {
    outcome = script.front();
    script.pop_front();
  }
  const auto pending = make<Pending>();
  pending.get()->onEnd = std::move(onEnd);
  pending_.push_back(pending);
  if (!outcome.silent) {
    pending.get()->work = scheduler_.after(
        outcome.delay, [this, request = pending.get(), deed = std::move(deed), result = outcome.result] {
          const std::int32_t reached = result == success ? deed(*request) : result;
          if (reached != nothingYet) end(*request, reached);
        });
  }
  return make<Forgetting>(pending);
}

void SimulatedPhone::end(Pending& pending, std::int32_t result) {
  const Hold<SimulatedPhone> keep(this);
  const OnEnd onEnd = std::exchange(pending.onEnd, nullptr);
  std::erase_if(pending_, [&](const Ref<Pending>& p) { return p.get() == &pending; });
  if (onEnd) onEnd(result);
}

Phone::Request SimulatedPhone::list(Store store, std::int32_t filter, OnMessage onMessage, OnEnd onEnd) {
  Request request = begin(Operation::List, std::move(onEnd), [this, store, filter](Pending& listing) {
    const Memory* const memory = supportedMemory(store);
    if (!memory) return invalidStore;
    for (const auto& [slot, message] : memory->slots)
      if (filter == allStatuses || filter == static_cast<std::int32_t>(message.status))
        listing.toList.push_back(message);
    listNext(listing);
    return nothingYet;
  });
  static_cast<Forgetting*>(request.get())->pending.get()->onMessage = std::move(onMessage);
  return request;
}

// One message, or the end, per piece of work.
void SimulatedPhone::listNext(Pending& listing) {
  const Hold<SimulatedPhone> keep(this);
  const Ref<Pending> kept(&listing);
  if (listing.listed == listing.toList.size()) return end(listing, success);

  const StoredMessage& message = listing.toList[listing.listed++];
  Memory& memory = memoryOf(message.store);
  const auto slot = memory.slots.find(message.index);
  if (slot != memory.slots.end() && slot->second.status == Status::ReceivedUnread && slot->second == message) {
    slot->second.status = Status::ReceivedRead;
    changed();
  }
  listing.work = scheduler_.after(0, [this, next = &listing] { listNext(*next); });
  if (const OnMessage onMessage = listing.onMessage) onMessage(message);
}

void SimulatedPhone::giveBack(const StoredMessage& message) {
  Memory& memory = memoryOf(message.store);
  const auto slot = memory.slots.find(message.index);
  if (slot == memory.slots.end()) return;
  StoredMessage listed = slot->second;
  listed.status = message.status;
  if (listed != message) return;
  slot->second = listed;
  changed();
}

Phone::Request SimulatedPhone::remove(Store store, std::int16_t index, OnEnd onEnd) {
  return begin(Operation::Remove, std::move(onEnd), [this, store, index](Pending&) {
    if (!supportedMemory(store)) return invalidStore;
    return take(store, index) ? success : emptySlot;
  });
}

Phone::Request SimulatedPhone::send(const OutgoingMessage& message, OnEnd onEnd) {
  return begin(Operation::Send, std::move(onEnd), [this, message](Pending&) {
    sent_.push_back(message);
    return success;
  });
}

void SimulatedPhone::plug() {
  if (plugged_) return;
  plugged_ = true;
  tellWatchers();
}

void SimulatedPhone::unplug() {
  if (!plugged_) return;
  plugged_ = false;
  dropPending();
  tellWatchers();
}

void SimulatedPhone::tellWatchers() {
  const Hold<SimulatedPhone> keep(this);
  watchers_.tell(plugged_);
}

StoredMessage SimulatedPhone::deliver(StringView originator, StringView text, StringView timeStamp) {
  StoredMessage message{Store::Sim, 0, Status::ReceivedUnread, String(originator), String(text), String(timeStamp)};
  for (const Store store : {Store::Sim, Store::Phone}) {
    if (!supportedMemory(store)) continue;
    message.store = store;
    message.index = put(message);
    if (message.index > 0) break;
  }
  return message;
}

std::int16_t SimulatedPhone::put(StoredMessage message) {
  auto& memory = memoryOf(message.store);
  const std::int16_t slot = memory.add(std::move(message));
  if (slot > 0) changed();
  return slot;
}

std::int16_t SimulatedPhone::fill(Store store) {
  Memory& memory = memoryOf(store);
  std::int16_t count = 0;
  while (memory.add({store, 0, Status::ReceivedRead, u"+46700000000", concat(u"Old message ", count + 1),
                     u"000101120000"}) > 0)
    ++count;
  changed();
  return count;
}

bool SimulatedPhone::take(Store store, std::int16_t slot) {
  if (memoryOf(store).slots.erase(slot) == 0) return false;
  changed();
  return true;
}

void SimulatedPhone::clear(Store store) {
  memoryOf(store).slots.clear();
  changed();
}

void SimulatedPhone::setCapacity(Store store, std::int16_t capacity) {
  memoryOf(store).capacity = capacity;
  changed();
}

void SimulatedPhone::setSupported(Store store, bool supported) {
  memoryOf(store).supported = supported;
  changed();
}

std::vector<StoredMessage> SimulatedPhone::stored(Store store) {
  std::vector<StoredMessage> messages;
  for (const auto& [slot, message] : memoryOf(store).slots) messages.push_back(message);
  return messages;
}

void SimulatedPhone::changed() {
  if (memoriesChanged) memoriesChanged();
}

}  // namespace handset
