#include "phonesim/handset/text_mode.h"

#include <array>
#include <cstdio>
#include <utility>

#include "phone/pdu/hex.h"
#include "phone/text/gsm_alphabet.h"
#include "phone/text/septets.h"
#include "phonesim/handset/submit_bits.h"

namespace phonesim {

namespace {

constexpr std::array<std::pair<Status, std::string_view>, 4> statusWords{{
    {Status::ReceivedUnread, "REC UNREAD"},
    {Status::ReceivedRead, "REC READ"},
    {Status::StoredUnsent, "STO UNSENT"},
    {Status::StoredSent, "STO SENT"},
}};

constexpr std::size_t mostSeptets = phone::capacityAlone(phone::Alphabet::Gsm7);
constexpr std::size_t mostOctets = phone::capacityAlone(phone::Alphabet::EightBit);

bool inSeptets(const phone::DataCoding& coding) {
  return coding.alphabet == phone::Alphabet::Gsm7 && !coding.compressed;
}

std::string joined(std::initializer_list<std::string> fields) {
  std::string text;
  for (const std::string& field : fields) text += ',' + field;
  return text;
}

}  // namespace

std::string_view wordFor(Status status) { return statusWords[static_cast<std::size_t>(status)].second; }

std::optional<int> statusNamed(std::string_view word) {
  if (word == "ALL") return allStatuses;
  for (const auto& [status, name] : statusWords)
    if (word == name) return static_cast<int>(status);
  return std::nullopt;
}

TextView::TextView(const Octets& pdu, CharacterSet characters, bool details, std::string_view centre)
    : message_(phone::decodePdu(pdu)), characters_(characters), details_(details), centre_(centre) {
  if (message_.serviceCentre) {
    const std::u16string shown = phone::shown(*message_.serviceCentre);
    centre_.assign(shown.begin(), shown.end());
  }
  // Better its octets than nothing.
  if (message_.kind == phone::PduKind::Undecodable) message_.data.octets = pdu;
}

std::string TextView::listed(Status status) const {
  std::string line = '"' + std::string(wordFor(status)) + '"';
  if (message_.kind == phone::PduKind::StatusReport) return line + ',' + reported();
  line += ',' + number(message_.peer) + ",," + time(message_.timeStamp);
  if (details_) line += joined({std::to_string(phone::typeOctet(message_.peer)), std::to_string(message_.data.length)});
  return line + "\r\n" + body();
}

std::string TextView::read(Status status) const {
  std::string line = '"' + std::string(wordFor(status)) + "\",";
  if (message_.kind == phone::PduKind::StatusReport) return line + reported();
  if (message_.kind != phone::PduKind::Submit) return line + arrived();
  return line + number(message_.peer) + ',' + header() + "\r\n" + body();
}

std::string TextView::arrived() const {
  return number(message_.peer) + ",," + time(message_.timeStamp) + header() + "\r\n" + body();
}

std::string TextView::reported() const {
  return std::to_string(message_.firstOctet) +
         joined({std::to_string(message_.reference), number(message_.peer),
                 std::to_string(phone::typeOctet(message_.peer)), time(message_.timeStamp),
                 time(message_.dischargeTime), std::to_string(message_.reportStatus.value_or(0))});
}

std::string TextView::number(const phone::Address& address) const {
  return '"' + inCharacterSet(phone::shown(address), characters_) + '"';
}

std::string TextView::time(const std::optional<phone::TimeStamp>& stamp) const {
  if (!stamp) return "";
  std::array<char, 80> text{};
  std::snprintf(text.data(), text.size(), "\"%02d/%02d/%02d,%02d:%02d:%02d%+03d\"", stamp->year % 100, stamp->month,
                stamp->day, stamp->hour, stamp->minute, stamp->second, stamp->quarters.value_or(0));
  return text.data();
}

// What +CSDH=1 shows besides.
std::string TextView::header() const {
  if (!details_) return "";
  std::string text = joined({std::to_string(phone::typeOctet(message_.peer)), std::to_string(message_.firstOctet),
                             std::to_string(message_.protocolId), std::to_string(message_.dataCoding)});
  if (message_.kind == phone::PduKind::Submit)
    text += ',' + (message_.validity ? std::to_string(*message_.validity) : std::string());
  return text + joined({'"' + inCharacterSet(centre_, characters_) + '"', centre_.starts_with('+') ? "145" : "129",
                        std::to_string(message_.data.length)});
}

std::string TextView::body() const {
  const phone::UserData& data = message_.data;
  const bool text = inSeptets(phone::dataCodingOf(message_.dataCoding)) && !data.hasHeader &&
                    message_.kind != phone::PduKind::Undecodable;
  if (!text) return phone::toHex(data.octets);
  return fromMessage(phone::unpackSeptets(data.octets, data.length), characters_);
}

std::optional<phone::UserData> typedData(std::string_view typed, const TextParameters& parameters, CharacterSet set) {
  phone::UserData data{.hasHeader = (parameters.first & submit_bits::header) != 0, .length = 0, .octets = {}};
  const bool septets = inSeptets(phone::dataCodingOf(static_cast<std::uint8_t>(parameters.coding)));
  if (septets && !data.hasHeader) {
    const auto text = toMessage(typed, set);
    if (!text || text->size() > mostSeptets) return std::nullopt;
    data.octets = phone::packSeptets(*text);
    data.length = static_cast<std::uint8_t>(text->size());
    return data;
  }
  auto octets = phone::fromHex(typed);
  if (!octets || octets->size() > mostOctets) return std::nullopt;
  data.octets = std::move(*octets);
  constexpr std::size_t bits = 8, bitsOfSeptet = 7;
  data.length = static_cast<std::uint8_t>(septets ? data.octets.size() * bits / bitsOfSeptet : data.octets.size());
  return data;
}

Octets submitFrom(const TextParameters& parameters, const phone::Address& destination, const phone::UserData& data) {
  const auto octet = [](int value) { return static_cast<std::uint8_t>(value); };
  Octets pdu;
  phone::appendServiceCentre(pdu, std::nullopt);
  pdu.push_back(octet(parameters.first));
  pdu.push_back(0);  // the reference, which the handset fills in
  phone::appendAddress(pdu, destination);
  pdu.push_back(octet(parameters.protocol));
  pdu.push_back(octet(parameters.coding));
  if ((parameters.first & submit_bits::validity) == submit_bits::relativeValidity)
    pdu.push_back(octet(parameters.validity));
  pdu.push_back(data.length);
  pdu.insert(pdu.end(), data.octets.begin(), data.octets.end());
  return pdu;
}

}  // namespace phonesim
