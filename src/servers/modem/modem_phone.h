// A GSM modem as a phone of the servers. It answers from its own copy of the modem's memories, which is read when the
// modem is found, when it announces a message and after deletions; only sending and deleting wait for the line, and
// that on the line's thread (wire.h).
#pragma once

#include <list>
#include <map>
#include <vector>

#include "servers/common/scheduler.h"
#include "servers/handset/phone.h"
#include "servers/handset/watchers.h"
#include "servers/modem/message_copy.h"
#include "servers/modem/send_record.h"
#include "servers/modem/wire.h"

namespace servers::modem {

class ModemPhone final : public handset::Phone {
 public:
  // `reference` begins the references of long messages. `isHeard`: there is somebody to whom answers can go.
  ModemPhone(Scheduler& scheduler, const phone::Clock& clock, std::shared_ptr<SendRecord> record,
             std::function<bool()> isHeard, std::unique_ptr<Wire> wire, std::uint8_t reference);
  ~ModemPhone() override;

  platform::String name() override { return name_; }
  bool isConnected() override { return connected_; }
  bool isStorageSupported(handset::Store store) override;
  std::int16_t storageCapacity(handset::Store store) override;
  std::int16_t storageUsed(handset::Store store) override;
  Request list(handset::Store store, std::int32_t filter, OnMessage onMessage, OnEnd onEnd) override;
  void giveBack(const handset::StoredMessage& message) override;
  Request remove(handset::Store store, std::int16_t index, OnEnd onEnd) override;
  Request send(const handset::OutgoingMessage& message, OnEnd onEnd) override;
  bool isSending() override { return !sends_.empty(); }
  void abandoned() override;
  platform::Ref<platform::Counted> watch(OnConnection changed) override {
    return watchers_.add(this, std::move(changed));
  }

 private:
  struct Pending;
  struct Forgetting;
  struct Waiting;
  struct OpenSend {
    std::uint64_t key;
    std::shared_ptr<phone::Sending> sending;  // the line's thread's until it has answered or lost the modem
  };
  struct Removal {
    MessageCopy::Deletion deletion;
    phone::Outcome outcome;
  };

  void terminate() noexcept override;
  void requireConnected() const;
  phone::Memory memoryOfStore(handset::Store store) const;
  std::optional<phone::Memory> supportedMemory(handset::Store store) const;
  bool isSupported(phone::Memory memory) const { return presence_.supported[static_cast<std::size_t>(memory)]; }

  platform::Ref<Pending> begin(OnEnd onEnd);
  Request asked(const platform::Ref<Pending>& pending) const;
  void endLater(Pending& pending, std::int32_t result);
  void end(Pending& pending, std::int32_t result);
  void listNext(Pending& listing);

  void ask(Wire::Deed deed);
  void found(Presence presence);
  void lost();
  void noticed(const phone::Notice& notice);
  void taken(phone::Memory memory, const phone::Listing& listing);
  void refresh(phone::Memory memory);
  void refreshSoon(phone::Memory memory);
  void readSlot(phone::Slot slot);
  void removed(const platform::Ref<Pending>& pending, const std::vector<Removal>& removals);
  void removeLeftovers();
  phone::Outcome handOver(SendRecord::Entry& entry, const handset::OutgoingMessage& message);
  void sent(std::uint64_t key, const phone::Outcome& outcome);

  Scheduler& scheduler_;
  const phone::Clock& clock_;
  platform::String name_;
  bool connected_ = false;
  Presence presence_;
  MessageCopy copy_;
  std::array<phone::Instant, 2> refreshed_{};
  std::map<phone::Slot, bool> reading_;  // what is being read; true: and was announced again since
  std::shared_ptr<SendRecord> record_;
  std::function<bool()> isHeard_;
  std::list<OpenSend> sends_;
  std::uint8_t reference_;
  std::vector<platform::Ref<Pending>> pending_;
  std::array<platform::Ref<platform::Counted>, 2> refreshing_;
  handset::Watchers watchers_;
  std::unique_ptr<Wire> wire_;  // goes first: nothing of it may come later
};

}  // namespace servers::modem
