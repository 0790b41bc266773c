// Messages that arrive: SMS-DELIVER (3GPP TS 23.040, 9.2.2.1), as a service centre writes them. Whoever plays the phone
// needs these; they are read by decodePdu().
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "phone/pdu/address.h"
#include "phone/pdu/submit.h"
#include "phone/pdu/time_stamp.h"
#include "phone/pdu/user_data.h"

namespace phone {

struct Deliver {
  std::optional<Address> serviceCentre = {};
  Address originator = {};
  std::uint8_t protocolId = 0;
  std::uint8_t dataCoding = 0;
  TimeStamp timeStamp = {};
  bool moreMessages = false;  // further ones wait at the service centre
  UserData data = {};
};

EncodedPdu encodeDeliver(const Deliver& deliver);

// A text of any length, one PDU per part; data coding and user data of `like` are not used. Throws TextTooLong.
std::vector<EncodedPdu> encodeDeliver(const Deliver& like, std::u16string_view text, std::uint8_t reference);

// SMS-STATUS-REPORT (9.2.2.3): what became of a message that was sent.
struct StatusReport {
  std::optional<Address> serviceCentre = {};
  std::uint8_t reference = 0;
  Address recipient = {};
  TimeStamp timeStamp = {};
  TimeStamp dischargeTime = {};
  std::uint8_t status = 0;  // 00-1F done, 20-3F still trying, 40-7F failed
};

EncodedPdu encodeStatusReport(const StatusReport& report);

}  // namespace phone
