// One item of the store: a plain record. The object model's items (item.h) are views of it.
#pragma once

#include <array>
#include <filesystem>
#include <memory>

#include "mailclient/environment.h"
#include "mailclient/types.h"

namespace mailclient {

class Folder;
class Item;

// The text properties that an item can have, whatever its class.
enum class Text : std::uint8_t {
  MessageClass,
  Subject,
  Body,
  HtmlBody,
  To,
  Cc,
  Bcc,
  SenderName,
  ConversationTopic,
  BillingInformation,
  Mileage,
  Categories,
  Companies,
  FullName,
  FirstName,
  LastName,
  CompanyName,
  FileAs,
  MobileTelephoneNumber,
  BusinessTelephoneNumber,
  HomeTelephoneNumber,
};
inline constexpr std::size_t textCount = 21;

inline constexpr StringView textMessageClass = u"IPM.Note.TxtMsg";

// What the object model shows for a time that was never set: 1 January 4501.
inline constexpr Date noDate{949998};

struct Message {
  String& operator[](Text text) { return texts[static_cast<std::size_t>(text)]; }
  const String& operator[](Text text) const { return texts[static_cast<std::size_t>(text)]; }

  std::array<String, textCount> texts;
  String entryId;       // empty until the first save
  Date sentOn{};        // UTC; 0 when not set
  Date receivedTime{};  // UTC; 0 when not set
  bool unread = false;
  bool unsent = true;          // being written: not yet handed to a transport
  bool changed = true;         // holds something that Save would store
  bool gone = false;           // deleted for good: every use of it fails
  Folder* folder = nullptr;    // of an unsaved item, the folder that Save will put it into
  Item* view = nullptr;        // the live object-model item, if any
  std::filesystem::path file;  // where the persistent store keeps it, without the folder
  FileStamp stamp;             // of that file when it was read or written
  bool foreign = false;        // its file was written by another program

  String formName;  // of the form that would be published from this item
  String formDisplayName;

  bool saved() const { return !entryId.empty(); }
};
using MessagePtr = std::shared_ptr<Message>;

// The item's kind, an OlObjectClass, which follows from its message class.
std::int32_t kindOf(StringView messageClass);

// True for `base` itself and every class below it ("IPM.Note.TxtMsg" is an "IPM.Note").
bool isOfClass(StringView messageClass, StringView base);

// Setting the subject sets the topic too: the subject without a reply or forward mark ("RE: ").
void setSubject(Message& message, String subject);

}  // namespace mailclient
