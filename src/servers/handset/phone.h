// A phone, as the servers see it: memories with messages, and sending. Whoever implements it (a simulated handset, a
// modem) knows nothing of automation objects; the servers know nothing of what stands behind it.
//
// Requests return at once. Their callbacks come later, from the scheduler or the modem's own events, never inside the
// request, one after the other in the order of the answers. When the phone is unplugged, pending requests are
// forgotten: their callbacks never come. Asking anything of a phone that is not connected is error notConnected.
#pragma once

#include <cstdint>
#include <functional>

#include "addin/platform/counted.h"
#include "addin/platform/text.h"

namespace handset {

// The message memories, by the names of 3GPP TS 27.005, 3.2.3.
enum class Store : std::int32_t {
  Phone = 1,  // "ME"
  Sim = 2,    // "SM"
};

// 3GPP TS 27.005, 3.1.
enum class Status : std::int32_t { ReceivedUnread = 0, ReceivedRead = 1, StoredUnsent = 2, StoredSent = 3 };
inline constexpr std::int32_t allStatuses = 4;  // as a listing filter

// Result codes of a request: 0 is success, everything else a failure. Two of them mean something to the add-in, see
// platform::sms_objectlib.
inline constexpr std::int32_t success = 0;
inline constexpr std::int32_t emptySlot = static_cast<std::int32_t>(0x888800C8);
inline constexpr std::int32_t invalidStore = static_cast<std::int32_t>(0x888800C9);

// Error numbers of RuntimeErrors.
inline constexpr std::int32_t notConnected = static_cast<std::int32_t>(0x88880001);
inline constexpr std::int32_t noCapacity = static_cast<std::int32_t>(0x88880002);

struct StoredMessage {
  Store store = Store::Phone;
  std::int16_t index = 0;  // the slot in the store, from 1
  Status status = Status::ReceivedUnread;
  platform::String number;     // the originator of a received message, the destination of another
  platform::String text;       // of any length, joined when it came in parts
  platform::String timeStamp;  // twelve digits YYMMDDhhmmss
  friend bool operator==(const StoredMessage&, const StoredMessage&) = default;
};

struct OutgoingMessage {
  platform::String serviceCentre;  // empty: the SIM's own
  platform::String destination;
  platform::String text;
  friend bool operator==(const OutgoingMessage&, const OutgoingMessage&) = default;
};

class Phone : public platform::Counted {
 public:
  using Request = platform::Ref<platform::Counted>;  // letting it go forgets the callbacks, not the deed
  using OnMessage = std::function<void(const StoredMessage&)>;
  using OnEnd = std::function<void(std::int32_t result)>;

  virtual platform::String name() = 0;
  virtual bool isConnected() = 0;

  // What the phone knows without being asked anything; errors are RuntimeErrors. A capacity of 0 or less means that the
  // phone could not tell.
  virtual bool isStorageSupported(Store store) = 0;
  virtual std::int16_t storageCapacity(Store store) = 0;
  virtual std::int16_t storageUsed(Store store) = 0;

  // Calls `onMessage` for every message with that status (or allStatuses), then `onEnd`. Listed unread messages are
  // read from then on, as far as the phone is concerned.
  [[nodiscard]] virtual Request list(Store store, std::int32_t filter, OnMessage onMessage, OnEnd onEnd) = 0;
  // A message that was listed as unread has not reached whoever asked: it is unread again. Also of a phone that is not
  // connected.
  virtual void giveBack(const StoredMessage& message) = 0;
  // Result emptySlot when there is nothing in that slot.
  [[nodiscard]] virtual Request remove(Store store, std::int16_t index, OnEnd onEnd) = 0;
  [[nodiscard]] virtual Request send(const OutgoingMessage& message, OnEnd onEnd) = 0;

  // Something is on its way whose outcome would be lost with the process.
  virtual bool isSending() { return false; }
  // Nobody is left who could hear what becomes of the requests so far.
  virtual void abandoned() {}

  // Calls `changed` after every plugging in (true) and unplugging (false), until the result is let go.
  using OnConnection = std::function<void(bool connected)>;
  [[nodiscard]] virtual platform::Ref<platform::Counted> watch(OnConnection changed) = 0;
};

}  // namespace handset
