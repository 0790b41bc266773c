// How messages are handled: format, memories, service centre, routing (3GPP TS 27.005, 3).
#include <array>

#include "phonesim/handset/answer_text.h"
#include "phonesim/handset/message_arguments.h"
#include "phonesim/handset/number_setting.h"
#include "phonesim/handset/submit_bits.h"

namespace phonesim {

namespace {

// What is about text mode alone is a parameter of it in either format.
Result invalidTextParameter() { return Result::cms(cms::invalidTextParameter); }

Result settleSwitch(const Call& call, bool& value, Result wrongValue) {
  int number = value ? 1 : 0;
  const Result result = settle(call, number, {.most = 1, .absent = 0}, {unknownMessageForm(), wrongValue});
  value = number == 1;
  return result;
}

Result format(const Call& call) { return settleSwitch(call, call.settings().textMode, invalidParameter(call)); }
Result details(const Call& call) { return settleSwitch(call, call.settings().details, invalidTextParameter()); }

Result textParameters(const Call& call) {
  TextParameters wanted = call.settings().text;
  const std::array fields{&wanted.first, &wanted.validity, &wanted.protocol, &wanted.coding};
  if (call.command.form == Form::Test) return Result::ok();
  if (call.command.form == Form::Read) {
    std::string line;
    for (const int* const field : fields) line += (line.empty() ? "+CSMP: " : ",") + std::to_string(*field);
    call.answer.line(line);
    return Result::ok();
  }
  if (call.command.form != Form::Set || call.command.count() > fields.size()) return invalidTextParameter();
  for (std::size_t i = 0; i < fields.size(); ++i) {
    const auto value = call.command.numberAt(i, 0, 255, *fields[i]);
    if (!value) return invalidTextParameter();
    *fields[i] = *value;
  }
  // Validity as a point in time is not offered. In a Deliver those bits mean something else.
  const int validity = wanted.first & submit_bits::validity;
  const bool submits = (wanted.first & submit_bits::type) == submit_bits::submit;
  if (submits && validity != 0 && validity != submit_bits::relativeValidity)
    return Result::cms(cms::operationNotSupported);
  call.settings().text = wanted;
  return Result::ok();
}

// Which broadcasts are wanted can be said; none ever comes.
Result broadcasts(const Call& call) {
  auto& [mode, messages, codings] = call.settings().broadcasts;
  if (call.command.form == Form::Test) call.answer.line("+CSCB: (0,1)");
  if (call.command.form == Form::Read)
    call.answer.line("+CSCB: " + std::to_string(mode) + ",\"" + messages + "\",\"" + codings + '"');
  if (call.command.form == Form::Test || call.command.form == Form::Read) return Result::ok();
  const auto wanted = call.command.form == Form::Set ? call.command.numberAt(0, 0, 1) : std::nullopt;
  if (!wanted || call.command.count() > 3) return invalidParameter(call);
  for (std::size_t i = 1; i < call.command.count(); ++i)
    if (call.command.arguments[i].text.find_first_not_of("0123456789,-") != std::string::npos)
      return invalidParameter(call);
  mode = *wanted;
  messages = call.command.count() > 1 ? call.command.arguments[1].text : "";
  codings = call.command.count() > 2 ? call.command.arguments[2].text : "";
  return Result::ok();
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
  if (arguments.size() > views.size()) return invalidParameter(call);
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
  return unknownMessageForm();
}

Result centre(const Call& call) {
  Handset& handset = call.handset();
  if (call.command.form == Form::Test) return Result::ok();
  if (call.command.form == Form::Read) {
    call.answer.line("+CSCA: " + numberAndType(handset.centre(), call.settings().characters));
    return Result::ok();
  }
  if (call.command.form != Form::Set || call.command.count() > 2) return unknownMessageForm();
  if (call.command.arguments[0].text.empty()) {
    handset.setCentre("");
    return Result::ok();
  }
  const auto address = numberIn(call, 0);
  if (!address) return invalidParameter(call);
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
  if (!wanted) return invalidParameter(call);
  level = *wanted;
  call.answer.line("+CSMS: 1,1,0");  // received, sent, no cell broadcast
  return Result::ok();
}

Result routing(const Call& call) {
  Routing routing = call.settings().routing;
  const std::array fields{&routing.mode, &routing.messages, &routing.broadcasts, &routing.reports, &routing.buffered};
  if (call.command.form == Form::Test) {
    call.answer.line("+CNMI: (0-3),(0-3),(0,2),(0-2),(0,1)");
    return Result::ok();
  }
  if (call.command.form == Form::Read) {
    std::string line;
    for (const int* const field : fields) line += (line.empty() ? "+CNMI: " : ",") + std::to_string(*field);
    call.answer.line(line);
    return Result::ok();
  }
  // Broadcasts may be routed; none ever arrives.
  static constexpr std::array most{3, 3, 2, 2, 1};
  if (call.command.form != Form::Set || call.command.count() > fields.size()) return invalidParameter(call);
  for (std::size_t i = 0; i < fields.size(); ++i) {
    const auto value = call.command.numberAt(i, 0, 3, *fields[i]);
    if (!value) return invalidParameter(call);
    if (*value > most[i] || (i == 2 && *value == 1)) return Result::cms(cms::operationNotSupported);
    *fields[i] = *value;
  }
  call.port.setRouting(routing);
  return Result::ok();
}

Result acknowledge(const Call& call) {
  if (call.command.form == Form::Test) {
    if (!call.settings().textMode) call.answer.line("+CNMA: (0-2)");
    return Result::ok();
  }
  constexpr int negative = 2;
  const auto kind = call.command.numberAt(0, 0, negative, 0);
  const auto length = call.command.numberAt(1, 0, longestTpdu, 0);
  // In text mode there is only the one kind, without a word.
  const bool wordless = !call.settings().textMode || call.command.form == Form::Execute;
  if (call.command.form == Form::Read || !kind || !length || !wordless) return invalidParameter(call);
  const auto end = [&port = call.port, kept = *kind != negative] {
    const bool expected = port.settings.smsService == 1 && port.handset().acknowledge(kept);
    return expected ? Result::ok() : Result::cms(cms::noAcknowledgementExpected);
  };
  if (*length == 0) return end();
  // What the acknowledgement tells the network besides makes no difference here.
  call.port.awaitData(Port::Typing::Digits, [end](Answer&, std::string_view) { return end(); });
  return Result::prompt();
}

Result burst(const Call& call) {
  return settle(call, call.settings().burst, {.most = 2}, {unknownMessageForm(), invalidParameter(call)});
}

// Settings are not kept in profiles; saying that they are does no harm.
Result profile(const Call& call) {
  if (call.command.form == Form::Test) call.answer.line(call.command.name + ": (0)");
  return call.command.numberAt(0, 0, 255, 0) ? Result::ok() : invalidParameter(call);
}

// Known to the standard, and not to this handset: commands to the centre.
Result refuse(const Call&) { return Result::cms(cms::operationNotSupported); }

constexpr Command setting(std::string_view name, Handler handler, bool needsSim) {
  return {name, handler, needsSim, ErrorFamily::Message};
}

constexpr std::array messageSettings{
    setting("+CSMS", service, false),        setting("+CMGF", format, false),  setting("+CPMS", memories, true),
    setting("+CSCA", centre, true),          setting("+CNMI", routing, true),  setting("+CNMA", acknowledge, true),
    setting("+CMMS", burst, true),           setting("+CSAS", profile, true),  setting("+CRES", profile, true),
    setting("+CSMP", textParameters, false), setting("+CSDH", details, false), setting("+CSCB", broadcasts, false),
    setting("+CMGC", refuse, false),
};

}  // namespace

std::span<const Command> messageSettingCommands() { return messageSettings; }

}  // namespace phonesim
