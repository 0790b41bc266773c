#include "servers/sms_object/sms_object.h"

#include <algorithm>
#include <iterator>

#include "addin/platform/on_error.h"
#include "servers/sms_object/phone_port.h"

namespace servers::sms_object {

using namespace platform;
using handset::OutgoingMessage;
using handset::Phone;
using handset::Store;
using handset::StoredMessage;

namespace {
constexpr std::int32_t dispidAttachPhone = 100;
}

std::span<const Member> SmsObject::members() const {
  namespace id = platform::sms_objectlib::dispid;
  static constexpr Member table[] = {
      method<&SmsObject::CreateShortMessage>(u"CreateShortMessage", id::smsCreateShortMessage),
      method<&SmsObject::ListMessages>(u"ListMessages", id::smsListMessages),
      method<&SmsObject::DeleteMessage>(u"DeleteMessage", id::smsDeleteMessage),
      method<&SmsObject::IsStorageSupported>(u"IsStorageSupported", id::smsIsStorageSupported),
      method<&SmsObject::StorageCapacity>(u"StorageCapacity", id::smsStorageCapacity),
      method<&SmsObject::StorageUsed>(u"StorageUsed", id::smsStorageUsed),
      method<&SmsObject::attachPort>(u"AttachPhone", dispidAttachPhone),
  };
  return table;
}

void SmsObject::attach(Ref<Phone> phone) {
  if (phone_ || !phone) raiseError(5);
  watching_ = phone->watch([this](bool connected) {
    if (!connected) phoneLost();
  });
  phone_ = std::move(phone);
}

void SmsObject::attachPort(const Object& port) { attach(make<PortPhone>(port)); }

void SmsObject::terminate() noexcept {
  dropEverything();
  watching_ = nullptr;
  phone_ = nullptr;
}

// What became of a send or a deletion is told now, while there still is somebody who listens: the notice of the loss
// comes next, and whoever has not heard the outcome by then asks again. Better before the request's return, or inside
// the listener's handling of another answer, than never.
void SmsObject::phoneLost() {
  const Hold<SmsObject> keep(this);
  std::deque<Answer> outcomes;
  std::copy_if(answers_.begin(), answers_.end(), std::back_inserter(outcomes),
               [](const Answer& a) { return a.last && !a.message; });
  dropEverything();
  for (const Answer& outcome : outcomes) deliver(outcome);
}

// What was listed as unread and was not delivered must not be taken for read.
void SmsObject::dropEverything() noexcept {
  delivery_ = nullptr;
  for (const Answer& one : std::exchange(answers_, {})) giveBack(one.message);
  for (const auto& [transaction, pending] : std::exchange(pending_, {})) giveBack(pending.listed);
}

void SmsObject::giveBack(const std::optional<StoredMessage>& message) noexcept {
  if (!message || message->status != handset::Status::ReceivedUnread) return;
  onErrorResumeNext([&] { phone_->giveBack(*message); });
}

const Ref<Phone>& SmsObject::phone() const {
  if (!phone_) raiseError(handset::notConnected, u"SMS_OBJECT", u"There is no phone");
  return phone_;
}

Ref<ShortMessage> SmsObject::CreateShortMessage() { return make<ShortMessage>(this); }

std::int32_t SmsObject::ListMessages(Store store, std::int32_t status) {
  const std::int32_t id = ids_.next();
  return begun(id, phone()->list(
                       store, status, [this, id](const StoredMessage& message) { listed(id, message); },
                       [this, id](std::int32_t result) { ended(id, result); }));
}

std::int32_t SmsObject::DeleteMessage(Store store, std::int16_t index) {
  const std::int32_t id = ids_.next();
  return begun(id, phone()->remove(store, index, [this, id](std::int32_t result) { ended(id, result); }));
}

std::int32_t SmsObject::send(OutgoingMessage message) {
  if (message.serviceCentre == placeholderServiceCentre) message.serviceCentre.clear();
  const std::int32_t id = ids_.next();
  return begun(id, phone()->send(message, [this, id](std::int32_t result) { ended(id, result); }));
}

std::int32_t SmsObject::begun(std::int32_t transaction, Phone::Request request) {
  Pending& pending = pending_[transaction];
  pending.request = std::move(request);
  holdBack(transaction, holdBackTurns);
  return transaction;
}

void SmsObject::holdBack(std::int32_t transaction, int turns) {
  pending_[transaction].holdBack = scheduler_.after(holdBackTurn, [this, transaction, turns] {
    if (turns > 1) return holdBack(transaction, turns - 1);
    pending_[transaction].returned = true;
    scheduleDelivery();
  });
}

void SmsObject::listed(std::int32_t transaction, const StoredMessage& message) {
  auto& waiting = pending_[transaction].listed;
  if (waiting) answer({transaction, sms_objectlib::resultMoreData, std::exchange(waiting, std::nullopt), false});
  pending_[transaction].listed = message;
}

void SmsObject::ended(std::int32_t transaction, std::int32_t result) {
  answer({transaction, result, std::exchange(pending_[transaction].listed, std::nullopt), true});
}

void SmsObject::answer(Answer answer) {
  answers_.push_back(std::move(answer));
  scheduleDelivery();
}

void SmsObject::scheduleDelivery() {
  if (delivering_ || delivery_) return;
  const bool ready =
      std::any_of(answers_.begin(), answers_.end(), [&](const Answer& a) { return pending_[a.transaction].returned; });
  if (ready) delivery_ = scheduler_.after(0, [this] { deliverNext(); });
}

void SmsObject::deliverNext() {
  const Hold<SmsObject> keep(this);
  delivery_ = nullptr;
  const auto next =
      std::find_if(answers_.begin(), answers_.end(), [&](const Answer& a) { return pending_[a.transaction].returned; });
  if (next == answers_.end()) return;
  const Answer answer = std::move(*next);
  answers_.erase(next);
  if (answer.last) pending_.erase(answer.transaction);
  deliver(answer);
  scheduleDelivery();
}

void SmsObject::deliver(const Answer& answer) {
  Object message;
  if (answer.message) message = make<ShortMessage>(this, *answer.message).get()->object();
  // A listener that serves messages inside its handler must not get the next answer there.
  const bool inside = std::exchange(delivering_, true);
  fire(sms_objectlib::SMSEvents::OnNotifyResponse, answer.transaction, answer.status, message);
  delivering_ = inside;
}

}  // namespace servers::sms_object
