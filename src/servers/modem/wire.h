// The line's side of a phone: a modem that answers on its own thread (every call to it waits for the line), and a phone
// that must never wait. What goes from one thread to the other is work: deeds for the modem, and what is to be done
// about them on the phone's thread.
#pragma once

#include <array>
#include <functional>
#include <vector>

#include "phone/modem/modem.h"

namespace servers::modem {

// What is known of a modem that was just found.
struct Presence {
  std::string name;
  std::array<bool, 2> supported{};
  std::array<int, 2> capacity{};  // 0: not known
  std::array<phone::Listing, 2> listings;
  bool announces = false;  // messages that arrive
  // Which time of finding one this is. What was asked of an earlier one must not be done by this one: its asker has
  // given it up, and may have asked again.
  std::uint32_t life = 0;
};

// All of it on the phone's thread, in the order in which it happened.
struct WireEvents {
  std::function<void(Presence)> found;
  std::function<void()> lost;
  std::function<void(phone::Notice)> noticed;
};

class Wire {
 public:
  using Answer = std::function<void()>;               // on the phone's thread
  using Deed = std::function<Answer(phone::Modem&)>;  // on the line's thread; may wait, and throw PhoneGone

  virtual ~Wire() = default;

  // Looks for a modem from then on, and again whenever it was lost.
  virtual void open(WireEvents events) = 0;

  // One after the other. Deeds that are not done when the modem is lost never are; one that throws has no answer.
  virtual void ask(std::uint32_t life, Deed deed) = 0;
};

}  // namespace servers::modem
