// What the handset and its SIM remember when they are switched off, as a text file:
//
//   phonesim-memory 1
//   centre +46700000000
//   reference 7
//   memory SM 20
//   message SM 3 0 07916407...
//   contact SM 1 +46701234567 0041006E006E0061
//   waiting 07916407...
//   travelling +46701234567 8C5B3F0011223344 07916407...
//   taken 77A0C1D2E3F40516
//
// "message": memory, slot, status (3GPP TS 27.005, 3.1), PDU in hexadecimal with the service centre in front.
// "contact": phone book, entry, number, name in hexadecimal (UCS-2). A type that the number does not tell by itself
// stands behind it, 0701234567/161.
// "waiting": a message that arrived and found no room. "travelling": a message for another handset that could not be
// reached yet: its number, a mark that keeps it from being taken twice, the PDU that it will receive. "taken": the mark
// of one that another handset has sent.
#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "phonesim/handset/memory.h"
#include "phonesim/handset/phone_book.h"

namespace phonesim {

// Service centre and TPDU, generously: a longer one comes from nowhere.
inline constexpr std::size_t longestPdu = 256;

struct Travelling {
  std::string number;
  std::string mark;
  Octets pdu;
  friend bool operator==(const Travelling&, const Travelling&) = default;
};

struct State {
  std::string centre;
  std::uint8_t reference = 0;  // of the last message that was sent
  Memories memories;
  PhoneBooks contacts;
  std::optional<Octets>
      unacknowledged;  // handed to a host that has not said that it has it; waits, as the file sees it
  std::deque<Octets> waiting;
  std::deque<Travelling> travelling;
  std::deque<std::string> taken;  // the newest are enough: see mostTaken

  static constexpr std::size_t mostTaken = 200;
};

std::string toText(const State& state);

struct ReadState {
  State state;
  int passedOver = 0;  // lines that made no sense, or messages without a place
};

// Whether a mark can stand in the file.
bool isMark(std::string_view text);

// What can be read of it; everything else stays as `defaults` has it.
ReadState fromText(std::string_view text, State defaults);

}  // namespace phonesim
