// One item as a message file (RFC 5322), which other mail programs can read.
//
// The usual headers (From, To, Subject, Date) and the body, as UTF-8 in quoted-printable, show the item to a reader.
// What those cannot carry exactly stands in headers of our own:
//
//   X-Mailclient-Version: 1
//   X-Mailclient-EntryID: 00000000…
//   X-Mailclient-ConversationTopic: Anna_[+46]%0001010203040506
//   X-Mailclient-SentOn: 36925.5
//
// with texts escaped as escapeExactly() does, and times as days since 30 December 1899, UTC. A text property without a
// header of its own is the empty text; Subject and Body have one only where the usual form would not bring them back
// exactly. A contact is such a file too: its properties are headers of our own, its name the Subject, its notes the
// body.
//
// A file of another program is a mail. When its item is saved, everything that it holds stays as it is, and our headers
// are put above it for the properties that have changed.
#pragma once

#include <string>
#include <string_view>

#include "mailclient/message.h"

namespace mailclient {

// The file's content. `original` is the content of a foreign message's file, empty otherwise.
std::string messageFile(const Message& message, std::string_view original = {});

// Reads whatever can be read; a file is never refused.
void readMessageFile(std::string_view content, Message& message);

}  // namespace mailclient
