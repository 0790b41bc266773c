// What the status bar says of the phone: whether there is one, and whether it is at work.
//
// The phone belongs to the add-in. All that can be seen from here is whether a phone is attached, the phone's answers,
// what waits in the Outbox, and that a command of an add-in is still running, which may be one that has nothing to do
// with the phone. Times are milliseconds of a clock that may begin again at 0.
#pragma once

#include <cstdint>

#include "mailclient/types.h"

namespace mailclient {

class PhoneActivity {
 public:
  enum class State : std::uint8_t { NoService, NoPhone, Idle, Sending, Receiving };

  void attached(bool isAttached, StringView name);
  void serviceLost();
  // Text messages in the Outbox, and how long the text of the first one is, which is sent first.
  void outboxHolds(std::size_t messages, std::size_t characters, std::uint32_t now);
  // An add-in's command began or ended.
  void commandBegan();
  void commandEnded(std::uint32_t now);
  // The phone gave a part of a listing, or ended some request.
  void delivered(std::uint32_t now);
  void answered(bool succeeded, std::uint32_t now);

  State state(std::uint32_t now) const;
  String text(std::uint32_t now) const;
  // Something is going on that will end without another notice: look again.
  bool isWorking(std::uint32_t now) const;

 private:
  // A message that the phone has taken and not answered is waited for by the add-in for this long, for each part that
  // the add-in counts, which takes every alphabet for the default one.
  static constexpr std::uint32_t longestSend = 25000;
  static constexpr std::size_t charactersPerPart = 160;
  // Listings are over in an instant: they stay visible for a moment.
  static constexpr std::uint32_t shownFor = 1200;

  void listing(std::uint32_t now);

  struct Mark {
    bool set = false;
    std::uint32_t at = 0;
    bool isWithin(std::uint32_t now, std::uint32_t span) const { return set && now - at < span; }
  };

  bool hasService_ = false;
  bool isAttached_ = false;
  String name_;
  std::size_t waiting_ = 0;
  std::uint32_t sendSpan_ = longestSend;
  int commands_ = 0;
  bool commandUsesPhone_ = false;  // the phone was heard while a command ran
  Mark sending_;
  Mark receiving_;
};

}  // namespace mailclient
