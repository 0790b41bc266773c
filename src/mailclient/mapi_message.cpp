#include "mailclient/mapi_message.h"

#include "addin/platform/date.h"
#include "mailclient/client.h"

namespace mailclient {
namespace {

[[noreturn]] void unknownTag() { fail(failure::unknownTag, u"This property is not supported."); }

constexpr std::uint32_t tagMessageClass = 0x001A001E;
constexpr std::uint32_t tagBody = 0x1000001E;
constexpr std::uint32_t tagDisplayTo = 0x0E04001E;

}  // namespace

Message& MapiMessage::changing() {
  if (message_->gone) fail(failure::deleted, u"The item has been moved or deleted.");
  message_->changed = true;
  return *message_;
}

void MapiMessage::setString(std::uint32_t tag, StringView text) {
  const auto is = [tag](std::uint32_t other) { return mapi::sameProperty(tag, other); };
  Message& m = changing();
  if (is(mapi::tag::subject))
    setSubject(m, String(text));
  else if (is(mapi::tag::conversationTopic))
    m[Text::ConversationTopic] = text;
  else if (is(mapi::tag::senderName) || is(mapi::tag::sentRepresentingName))
    m[Text::SenderName] = text;
  else if (is(tagMessageClass))
    m[Text::MessageClass] = text;
  else if (is(tagBody))
    m[Text::Body] = text;
  else if (is(tagDisplayTo))
    fail(failure::computed, u"This property is computed from the recipients.");
  else
    unknownTag();
}

void MapiMessage::setTime(std::uint32_t tag, Date utc) {
  if (!platform::isInCalendar(utc)) fail(failure::invalid, u"This is no time.");
  Message& m = changing();
  if (tag == mapi::tag::clientSubmitTime)
    m.sentOn = utc;
  else if (tag == mapi::tag::messageDeliveryTime)
    m.receivedTime = utc;
  else
    unknownTag();
}

void MapiMessage::setLong(std::uint32_t tag, std::int32_t value) {
  if (tag != mapi::tag::messageFlags) unknownTag();
  Message& m = changing();
  if (m.saved()) fail(failure::computed, u"The flags can be written before the first save only.");
  m.unread = (value & mapi::flagRead) == 0;
  m.unsent = (value & mapi::flagUnsent) != 0;
}

void MapiMessage::saveChanges() { client_->store().save(message_); }

}  // namespace mailclient
