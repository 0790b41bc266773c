#include "servers/sms_object/short_message.h"

#include "servers/sms_object/sms_object.h"

namespace servers::sms_object {

using namespace platform;

ShortMessage::ShortMessage(SmsObject* sms, handset::StoredMessage message)
    : sms_(sms),
      text_(std::move(message.text)),
      originator_(std::move(message.number)),
      timeStamp_(std::move(message.timeStamp)),
      store_(static_cast<std::int32_t>(message.store)),
      status_(static_cast<std::int32_t>(message.status)),
      index_(message.index) {}

std::span<const Member> ShortMessage::members() const {
  namespace id = platform::sms_objectlib::dispid;
  static constexpr Member table[] = {
      writeOnly<&ShortMessage::setServiceCentre>(u"ServiceCentre", id::messageServiceCentre),
      writeOnly<&ShortMessage::setDestination>(u"Destination", id::messageDestination),
      field<&ShortMessage::text_>(u"Text", id::messageText),
      method<&ShortMessage::Send>(u"Send", id::messageSend),
      readOnly<&ShortMessage::originator_>(u"Originator", id::messageOriginator),
      field<&ShortMessage::store_>(u"Store", id::messageStore),
      readOnly<&ShortMessage::index_>(u"Index", id::messageIndex),
      readOnly<&ShortMessage::status_>(u"Status", id::messageStatus),
      readOnly<&ShortMessage::timeStamp_>(u"TimeStamp", id::messageTimeStamp),
  };
  return table;
}

std::int32_t ShortMessage::Send() {
  if (destination_.empty()) raiseError(5);
  return sms_->send({serviceCentre_, destination_, text_});
}

}  // namespace servers::sms_object
