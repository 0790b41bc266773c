// The MAPI helper (mrktxtmsghelper.dll): creates text-message items with the values that the mail client's object model
// lets nobody set.
#pragma once

#include "addin/platform/outlook.h"

namespace platform::txtmsghelper {

inline constexpr StringView progIdTxtMsg = u"Mrktxtmsghelper.TxtMsg";
inline constexpr Guid clsidTxtMsg{0x68B4AEF7, 0x3EAA, 0x4E17, {0x9D, 0x8A, 0x4E, 0xAC, 0xE6, 0x93, 0xAE, 0x2D}};

// Dispatch identifiers of the members, for who serves them.
namespace dispid {
inline constexpr std::int32_t txtMsgCreateMessage = 1;
}  // namespace dispid

class TxtMsg : public Object {
 public:
  using Object::Object;
  // Creates an item in the Outbox; returns its EntryID.
  String CreateMessage(const outlook::Application& application, StringView messageClass, StringView to, StringView from,
                       StringView subject, StringView body, Date sentOn, Date receivedTime,
                       StringView timeStampText) const {
    return call<String>(u"CreateMessage", application, messageClass, to, from, subject, body, sentOn, receivedTime,
                        timeStampText);
  }
};

}  // namespace platform::txtmsghelper
