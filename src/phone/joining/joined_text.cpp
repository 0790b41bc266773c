#include "phone/joining/joined_text.h"

#include <algorithm>

#include "phone/text/eight_bit.h"

namespace phone {
namespace {

std::u16string decimal(int value) {
  const std::string digits = std::to_string(value);
  return {digits.begin(), digits.end()};
}

std::u16string gap(int first, int last, int total) {
  if (first == last) return u"[part " + decimal(first) + u" of " + decimal(total) + u" is missing]";
  return u"[parts " + decimal(first) + u" to " + decimal(last) + u" of " + decimal(total) + u" are missing]";
}

// The parts without repetitions.
std::vector<const Part*> distinct(const Group& group) {
  std::vector<const Part*> parts;
  for (const Part* part : group.parts)
    if (parts.empty() || parts.back()->number() != part->number()) parts.push_back(part);
  return parts;
}

bool isEightBit(const Part* part) {
  const DataCoding coding = dataCodingOf(part->message.dataCoding);
  return coding.alphabet == Alphabet::EightBit && !coding.compressed;
}

}  // namespace

std::u16string joinedText(const Group& group) {
  const std::vector<const Part*> parts = distinct(group);
  const int total = parts.front()->total();
  // Data is shown as a whole: whether it is printable is decided once, not part by part.
  if (group.complete && total > 1 && std::ranges::all_of(parts, isEightBit)) {
    Octets data;
    for (const Part* part : parts)
      data.insert(data.end(), part->message.content.data.begin(), part->message.content.data.end());
    return showEightBit(data);
  }
  // The parts' texts are UTF-16 units; a surrogate pair that a sender cut is whole again behind the seam.
  std::u16string text;
  int expected = 1;
  for (const Part* part : parts) {
    if (part->number() > expected) text += gap(expected, part->number() - 1, total);
    text += part->message.content.text;
    expected = part->number() + 1;
  }
  if (expected <= total) text += gap(expected, total, total);
  return text;
}

}  // namespace phone
