#include "phone/pdu/submit.h"

#include <algorithm>

namespace phone {
namespace {

namespace first_octet {
constexpr unsigned submit = 0x01;
constexpr unsigned relativeValidity = 0x10;
constexpr unsigned statusReport = 0x20;
constexpr unsigned header = 0x40;
}  // namespace first_octet

constexpr int minutesOfHour = 60;
constexpr int minutesOfDay = 24 * minutesOfHour;
constexpr int minutesOfWeek = 7 * minutesOfDay;

int roundedUp(int value, int unit) { return (value + unit - 1) / unit; }

}  // namespace

std::uint8_t relativeValidity(std::chrono::minutes period) {
  const int minutes = static_cast<int>(std::clamp<std::chrono::minutes::rep>(period.count(), 1, 63 * minutesOfWeek));
  int octet = 0;
  if (minutes <= 12 * minutesOfHour)
    octet = roundedUp(minutes, 5) - 1;
  else if (minutes <= minutesOfDay)
    octet = 143 + roundedUp(minutes - 12 * minutesOfHour, 30);
  else if (minutes <= 30 * minutesOfDay)
    octet = 166 + roundedUp(minutes, minutesOfDay);
  else
    octet = 192 + roundedUp(minutes, minutesOfWeek);
  return static_cast<std::uint8_t>(octet);
}

std::chrono::minutes relativeValidityPeriod(std::uint8_t octet) {
  using namespace std::chrono;
  if (octet <= 143) return minutes(5 * (octet + 1));
  if (octet <= 167) return hours(12) + minutes(30 * (octet - 143));
  if (octet <= 196) return days(octet - 166);
  return weeks(octet - 192);
}

EncodedPdu encodeSubmit(const Submit& submit, std::uint8_t dataCoding, const UserData& data) {
  EncodedPdu pdu;
  appendServiceCentre(pdu.octets, submit.serviceCentre);
  const std::size_t front = pdu.octets.size();
  unsigned first = first_octet::submit;
  if (submit.validity) first |= first_octet::relativeValidity;
  if (submit.statusReport) first |= first_octet::statusReport;
  if (data.hasHeader) first |= first_octet::header;
  pdu.octets.push_back(static_cast<std::uint8_t>(first));
  pdu.octets.push_back(0);  // the message reference, which the phone fills in
  appendAddress(pdu.octets, submit.destination);
  pdu.octets.push_back(0);  // protocol: a plain message from one phone to another
  pdu.octets.push_back(dataCoding);
  if (submit.validity) pdu.octets.push_back(relativeValidity(*submit.validity));
  pdu.octets.push_back(data.length);
  pdu.octets.insert(pdu.octets.end(), data.octets.begin(), data.octets.end());
  pdu.tpduLength = pdu.octets.size() - front;
  return pdu;
}

std::vector<EncodedPdu> encodeSubmit(const Submit& submit, std::u16string_view text, std::uint8_t reference) {
  const EncodedText encoded = encodeText(text, reference);
  std::vector<EncodedPdu> pdus;
  for (const UserData& part : encoded.parts)
    pdus.push_back(encodeSubmit(submit, dataCodingOctet(encoded.alphabet), part));
  return pdus;
}

}  // namespace phone
