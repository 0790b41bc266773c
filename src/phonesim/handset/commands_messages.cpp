// Messages: 3GPP TS 27.005 in PDU mode.
#include <algorithm>
#include <array>

#include "phone/pdu/hex.h"
#include "phone/pdu/submit.h"
#include "phonesim/handset/commands.h"

namespace phonesim {

namespace {

constexpr int longestTpdu = 164;  // a Submit with everything that it can have
constexpr int shortestTpdu = 7;

Result unknownForm() { return Result::cms(cms::operationNotSupported); }
Result invalidParameter() { return Result::cms(cms::invalidPduParameter); }

std::string statusText(Status status) { return std::to_string(static_cast<int>(status)); }

std::string lengthAndPdu(const Octets& pdu) {
  return std::to_string(phone::tpduLength(pdu).value_or(pdu.size())) + "\r\n" + phone::toHex(pdu);
}

// Tells the message and makes it read, as looking at it does.
void show(const Call& call, const std::string& head, StoredPdu& message, Time takes) {
  call.answer.line(head + statusText(message.status) + ",," + lengthAndPdu(message.pdu), takes);
  if (message.status != Status::ReceivedUnread) return;
  message.status = Status::ReceivedRead;
  call.handset().changed();
}

// ---- reading ----

Result list(const Call& call) {
  if (call.command.form == Form::Test) {
    call.answer.line("+CMGL: (0-4)");
    return Result::ok();
  }
  if (call.command.form == Form::Read) return unknownForm();
  const auto filter = call.command.numberAt(0, 0, allStatuses, 0);
  if (!filter || call.command.count() > 1) return invalidParameter();
  Handset& handset = call.handset();
  if (const auto error = handset.failureOf(Operation::List)) return Result::cms(*error);
  const View view = call.port.listing();
  for (const Slot slot : handset.memories().occupied(view)) {
    StoredPdu& message = *handset.memories().find(slot);
    if (*filter != allStatuses && *filter != static_cast<int>(message.status)) continue;
    const int index = handset.memories().indexOf(view, slot);
    show(call, "+CMGL: " + std::to_string(index) + ',', message, handset.faults().listingTime);
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
  if (call.command.form != Form::Set) return unknownForm();
  if (const auto error = call.handset().failureOf(Operation::Read)) return Result::cms(*error);
  const auto slot = slotIn(call, call.port.listing());
  if (!slot) return Result::cms(cms::invalidMemoryIndex);
  show(call, "+CMGR: ", *call.handset().memories().find(*slot), Time{0});
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
  if (call.command.form != Form::Set) return unknownForm();
  const auto flag = call.command.numberAt(1, 0, 4, 0);
  if (!flag || call.command.count() > 2) return invalidParameter();
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

Result send(const Call& call) {
  if (call.command.form == Form::Test) return Result::ok();
  const auto length = announcedLength(call);
  if (!length || call.command.count() > 1) return invalidParameter();
  call.port.awaitData([&port = call.port, length = *length](Answer& answer, std::string_view digits) {
    const auto typed = readTyped(digits, length);
    if (!typed || typed->message.kind != phone::PduKind::Submit) return invalidParameter();
    return sendNow(port, answer, "+CMGS", typed->pdu, typed->message);
  });
  return Result::prompt();
}

// A received message is a Deliver or a report; what was not received is a Submit.
bool suits(Status status, phone::PduKind kind) {
  const bool received = status == Status::ReceivedUnread || status == Status::ReceivedRead;
  return received != (kind == phone::PduKind::Submit);
}

Result write(const Call& call) {
  if (call.command.form == Form::Test) return Result::ok();
  const auto length = announcedLength(call);
  const auto status = call.command.numberAt(1, 0, allStatuses - 1, static_cast<int>(Status::StoredUnsent));
  if (!length || !status || call.command.count() > 2) return invalidParameter();
  call.port.awaitData([&port = call.port, length = *length, status = static_cast<Status>(*status)](
                          Answer& answer, std::string_view digits) {
    Handset& handset = port.handset();
    auto typed = readTyped(digits, length);
    if (!typed || !suits(status, typed->message.kind)) return invalidParameter();
    if (const auto error = handset.failureOf(Operation::Write)) return Result::cms(*error);
    const View view = port.writing();
    const auto slot = handset.memories().add(view, {status, std::move(typed->pdu)});
    if (!slot) return Result::cms(cms::memoryFull);
    handset.changed();
    answer.line("+CMGW: " + std::to_string(handset.memories().indexOf(view, *slot)));
    return Result::ok();
  });
  return Result::prompt();
}

// The number of a quoted or bare argument, in whatever character set the host has chosen.
std::optional<phone::Address> numberIn(const Call& call, std::size_t position) {
  const std::string& text = call.command.arguments[position].text;
  const auto plain = fromCharacterSet(text, call.settings().characters);
  for (const std::string& candidate : {plain.value_or(""), text})
    if (auto address = phone::parseNumber(std::u16string(candidate.begin(), candidate.end()))) return address;
  return std::nullopt;
}

// Applies a type octet (129, 145, 161) that stands behind a number.
bool applyType(const Call& call, std::size_t position, phone::Address& address) {
  if (call.command.count() <= position || call.command.arguments[position].isEmpty()) return true;
  const auto type = call.command.numberAt(position, 128, 255);
  if (!type) return false;
  address.type = static_cast<phone::NumberType>((*type >> 4) & 7);
  address.plan = static_cast<std::uint8_t>(*type & 0x0F);
  return address.type != phone::NumberType::Alphanumeric;
}

Result sendStored(const Call& call) {
  if (call.command.form == Form::Test) return Result::ok();
  if (call.command.form != Form::Set) return unknownForm();
  if (call.command.count() > 3) return invalidParameter();
  const auto slot = slotIn(call, call.port.writing());
  if (!slot) return Result::cms(cms::invalidMemoryIndex);
  Handset& handset = call.handset();
  Octets pdu = handset.memories().find(*slot)->pdu;
  phone::Message message = phone::decodePdu(pdu);
  if (message.kind != phone::PduKind::Submit) return Result::cms(cms::operationNotAllowed);
  if (call.command.count() > 1 && !call.command.arguments[1].isEmpty()) {
    auto other = numberIn(call, 1);
    if (!other || !applyType(call, 2, *other)) return invalidParameter();
    message.peer = *other;
    pdu = phone::encodeSubmit({message.serviceCentre, *other, std::nullopt, false}, message.dataCoding, message.data)
              .octets;
  }
  const Result result = sendNow(call.port, call.answer, "+CMSS", pdu, message);
  // Found again: the message may have come back to this very handset, and moved others in their slots.
  StoredPdu* const stored = handset.memories().find(*slot);
  if (result.kind == Result::Kind::Ok && stored) stored->status = Status::StoredSent;
  return result;
}

// ---- settings ----

Result format(const Call& call) {
  switch (call.command.form) {
    case Form::Test:
      call.answer.line("+CMGF: (0)");
      return Result::ok();
    case Form::Read:
      call.answer.line("+CMGF: 0");
      return Result::ok();
    default:
      break;
  }
  const auto wanted = call.command.numberAt(0, 0, 1, 0);
  if (!wanted) return invalidParameter();
  return *wanted == 0 ? Result::ok() : Result::cms(cms::operationNotSupported);
}

std::array<View, 3> chosen(const Call& call) {
  return {call.port.listing(), call.port.writing(), call.handset().arrivals()};
}

std::string usedAndTotal(const Memories& memories, View view) {
  return std::to_string(memories.used(view)) + ',' + std::to_string(memories.capacity(view));
}

Result chooseMemories(const Call& call) {
  Memories& memories = call.handset().memories();
  const auto& arguments = call.command.arguments;
  std::array<View, 3> views = chosen(call);
  if (arguments.size() > views.size()) return invalidParameter();
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    if (i > 0 && arguments[i].isEmpty()) continue;
    const auto view = viewNamed(arguments[i].text);
    if (!view || !memories.isThere(*view)) return Result::cms(cms::operationNotSupported);
    views[i] = *view;
  }
  call.settings().listing = views[0];
  call.settings().writing = views[1];
  call.handset().setArrivals(views[2]);
  std::string line;
  for (const View view : views) line += (line.empty() ? "+CPMS: " : ",") + usedAndTotal(memories, view);
  call.answer.line(line);
  call.handset().deliverWaiting();
  return Result::ok();
}

Result memories(const Call& call) {
  Memories& all = call.handset().memories();
  std::string line;
  switch (call.command.form) {
    case Form::Test: {
      for (const View view : {View::Sim, View::Phone, View::Both})
        if (all.isThere(view)) line += (line.empty() ? "\"" : ",\"") + std::string(nameOf(view)) + '"';
      call.answer.line("+CPMS: (" + line + "),(" + line + "),(" + line + ')');
      return Result::ok();
    }
    case Form::Read:
      for (const View view : chosen(call))
        line += (line.empty() ? "\"" : ",\"") + std::string(nameOf(view)) + "\"," + usedAndTotal(all, view);
      call.answer.line("+CPMS: " + line);
      return Result::ok();
    case Form::Set:
      return chooseMemories(call);
    case Form::Execute:
      break;
  }
  return unknownForm();
}

Result centre(const Call& call) {
  Handset& handset = call.handset();
  if (call.command.form == Form::Test) return Result::ok();
  if (call.command.form == Form::Read) {
    const std::string& number = handset.state().centre;
    call.answer.line("+CSCA: \"" + inCharacterSet(number, call.settings().characters) +
                     (number.starts_with('+') ? "\",145" : "\",129"));
    return Result::ok();
  }
  if (call.command.form != Form::Set || call.command.count() > 2) return unknownForm();
  if (call.command.arguments[0].text.empty()) {
    handset.setCentre("");
    return Result::ok();
  }
  auto address = numberIn(call, 0);
  if (!address || !applyType(call, 1, *address)) return invalidParameter();
  const std::u16string shown = phone::shown(*address);
  handset.setCentre({shown.begin(), shown.end()});
  return Result::ok();
}

Result service(const Call& call) {
  int& level = call.settings().smsService;
  switch (call.command.form) {
    case Form::Test:
      call.answer.line("+CSMS: (0,1)");
      return Result::ok();
    case Form::Read:
      call.answer.line("+CSMS: " + std::to_string(level) + ",1,1,0");
      return Result::ok();
    default:
      break;
  }
  const auto wanted = call.command.form == Form::Set ? call.command.numberAt(0, 0, 1) : std::nullopt;
  if (!wanted) return invalidParameter();
  level = *wanted;
  call.answer.line("+CSMS: 1,1,0");  // received, sent, no cell broadcast
  return Result::ok();
}

Result routing(const Call& call) {
  Routing routing = call.settings().routing;
  const std::array fields{&routing.mode, &routing.messages, &routing.broadcasts, &routing.reports, &routing.buffered};
  if (call.command.form == Form::Test) {
    call.answer.line("+CNMI: (0-3),(0-3),(0,2),(0,1),(0,1)");
    return Result::ok();
  }
  if (call.command.form == Form::Read) {
    std::string line;
    for (const int* const field : fields) line += (line.empty() ? "+CNMI: " : ",") + std::to_string(*field);
    call.answer.line(line);
    return Result::ok();
  }
  // Broadcasts may be routed; none ever arrives.
  static constexpr std::array most{3, 3, 2, 1, 1};
  if (call.command.form != Form::Set || call.command.count() > fields.size()) return invalidParameter();
  for (std::size_t i = 0; i < fields.size(); ++i) {
    const auto value = call.command.numberAt(i, 0, 3, *fields[i]);
    if (!value) return invalidParameter();
    if (*value > most[i] || (i == 2 && *value == 1)) return Result::cms(cms::operationNotSupported);
    *fields[i] = *value;
  }
  call.port.setRouting(routing);
  return Result::ok();
}

Result acknowledge(const Call& call) {
  if (call.command.form == Form::Test) {
    call.answer.line("+CNMA: (0-2)");
    return Result::ok();
  }
  constexpr int negative = 2;
  const auto kind = call.command.numberAt(0, 0, negative, 0);
  const auto length = call.command.numberAt(1, 0, longestTpdu, 0);
  if (call.command.form == Form::Read || !kind || !length) return invalidParameter();
  const auto end = [&port = call.port, kept = *kind != negative] {
    const bool expected = port.settings.smsService == 1 && port.handset().acknowledge(kept);
    return expected ? Result::ok() : Result::cms(cms::noAcknowledgementExpected);
  };
  if (*length == 0) return end();
  // What the acknowledgement tells the network besides makes no difference here.
  call.port.awaitData([end](Answer&, std::string_view) { return end(); });
  return Result::prompt();
}

Result burst(const Call& call) {
  int& value = call.settings().burst;
  if (call.command.form == Form::Test) call.answer.line("+CMMS: (0-2)");
  if (call.command.form == Form::Read) call.answer.line("+CMMS: " + std::to_string(value));
  if (call.command.form == Form::Test || call.command.form == Form::Read) return Result::ok();
  const auto wanted = call.command.form == Form::Set ? call.command.numberAt(0, 0, 2) : std::nullopt;
  if (!wanted) return invalidParameter();
  value = *wanted;
  return Result::ok();
}

// Settings are not kept in profiles; saying that they are does no harm.
Result profile(const Call& call) {
  if (call.command.form == Form::Test) call.answer.line(call.command.name + ": (0)");
  return call.command.numberAt(0, 0, 255, 0) ? Result::ok() : invalidParameter();
}

// Known to the standard, and not to this handset: text mode, commands to the centre, cell broadcast.
Result refuse(const Call&) { return Result::cms(cms::operationNotSupported); }

constexpr Command message(std::string_view name, Handler handler, bool needsSim = true) {
  return {name, handler, needsSim, ErrorFamily::Message};
}

constexpr std::array messages{
    message("+CSMS", service, false), message("+CMGF", format, false), message("+CPMS", memories),
    message("+CMGL", list),           message("+CMGR", read),          message("+CMGD", remove),
    message("+CMGS", send),           message("+CMSS", sendStored),    message("+CMGW", write),
    message("+CSCA", centre),         message("+CNMI", routing),       message("+CNMA", acknowledge),
    message("+CMMS", burst),          message("+CSAS", profile),       message("+CRES", profile),
    message("+CSMP", refuse, false),  message("+CSDH", refuse, false), message("+CMGC", refuse, false),
    message("+CSCB", refuse, false),
};

}  // namespace

std::span<const Command> messageCommands() { return messages; }

}  // namespace phonesim
