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

// One that arrives is sent at once. One that leaves was sent, or given up; the next one begins then.
void PhoneActivity::outboxHolds(std::size_t messages, std::uint32_t now) {
  const bool changed = messages != waiting_;
  waiting_ = messages;
  if (messages == 0)
    sending_ = {};
  else if (changed && isAttached_)
    sending_ = {true, now};
}

void PhoneActivity::commandBegan(std::uint32_t now) {
  ++commands_;
  if (isAttached_) receiving_ = {true, now};
}

void PhoneActivity::commandEnded(std::uint32_t now) {
  --commands_;
  if (isAttached_ && waiting_ != 0) sending_ = {true, now};
}

void PhoneActivity::delivered(std::uint32_t now) { receiving_ = {true, now}; }

// Of a send that failed the add-in says nothing more until the next run.
void PhoneActivity::answered(bool succeeded, std::uint32_t now) {
  if (sending_.set && !succeeded)
    sending_ = {};
  else if (!sending_.set)
    receiving_ = {true, now};
}

PhoneActivity::State PhoneActivity::state(std::uint32_t now) const {
  if (!hasService_) return State::NoService;
  if (!isAttached_) return State::NoPhone;
  if (receiving_.isWithin(now, shownFor) || (commands_ > 0 && receiving_.set)) return State::Receiving;
  return sending_.isWithin(now, longestSend) ? State::Sending : State::Idle;
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
