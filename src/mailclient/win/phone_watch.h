// Watches the phone through its connection worker, for the status bar alone: nothing is asked of the phone.
#pragma once

#include <functional>

#include "addin/platform/dvmworkerlib.h"
#include "addin/platform/with_events.h"
#include "mailclient/view/phone_activity.h"

namespace mailclient::win {

class PhoneWatch final : public platform::Counted {
 public:
  PhoneWatch(PhoneActivity& activity, std::function<void()> changed)
      : activity_(activity), changed_(std::move(changed)) {}

  // Without the worker there is no service, and that is shown.
  void connect();
  // Forgets the worker and its phones.
  void release();

 private:
  void worker_OnNotifyCellPhoneConnected(std::int32_t connected, platform::Object phone);
  void sms_OnNotifyResponse(std::int32_t transaction, std::int32_t status, platform::Object message);
  void look();

  PhoneActivity& activity_;
  std::function<void()> changed_;
  platform::WithEvents<platform::dvmworkerlib::Worker> worker_{
      this, platform::on<platform::dvmworkerlib::WorkerEvents::OnNotifyCellPhoneConnected,
                         &PhoneWatch::worker_OnNotifyCellPhoneConnected>};
  platform::WithEvents<platform::sms_objectlib::SMS> sms_{
      this, platform::on<platform::sms_objectlib::SMSEvents::OnNotifyResponse, &PhoneWatch::sms_OnNotifyResponse>};
};

}  // namespace mailclient::win
