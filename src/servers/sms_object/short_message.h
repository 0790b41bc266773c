// A short message: one that a listing brought, or one to be filled and sent.
#pragma once

#include "addin/platform/native.h"
#include "addin/platform/sms_objectlib.h"
#include "servers/handset/phone.h"

namespace servers::sms_object {

class SmsObject;

class ShortMessage final : public platform::NativeObject {
 public:
  // The message keeps its SMS object.
  explicit ShortMessage(SmsObject* sms, handset::StoredMessage message = {});

  std::span<const platform::Member> members() const override;

  // Returns the transaction identifier. Error 5 without a destination.
  std::int32_t Send();

 private:
  void setServiceCentre(const platform::String& number) { serviceCentre_ = number; }
  void setDestination(const platform::String& number) { destination_ = number; }

  platform::Ref<SmsObject> sms_;
  platform::String serviceCentre_;
  platform::String destination_;
  platform::String text_;
  platform::String originator_;
  platform::String timeStamp_;
  std::int32_t store_ = 0;
  std::int32_t status_ = 0;
  std::int16_t index_ = 0;
};

}  // namespace servers::sms_object
