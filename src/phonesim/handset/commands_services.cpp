// What the network does besides messages, and the SIM's lock (3GPP TS 27.007, 6, 7 and 8.18): a handset without calls
// takes the settings, and refuses what would need a network.
#include <algorithm>
#include <array>

#include "phonesim/handset/number_setting.h"

namespace phonesim {

namespace {

constexpr Result servicesUnsupported = equipmentRefusals.unknownForm;
constexpr Result servicesIncorrect = equipmentRefusals.wrongValue;

// Switches for something that never comes: a caller's number, a service message. Behind the switch stands what the
// network says of it.
Result callerNumber(const Call& call) {
  return settle(call, call.settings().services.caller, {.most = 1, .behind = ",1"});
}
Result calledNumber(const Call& call) {
  return settle(call, call.settings().services.called, {.most = 1, .behind = ",1"});
}
Result ringDetails(const Call& call) { return settle(call, call.settings().services.ring, {.most = 1}); }
Result notices(const Call& call) {
  auto& [caller, called, ring, codes, own, other, waiting] = call.settings().services;
  if (call.command.form == Form::Test) call.answer.line("+CSSN: (0,1),(0,1)");
  if (call.command.form == Form::Read) call.answer.line("+CSSN: " + std::to_string(own) + ',' + std::to_string(other));
  if (call.command.form == Form::Test || call.command.form == Form::Read) return Result::ok();
  const auto first = call.command.numberAt(0, 0, 1, own), second = call.command.numberAt(1, 0, 1, other);
  if (call.command.form != Form::Set || !first || !second || call.command.count() > 2) return servicesIncorrect;
  own = *first;
  other = *second;
  return Result::ok();
}

// Codes such as *100#: they may be wanted; there is nobody to send them to.
Result serviceCodes(const Call& call) {
  int& value = call.settings().services.codes;
  constexpr int cancel = 2;
  if (call.command.count() > 1) return servicesUnsupported;
  int wanted = value;
  const Result result = settle(call, wanted, {.most = cancel, .absent = value});
  if (wanted != cancel) value = wanted;
  return result;
}

// ---- the SIM's lock ----

// The others are the network's, which knows nothing of them here: they are off, and stay so.
constexpr std::array<std::string_view, 6> facilities{"SC", "AO", "OI", "OX", "AI", "IR"};

enum Mode { unlock = 0, lock = 1, query = 2 };

Result facilityLock(const Call& call) {
  if (call.command.form == Form::Test) {
    std::string names;
    for (const std::string_view name : facilities) names += (names.empty() ? "\"" : ",\"") + std::string(name) + '"';
    call.answer.line("+CLCK: (" + names + ')');
    return Result::ok();
  }
  if (call.command.form != Form::Set) return servicesUnsupported;
  const auto& arguments = call.command.arguments;
  const auto mode = call.command.numberAt(1, unlock, query);
  if (!mode || arguments.size() > 4) return servicesIncorrect;
  const auto found = std::ranges::find(facilities, arguments[0].text);
  if (found == facilities.end()) return servicesUnsupported;
  const bool sim = *found == facilities.front();
  Handset& handset = call.handset();
  if (*mode == query) {
    call.answer.line(std::string("+CLCK: ") + (sim && handset.asksForPin() ? '1' : '0'));
    return Result::ok();
  }
  if (!sim) return Result::cme(cme::operationNotAllowed);
  if (arguments.size() < 3) return servicesIncorrect;
  return handset.lockSim(*mode == lock, arguments[2].text) ? Result::ok() : Result::cme(cme::incorrectPassword);
}

Result changePassword(const Call& call) {
  constexpr std::size_t longestPin = 8;
  if (call.command.form == Form::Test) {
    call.answer.line("+CPWD: (\"SC\"," + std::to_string(longestPin) + ')');
    return Result::ok();
  }
  if (call.command.form != Form::Set) return servicesUnsupported;
  const auto& arguments = call.command.arguments;
  if (arguments[0].text != facilities.front()) return servicesUnsupported;
  constexpr std::size_t shortestPin = 4;
  if (arguments.size() != 3 || arguments[2].text.size() < shortestPin || arguments[2].text.size() > longestPin)
    return servicesIncorrect;
  // A PIN can be changed while it is asked for.
  if (!call.handset().asksForPin()) return Result::cme(cme::operationNotAllowed);
  return call.handset().changePin(arguments[1].text, arguments[2].text) ? Result::ok()
                                                                        : Result::cme(cme::incorrectPassword);
}

// Nobody's calls are sent on, and none waits: the network can be asked, and not be changed.
Result callForwarding(const Call& call) {
  if (call.command.form == Form::Test) {
    call.answer.line("+CCFC: (0-5)");
    return Result::ok();
  }
  if (call.command.form != Form::Set) return servicesUnsupported;
  if (!call.command.numberAt(0, 0, 5) || !call.command.numberAt(1, 0, 4)) return servicesIncorrect;
  if (call.command.numberAt(1, 0, 4) != query) return Result::cme(cme::operationNotAllowed);
  call.answer.line("+CCFC: 0,7");
  return Result::ok();
}

Result callWaiting(const Call& call) {
  int& told = call.settings().services.waiting;
  if (call.command.form != Form::Set || call.command.count() < 2) return settle(call, told, {.most = 1});
  const auto tell = call.command.numberAt(0, 0, 1, told), mode = call.command.numberAt(1, unlock, query);
  if (!tell || !mode || call.command.count() > 3) return servicesIncorrect;
  if (*mode != query) return Result::cme(cme::operationNotAllowed);
  told = *tell;
  call.answer.line("+CCWA: 0,7");
  return Result::ok();
}

// Whether the number is shown to who is called: as the network has it.
Result ownNumberShown(const Call& call) {
  if (call.command.form == Form::Test) call.answer.line("+CLIR: (0)");
  if (call.command.form == Form::Read) call.answer.line("+CLIR: 0,0");
  if (call.command.form == Form::Test || call.command.form == Form::Read) return Result::ok();
  return call.command.numberAt(0, 0, 0) ? Result::ok() : servicesUnsupported;
}

// There are none.
Result currentCalls(const Call& call) {
  return call.command.form == Form::Execute || call.command.form == Form::Test ? Result::ok() : servicesUnsupported;
}

constexpr std::array services{
    Command{"+CLIP", callerNumber, true},
    Command{"+COLP", calledNumber, true},
    Command{"+CRC", ringDetails},
    Command{"+CLIR", ownNumberShown, true},
    Command{"+CSSN", notices},
    Command{"+CUSD", serviceCodes, true},
    Command{"+CLCK", facilityLock, true},
    Command{"+CPWD", changePassword, true},
    Command{"+CCFC", callForwarding, true},
    Command{"+CCWA", callWaiting, true},
    Command{"+CLCC", currentCalls},
};

}  // namespace

std::span<const Command> serviceCommands() { return services; }

}  // namespace phonesim
