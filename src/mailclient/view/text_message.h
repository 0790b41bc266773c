// What the text-message form does with its fields: the item that it writes, and the answers to a received message.
#pragma once

#include "mailclient/client.h"
#include "mailclient/view/address_book.h"

namespace mailclient {

class MailItem;

// True when a form for this class was published: its items open in the text-message form, others of the kind in the
// ordinary one.
bool opensAsTextMessage(const Store& store, const Message& message);

// The first ten characters on one line, and "...": what received text messages have too. Empty for an empty text.
String textSubject(StringView body);

// The recipient of an item that is being written or was sent, or whom a received one came from: the display address.
String recipientOf(const Message& message);

// Puts recipient and text into the item. The recipient stands in the topic as well, where the phone's side looks for
// it: the subject must not overwrite it.
void writeTextMessage(Message& message, StringView address, StringView body);

enum class Answer : std::uint8_t { Reply, ReplyAll, Forward };
// The answer to an item as its kind opens it: the listeners of the item may mark it or cancel (null). To a text message
// it is a text message: a reply goes to the sender and is empty, a forwarded one has the text and no recipient.
MessagePtr answerTo(MailClient& client, const MessagePtr& original, Answer kind);

}  // namespace mailclient
