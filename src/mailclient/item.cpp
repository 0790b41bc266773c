#include "mailclient/item.h"

#include "addin/platform/outlook.h"
#include "mailclient/client.h"
#include "mailclient/folders.h"
#include "mailclient/form.h"
#include "mailclient/mapi_message.h"

namespace mailclient {
namespace {

using platform::Access;

Variant runText(Item& item, Text which, Access access, Args args) {
  const bool writes = access == Access::Let || access == Access::Set;
  if (args.size() != (writes ? 1u : 0u)) raiseError(450);
  if (!writes) return item.text(which);
  item.putText(which, platform::CStr(args[0]));
  return {};
}

// A text property, writable unless a table says otherwise.
template <Text T>
constexpr Member textMember(StringView name, std::int32_t dispid,
                            std::uint8_t access = platform::detail::reads | platform::detail::writes) {
  return {name, dispid, access, [](platform::Automation& self, Access how, Args args) {
            return runText(static_cast<Item&>(self), T, how, args);
          }};
}

template <Text T>
constexpr Member readOnlyTextMember(StringView name, std::int32_t dispid) {
  return textMember<T>(name, dispid, platform::detail::reads);
}

// The members that items of every kind have, with those of Outlook's objects, and behind them the kind's own.
template <std::size_t N>
constexpr auto itemMembers(const Member (&own)[N]) {
  constexpr auto shared = withCommon({
      method<&Item::entryId>(u"EntryID", 0xF01E),
      textMember<Text::MessageClass>(u"MessageClass", 0x1A),
      textMember<Text::Body>(u"Body", 0x9100),
      readOnlyTextMember<Text::ConversationTopic>(u"ConversationTopic", 0x70),
      textMember<Text::Mileage>(u"Mileage", 0x8534),
      textMember<Text::BillingInformation>(u"BillingInformation", 0x8535),
      textMember<Text::Subject>(u"Subject", 0x37),
      property<&Item::unread, &Item::putUnread>(u"UnRead", 0xF01C),
      method<&Item::move>(u"Move", 0xF034),
      method<&Item::save>(u"Save", 0xF048),
      method<&Item::remove>(u"Delete", 0xF04A),
      method<&Item::mapiObject>(u"MAPIOBJECT", 0xF100),
      textMember<Text::Categories>(u"Categories", 0x9001),
      textMember<Text::Companies>(u"Companies", 0x853B),
      method<&Item::formDescription>(u"FormDescription", 0xF095),
      method<&Item::getInspector>(u"GetInspector", 0xF03E),
      method<&Item::saved>(u"Saved", 0xF0A3),
      method<&Item::close>(u"Close", 0xF023),
      method<&Item::copy>(u"Copy", 0xF032),
      method<&Item::display>(u"Display", 0xF0A6),
  });
  std::array<Member, shared.size() + N> all{};
  std::size_t i = 0;
  for (const Member& m : shared) all[i++] = m;
  for (const Member& m : own) all[i++] = m;
  return all;
}

}  // namespace

std::span<const Member> MailItem::members() const {
  static constexpr auto table = itemMembers({
      textMember<Text::To>(u"To", 0xE04),
      textMember<Text::Cc>(u"CC", 0xE03),
      textMember<Text::Bcc>(u"BCC", 0xE02),
      readOnlyTextMember<Text::SenderName>(u"SenderName", 0xC1A),
      method<&MailItem::sentOn>(u"SentOn", 0x39),
      method<&MailItem::receivedTime>(u"ReceivedTime", 0xE06),
      textMember<Text::HtmlBody>(u"HTMLBody", 0xF404),
      method<&MailItem::sent>(u"Sent", 0xF402),
      method<&MailItem::send>(u"Send", 0xF075),
      method<&MailItem::reply>(u"Reply", 0xF810),
      method<&MailItem::replyAll>(u"ReplyAll", 0xF811),
      method<&MailItem::forward>(u"Forward", 0xF813),
  });
  return table;
}

std::span<const Member> ContactItem::members() const {
  static constexpr auto table = itemMembers({
      textMember<Text::FullName>(u"FullName", 0x3001),
      textMember<Text::FirstName>(u"FirstName", 0x3A06),
      textMember<Text::LastName>(u"LastName", 0x3A11),
      textMember<Text::CompanyName>(u"CompanyName", 0x3A16),
      textMember<Text::FileAs>(u"FileAs", 0x8005),
      textMember<Text::MobileTelephoneNumber>(u"MobileTelephoneNumber", 0x3A1C),
      textMember<Text::BusinessTelephoneNumber>(u"BusinessTelephoneNumber", 0x3A08),
      textMember<Text::HomeTelephoneNumber>(u"HomeTelephoneNumber", 0x3A09),
  });
  return table;
}

std::span<const Member> PlainItem::members() const {
  static constexpr auto table = itemMembers({textMember<Text::To>(u"To", 0xE04)});
  return table;
}

Ref<Item> Item::create(ClientPtr client, const MessagePtr& message) {
  switch (kindOf((*message)[Text::MessageClass])) {
    case platform::outlook::olMail:
      return make<MailItem>(std::move(client), message);
    case platform::outlook::olContact:
      return make<ContactItem>(std::move(client), message);
    default:
      return make<PlainItem>(std::move(client), message);
  }
}

Item::Item(ClientPtr client, StringView className, MessagePtr message)
    : ModelObject(std::move(client), className), message_(std::move(message)) {
  message_->view = this;
}

Guid Item::events() const { return platform::outlook::ItemEvents::iid; }
void Item::terminate() noexcept { message_->view = nullptr; }

Object Item::parent() const {
  const auto folder = living().folder->shared_from_this();
  return client().folderObject(folder).get()->object();
}

MessagePtr Item::of(const Object& argument) {
  const auto* const native = platform::nativeOf<Item>(argument);
  if (!native) raiseError(13);
  return native->message_;
}

Message& Item::living() const {
  if (message_->gone) fail(failure::deleted, u"The item has been moved or deleted.");
  return *message_;
}

// The subject carries the topic along; a contact's name is what it is filed under while nothing else is.
void Item::putText(Text which, const String& value) {
  Message& m = living();
  if (which == Text::MessageClass && value.empty()) raiseError(5);
  if (which == Text::Subject) setSubject(m, value);
  if (which == Text::FullName && m[Text::FileAs].empty()) m[Text::FileAs] = value;
  m[which] = value;
  m.changed = true;
}

void Item::close(std::int32_t saveMode) {
  living();
  constexpr std::int32_t saving = 0;  // olSave
  if (saveMode == saving && message_->changed) save();
  client().windows().closeInspectorsOf(message_);
}

Ref<Item> Item::copy() {
  const Message& original = living();
  auto twin = std::make_shared<Message>(original);
  twin->entryId.clear();
  twin->view = nullptr;
  twin->file.clear();
  twin->foreign = false;
  client().store().save(twin);
  return client().itemObject(twin);
}

void Item::remove() { client().store().remove(message_); }

void Item::display(std::optional<bool> /*modal*/) {
  living();
  client().windows().openInspector(message_);
}

String Item::entryId() { return living().entryId; }
Ref<FormDescription> Item::formDescription() { return make<FormDescription>(clientPtr(), (living(), message_)); }

Ref<Inspector> Item::getInspector() {
  living();
  return client().windows().inspectorObject(client().windows().openInspector(message_));
}

Opaque Item::mapiObject() {
  living();
  return Opaque{make<MapiMessage>(clientPtr(), message_)};
}

Ref<Item> Item::move(const Object& target) {
  living();
  client().store().move(message_, MAPIFolder::of(target));
  return Ref<Item>(this);
}

void Item::save() { client().store().save(message_); }
bool Item::saved() { return !living().changed; }
bool Item::unread() { return living().unread; }
void Item::putUnread(bool unread) { client().store().setUnread(message_, unread); }

}  // namespace mailclient
