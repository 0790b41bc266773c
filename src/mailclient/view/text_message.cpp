#include "mailclient/view/text_message.h"

#include <algorithm>

#include "mailclient/item.h"
#include "mailclient/view/columns.h"

namespace mailclient {
namespace {

// Ends the recipient in the topic of a message that came from the phone; behind it stands the phone's time stamp.
constexpr char16_t endOfAddress = 1;

void shapeAsTextMessage(Message& answer, const Message& original, Answer kind) {
  answer[Text::MessageClass] = textMessageClass;
  answer[Text::Cc].clear();
  if (kind == Answer::Forward)
    writeTextMessage(answer, {}, original[Text::Body]);
  else
    writeTextMessage(answer, recipientOf(original), {});
}

}  // namespace

bool opensAsTextMessage(const Store& store, const Message& message) {
  const auto& forms = store.state().forms;
  return isOfClass(message[Text::MessageClass], textMessageClass) &&
         std::any_of(forms.begin(), forms.end(),
                     [](const PublishedForm& f) { return sameName(f.messageClass, textMessageClass); });
}

String textSubject(StringView body) {
  constexpr std::size_t shown = 10;
  const String line = oneLine(body);
  return line.empty() ? String() : line.substr(0, shown) + u"...";
}

String recipientOf(const Message& message) {
  const auto isAddress = [](const String& text) { return text.find(u'[') != String::npos; };
  const String& sender = message[Text::SenderName];
  // Of what was sent from here the sender is the user, by name alone.
  const bool wentOut = !isAddress(sender) && isAddress(message[Text::To]);
  if (!message.unsent && !sender.empty() && !wentOut) return sender;
  if (!message[Text::To].empty()) return message[Text::To];
  // Without an address the topic is only the subject.
  const String& topic = message[Text::ConversationTopic];
  const String address = topic.substr(0, topic.find(endOfAddress));
  return isAddress(address) ? address : String();
}

void writeTextMessage(Message& message, StringView address, StringView body) {
  message[Text::Body] = body;
  setSubject(message, textSubject(body));
  message[Text::To] = address;
  message[Text::ConversationTopic] = address;
  message.changed = true;
}

MessagePtr answerTo(MailClient& client, const MessagePtr& original, Answer kind) {
  const Ref<Item> item = client.itemObject(original);
  auto* const mail = dynamic_cast<MailItem*>(item.get());
  if (!mail) return nullptr;
  const Object made = kind == Answer::Forward    ? mail->forward()
                      : kind == Answer::ReplyAll ? mail->replyAll()
                                                 : mail->reply();
  if (!made) return nullptr;
  MessagePtr answer = Item::of(made);
  if (opensAsTextMessage(client.store(), *original)) shapeAsTextMessage(*answer, *original, kind);
  return answer;
}

}  // namespace mailclient
