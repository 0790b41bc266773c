#include "phone/pdu/user_data.h"

#include <utility>

#include "phone/pdu/reader.h"
#include "phone/text/eight_bit.h"
#include "phone/text/gsm_alphabet.h"
#include "phone/text/septets.h"
#include "phone/text/ucs2.h"

namespace phone {
namespace {

constexpr std::size_t mostOctets = 140;

bool inSeptets(const DataCoding& coding) { return coding.alphabet == Alphabet::Gsm7 && !coding.compressed; }

Octets headerOctets(const UserDataHeader& header) { return header.elements.empty() ? Octets{} : writeHeader(header); }

UserData withBody(Octets header, OctetsView body) {
  UserData data{.hasHeader = !header.empty(), .length = 0, .octets = std::move(header)};
  data.octets.insert(data.octets.end(), body.begin(), body.end());
  data.length = static_cast<std::uint8_t>(data.octets.size());
  return data;
}

}  // namespace

std::size_t octetsOfUserData(const DataCoding& coding, std::uint8_t length) {
  return inSeptets(coding) ? octetsOfSeptets(length) : length;
}

Content readUserData(const UserData& data, const DataCoding& coding) {
  const std::size_t size = octetsOfUserData(coding, data.length);
  if (size > mostOctets) throw BadPdu("more user data than a message holds");
  if (size > data.octets.size()) throw BadPdu("it ends too early");
  const OctetsView octets = OctetsView(data.octets).first(size);
  Content content;
  std::size_t headerSize = 0;
  if (data.hasHeader) {
    OctetReader reader(octets);
    const std::size_t length = reader.octet();
    content.header = readHeader(reader.take(length));
    headerSize = 1 + length;
  }
  if (inSeptets(coding)) {
    const std::size_t taken = (headerSize * 8 + 6) / 7;
    // A length that ends inside the header or its fill bits leaves no text.
    const std::size_t count = data.length > taken ? data.length - taken : 0;
    const Septets septets = unpackSeptets(octets.subspan(headerSize), count, fillBitsAfter(headerSize));
    content.text = fromSeptets(septets, septetTablesOf(content.header));
    return content;
  }
  const OctetsView body = octets.subspan(headerSize);
  if (coding.alphabet == Alphabet::Ucs2 && !coding.compressed) {
    content.text = fromUcs2(body);
    return content;
  }
  content.data.assign(body.begin(), body.end());
  content.text = coding.compressed ? showCompressed(body) : showEightBit(body);
  return content;
}

UserData writeUserData(const UserDataHeader& header, std::u16string_view text, Alphabet alphabet) {
  if (alphabet == Alphabet::Ucs2) return withBody(headerOctets(header), toUcs2(text));
  if (alphabet == Alphabet::EightBit) {
    Octets latin;
    for (const char16_t character : text)
      latin.push_back(static_cast<std::uint8_t>(character > 0xFF ? '?' : character));
    return withBody(headerOctets(header), latin);
  }
  Octets front = headerOctets(header);
  const Septets septets = toSeptets(text);
  const std::size_t taken = (front.size() * 8 + 6) / 7;
  UserData data = withBody(front, packSeptets(septets, fillBitsAfter(front.size())));
  data.length = static_cast<std::uint8_t>(taken + septets.size());
  return data;
}

UserData writeUserData(const UserDataHeader& header, OctetsView data) { return withBody(headerOctets(header), data); }

EncodedText encodeText(std::u16string_view text, std::uint8_t reference) {
  const Segments segments = segmentsOf(text);
  EncodedText encoded{.alphabet = segments.alphabet, .parts = {}};
  Concatenation here{.reference = reference, .wide = false, .total = static_cast<std::uint8_t>(segments.parts.size())};
  for (const std::u16string_view part : segments.parts) {
    UserDataHeader header;
    if (segments.parts.size() > 1) header.elements.push_back(elementOf(here));
    encoded.parts.push_back(writeUserData(header, part, segments.alphabet));
    ++here.part;
  }
  return encoded;
}

}  // namespace phone
