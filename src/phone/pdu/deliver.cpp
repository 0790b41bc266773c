#include "phone/pdu/deliver.h"

namespace phone {
namespace {

constexpr unsigned typeStatusReport = 0x02;
constexpr unsigned noMoreMessages = 0x04;
constexpr unsigned deliverHeader = 0x40;

}  // namespace

EncodedPdu encodeDeliver(const Deliver& deliver) {
  EncodedPdu pdu;
  appendServiceCentre(pdu.octets, deliver.serviceCentre);
  const std::size_t front = pdu.octets.size();
  pdu.octets.push_back(static_cast<std::uint8_t>((deliver.moreMessages ? 0 : noMoreMessages) |
                                                 (deliver.data.hasHeader ? deliverHeader : 0)));
  appendAddress(pdu.octets, deliver.originator);
  pdu.octets.push_back(deliver.protocolId);
  pdu.octets.push_back(deliver.dataCoding);
  appendTimeStamp(pdu.octets, deliver.timeStamp);
  pdu.octets.push_back(deliver.data.length);
  pdu.octets.insert(pdu.octets.end(), deliver.data.octets.begin(), deliver.data.octets.end());
  pdu.tpduLength = pdu.octets.size() - front;
  return pdu;
}

std::vector<EncodedPdu> encodeDeliver(const Deliver& like, std::u16string_view text, std::uint8_t reference) {
  const EncodedText encoded = encodeText(text, reference);
  std::vector<EncodedPdu> pdus;
  Deliver deliver = like;
  deliver.dataCoding = dataCodingOctet(encoded.alphabet);
  for (const UserData& part : encoded.parts) {
    deliver.data = part;
    pdus.push_back(encodeDeliver(deliver));
  }
  return pdus;
}

EncodedPdu encodeStatusReport(const StatusReport& report) {
  EncodedPdu pdu;
  appendServiceCentre(pdu.octets, report.serviceCentre);
  const std::size_t front = pdu.octets.size();
  pdu.octets.push_back(typeStatusReport | noMoreMessages);
  pdu.octets.push_back(report.reference);
  appendAddress(pdu.octets, report.recipient);
  appendTimeStamp(pdu.octets, report.timeStamp);
  appendTimeStamp(pdu.octets, report.dischargeTime);
  pdu.octets.push_back(report.status);
  pdu.tpduLength = pdu.octets.size() - front;
  return pdu;
}

}  // namespace phone
