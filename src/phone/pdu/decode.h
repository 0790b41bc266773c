// A stored PDU of any kind, decoded. Nothing makes this fail: a message on the phone is never invisible because
// somebody wrote it badly.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "phone/pdu/address.h"
#include "phone/pdu/time_stamp.h"
#include "phone/pdu/user_data.h"

namespace phone {

enum class PduKind {
  Deliver,
  Submit,        // written or sent on this phone
  StatusReport,  // not a message for a reader
  Undecodable,   // has only a text, which says so and shows the PDU in hexadecimal
};

struct Message {
  PduKind kind = PduKind::Undecodable;
  std::optional<Address> serviceCentre = {};
  std::uint8_t firstOctet = 0;
  std::uint8_t reference = 0;  // of a Submit or StatusReport
  Address peer = {};           // originator, destination, or recipient of the reported message
  std::uint8_t protocolId = 0;
  std::uint8_t dataCoding = 0;                      // see dataCodingOf()
  std::optional<TimeStamp> timeStamp = {};          // of a Deliver or StatusReport, when it makes sense
  std::optional<TimeStamp> dischargeTime = {};      // of a StatusReport, when it makes sense
  std::optional<std::uint8_t> validity = {};        // a Submit's relative one
  std::optional<std::uint8_t> reportStatus = {};    // of a StatusReport
  UserData data = {};                               // as it travelled: can be sent on as it is
  Content content = {};                             // what it says; content.text is what to show
  std::optional<Concatenation> concatenation = {};  // when it is one of several parts
  friend bool operator==(const Message&, const Message&) = default;
};

// The service centre in front of the TPDU included, as AT commands carry it.
Message decodePdu(OctetsView pdu);
// From the hexadecimal digits of an AT command's line.
Message decodePdu(std::string_view hex);

// The octets behind the service centre, to be compared with the <length> of an AT command. Nothing when the PDU is
// shorter than the service centre that it announces.
std::optional<std::size_t> tpduLength(OctetsView pdu);

}  // namespace phone
