// The MAPI properties of an item: what stands behind the object model, and can be written there even where the object
// model is read-only. The mail client hands it out as the item's hidden property MAPIOBJECT.
//
// The stand-in mail client implements it for its own items; on Windows it wraps the IMessage of a real one.
#pragma once

#include <cstdint>

#include "addin/platform/variant.h"

namespace mapi {

// Property tags as in MAPI's mapitags.h: identifier in the high word, type in the low one. Texts carry the 8-bit type
// (0x001E), which is what the mail client of 2000 stores; who writes a text that needs more uses the same identifier
// with the Unicode type (0x001F).
namespace tag {
inline constexpr std::uint32_t subject = 0x0037001E;
inline constexpr std::uint32_t clientSubmitTime = 0x00390040;  // the object model's SentOn
inline constexpr std::uint32_t sentRepresentingName = 0x0042001E;
inline constexpr std::uint32_t conversationTopic = 0x0070001E;  // setting the subject rewrites it
inline constexpr std::uint32_t senderName = 0x0C1A001E;
inline constexpr std::uint32_t messageDeliveryTime = 0x0E060040;  // the object model's ReceivedTime
inline constexpr std::uint32_t messageFlags = 0x0E070003;         // writable until the item's first save
}  // namespace tag

// Bits of messageFlags.
inline constexpr std::int32_t flagRead = 1;
inline constexpr std::int32_t flagUnsent = 8;

// Two tags of one property, whatever type its text has.
constexpr bool sameProperty(std::uint32_t a, std::uint32_t b) noexcept { return a >> 16 == b >> 16; }

// Values are set on the open item and stored by its next Save in the object model. Failures are RuntimeErrors whose
// number is the HRESULT.
class MessageProps : public platform::Counted {
 public:
  virtual void setString(std::uint32_t tag, platform::StringView text) = 0;
  virtual void setTime(std::uint32_t tag, platform::Date utc) = 0;
  virtual void setLong(std::uint32_t tag, std::int32_t value) = 0;
};

}  // namespace mapi
