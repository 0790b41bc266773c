#include "servers/sms_object/phone_port.h"

#include "addin/platform/on_error.h"

namespace servers::sms_object {

using namespace platform;
using handset::OutgoingMessage;
using handset::Phone;
using handset::Store;
using handset::StoredMessage;

PhonePort::PhonePort(Ref<Phone> phone)
    : phone_(std::move(phone)), watching_(phone_->watch([this](bool connected) {
        if (!connected) requests_.clear();
        fire(PortEvents::Connection, connected);
      })) {}

void PhonePort::terminate() noexcept {
  requests_.clear();
  watching_ = nullptr;
}

std::span<const Member> PhonePort::members() const {
  static constexpr Member table[] = {
      method<&PhonePort::name>(u"Name", 1),
      method<&PhonePort::isConnected>(u"IsConnected", 2),
      method<&PhonePort::isStorageSupported>(u"IsStorageSupported", 3),
      method<&PhonePort::storageCapacity>(u"StorageCapacity", 4),
      method<&PhonePort::storageUsed>(u"StorageUsed", 5),
      method<&PhonePort::list>(u"List", 6),
      method<&PhonePort::remove>(u"Remove", 7),
      method<&PhonePort::send>(u"Send", 8),
      method<&PhonePort::forget>(u"Forget", 9),
      method<&PhonePort::giveBack>(u"GiveBack", 10),
  };
  return table;
}

Phone::OnEnd PhonePort::whenEnded(std::int32_t request) {
  return [this, request](std::int32_t result) {
    const Hold<PhonePort> keep(this);
    requests_.erase(request);
    fire(PortEvents::End, request, result);
  };
}

std::int32_t PhonePort::list(Store store, std::int32_t filter) {
  const std::int32_t request = ++lastRequest_;
  const auto onMessage = [this, request](const StoredMessage& m) {
    const Hold<PhonePort> keep(this);
    fire(PortEvents::Message, request, m.store, m.index, m.status, m.number, m.text, m.timeStamp);
  };
  requests_[request] = phone_->list(store, filter, onMessage, whenEnded(request));
  return request;
}

std::int32_t PhonePort::remove(Store store, std::int16_t index) {
  const std::int32_t request = ++lastRequest_;
  requests_[request] = phone_->remove(store, index, whenEnded(request));
  return request;
}

std::int32_t PhonePort::send(const String& serviceCentre, const String& destination, const String& text) {
  const std::int32_t request = ++lastRequest_;
  requests_[request] = phone_->send({serviceCentre, destination, text}, whenEnded(request));
  return request;
}

void PhonePort::giveBack(Store store, std::int16_t index, const String& number, const String& text,
                         const String& timeStamp) {
  phone_->giveBack({store, index, handset::Status::ReceivedUnread, number, text, timeStamp});
}

struct PortPhone::Forgetting final : Counted {
  Forgetting(PortPhone* p, std::int32_t r) : phone(p), request(r) {}
  ~Forgetting() override { phone.get()->forget(request); }
  Ref<PortPhone> phone;
  std::int32_t request;
};

PortPhone::PortPhone(const Object& port)
    : port_(this, on<PortEvents::Message, &PortPhone::port_Message>, on<PortEvents::End, &PortPhone::port_End>,
            on<PortEvents::Connection, &PortPhone::port_Connection>) {
  port_ = as<PortFacade>(port);
}

Phone::Request PortPhone::list(Store store, std::int32_t filter, OnMessage onMessage, OnEnd onEnd) {
  return ask([&] { return port_->call<std::int32_t>(u"List", store, filter); },
             {std::move(onMessage), std::move(onEnd)});
}

void PortPhone::giveBack(const StoredMessage& m) {
  port_->call<void>(u"GiveBack", m.store, m.index, m.number, m.text, m.timeStamp);
}

Phone::Request PortPhone::remove(Store store, std::int16_t index, OnEnd onEnd) {
  return ask([&] { return port_->call<std::int32_t>(u"Remove", store, index); }, {nullptr, std::move(onEnd)});
}

Phone::Request PortPhone::send(const OutgoingMessage& m, OnEnd onEnd) {
  return ask([&] { return port_->call<std::int32_t>(u"Send", m.serviceCentre, m.destination, m.text); },
             {nullptr, std::move(onEnd)});
}

// A caller that waits for its call serves events meanwhile. When it is slow, the call's return and the first event are
// both there, and the event may be served first.
Phone::Request PortPhone::ask(const std::function<std::int32_t()>& call, Callbacks callbacks) {
  struct Asking {
    explicit Asking(PortPhone& p) : phone(p) { ++phone.asking_; }
    Asking(const Asking&) = delete;
    Asking& operator=(const Asking&) = delete;
    ~Asking() {
      if (--phone.asking_ == 0) phone.early_.clear();
    }
    PortPhone& phone;
  };
  const Hold<PortPhone> keep(this);
  const Asking asking(*this);
  const std::int32_t request = call();
  expected_[request] = std::move(callbacks);
  Request result = make<Forgetting>(this, request);
  for (const Early& early : std::vector(early_))
    if (early.request == request) early.event();
  return result;
}

bool PortPhone::keepEarly(std::int32_t request, std::function<void()> event) {
  if (asking_ == 0 || expected_.contains(request)) return false;
  early_.push_back({request, std::move(event)});
  return true;
}

void PortPhone::forget(std::int32_t request) noexcept {
  if (expected_.erase(request) == 0) return;
  onErrorResumeNext([&] { port_->call<void>(u"Forget", request); });
}

void PortPhone::port_Message(std::int32_t request, std::int32_t store, std::int16_t index, std::int32_t status,
                             const String& number, const String& text, const String& timeStamp) {
  if (keepEarly(request, [=, this] { port_Message(request, store, index, status, number, text, timeStamp); })) return;
  const auto expected = expected_.find(request);
  if (expected == expected_.end()) return;
  if (const OnMessage onMessage = expected->second.onMessage)
    onMessage({static_cast<Store>(store), index, static_cast<handset::Status>(status), number, text, timeStamp});
}

void PortPhone::port_End(std::int32_t request, std::int32_t result) {
  if (keepEarly(request, [=, this] { port_End(request, result); })) return;
  auto ended = expected_.extract(request);
  if (ended && ended.mapped().onEnd) ended.mapped().onEnd(result);
}

void PortPhone::port_Connection(bool connected) {
  if (!connected) {
    expected_.clear();
    early_.clear();
  }
  watchers_.tell(connected);
}

}  // namespace servers::sms_object
