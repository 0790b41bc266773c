// Identity, SIM, radio and settings: ITU-T V.250 and 3GPP TS 27.007.
#include <array>

#include "phonesim/handset/answer_text.h"
#include "phonesim/handset/number_setting.h"

namespace phonesim {

namespace {

constexpr Result incorrectParameters = equipmentRefusals.wrongValue;
constexpr Result notSupported = equipmentRefusals.unknownForm;

// ---- identity ----

// Commands that tell one text; their test form exists and says nothing.
Result tell(const Call& call, const std::string& text) {
  if (call.command.form == Form::Execute) call.answer.line(text);
  return call.command.form == Form::Execute || call.command.form == Form::Test ? Result::ok() : notSupported;
}

Result manufacturer(const Call& call) { return tell(call, call.handset().identity().manufacturer); }
Result model(const Call& call) { return tell(call, call.handset().identity().model); }
Result revision(const Call& call) { return tell(call, call.handset().identity().revision); }
Result serialNumber(const Call& call) { return tell(call, call.handset().identity().imei); }
Result subscriber(const Call& call) { return tell(call, call.handset().identity().imsi); }
Result capabilities(const Call& call) { return tell(call, "+GCAP: +CGSM"); }

Result commandList(const Call& call) {
  if (call.command.form == Form::Execute)
    for (const std::string_view name : commandNames()) call.answer.line(std::string(name));
  return tell(call, "");
}

std::string text(const Call& call, std::string_view ascii) {
  return '"' + inCharacterSet(ascii, call.settings().characters) + '"';
}

Result ownNumber(const Call& call) { return tell(call, "+CNUM: ," + bookNumberAndType(call.handset().number())); }

// ---- how it answers ----

Result errorStyle(const Call& call) {
  int style = static_cast<int>(call.settings().errors);
  const Result result = settle(call, style, {.most = static_cast<int>(ErrorStyle::Words)});
  call.settings().errors = static_cast<ErrorStyle>(style);
  return result;
}

Result characterSet(const Call& call) {
  switch (call.command.form) {
    case Form::Test:
      call.answer.line(R"(+CSCS: ("GSM","IRA","UCS2","HEX"))");
      return Result::ok();
    case Form::Read:
      call.answer.line("+CSCS: \"" + std::string(nameOf(call.settings().characters)) + '"');
      return Result::ok();
    case Form::Set:
      break;
    case Form::Execute:
      return notSupported;
  }
  const auto set = call.command.count() == 1 ? characterSetNamed(call.command.arguments[0].text) : std::nullopt;
  if (!set) return incorrectParameters;
  call.settings().characters = *set;
  return Result::ok();
}

// ---- the SIM ----

Result pin(const Call& call) {
  Handset& handset = call.handset();
  if (call.command.form == Form::Test) return Result::ok();
  if (handset.sim() == SimState::Absent) return Result::cme(cme::simNotInserted);
  if (call.command.form == Form::Read) {
    const SimState sim = handset.sim();
    call.answer.line(sim == SimState::Ready       ? "+CPIN: READY"
                     : sim == SimState::PinNeeded ? "+CPIN: SIM PIN"
                                                  : "+CPIN: SIM PUK");
    return Result::ok();
  }
  if (call.command.form != Form::Set) return notSupported;
  const auto& arguments = call.command.arguments;
  switch (handset.sim()) {
    case SimState::PinNeeded:
      if (arguments.size() != 1) return incorrectParameters;
      return handset.enterPin(arguments[0].text) ? Result::ok() : Result::cme(cme::incorrectPassword);
    case SimState::PukNeeded:
      if (arguments.size() != 2) return Result::cme(cme::simPukRequired);
      return handset.enterPuk(arguments[0].text, arguments[1].text) ? Result::ok()
                                                                    : Result::cme(cme::incorrectPassword);
    default:
      return Result::cme(cme::operationNotAllowed);
  }
}

// ---- the radio ----

Result signalQuality(const Call& call) {
  if (call.command.form == Form::Test) {
    call.answer.line("+CSQ: (0-31,99),(0-7,99)");
    return Result::ok();
  }
  const int signal = call.handset().signal();
  return tell(call, "+CSQ: " + std::to_string(signal) + (signal == 99 ? ",99" : ",0"));
}

Result registrationSetting(const Call& call, int& reports) {
  constexpr int withCell = 2;
  if (call.command.form != Form::Read) return settle(call, reports, {.most = withCell});
  call.answer.line(call.command.name + ": " + std::to_string(reports) + ',' + call.port.registrationText(reports));
  return Result::ok();
}

Result registration(const Call& call) { return registrationSetting(call, call.settings().registrationReports); }

// Packet data: it knows whether there is a network, and does nothing with it.
Result packetRegistration(const Call& call) {
  return registrationSetting(call, call.settings().packetRegistrationReports);
}

// Attached is what is registered, and can be nothing else.
Result packetAttachment(const Call& call) {
  const int attached = call.handset().isRegistered() ? 1 : 0;
  int wanted = attached;
  const Result result = settle(call, wanted, {.most = 1});
  return wanted == attached ? result : Result::cme(cme::operationNotAllowed);
}

constexpr std::array<std::string_view, 3> operatorNames{"Simulated network", "SimNet", "00101"};

// The numeric name is digits in every character set.
std::string operatorText(const Call& call, std::size_t format) {
  constexpr std::size_t numeric = 2;
  return format == numeric ? stringConstant(operatorNames[format]) : text(call, operatorNames[format]);
}

// Whether the command names the operator, in the character set or as it stands.
bool namesOperator(const Call& call, std::string_view wanted) {
  if (call.command.count() < 3) return false;
  const std::string& typed = call.command.arguments[2].text;
  return typed == wanted ||
         fromCharacterSet(typed, call.settings().characters) == std::u16string(wanted.begin(), wanted.end());
}

Result selectOperator(const Call& call) {
  enum Mode { automatic = 0, manual = 1, none = 2, formatOnly = 3 };
  const auto mode = call.command.numberAt(0, automatic, formatOnly);
  const auto format = call.command.numberAt(1, 0, 2, call.settings().operatorFormat);
  if (!mode || !format) return incorrectParameters;
  Handset& handset = call.handset();
  if (*mode == manual && !namesOperator(call, operatorNames[static_cast<std::size_t>(*format)]))
    return Result::cme(cme::noNetworkService);
  if (*mode == none) handset.setRegistration(Registration::Off);
  if (*mode <= manual && handset.registration() == Registration::Off) handset.setRegistration(Registration::Home);
  call.settings().operatorFormat = *format;
  return Result::ok();
}

Result operatorSelection(const Call& call) {
  const auto format = static_cast<std::size_t>(call.settings().operatorFormat);
  switch (call.command.form) {
    case Form::Test:
      call.answer.line("+COPS: (2," + operatorText(call, 0) + ',' + operatorText(call, 1) + ',' +
                       operatorText(call, 2) + ",0),,(0-3),(0-2)");
      return Result::ok();
    case Form::Read:
      call.answer.line(call.handset().isRegistered()
                           ? "+COPS: 0," + std::to_string(format) + ',' + operatorText(call, format)
                           : "+COPS: 0");
      return Result::ok();
    case Form::Set:
      return selectOperator(call);
    case Form::Execute:
      break;
  }
  return notSupported;
}

Result functionality(const Call& call) {
  Handset& handset = call.handset();
  switch (call.command.form) {
    case Form::Test:
      call.answer.line("+CFUN: (0,1,4),(0,1)");
      return Result::ok();
    case Form::Read:
      call.answer.line(handset.isRadioOn() ? "+CFUN: 1" : "+CFUN: 0");
      return Result::ok();
    case Form::Set:
      break;
    case Form::Execute:
      return notSupported;
  }
  const auto level = call.command.numberAt(0, 0, 4);
  const auto reset = call.command.numberAt(1, 0, 1, 0);
  if (!level || !reset || (*level != 0 && *level != 1 && *level != 4)) return incorrectParameters;
  handset.setRadio(*level == 1);
  if (*reset == 1) {
    const auto ports = handset.ports();
    for (Port* const port : ports) port->restart();
  }
  return Result::ok();
}

Result battery(const Call& call) {
  if (call.command.form == Form::Test) {
    call.answer.line("+CBC: (0-2),(0-100)");
    return Result::ok();
  }
  return tell(call, "+CBC: 0,100");
}

Result activity(const Call& call) {
  if (call.command.form == Form::Test) {
    call.answer.line("+CPAS: (0)");
    return Result::ok();
  }
  return tell(call, "+CPAS: 0");
}

// The network tells the time; it cannot be set.
Result clock(const Call& call) {
  if (call.command.form == Form::Test) return Result::ok();
  if (call.command.form != Form::Read) return Result::cme(cme::operationNotAllowed);
  call.answer.line("+CCLK: " + quotedTime(call.handset().time()));
  return Result::ok();
}

// The line has no speed; any that is asked for is as good as another.
Result lineSpeed(const Call& call) {
  int ignored = 0;
  constexpr int fastest = 4000000;
  if (call.command.form == Form::Test) {
    call.answer.line("+IPR: (0),()");
    return Result::ok();
  }
  return settle(call, ignored, {.most = fastest});
}

constexpr std::array general{
    Command{"+CGMI", manufacturer},
    Command{"+GMI", manufacturer},
    Command{"+CGMM", model},
    Command{"+GMM", model},
    Command{"+CGMR", revision},
    Command{"+GMR", revision},
    Command{"+CGSN", serialNumber},
    Command{"+GSN", serialNumber},
    Command{"+CIMI", subscriber, true},
    Command{"+CNUM", ownNumber, true},
    Command{"+GCAP", capabilities},
    Command{"+CLAC", commandList},
    Command{"+CMEE", errorStyle},
    Command{"+CSCS", characterSet},
    Command{"+CPIN", pin},
    Command{"+CSQ", signalQuality},
    Command{"+CREG", registration},
    Command{"+CGREG", packetRegistration},
    Command{"+CGATT", packetAttachment},
    Command{"+COPS", operatorSelection, true},
    Command{"+CFUN", functionality},
    Command{"+CBC", battery},
    Command{"+CPAS", activity},
    Command{"+CCLK", clock},
    Command{"+IPR", lineSpeed},
};

}  // namespace

std::span<const Command> generalCommands() { return general; }

}  // namespace phonesim
