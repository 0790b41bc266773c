// Any octets as a PDU. Nothing may crash, and what comes out is either undecodable with a text or says the same when it
// is written and read once more.

#include <cstddef>
#include <cstdint>

#include "fuzz/check.h"
#include "phone/pdu/decode.h"
#include "phone/pdu/deliver.h"
#include "phone/pdu/hex.h"
#include "phone/pdu/submit.h"

namespace {

using namespace phone;

// Numbers may have been written in more ways than one: with fillers in the middle, for one.
bool canBeWritten(const Message& message) {
  return message.peer.type != NumberType::Alphanumeric && (message.kind != PduKind::Deliver || message.timeStamp);
}

Message again(const Message& message) {
  if (message.kind == PduKind::Deliver)
    return decodePdu(encodeDeliver({.serviceCentre = message.serviceCentre,
                                    .originator = message.peer,
                                    .protocolId = message.protocolId,
                                    .dataCoding = message.dataCoding,
                                    .timeStamp = *message.timeStamp,
                                    .data = message.data})
                         .octets);
  return decodePdu(encodeSubmit({.serviceCentre = message.serviceCentre, .destination = message.peer},
                                message.dataCoding, message.data)
                       .octets);
}

void examine(const Message& message) {
  if (message.kind == PduKind::Undecodable) {
    fuzz::require(message.content.text.starts_with(u"This message cannot be decoded: "), "an undecodable PDU says so");
    return;
  }
  if (message.concatenation)
    fuzz::require(message.concatenation->part >= 1 && message.concatenation->part <= message.concatenation->total,
                  "a part is one of them");
  if (message.kind == PduKind::StatusReport || !canBeWritten(message)) return;
  const Message second = again(message);
  fuzz::require(second.kind == message.kind, "same kind");
  fuzz::require(second.peer == message.peer, "same number");
  fuzz::require(second.serviceCentre == message.serviceCentre, "same service centre");
  fuzz::require(second.content == message.content, "same content");
  fuzz::require(second.concatenation == message.concatenation, "same part");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size) {
  const OctetsView octets(input, size);
  const Message message = decodePdu(octets);
  examine(message);
  fuzz::require(decodePdu(toHex(octets)) == message, "hexadecimal says the same");
  decodePdu(std::string_view(reinterpret_cast<const char*>(input), size));
  tpduLength(octets);
  return 0;
}
