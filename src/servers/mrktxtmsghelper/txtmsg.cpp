#include "servers/mrktxtmsghelper/txtmsg.h"

namespace servers::txtmsghelper {

using namespace platform;

namespace {
constexpr char16_t topicSeparator = 1;
}

std::span<const Member> TxtMsg::members() const {
  static constexpr Member table[] = {
      method<&TxtMsg::CreateMessage>(u"CreateMessage", platform::txtmsghelper::dispid::txtMsgCreateMessage),
  };
  return table;
}

String TxtMsg::CreateMessage(const outlook::Application& application, const String& messageClass, const String& to,
                             const String& from, const String& subject, const String& body, Date sentOn,
                             Date receivedTime, const String& timeStampText) {
  const outlook::MAPIFolder outbox = application.GetNamespace(u"MAPI").GetDefaultFolder(outlook::olFolderOutbox);
  const outlook::MailItem item = outbox.Items().Add(messageClass);
  const LateBound writable(item);
  writable.let(u"To", to);  // makes a recipient; the MAPI property is only computed from those
  writable.let(u"Body", body);

  const auto properties = surroundings_.propertiesOf(writable.get<Opaque>(u"MAPIOBJECT"));
  if (!properties) raiseError(430, u"Mrktxtmsghelper.TxtMsg", u"The item offers no MAPI properties");
  // The subject comes first and not through the object model, which would hold it back until Save and then rewrite the
  // conversation topic with it.
  properties->setString(mapi::tag::subject, subject);
  properties->setString(mapi::tag::senderName, from);
  properties->setString(mapi::tag::sentRepresentingName, from);
  properties->setTime(mapi::tag::clientSubmitTime, surroundings_.toUtc(sentOn));
  properties->setTime(mapi::tag::messageDeliveryTime, surroundings_.toUtc(receivedTime));
  properties->setLong(mapi::tag::messageFlags, 0);  // neither read nor unsent
  properties->setString(mapi::tag::conversationTopic, concat(to, StringView(&topicSeparator, 1), timeStampText));

  item.Save();
  return item.EntryID();
}

}  // namespace servers::txtmsghelper
