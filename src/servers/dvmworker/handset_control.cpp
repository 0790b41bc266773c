#include "servers/dvmworker/handset_control.h"

namespace servers::dvmworker {

using namespace platform;
using handset::Operation;
using handset::Store;

namespace {

Store storeOf(std::int32_t number) {
  if (number != 1 && number != 2) raiseError(5);
  return static_cast<Store>(number);
}

Operation operationOf(StringView name) {
  if (sameName(name, u"list")) return Operation::List;
  if (sameName(name, u"delete")) return Operation::Remove;
  if (sameName(name, u"send")) return Operation::Send;
  raiseError(5);
}

void requireTimeStamp(StringView text) {
  if (text.size() != 12 || text.find_first_not_of(u"0123456789") != StringView::npos) raiseError(5);
}

}  // namespace

std::span<const Member> HandsetControl::members() const {
  static constexpr Member table[] = {
      method<&HandsetControl::Name>(u"Name", 1),
      method<&HandsetControl::IsConnected>(u"IsConnected", 2),
      readOnly<&HandsetControl::processId_>(u"ProcessId", 3),
      method<&HandsetControl::Plug>(u"Plug", 4),
      method<&HandsetControl::Unplug>(u"Unplug", 5),
      method<&HandsetControl::Deliver>(u"Deliver", 6),
      method<&HandsetControl::Put>(u"Put", 7),
      method<&HandsetControl::Remove>(u"Remove", 8),
      method<&HandsetControl::Clear>(u"Clear", 9),
      method<&HandsetControl::Fill>(u"Fill", 10),
      method<&HandsetControl::StoredCount>(u"StoredCount", 11),
      method<&HandsetControl::Stored>(u"Stored", 12),
      method<&HandsetControl::SetCapacity>(u"SetCapacity", 13),
      method<&HandsetControl::SetSupported>(u"SetSupported", 14),
      method<&HandsetControl::FailCapacity>(u"FailCapacity", 15),
      method<&HandsetControl::AnswerNext>(u"AnswerNext", 16),
      method<&HandsetControl::SilenceNext>(u"SilenceNext", 17),
      method<&HandsetControl::ForgetOutcomes>(u"ForgetOutcomes", 23),
      method<&HandsetControl::SentCount>(u"SentCount", 18),
      method<&HandsetControl::SentServiceCentre>(u"SentServiceCentre", 19),
      method<&HandsetControl::SentDestination>(u"SentDestination", 20),
      method<&HandsetControl::SentText>(u"SentText", 21),
      method<&HandsetControl::ClearSent>(u"ClearSent", 22),
  };
  return table;
}

std::int16_t HandsetControl::Deliver(const String& originator, const String& text, const String& timeStamp) {
  requireTimeStamp(timeStamp);
  return phone_->deliver(originator, text, timeStamp).index;
}

std::int16_t HandsetControl::Put(std::int32_t store, std::int32_t status, const String& number, const String& text,
                                 const String& timeStamp) {
  if (status < 0 || status > 3) raiseError(5);
  requireTimeStamp(timeStamp);
  return phone_->put({storeOf(store), 0, static_cast<handset::Status>(status), number, text, timeStamp});
}

bool HandsetControl::Remove(std::int32_t store, std::int16_t slot) { return phone_->take(storeOf(store), slot); }
void HandsetControl::Clear(std::int32_t store) { phone_->clear(storeOf(store)); }
std::int16_t HandsetControl::Fill(std::int32_t store) { return phone_->fill(storeOf(store)); }

std::int32_t HandsetControl::StoredCount(std::int32_t store) {
  return static_cast<std::int32_t>(phone_->stored(storeOf(store)).size());
}

String HandsetControl::Stored(std::int32_t store) {
  String text;
  for (const auto& message : phone_->stored(storeOf(store))) {
    const std::string line = lineOf(message);
    text.append(line.begin(), line.end());
    text += u"\r\n";
  }
  return text;
}

void HandsetControl::SetCapacity(std::int32_t store, std::int16_t capacity) {
  phone_->setCapacity(storeOf(store), capacity);
}

void HandsetControl::SetSupported(std::int32_t store, bool supported) {
  phone_->setSupported(storeOf(store), supported);
}

void HandsetControl::AnswerNext(const String& operation, std::int32_t result,
                                const std::optional<std::int32_t>& delay) {
  phone_->script(operationOf(operation), {.result = result, .delay = delay.value_or(0), .silent = false});
}

void HandsetControl::SilenceNext(const String& operation) {
  phone_->script(operationOf(operation), {.result = 0, .delay = 0, .silent = true});
}

handset::OutgoingMessage HandsetControl::sent(std::int32_t position) {
  if (position < 0 || position >= SentCount()) raiseError(9);
  return phone_->sent()[static_cast<std::size_t>(position)];
}

}  // namespace servers::dvmworker
