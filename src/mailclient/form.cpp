#include "mailclient/form.h"

#include "mailclient/client.h"
#include "mailclient/folders.h"
#include "mailclient/item.h"

namespace mailclient {
namespace {

constexpr std::int32_t folderRegistry = 3;
constexpr std::int32_t lastRegistry = 4;

// A published form is a class directly below a standard one: IPM.Note.TxtMsg.
StringView standardClass(StringView messageClass) {
  const std::size_t first = messageClass.find(u'.');
  if (first == StringView::npos) return messageClass;
  return messageClass.substr(0, messageClass.find(u'.', first + 1));
}

}  // namespace

std::span<const Member> FormDescription::members() const {
  static constexpr auto table = withCommon({
      property<&FormDescription::displayName, &FormDescription::putDisplayName>(u"DisplayName", 0x3001),
      property<&FormDescription::name, &FormDescription::putName>(u"Name", 0xF01D),
      method<&FormDescription::messageClass>(u"MessageClass", 0x1A),
      method<&FormDescription::publishForm>(u"PublishForm", 0x6B),
  });
  return table;
}

Object FormDescription::parent() const { return client().itemObject(message_).get()->object(); }

// While both are empty, setting one sets the other.
void FormDescription::putName(const String& name) {
  if (message_->formName.empty() && message_->formDisplayName.empty()) message_->formDisplayName = name;
  message_->formName = name;
}

void FormDescription::putDisplayName(const String& name) {
  if (message_->formName.empty() && message_->formDisplayName.empty()) message_->formName = name;
  message_->formDisplayName = name;
}

void FormDescription::publishForm(std::int32_t registry, std::optional<Object> folder) {
  if (message_->formName.empty()) fail(failure::automation, u"The form needs a name before it can be published.");
  if (registry < 0 || registry > lastRegistry) raiseError(5);
  if (registry == folderRegistry) MAPIFolder::of(folder.value_or(Object()));
  const String messageClass = String(standardClass((*message_)[Text::MessageClass])) + u"." + message_->formName;
  client().store().publishForm({messageClass, message_->formName, message_->formDisplayName, registry});
}

}  // namespace mailclient
