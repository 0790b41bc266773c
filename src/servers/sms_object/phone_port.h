// A phone as an automation object, so that it can be handed from dvmworker.exe to the SMS object of sms_object.dll:
// between two modules there is nothing but COM.
//
//   Name, IsConnected                                    as of Phone
//   IsStorageSupported(store), StorageCapacity(store), StorageUsed(store)
//   List(store, filter), Remove(store, index), Send(serviceCentre, destination, text)   return a request number
//   GiveBack(store, index, number, text, timeStamp)      as of Phone
//   Forget(request)                                      its events are no longer wanted
//   [event] Message(request, store, index, status, number, text, timeStamp)
//   [event] End(request, result)
//   [event] Connection(connected)
#pragma once

#include <functional>
#include <map>
#include <vector>

#include "addin/platform/native.h"
#include "addin/platform/with_events.h"
#include "servers/handset/phone.h"
#include "servers/handset/watchers.h"

namespace servers::sms_object {

struct PortEvents {
  static constexpr platform::Guid iid{0x187E399D, 0x6502, 0x418C, {0x93, 0x7A, 0x07, 0x89, 0xDC, 0xA4, 0x14, 0x13}};
  static constexpr platform::Event<std::int32_t, std::int32_t, std::int16_t, std::int32_t, platform::String,
                                   platform::String, platform::String>
      Message{u"Message", 1};
  static constexpr platform::Event<std::int32_t, std::int32_t> End{u"End", 2};
  static constexpr platform::Event<bool> Connection{u"Connection", 3};
};

// The phone's side.
class PhonePort final : public platform::NativeObject {
 public:
  explicit PhonePort(platform::Ref<handset::Phone> phone);

  std::span<const platform::Member> members() const override;
  platform::Guid events() const override { return PortEvents::iid; }

 private:
  void terminate() noexcept override;
  platform::String name() { return phone_->name(); }
  bool isConnected() { return phone_->isConnected(); }
  bool isStorageSupported(handset::Store store) { return phone_->isStorageSupported(store); }
  std::int16_t storageCapacity(handset::Store store) { return phone_->storageCapacity(store); }
  std::int16_t storageUsed(handset::Store store) { return phone_->storageUsed(store); }
  std::int32_t list(handset::Store store, std::int32_t filter);
  std::int32_t remove(handset::Store store, std::int16_t index);
  std::int32_t send(const platform::String& serviceCentre, const platform::String& destination,
                    const platform::String& text);
  void giveBack(handset::Store store, std::int16_t index, const platform::String& number, const platform::String& text,
                const platform::String& timeStamp);
  void forget(std::int32_t request) { requests_.erase(request); }
  handset::Phone::OnEnd whenEnded(std::int32_t request);

  platform::Ref<handset::Phone> phone_;
  platform::Ref<platform::Counted> watching_;
  std::int32_t lastRequest_ = 0;
  std::map<std::int32_t, handset::Phone::Request> requests_;
};

class PortFacade : public platform::Object {
 public:
  using platform::Object::Object;
  using Events = PortEvents;
  using platform::Object::call;
  using platform::Object::get;
};

// The other side: a phone again.
class PortPhone final : public handset::Phone {
 public:
  explicit PortPhone(const platform::Object& port);

  platform::String name() override { return port_->get<platform::String>(u"Name"); }
  bool isConnected() override { return port_->get<bool>(u"IsConnected"); }
  bool isStorageSupported(handset::Store store) override { return port_->call<bool>(u"IsStorageSupported", store); }
  std::int16_t storageCapacity(handset::Store store) override {
    return port_->call<std::int16_t>(u"StorageCapacity", store);
  }
  std::int16_t storageUsed(handset::Store store) override { return port_->call<std::int16_t>(u"StorageUsed", store); }
  Request list(handset::Store store, std::int32_t filter, OnMessage onMessage, OnEnd onEnd) override;
  void giveBack(const handset::StoredMessage& message) override;
  Request remove(handset::Store store, std::int16_t index, OnEnd onEnd) override;
  Request send(const handset::OutgoingMessage& message, OnEnd onEnd) override;
  platform::Ref<platform::Counted> watch(OnConnection changed) override {
    return watchers_.add(this, std::move(changed));
  }

 private:
  struct Callbacks {
    OnMessage onMessage;
    OnEnd onEnd;
  };
  struct Forgetting;

  // What came for a request before its number did.
  struct Early {
    std::int32_t request;
    std::function<void()> event;
  };

  Request ask(const std::function<std::int32_t()>& call, Callbacks callbacks);
  bool keepEarly(std::int32_t request, std::function<void()> event);
  void forget(std::int32_t request) noexcept;

  void port_Message(std::int32_t request, std::int32_t store, std::int16_t index, std::int32_t status,
                    const platform::String& number, const platform::String& text, const platform::String& timeStamp);
  void port_End(std::int32_t request, std::int32_t result);
  void port_Connection(bool connected);

  platform::WithEvents<PortFacade> port_;
  std::map<std::int32_t, Callbacks> expected_;
  std::int32_t asking_ = 0;  // calls that have not brought their request's number yet
  std::vector<Early> early_;
  handset::Watchers watchers_;
};

}  // namespace servers::sms_object
