// The header of the user data (3GPP TS 23.040, 9.2.3.24).
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "phone/text/national_language.h"
#include "phone/text/octets.h"

namespace phone {

struct HeaderElement {
  std::uint8_t id = 0;
  Octets data = {};
  friend bool operator==(const HeaderElement&, const HeaderElement&) = default;
};

namespace header_element {
inline constexpr std::uint8_t concatenation8 = 0x00;
inline constexpr std::uint8_t ports8 = 0x04;
inline constexpr std::uint8_t ports16 = 0x05;
inline constexpr std::uint8_t concatenation16 = 0x08;
inline constexpr std::uint8_t nationalSingleShift = 0x24;
inline constexpr std::uint8_t nationalLockingShift = 0x25;
}  // namespace header_element

// This part among the parts of a long message. Part and total are from 1 to 255, part not above total.
struct Concatenation {
  std::uint16_t reference = 0;
  bool wide = false;  // a 16-bit reference
  std::uint8_t total = 1;
  std::uint8_t part = 1;
  friend bool operator==(const Concatenation&, const Concatenation&) = default;
};

struct UserDataHeader {
  std::vector<HeaderElement> elements = {};
  bool malformed = false;  // an element ran over the end: then there are none
  friend bool operator==(const UserDataHeader&, const UserDataHeader&) = default;
};

// The elements, without the length octet in front of them.
UserDataHeader readHeader(OctetsView elements);
// With the length octet in front. The elements' total length must not be above 255 octets: longer ones are left out.
Octets writeHeader(const UserDataHeader& header);

HeaderElement elementOf(const Concatenation& concatenation);

// Of several elements that exclude each other the last one counts; one with a total or part of 0, a part above the
// total, or another length than its own, is as if it were not there: the message is a single one.
std::optional<Concatenation> concatenationOf(const UserDataHeader& header);

// For a program on the phone (by 8- or 16-bit port) rather than for a reader.
bool isForPort(const UserDataHeader& header);
// The tables that 7-bit text behind the header is written with. Of several elements the last one counts; one of another
// length than its own, or of a language that is not known, is as if it were not there.
SeptetTables septetTablesOf(const UserDataHeader& header);

}  // namespace phone
