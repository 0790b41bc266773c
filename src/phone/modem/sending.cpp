// Messages to the network (3GPP TS 27.005, 4.3).
#include "phone/at/characters.h"
#include "phone/modem/modem.h"
#include "phone/pdu/hex.h"
#include "phone/text/segments.h"

namespace phone {

using at::DataAnswer;
using at::Result;

namespace {

constexpr Milliseconds sendingLimit{120000};  // networks have taken more than 20 seconds
constexpr Milliseconds slowPause{100};        // between prompt and message, for those that need it
constexpr Milliseconds networkPause{5000};
constexpr int mostRepeats = 2;

// The network was asked and had no room at that moment.
bool isPassing(const Result& error) { return error.isCms(41) || error.isCms(42) || error.isCms(47); }

// The network had the message, and said nothing in time: whether it goes is open.
bool isTimeOut(const Result& error) { return error.isCms(332) || error.isCme(31); }

// "<mr>[,<ackpdu>]"
std::optional<int> referenceOf(const std::string& text) {
  const auto reference = at::wholeNumber(std::string_view(text).substr(0, text.find(',')));
  return reference && *reference >= 0 && *reference <= 255 ? reference : std::nullopt;
}

// What became of a message that the modem has had.
Outcome outcomeOfMessage(const DataAnswer& answer, int& reference) {
  const bool failed = answer.result && !answer.result->ok();
  if (!answer.information.empty()) {
    const auto given = referenceOf(answer.information.back().text);
    reference = given.value_or(-1);
    // The network's answer counts, even when the modem's own OK is missing. Only a message that was accepted has a
    // reference, so an error behind it is of something else.
    return given || !failed ? Outcome{} : Outcome{Outcome::Kind::Unknown};
  }
  // An OK behind a line that was damaged: there was nothing else that it could have said.
  if (answer.ok() && answer.damaged()) return {};
  if (!failed || isTimeOut(*answer.result)) return {Outcome::Kind::Unknown};
  return outcomeOf(answer.result);
}

}  // namespace

Outcome Modem::prepare(std::u16string_view serviceCentre, std::u16string_view destination, std::u16string_view text,
                       std::uint8_t reference, Sending& sending) {
  Submit submit;
  if (!serviceCentre.empty()) {
    submit.serviceCentre = parseNumber(serviceCentre);
    if (!submit.serviceCentre) return {Outcome::Kind::BadNumber};
  }
  const auto number = parseNumber(destination);
  if (!number) return {Outcome::Kind::BadNumber};
  submit.destination = *number;
  try {
    sending = {encodeSubmit(submit, text, reference)};
  } catch (const TextTooLong&) {
    return {Outcome::Kind::TooLong};
  }
  return {};
}

Outcome Modem::send(Sending& sending) {
  ensureSetUp();
  if (sending.parts.size() - sending.sent > 1) keepRadioOn();
  while (sending.sent < sending.parts.size())
    if (const Outcome outcome = sendPart(sending); !outcome.done()) return outcome;
  return {};
}

// Between the parts of a long message, which saves seconds for each.
void Modem::keepRadioOn() {
  if (!refusesRadio_) refusesRadio_ = !run({"AT+CMMS=1", {}}).ok();
}

// What was refused was not sent, so it may be tried again; the user sees one failure less. With the first part that is
// left to the user unless the modem is only busy: nothing has gone yet.
Outcome Modem::sendPart(Sending& sending) {
  const EncodedPdu& part = sending.parts[sending.sent];
  for (int repeats = 0;; ++repeats) {
    int reference = -1;
    const Outcome outcome = handIn(part, reference);
    if (outcome.done()) {
      ++sending.sent;
      sending.references.push_back(reference);
      return outcome;
    }
    if (outcome.kind != Outcome::Kind::Refused || repeats == mostRepeats) return outcome;
    if (isBusy(outcome.error))
      pause(busyPause);
    else if (sending.sent > 0 && isPassing(outcome.error))
      pause(networkPause);
    else
      return outcome;
  }
}

Outcome Modem::handIn(const EncodedPdu& part, int& reference) {
  ensureSetUp();
  const at::Command command{"AT+CMGS=" + std::to_string(part.tpduLength), "+CMGS", false, false, sendingLimit};
  const std::string message = toHex(part.octets);
  DataAnswer answer = dialogue_.runWithData(command, message);
  const bool tooShort = answer.dataSent && answer.result && answer.result->isCms(304) && answer.information.empty();
  if (tooShort && dialogue_.pauseBeforeData() < slowPause) {
    // "Invalid PDU": one that begins too soon behind the prompt loses its beginning, and then its length is wrong.
    dialogue_.pauseBeforeData(slowPause);
    answer = dialogue_.runWithData(command, message);
    if (answer.result && !answer.result->ok()) dialogue_.pauseBeforeData(Milliseconds(0));
  }
  if (!answer.result) setUp_ = false;
  return answer.dataSent ? outcomeOfMessage(answer, reference) : outcomeOf(answer.result);
}

}  // namespace phone
