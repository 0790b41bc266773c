#include "phonesim/handset/submit_pdu.h"

#include <optional>

#include "phonesim/handset/submit_bits.h"

namespace phonesim {

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

Octets withDestination(const Octets& submit, const phone::Address& destination) {
  constexpr std::size_t firstOctetAndReference = 2;
  phone::OctetReader reader(submit);
  phone::readServiceCentre(reader);
  reader.take(firstOctetAndReference);
  const std::size_t before = submit.size() - reader.left();
  phone::readAddress(reader);
  const phone::OctetsView behind = reader.take(reader.left());
  Octets pdu(submit.begin(), submit.begin() + static_cast<std::ptrdiff_t>(before));
  phone::appendAddress(pdu, destination);
  pdu.insert(pdu.end(), behind.begin(), behind.end());
  return pdu;
}

}  // namespace phonesim
