#include "phone/pdu/user_data_header.h"

#include <algorithm>

namespace phone {

UserDataHeader readHeader(OctetsView elements) {
  UserDataHeader header;
  while (!elements.empty()) {
    // 3GPP TS 23.040, 9.2.3.24: with too many or too few octets for the last element, all of them are ignored.
    if (elements.size() < 2 || elements.size() < std::size_t{2} + elements[1])
      return {.elements = {}, .malformed = true};
    const OctetsView data = elements.subspan(2, elements[1]);
    header.elements.push_back({.id = elements[0], .data = {data.begin(), data.end()}});
    elements = elements.subspan(2 + data.size());
  }
  return header;
}

Octets writeHeader(const UserDataHeader& header) {
  Octets octets{0};
  for (const auto& [id, data] : header.elements) {
    if (octets.size() - 1 + 2 + data.size() > 0xFF) continue;
    octets.push_back(id);
    octets.push_back(static_cast<std::uint8_t>(data.size()));
    octets.insert(octets.end(), data.begin(), data.end());
  }
  octets.front() = static_cast<std::uint8_t>(octets.size() - 1);
  return octets;
}

HeaderElement elementOf(const Concatenation& concatenation) {
  const auto low = static_cast<std::uint8_t>(concatenation.reference & 0xFF);
  if (!concatenation.wide)
    return {.id = header_element::concatenation8, .data = {low, concatenation.total, concatenation.part}};
  return {
      .id = header_element::concatenation16,
      .data = {static_cast<std::uint8_t>(concatenation.reference >> 8), low, concatenation.total, concatenation.part}};
}

std::optional<Concatenation> concatenationOf(const UserDataHeader& header) {
  std::optional<Concatenation> last;
  for (const auto& [id, data] : header.elements) {
    Concatenation found;
    if (id == header_element::concatenation8 && data.size() == 3) {
      found = {.reference = data[0], .wide = false, .total = data[1], .part = data[2]};
    } else if (id == header_element::concatenation16 && data.size() == 4) {
      found = {.reference = static_cast<std::uint16_t>(data[0] << 8 | data[1]),
               .wide = true,
               .total = data[2],
               .part = data[3]};
    } else {
      continue;
    }
    if (found.total != 0 && found.part != 0 && found.part <= found.total) last = found;
  }
  return last;
}

bool isForPort(const UserDataHeader& header) {
  return std::ranges::any_of(header.elements, [](const HeaderElement& element) {
    return element.id == header_element::ports8 || element.id == header_element::ports16;
  });
}

SeptetTables septetTablesOf(const UserDataHeader& header) {
  std::uint8_t lockingShift = national_language::none;
  std::uint8_t singleShift = national_language::none;
  for (const HeaderElement& element : header.elements) {
    if (element.data.size() != 1 || !isKnownLanguage(element.data.front())) continue;
    if (element.id == header_element::nationalLockingShift) lockingShift = element.data.front();
    if (element.id == header_element::nationalSingleShift) singleShift = element.data.front();
  }
  return tablesOf(lockingShift, singleShift);
}

}  // namespace phone
