// What a mail item does beyond keeping its properties: replying, forwarding and sending.
#include "addin/platform/date.h"
#include "addin/platform/outlook.h"
#include "mailclient/client.h"
#include "mailclient/item.h"
#include "mailclient/steps.h"

namespace mailclient {
namespace {

using platform::outlook::ItemEvents;

String marked(StringView mark, const Message& original) {
  const String& subject = original[Text::Subject];
  return sameName(StringView(subject).substr(0, mark.size()), mark) ? subject : String(mark) + subject;
}

// The answer is an ordinary mail in the original's conversation, whatever form the original opens in.
MessagePtr answerTo(MailClient& client, const Message& original, StringView mark) {
  const MessagePtr answer =
      client.createItem(*client.store().defaultFolder(DefaultFolder::Drafts), messageClassOf(ItemType::Mail));
  (*answer)[Text::Subject] = marked(mark, original);
  (*answer)[Text::ConversationTopic] = original[Text::ConversationTopic];
  (*answer)[Text::Body] = u"\r\n\r\n-----Original Message-----\r\n" + original[Text::Body];
  return answer;
}

// Asks the listeners of the original, who may change the answer or cancel the action.
Object offer(MailItem& original, const platform::Event<Object, bool&>& event, const MessagePtr& answer) {
  const Object response = original.client().itemObject(answer).get()->object();
  bool cancel = false;
  original.fire(event, response, cancel);
  return cancel ? Object() : response;
}

// A stored time as the object model gives it: local, in whole seconds.
Date shown(Environment& environment, Date utc) {
  if (utc == Date{}) return noDate;
  const Date local = environment.toLocal(utc);
  return platform::dateFromParts(platform::partsOf(local)).value_or(local);
}

}  // namespace

Object MailItem::reply() {
  const MessagePtr answer = answerTo(client(), living(), u"RE: ");
  (*answer)[Text::To] = living()[Text::SenderName];
  return offer(*this, ItemEvents::Reply, answer);
}

Object MailItem::replyAll() {
  const MessagePtr answer = answerTo(client(), living(), u"RE: ");
  (*answer)[Text::To] = living()[Text::SenderName];
  (*answer)[Text::Cc] = living()[Text::Cc];
  return offer(*this, ItemEvents::ReplyAll, answer);
}

Object MailItem::forward() { return offer(*this, ItemEvents::Forward, answerTo(client(), living(), u"FW: ")); }

// Into the Outbox, where a transport (for text messages: the add-in) takes it. Its windows close when it lies there:
// while the disk refuses, what the user wrote is in front of him.
void MailItem::send() {
  living();
  const MessagePtr m = message();
  Store& store = client().store();
  if (m->saved()) store.setUnread(m, false);
  const Date sentBefore = m->sentOn;
  const String senderBefore = (*m)[Text::SenderName];
  const bool unsentBefore = m->unsent;
  m->unsent = false;
  m->unread = false;
  m->sentOn = client().environment().utcNow();
  (*m)[Text::SenderName] = client().userName();
  m->changed = true;
  const auto outbox = store.defaultFolder(DefaultFolder::Outbox);
  bool isWritten = false;
  bool isThere = false;
  try {
    if (m->saved()) store.save(m, [&] { isWritten = true; });
    store.move(m, *outbox, [&] {
      isThere = true;
      client().windows().closeInspectorsOf(m);
    });
  } catch (const RuntimeError&) {
    if (isThere) throw;
    m->unsent = unsentBefore;
    m->sentOn = sentBefore;
    (*m)[Text::SenderName] = senderBefore;
    m->changed = true;
    Steps back;
    if (isWritten) back.run([&] { store.save(m); });
    throw;
  }
}

bool MailItem::sent() { return !living().unsent; }

Date MailItem::sentOn() { return shown(client().environment(), living().sentOn); }
Date MailItem::receivedTime() { return shown(client().environment(), living().receivedTime); }

}  // namespace mailclient
