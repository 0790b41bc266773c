// The items of the object model: MailItem, ContactItem, and every other kind as a plain item.
#pragma once

#include <optional>

#include "mailclient/message.h"
#include "mailclient/model_object.h"

namespace mailclient {

class FormDescription;
class Inspector;

class Item : public ModelObject {
 public:
  // The object for a message: a MailItem, ContactItem or PlainItem, by its class.
  static Ref<Item> create(ClientPtr client, const MessagePtr& message);

  Guid events() const override;
  void terminate() noexcept override;
  Object parent() const override;
  std::int32_t objectClass() const override { return kindOf((*message_)[Text::MessageClass]); }

  // The message that an argument means; error 13 when it is no item of this mail client.
  static MessagePtr of(const Object& argument);
  const MessagePtr& message() const { return message_; }

  const String& text(Text which) const { return living()[which]; }
  void putText(Text which, const String& value);

  void close(std::int32_t saveMode);
  Ref<Item> copy();
  void remove();
  void display(std::optional<bool> modal);
  String entryId();
  Ref<FormDescription> formDescription();
  Ref<Inspector> getInspector();
  Opaque mapiObject();
  Ref<Item> move(const Object& target);
  void save();
  bool saved();
  bool unread();
  void putUnread(bool unread);

 protected:
  Item(ClientPtr client, StringView className, MessagePtr message);
  // The message, unless it was deleted for good.
  Message& living() const;

 private:
  MessagePtr message_;
};

class MailItem final : public Item {
 public:
  MailItem(ClientPtr client, MessagePtr message) : Item(std::move(client), u"MailItem", std::move(message)) {}
  std::span<const Member> members() const override;

  // The new item; Nothing when a listener cancelled the action.
  Object reply();
  Object replyAll();
  Object forward();
  void send();
  bool sent();
  Date sentOn();
  Date receivedTime();
};

class ContactItem final : public Item {
 public:
  ContactItem(ClientPtr client, MessagePtr message) : Item(std::move(client), u"ContactItem", std::move(message)) {}
  std::span<const Member> members() const override;
};

class PlainItem final : public Item {
 public:
  PlainItem(ClientPtr client, MessagePtr message) : Item(std::move(client), u"Item", std::move(message)) {}
  std::span<const Member> members() const override;
};

}  // namespace mailclient
