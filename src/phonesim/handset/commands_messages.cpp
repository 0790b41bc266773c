// Messages: reading, deleting, writing and sending (3GPP TS 27.005, 3 and 4).
#include <array>

#include "phone/pdu/deliver.h"
#include "phone/pdu/hex.h"
#include "phonesim/handset/message_arguments.h"
#include "phonesim/handset/submit_bits.h"
#include "phonesim/handset/submit_pdu.h"

namespace phonesim {

namespace {

constexpr int shortestTpdu = 7;

// Tells the message and makes it read, as looking at it does.
void show(const Call& call, const std::string& head, StoredPdu& message, std::string (TextView::*inWords)(Status) const,
          Time takes) {
  const std::string shown = call.settings().textMode ? (call.port.textView(message.pdu).*inWords)(message.status)
                                                     : std::to_string(static_cast<int>(message.status)) + ",," +
                                                           Port::lengthAndPdu(message.pdu);
  call.answer.line(head + shown, takes);
  if (message.status != Status::ReceivedUnread) return;
  message.status = Status::ReceivedRead;
  call.handset().changed();
}

// ---- reading ----

// A status by its number or, in text mode, by its word.
std::optional<int> statusAt(const Call& call, std::size_t position, int most, Status absent) {
  const int usual = static_cast<int>(absent);
  if (!call.settings().textMode) return call.command.numberAt(position, 0, most, usual);
  if (position >= call.command.count() || call.command.arguments[position].isEmpty()) return usual;
  const auto status = statusNamed(call.command.arguments[position].text);
  return status && *status <= most ? status : std::nullopt;
}

Result list(const Call& call) {
  if (call.command.form == Form::Test) {
    call.answer.line(call.settings().textMode ? R"(+CMGL: ("REC UNREAD","REC READ","STO UNSENT","STO SENT","ALL"))"
                                              : "+CMGL: (0-4)");
    return Result::ok();
  }
  if (call.command.form == Form::Read) return unknownMessageForm();
  const auto filter = statusAt(call, 0, allStatuses, Status::ReceivedUnread);
  if (!filter || call.command.count() > 1) return invalidParameter(call);
  Handset& handset = call.handset();
  if (const auto error = handset.failureOf(Operation::List)) return Result::cms(*error);
  const View view = call.port.listing();
  for (const Slot slot : handset.memories().occupied(view)) {
    StoredPdu& message = *handset.memories().find(slot);
    if (*filter != allStatuses && *filter != static_cast<int>(message.status)) continue;
    const int index = handset.memories().indexOf(view, slot);
    show(call, "+CMGL: " + std::to_string(index) + ',', message, &TextView::listed, handset.faults().listingTime);
  }
  return Result::ok();
}

// The slot that the first argument names, in that memory; nothing for a wrong index and for an empty slot.
std::optional<Slot> slotIn(const Call& call, View view) {
  const auto index = call.command.numberAt(0, 0, 2 * maximalCapacity);
  const auto slot = index ? call.handset().memories().slotOf(view, *index) : std::nullopt;
  return slot && call.handset().memories().find(*slot) ? slot : std::nullopt;
}

Result read(const Call& call) {
  if (call.command.form == Form::Test) return Result::ok();
  if (call.command.form != Form::Set) return unknownMessageForm();
  if (const auto error = call.handset().failureOf(Operation::Read)) return Result::cms(*error);
  const auto slot = slotIn(call, call.port.listing());
  if (!slot) return Result::cms(cms::invalidMemoryIndex);
  show(call, "+CMGR: ", *call.handset().memories().find(*slot), &TextView::read, Time{0});
  return Result::ok();
}

// ---- deleting ----

// Which statuses go with the second argument of +CMGD.
bool isMeant(Status status, int flag) {
  switch (status) {
    case Status::ReceivedRead:
      return flag >= 1;
    case Status::StoredSent:
      return flag >= 2;
    case Status::StoredUnsent:
      return flag >= 3;
    case Status::ReceivedUnread:
      return flag >= 4;
  }
  return false;
}

std::string indices(Memories& memories, View view) {
  std::string list;
  for (const Slot slot : memories.occupied(view))
    list += (list.empty() ? "" : ",") + std::to_string(memories.indexOf(view, slot));
  return list;
}

Result remove(const Call& call) {
  Handset& handset = call.handset();
  Memories& memories = handset.memories();
  const View view = call.port.listing();
  if (call.command.form == Form::Test) {
    call.answer.line("+CMGD: (" + indices(memories, view) + "),(0-4)");
    return Result::ok();
  }
  if (call.command.form != Form::Set) return unknownMessageForm();
  const auto flag = call.command.numberAt(1, 0, 4, 0);
  if (!flag || call.command.count() > 2) return invalidParameter(call);
  if (const auto error = handset.failureOf(Operation::Delete)) return Result::cms(*error);
  if (*flag == 0) {
    const auto slot = slotIn(call, view);
    if (!slot) return Result::cms(cms::invalidMemoryIndex);
    memories.remove(*slot);
  } else {
    if (!call.command.numberAt(0, 0, 2 * maximalCapacity)) return Result::cms(cms::invalidMemoryIndex);
    for (const Slot slot : memories.occupied(view))
      if (isMeant(memories.find(slot)->status, *flag)) memories.remove(slot);
  }
  handset.changed();
  handset.deliverWaiting();
  return Result::ok();
}

// ---- writing and sending ----

// What was typed after the prompt, when it is a PDU of the announced length.
struct Typed {
  Octets pdu;
  phone::Message message;
};

std::optional<Typed> readTyped(std::string_view digits, int length) {
  auto pdu = phone::fromHex(digits);
  if (!pdu || phone::tpduLength(*pdu) != static_cast<std::size_t>(length)) return std::nullopt;
  phone::Message message = phone::decodePdu(*pdu);
  if (message.kind == phone::PduKind::Undecodable) return std::nullopt;
  return Typed{std::move(*pdu), std::move(message)};
}

std::optional<Typed> decoded(Octets pdu, phone::PduKind kind) {
  phone::Message message = phone::decodePdu(pdu);
  return message.kind == kind ? std::optional(Typed{std::move(pdu), std::move(message)}) : std::nullopt;
}

// A message of text mode, with the parameters that +CSMP has set.
std::optional<Typed> submitTyped(const Settings& settings, const phone::Address& to, std::string_view text) {
  const int validity = settings.text.first & submit_bits::validity;
  if ((settings.text.first & submit_bits::type) != submit_bits::submit) return std::nullopt;
  if (validity != 0 && validity != submit_bits::relativeValidity) return std::nullopt;
  const auto data = typedData(text, settings.text, settings.characters);
  if (!data) return std::nullopt;
  return decoded(submitFrom(settings.text, to, *data), phone::PduKind::Submit);
}

std::optional<int> announcedLength(const Call& call) {
  return call.command.form == Form::Set ? call.command.numberAt(0, shortestTpdu, longestTpdu) : std::nullopt;
}

Result sendNow(Port& port, Answer& answer, const std::string& name, const Octets& pdu, const phone::Message& message) {
  Handset& handset = port.handset();
  answer.resultTakes = handset.faults().sendTime;
  constexpr int unassignedNumber = 1;
  if (message.peer.value.empty() || message.peer.type == phone::NumberType::Alphanumeric)
    return Result::cms(unassignedNumber);
  const auto result = handset.send(pdu, message);
  if (result.error != 0) return Result::cms(result.error);
  answer.line(name + ": " + std::to_string(result.reference), handset.faults().sendTime);
  if (handset.faults().lostAnswers > 0) {
    --handset.faults().lostAnswers;
    answer.lost = true;
  }
  return Result::ok();
}

Result sendTyped(const Call& call) {
  const auto length = announcedLength(call);
  if (!length || call.command.count() > 1) return invalidParameter(call);
  call.port.awaitData(Port::Typing::Digits,
                      [&port = call.port, length = *length](Answer& answer, std::string_view digits) {
                        const auto typed = readTyped(digits, length);
                        if (!typed || typed->message.kind != phone::PduKind::Submit)
                          return Result::cms(cms::invalidPduParameter);
                        return sendNow(port, answer, "+CMGS", typed->pdu, typed->message);
                      });
  return Result::prompt();
}

Result sendText(const Call& call) {
  const auto destination =
      call.command.form == Form::Set && call.command.count() <= 2 ? numberIn(call, 0) : std::nullopt;
  if (!destination) return invalidParameter(call);
  call.port.awaitData(
      Port::Typing::Text, [&port = call.port, to = *destination](Answer& answer, std::string_view text) {
        const auto typed = submitTyped(port.settings, to, text);
        return typed ? sendNow(port, answer, "+CMGS", typed->pdu, typed->message) : invalidParameter(port.settings);
      });
  return Result::prompt();
}

Result send(const Call& call) {
  if (call.command.form == Form::Test) return Result::ok();
  return call.settings().textMode ? sendText(call) : sendTyped(call);
}

// A received message is a Deliver or a report; what was not received is a Submit.
bool suits(Status status, phone::PduKind kind) {
  const bool received = status == Status::ReceivedUnread || status == Status::ReceivedRead;
  return received != (kind == phone::PduKind::Submit);
}

Result keep(Port& port, Answer& answer, Status status, Octets pdu) {
  Handset& handset = port.handset();
  if (const auto error = handset.failureOf(Operation::Write)) return Result::cms(*error);
  const View view = port.writing();
  const auto slot = handset.memories().add(view, {status, std::move(pdu)});
  if (!slot) return Result::cms(cms::memoryFull);
  handset.changed();
  answer.line("+CMGW: " + std::to_string(handset.memories().indexOf(view, *slot)));
  return Result::ok();
}

Result writePdu(const Call& call) {
  const auto length = announcedLength(call);
  const auto status = statusAt(call, 1, allStatuses - 1, Status::StoredUnsent);
  if (!length || !status || call.command.count() > 2) return invalidParameter(call);
  call.port.awaitData(Port::Typing::Digits,
                      [&port = call.port, length = *length, status = static_cast<Status>(*status)](
                          Answer& answer, std::string_view digits) {
                        auto typed = readTyped(digits, length);
                        if (!typed || !suits(status, typed->message.kind)) return Result::cms(cms::invalidPduParameter);
                        return keep(port, answer, status, std::move(typed->pdu));
                      });
  return Result::prompt();
}

// As if it had been received: its sender is the number that was given. The first octet of +CSMP may still be the one
// for sending.
std::optional<Typed> deliverTyped(const Port& port, const phone::Address& from, std::string_view text) {
  const TextParameters& parameters = port.settings.text;
  const int type = parameters.first & submit_bits::type;
  if (type != submit_bits::submit && type != submit_bits::deliver) return std::nullopt;
  const auto data = typedData(text, parameters, port.settings.characters);
  if (!data) return std::nullopt;
  Octets pdu = phone::encodeDeliver({.serviceCentre = port.handset().centre(),
                                     .originator = from,
                                     .protocolId = static_cast<std::uint8_t>(parameters.protocol),
                                     .dataCoding = static_cast<std::uint8_t>(parameters.coding),
                                     .timeStamp = port.handset().time(),
                                     .data = *data})
                   .octets;
  return decoded(std::move(pdu), phone::PduKind::Deliver);
}

// The number may be left out of a draft.
Result writeText(const Call& call) {
  const bool numbered = call.command.count() > 0 && !call.command.arguments[0].isEmpty();
  const auto number = numbered ? numberIn(call, 0) : phone::Address{};
  const auto status = statusAt(call, 2, allStatuses - 1, Status::StoredUnsent);
  if (call.command.form == Form::Read || !number || !status || call.command.count() > 3) return invalidParameter(call);
  call.port.awaitData(Port::Typing::Text, [&port = call.port, number = *number, status = static_cast<Status>(*status)](
                                              Answer& answer, std::string_view text) {
    auto typed = suits(status, phone::PduKind::Submit) ? submitTyped(port.settings, number, text)
                                                       : deliverTyped(port, number, text);
    return typed ? keep(port, answer, status, std::move(typed->pdu)) : invalidParameter(port.settings);
  });
  return Result::prompt();
}

Result write(const Call& call) {
  if (call.command.form == Form::Test) return Result::ok();
  return call.settings().textMode ? writeText(call) : writePdu(call);
}

Result sendStored(const Call& call) {
  if (call.command.form == Form::Test) return Result::ok();
  if (call.command.form != Form::Set) return unknownMessageForm();
  if (call.command.count() > 3) return invalidParameter(call);
  const auto slot = slotIn(call, call.port.writing());
  if (!slot) return Result::cms(cms::invalidMemoryIndex);
  Handset& handset = call.handset();
  Octets pdu = handset.memories().find(*slot)->pdu;
  phone::Message message = phone::decodePdu(pdu);
  if (message.kind != phone::PduKind::Submit) return Result::cms(cms::operationNotAllowed);
  if (call.command.count() > 1 && !call.command.arguments[1].isEmpty()) {
    const auto other = numberIn(call, 1);
    if (!other) return invalidParameter(call);
    pdu = withDestination(pdu, *other);
    message.peer = *other;
  }
  const Result result = sendNow(call.port, call.answer, "+CMSS", pdu, message);
  // Found again: the message may have come back to this very handset, and moved others in their slots.
  StoredPdu* const stored = handset.memories().find(*slot);
  if (result.kind == Result::Kind::Ok && stored) stored->status = Status::StoredSent;
  return result;
}

constexpr Command message(std::string_view name, Handler handler) {
  return {name, handler, true, ErrorFamily::Message};
}

constexpr std::array messages{
    message("+CMGL", list), message("+CMGR", read),       message("+CMGD", remove),
    message("+CMGS", send), message("+CMSS", sendStored), message("+CMGW", write),
};

}  // namespace

std::span<const Command> messageCommands() { return messages; }

}  // namespace phonesim
