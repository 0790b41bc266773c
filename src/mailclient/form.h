// FormDescription: the form of an item, and its publishing.
#pragma once

#include <optional>

#include "mailclient/message.h"
#include "mailclient/model_object.h"

namespace mailclient {

class FormDescription final : public ModelObject {
 public:
  FormDescription(ClientPtr client, MessagePtr message)
      : ModelObject(std::move(client), u"FormDescription"), message_(std::move(message)) {}
  std::span<const Member> members() const override;
  std::int32_t objectClass() const override { return 37; }  // olFormDescription
  Object parent() const override;

  String name() { return message_->formName; }
  void putName(const String& name);
  String displayName() { return message_->formDisplayName; }
  void putDisplayName(const String& name);
  String messageClass() { return (*message_)[Text::MessageClass]; }
  // Remembers the form in the store. Its class is the item's standard class and the form's name.
  void publishForm(std::int32_t registry, std::optional<Object> folder);

 private:
  MessagePtr message_;
};

}  // namespace mailclient
