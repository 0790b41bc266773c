// A handset that exists in memory only. What the network and the cable do to it is told from outside: messages that
// arrive, outcomes of the next requests, plugging in and out.
#pragma once

#include <deque>
#include <map>
#include <vector>

#include "servers/common/scheduler.h"
#include "servers/handset/memory.h"
#include "servers/handset/phone.h"
#include "servers/handset/watchers.h"

namespace handset {

enum class Operation : std::uint8_t { List, Remove, Send };

// How a request ends. A failing or silent one does nothing else: nothing is listed, removed or sent.
struct Outcome {
  std::int32_t result = success;
  std::int32_t delay = 0;  // milliseconds
  bool silent = false;     // no answer at all
};

class SimulatedPhone final : public Phone {
 public:
  explicit SimulatedPhone(servers::Scheduler& scheduler, platform::String name = u"Simulated handset",
                          Memories memories = {});
  ~SimulatedPhone() override;

  platform::String name() override { return name_; }
  bool isConnected() override { return plugged_; }
  bool isStorageSupported(Store store) override;
  std::int16_t storageCapacity(Store store) override;
  std::int16_t storageUsed(Store store) override;
  Request list(Store store, std::int32_t filter, OnMessage onMessage, OnEnd onEnd) override;
  void giveBack(const StoredMessage& message) override;
  Request remove(Store store, std::int16_t index, OnEnd onEnd) override;
  Request send(const OutgoingMessage& message, OnEnd onEnd) override;
  platform::Ref<platform::Counted> watch(OnConnection changed) override {
    return watchers_.add(this, std::move(changed));
  }

  // The cable. A phone begins plugged in; plugging in what is plugged in does nothing.
  void plug();
  void unplug();

  // A message that arrives from the network goes to the SIM, else to the phone memory. Its slot, with 0 for "no room".
  StoredMessage deliver(platform::StringView originator, platform::StringView text, platform::StringView timeStamp);
  // Puts a message into its store; its slot, or 0 when it does not fit.
  std::int16_t put(StoredMessage message);
  // Fills a store with old, read messages; how many.
  std::int16_t fill(Store store);
  bool take(Store store, std::int16_t slot);  // false when nothing was there
  void clear(Store store);
  void setCapacity(Store store, std::int16_t capacity);
  void setSupported(Store store, bool supported);
  // Asking for a capacity becomes an error.
  void failCapacity(bool fails) { capacityFails_ = fails; }

  // The next request of that kind that has no outcome yet ends so. Without a script requests succeed at once.
  void script(Operation operation, const Outcome& outcome) { scripts_[operation].push_back(outcome); }
  // Outcomes that no request has had.
  void forgetScripts() { scripts_.clear(); }

  std::vector<StoredMessage> stored(Store store);
  const Memories& memories() const { return memories_; }
  const std::vector<OutgoingMessage>& sent() const { return sent_; }
  void clearSent() { sent_.clear(); }

  // Called after every change of a memory.
  std::function<void()> memoriesChanged;

 private:
  struct Pending;
  struct Forgetting;

  void terminate() noexcept override;
  void dropPending() noexcept;
  void requirePlugged() const;
  Memory& memoryOf(Store store);
  Memory* supportedMemory(Store store);
  Request begin(Operation operation, OnEnd onEnd, std::function<std::int32_t(Pending&)> deed);
  void listNext(Pending& listing);
  void end(Pending& pending, std::int32_t result);
  void tellWatchers();
  void changed();

  servers::Scheduler& scheduler_;
  platform::String name_;
  Memories memories_;
  bool plugged_ = true;
  bool capacityFails_ = false;
  std::map<Operation, std::deque<Outcome>> scripts_;
  std::vector<OutgoingMessage> sent_;
  std::vector<platform::Ref<Pending>> pending_;
  Watchers watchers_;
};

}  // namespace handset
