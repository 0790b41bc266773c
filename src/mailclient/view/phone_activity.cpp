#include "mailclient/view/phone_activity.h"

#include "addin/platform/convert.h"

namespace mailclient {

void PhoneActivity::attached(bool isAttached, StringView name) {
  hasService_ = true;
  isAttached_ = isAttached;
  name_ = name;
  if (!isAttached) sending_ = receiving_ = {};
}

void PhoneActivity::serviceLost() {
  hasService_ = false;
  isAttached_ = false;
  sending_ = receiving_ = {};
}

// One that arrives is sent at once. One that leaves while the phone sends was sent, or given up; the next one begins
// then. Otherwise somebody has deleted it.
void PhoneActivity::outboxHolds(std::size_t messages, std::size_t characters, std::uint32_t now) {
  const bool begins = messages > waiting_ ? isAttached_ : messages < waiting_ && sending_.set;
  waiting_ = messages;
  sendSpan_ = longestSend * static_cast<std::uint32_t>(characters / charactersPerPart + 1);
  if (messages == 0)
    sending_ = {};
  else if (begins)
    sending_ = {true, now};
}

void PhoneActivity::commandBegan() {
  if (commands_++ == 0) commandUsesPhone_ = false;
}

// What waits is sent behind a command that listed.
void PhoneActivity::commandEnded(std::uint32_t now) {
  --commands_;
  if (isAttached_ && commandUsesPhone_ && waiting_ != 0) sending_ = {true, now};
}

void PhoneActivity::listing(std::uint32_t now) {
  receiving_ = {true, now};
  commandUsesPhone_ = commands_ > 0;
}

void PhoneActivity::delivered(std::uint32_t now) { listing(now); }

// Of a send that failed the add-in says nothing more until the next run.
void PhoneActivity::answered(bool succeeded, std::uint32_t now) {
  if (sending_.set && !succeeded)
    sending_ = {};
  else if (!sending_.set)
    listing(now);
}

PhoneActivity::State PhoneActivity::state(std::uint32_t now) const {
  if (!hasService_) return State::NoService;
  if (!isAttached_) return State::NoPhone;
  if (receiving_.isWithin(now, shownFor) || (commands_ > 0 && commandUsesPhone_)) return State::Receiving;
  return sending_.isWithin(now, sendSpan_) ? State::Sending : State::Idle;
}

bool PhoneActivity::isWorking(std::uint32_t now) const {
  const State s = state(now);
  return s == State::Sending || s == State::Receiving;
}

String PhoneActivity::text(std::uint32_t now) const {
  const String& name = name_.empty() ? String(u"Phone") : name_;
  switch (state(now)) {
    case State::NoService:
      return u"No phone service";
    case State::NoPhone:
      return u"No phone connected";
    case State::Idle:
      return name + u" connected";
    case State::Sending:
      return waiting_ == 1 ? String(u"Sending 1 text message...")
                           : platform::concat(StringView(u"Sending "), static_cast<std::int32_t>(waiting_),
                                              StringView(u" text messages..."));
    case State::Receiving:
      return u"Receiving text messages...";
  }
  return {};
}

}  // namespace mailclient
