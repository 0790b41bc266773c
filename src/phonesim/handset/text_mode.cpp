#include "phonesim/handset/text_mode.h"

#include <array>
#include <utility>

#include "phone/pdu/hex.h"
#include "phone/text/gsm_alphabet.h"
#include "phone/text/septets.h"
#include "phonesim/handset/answer_text.h"
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

TextView::TextView(const Octets& pdu, CharacterSet characters, bool details,
                   const std::optional<phone::Address>& centre)
    : message_(phone::decodePdu(pdu)), characters_(characters), details_(details), centre_(centre) {
  if (message_.serviceCentre) centre_ = message_.serviceCentre;
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
         joined({std::to_string(message_.reference), numberAndType(message_.peer, characters_),
                 time(message_.timeStamp), time(message_.dischargeTime),
                 std::to_string(message_.reportStatus.value_or(0))});
}

std::string TextView::number(const phone::Address& address) const {
  return quotedText(phone::shown(address), characters_);
}

std::string TextView::time(const std::optional<phone::TimeStamp>& stamp) const {
  return stamp ? quotedTime(*stamp) : "";
}

// What +CSDH=1 shows besides.
std::string TextView::header() const {
  if (!details_) return "";
  std::string text = joined({std::to_string(phone::typeOctet(message_.peer)), std::to_string(message_.firstOctet),
                             std::to_string(message_.protocolId), std::to_string(message_.dataCoding)});
  if (message_.kind == phone::PduKind::Submit)
    text += ',' + (message_.validity ? std::to_string(*message_.validity) : std::string());
  return text + joined({numberAndType(centre_, characters_), std::to_string(message_.data.length)});
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

}  // namespace phonesim
