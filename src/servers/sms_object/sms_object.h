// The SMS object of a phone: requests that return a transaction identifier at once, and their answers as events.
//
//   CreateShortMessage()            a message to fill and send
//   ListMessages(store, status)     one answer per message, status 0x8888002C for all but the last, which carries 0 (or
//                                   why the listing broke off); an empty listing has one answer without a message
//   DeleteMessage(store, index)     answers 0, or 0x888800C8 when that slot is empty
//   IsStorageSupported(store), StorageCapacity(store), StorageUsed(store)   are answered at once
//   [event] OnNotifyResponse(TransactionID, status, ShortMessage)
//
// Answers are delivered one at a time, in the order in which the phone gave them, and never before the request has
// returned to its caller. Between two processes that takes more than posting: while the caller waits for the return,
// its thread serves incoming calls, and an event sent right after the return may overtake it. So a request is answered
// only after a while, which is made of several turns of this thread's own timer: on a machine that is too busy to bring
// the return to its caller, each of the turns comes late as well, and the while grows with the need for it.
//
// Losing the phone drops what is pending; no answer comes. Outcomes that the phone has given are delivered before
// anybody is told of the loss; messages that were not delivered are given back, and stay unread. Requests without a
// phone are error handset::notConnected.
#pragma once

#include <deque>
#include <map>
#include <optional>

#include "addin/platform/native.h"
#include "addin/platform/sms_objectlib.h"
#include "servers/common/scheduler.h"
#include "servers/handset/phone.h"
#include "servers/sms_object/short_message.h"
#include "servers/sms_object/transaction_ids.h"

namespace servers::sms_object {

// From a request's return to its first answer. A return that is under way takes well under a millisecond.
inline constexpr int holdBackTurns = 4;
inline constexpr std::int32_t holdBackTurn = 25;  // milliseconds
inline constexpr std::int32_t answerHoldBack = holdBackTurns * holdBackTurn;

// Some networks' users leave the product's own placeholder as their service centre: the SIM's own is meant.
inline constexpr platform::StringView placeholderServiceCentre = u"+46701740699";

class SmsObject final : public platform::NativeObject {
 public:
  SmsObject(Scheduler& scheduler, TransactionIds ids) : scheduler_(scheduler), ids_(std::move(ids)) {}

  std::span<const platform::Member> members() const override;
  platform::Guid events() const override { return platform::sms_objectlib::SMSEvents::iid; }

  // The phone behind it, once. Also a member, AttachPhone(port), for who gets the object from the DLL (phone_port.h).
  void attach(platform::Ref<handset::Phone> phone);

  platform::Ref<ShortMessage> CreateShortMessage();
  std::int32_t ListMessages(handset::Store store, std::int32_t status);
  std::int32_t DeleteMessage(handset::Store store, std::int16_t index);
  bool IsStorageSupported(handset::Store store) { return phone()->isStorageSupported(store); }
  std::int16_t StorageCapacity(handset::Store store) { return phone()->storageCapacity(store); }
  std::int16_t StorageUsed(handset::Store store) { return phone()->storageUsed(store); }

  std::int32_t send(handset::OutgoingMessage message);

 private:
  struct Pending {
    handset::Phone::Request request;
    platform::Ref<platform::Counted> holdBack;
    bool returned = false;                         // long enough ago
    std::optional<handset::StoredMessage> listed;  // waits for the next: only then is it known not to be the last
  };
  struct Answer {
    std::int32_t transaction;
    std::int32_t status;
    std::optional<handset::StoredMessage> message;
    bool last;
  };

  void terminate() noexcept override;
  void attachPort(const platform::Object& port);
  const platform::Ref<handset::Phone>& phone() const;
  std::int32_t begun(std::int32_t transaction, handset::Phone::Request request);
  void holdBack(std::int32_t transaction, int turns);
  void listed(std::int32_t transaction, const handset::StoredMessage& message);
  void ended(std::int32_t transaction, std::int32_t result);
  void answer(Answer answer);
  void scheduleDelivery();
  void deliverNext();
  void deliver(const Answer& answer);
  void phoneLost();
  void dropEverything() noexcept;
  void giveBack(const std::optional<handset::StoredMessage>& message) noexcept;

  Scheduler& scheduler_;
  TransactionIds ids_;
  platform::Ref<handset::Phone> phone_;
  platform::Ref<platform::Counted> watching_;
  std::map<std::int32_t, Pending> pending_;  // by transaction
  std::deque<Answer> answers_;
  platform::Ref<platform::Counted> delivery_;
  bool delivering_ = false;
};

}  // namespace servers::sms_object
