// The data coding scheme (3GPP TS 23.038, 4).
#pragma once

#include <cstdint>
#include <optional>

#include "phone/text/segments.h"

namespace phone {

enum class Waiting { None, Discard, Store };  // indication of waiting messages; whether its text is worth keeping

struct DataCoding {
  Alphabet alphabet = Alphabet::Gsm7;
  bool compressed = false;
  bool deleteWhenRead = false;           // "marked for automatic deletion"
  bool reserved = false;                 // a value without meaning, which is taken for the 7-bit alphabet
  std::optional<int> messageClass = {};  // 0 shown at once, 1 phone, 2 SIM, 3 other equipment
  Waiting waiting = Waiting::None;
  friend bool operator==(const DataCoding&, const DataCoding&) = default;
};

DataCoding dataCodingOf(std::uint8_t octet);

// The plain octet: 00, 04 or 08.
std::uint8_t dataCodingOctet(Alphabet alphabet);

}  // namespace phone
