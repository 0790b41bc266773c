#include "mailclient/win/phone_watch.h"

#include "com/bridge.h"
#include "com/create_object.h"

namespace mailclient::win {

namespace dvmworkerlib = platform::dvmworkerlib;
namespace sms_objectlib = platform::sms_objectlib;

void PhoneWatch::connect() {
  try {
    com::Ptr<IDispatch> made;
    if (FAILED(com::createObject(com::iidOf(dvmworkerlib::clsidWorker), made))) raiseError(429);
    worker_ = platform::as<dvmworkerlib::Worker>(com::import(made.get()));
    look();
  } catch (const RuntimeError&) {
    release();
    activity_.serviceLost();
  }
  changed_();
}

void PhoneWatch::release() {
  sms_ = nullptr;
  worker_ = nullptr;
}

// The first phone that is connected speaks for all.
void PhoneWatch::look() {
  const dvmworkerlib::CellPhones phones = worker_->CellPhones();
  for (std::int32_t i = 0; i < phones.Count(); ++i) {
    const dvmworkerlib::CellPhone phone = phones.Item(i);
    if (!phone.IsConnected()) continue;
    activity_.attached(true, phone.Name());
    sms_ = phone.SMS();
    return;
  }
  activity_.attached(false, {});
  sms_ = nullptr;
}

void PhoneWatch::worker_OnNotifyCellPhoneConnected(std::int32_t /*connected*/, platform::Object /*phone*/) {
  try {
    look();
  } catch (const RuntimeError&) {
    release();
    activity_.serviceLost();
  }
  changed_();
}

void PhoneWatch::sms_OnNotifyResponse(std::int32_t /*transaction*/, std::int32_t status, platform::Object message) {
  const auto now = static_cast<std::uint32_t>(GetTickCount());
  if (message)
    activity_.delivered(now);
  else
    activity_.answered(status == sms_objectlib::resultSuccess, now);
  changed_();
}

}  // namespace mailclient::win
