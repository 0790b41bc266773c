// The MAPI helper: creates a text-message item in the Outbox, with values that the mail client's object model lets
// nobody set.
#pragma once

#include <functional>

#include "addin/platform/native.h"
#include "addin/platform/txtmsghelper.h"
#include "mapi/mapi_props.h"

namespace servers::txtmsghelper {

// What the helper needs from where it runs.
struct Surroundings {
  // Local time to universal time.
  std::function<platform::Date(platform::Date)> toUtc;
  // The properties behind an item's MAPIOBJECT; nothing when it offers none. The default knows items of our own making.
  std::function<platform::Ref<mapi::MessageProps>(const platform::Opaque&)> propertiesOf =
      [](const platform::Opaque& o) {
        return platform::Ref<mapi::MessageProps>(dynamic_cast<mapi::MessageProps*>(o.thing.get()));
      };
};

class TxtMsg final : public platform::NativeObject {
 public:
  explicit TxtMsg(Surroundings surroundings) : surroundings_(std::move(surroundings)) {}

  std::span<const platform::Member> members() const override;

  // Returns the EntryID of the new, unread item. Its conversation topic is `to`, the character with code 1 and the
  // time-stamp text. `sentOn` and `receivedTime` are local time. The item is saved once, with everything in place; when
  // anything fails it is not saved at all. Errors: the mail client's own; 430 when the item has no MAPI properties.
  platform::String CreateMessage(const platform::outlook::Application& application,
                                 const platform::String& messageClass, const platform::String& to,
                                 const platform::String& from, const platform::String& subject,
                                 const platform::String& body, platform::Date sentOn, platform::Date receivedTime,
                                 const platform::String& timeStampText);

 private:
  Surroundings surroundings_;
};

}  // namespace servers::txtmsghelper
