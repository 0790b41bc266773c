// SMS_OBJECTLib, the SMS object library (sms_object.dll): messages in the phone's memories, and sending.
//
// Requests return a transaction identifier at once; the answer comes as OnNotifyResponse with that identifier.
#pragma once

#include "addin/platform/object.h"

namespace platform::sms_objectlib {

enum MessageStore : std::int32_t { cpSMSMEMessageStore = 1, cpSMSSIMMessageStore = 2 };

// Listing filters, and the status of a stored message: the numbers of the message status in 3GPP TS 27.005, 3.1.
enum StatusFilter : std::int32_t { statusUnread = 0, statusAll = 4 };
enum MessageStatus : std::int32_t { receivedUnread = 0, receivedRead = 1, storedUnsent = 2, storedSent = 3 };

// Result codes of an answer.
inline constexpr std::int32_t resultSuccess = 0;
inline constexpr std::int32_t resultMoreData = static_cast<std::int32_t>(0x8888002C);   // more of the listing follows
inline constexpr std::int32_t resultEmptySlot = static_cast<std::int32_t>(0x888800C8);  // nothing there to delete

inline constexpr Guid clsidSMS{0xF5EC52ED, 0x0108, 0x4475, {0x92, 0xE1, 0xBC, 0x76, 0x56, 0x67, 0x0B, 0x14}};

struct SMSEvents {
  static constexpr Guid iid{0x59BA1B0D, 0x5C90, 0x4158, {0xA9, 0x09, 0x40, 0x6C, 0x2E, 0x41, 0x67, 0x88}};
  // TransactionID, status (a result code), ShortMessage (Nothing unless a listing delivers one).
  static constexpr Event<std::int32_t, std::int32_t, Object> OnNotifyResponse{u"OnNotifyResponse", 1};
};

// Dispatch identifiers of the members, for who serves them.
namespace dispid {
inline constexpr std::int32_t smsCreateShortMessage = 1, smsListMessages = 2, smsDeleteMessage = 3,
                              smsIsStorageSupported = 4, smsStorageCapacity = 5, smsStorageUsed = 6;
inline constexpr std::int32_t messageServiceCentre = 1, messageDestination = 2, messageText = 3, messageSend = 4,
                              messageOriginator = 5, messageStore = 6, messageIndex = 7, messageStatus = 8,
                              messageTimeStamp = 9;
}  // namespace dispid

class ShortMessage : public Object {
 public:
  using Object::Object;
  void Destination(StringView number) const { let(u"Destination", number); }
  std::int16_t Index() const { return get<std::int16_t>(u"Index"); }
  String Originator() const { return get<String>(u"Originator"); }
  std::int32_t Send() const { return call<std::int32_t>(u"Send"); }
  void ServiceCentre(StringView number) const { let(u"ServiceCentre", number); }
  MessageStatus Status() const { return get<MessageStatus>(u"Status"); }
  std::int32_t Store() const { return get<std::int32_t>(u"Store"); }
  void Store(std::int32_t store) const { let(u"Store", store); }
  String Text() const { return get<String>(u"Text"); }
  void Text(StringView text) const { let(u"Text", text); }
  String TimeStamp() const { return get<String>(u"TimeStamp"); }  // starts with twelve digits YYMMDDhhmmss
};

class SMS : public Object {
 public:
  using Object::Object;
  using Events = SMSEvents;
  ShortMessage CreateShortMessage() const { return call<ShortMessage>(u"CreateShortMessage"); }
  std::int32_t DeleteMessage(std::int32_t store, std::int16_t index) const {
    return call<std::int32_t>(u"DeleteMessage", store, index);
  }
  bool IsStorageSupported(std::int32_t store) const { return call<bool>(u"IsStorageSupported", store); }
  std::int32_t ListMessages(std::int32_t store, std::int32_t status) const {
    return call<std::int32_t>(u"ListMessages", store, status);
  }
  std::int16_t StorageCapacity(std::int32_t store) const { return call<std::int16_t>(u"StorageCapacity", store); }
  std::int16_t StorageUsed(std::int32_t store) const { return call<std::int16_t>(u"StorageUsed", store); }
};

}  // namespace platform::sms_objectlib
