// How a request to a modem ended, and the numbers that stand for it outside.
#pragma once

#include <cstdint>
#include <optional>

#include "phone/at/result.h"

namespace phone {

struct Outcome {
  enum class Kind : std::uint8_t {
    Done,
    Refused,   // with an error; nothing was done
    Empty,     // nothing is in that slot
    NoMemory,  // the phone has no such memory
    NoAnswer,  // nothing can have happened that is worth more than asking again
    Unknown,   // a message that was handed in, and nobody knows whether it goes: never to be repeated unasked
    BadNumber,
    TooLong,
  };
  Kind kind = Kind::Done;
  at::Result error{};  // of Refused

  bool done() const noexcept { return kind == Kind::Done; }
  friend bool operator==(const Outcome&, const Outcome&) = default;
};

// Result codes, as answers and logs show them:
//
//   0            done
//   0x888800C8   the slot is empty; also +CMS ERROR 321 and +CME ERROR 21 and 22 to a deletion
//   0x888800C9   the phone has no such memory
//   0x888800CA   the destination or the service centre is no telephone number
//   0x888800CB   the text needs more than 255 messages
//   0x888800D0   ERROR, without a number
//   0x888800D1   no answer; the dialogue is in step again
//   0x888800D2   handed to the network, but its answer is not known: the message may have been sent; also +CMS ERROR
//                332 and +CME ERROR 31, time-outs, to a message that was handed over
//   0x88881nnn   +CMS ERROR nnn (hexadecimal: 331, no network, is 0x8888114B); FFF for words that are not understood
//   0x88882nnn   +CME ERROR nnn, in the same way
std::int32_t resultCode(const Outcome& outcome) noexcept;

namespace result_codes {
constexpr std::int32_t code(std::uint32_t value) { return static_cast<std::int32_t>(value); }
inline constexpr std::int32_t done = 0, emptySlot = code(0x888800C8), noMemory = code(0x888800C9),
                              badNumber = code(0x888800CA), tooLong = code(0x888800CB), plainError = code(0x888800D0),
                              noAnswer = code(0x888800D1), unknown = code(0x888800D2), cmsError = code(0x88881000),
                              cmeError = code(0x88882000), anyError = 0xFFF;
}  // namespace result_codes

// From the result of a command; none is NoAnswer.
Outcome outcomeOf(const std::optional<at::Result>& result);

// An error by which a modem says that a slot is empty. Several say no more than that something is wrong: who must know
// reads the slot.
bool saysEmpty(const at::Result& result) noexcept;

}  // namespace phone
