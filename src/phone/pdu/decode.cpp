#include "phone/pdu/decode.h"

#include "phone/pdu/hex.h"
#include "phone/pdu/reader.h"

namespace phone {
namespace {

constexpr unsigned typeBits = 0x03;
constexpr unsigned typeOfSubmit = 0x01;
constexpr unsigned typeOfStatusReport = 0x02;
constexpr unsigned headerBit = 0x40;

std::u16string widened(std::string_view ascii) {
  std::u16string text;
  text.reserve(ascii.size());
  for (const char character : ascii)
    text += character >= ' ' && character <= '~' ? static_cast<char16_t>(character) : u'?';
  return text;
}

Message undecodable(std::string_view why, std::string_view pdu) {
  Message message;
  message.content.text = u"This message cannot be decoded: " + widened(why) + u". PDU: " + widened(pdu);
  return message;
}

void readText(Message& message, OctetReader& reader) {
  const DataCoding coding = dataCodingOf(message.dataCoding);
  message.data.hasHeader = (message.firstOctet & headerBit) != 0;
  message.data.length = reader.octet();
  // Octets behind the user data are none of the message's: a SIM fills its records up.
  const OctetsView octets = reader.take(octetsOfUserData(coding, message.data.length));
  message.data.octets.assign(octets.begin(), octets.end());
  message.content = readUserData(message.data, coding);
  message.concatenation = concatenationOf(message.content.header);
}

void readDeliver(Message& message, OctetReader& reader) {
  message.kind = PduKind::Deliver;
  message.peer = readAddress(reader);
  message.protocolId = reader.octet();
  message.dataCoding = reader.octet();
  message.timeStamp = readTimeStamp(reader.take(timeStampOctets));
  readText(message, reader);
}

void readSubmit(Message& message, OctetReader& reader) {
  message.kind = PduKind::Submit;
  message.reference = reader.octet();
  message.peer = readAddress(reader);
  message.protocolId = reader.octet();
  message.dataCoding = reader.octet();
  switch (message.firstOctet >> 3 & 3) {
    case 0:
      break;
    case 2:
      message.validity = reader.octet();
      break;
    default:
      reader.take(7);
      break;  // absolute or enhanced
  }
  readText(message, reader);
}

void readStatusReport(Message& message, OctetReader& reader) {
  message.kind = PduKind::StatusReport;
  message.reference = reader.octet();
  message.peer = readAddress(reader);
  message.timeStamp = readTimeStamp(reader.take(timeStampOctets));
  message.dischargeTime = readTimeStamp(reader.take(timeStampOctets));
  message.reportStatus = reader.octet();
}

}  // namespace

Message decodePdu(OctetsView pdu) {
  try {
    OctetReader reader(pdu);
    Message message;
    message.serviceCentre = readServiceCentre(reader);
    message.firstOctet = reader.octet();
    // The type tells, not the status that the phone shows. The reserved one is taken for a received message (3GPP TS
    // 23.040, 9.2.3.1).
    switch (message.firstOctet & typeBits) {
      case typeOfSubmit:
        readSubmit(message, reader);
        break;
      case typeOfStatusReport:
        readStatusReport(message, reader);
        break;
      default:
        readDeliver(message, reader);
        break;
    }
    return message;
  } catch (const BadPdu& error) {
    return undecodable(error.what(), toHex(pdu));
  }
}

Message decodePdu(std::string_view hex) {
  if (const std::optional<Octets> octets = fromHex(hex)) return decodePdu(*octets);
  return undecodable("it is not hexadecimal", hex);
}

std::optional<std::size_t> tpduLength(OctetsView pdu) {
  if (pdu.empty() || pdu.size() < std::size_t{1} + pdu[0]) return std::nullopt;
  return pdu.size() - 1 - pdu[0];
}

}  // namespace phone
