// Commands of ITU-T V.250 that are a letter and a number.
#include <array>

#include "phonesim/handset/commands.h"

namespace phonesim {

namespace {

// A switch with the values 0 and 1.
Result setSwitch(const Call& call, bool& value) {
  const int number = call.command.number.value_or(0);
  if (number > 1) return Result::plainError();
  value = number == 1;
  return Result::ok();
}

Result echo(const Call& call) { return setSwitch(call, call.settings().echo); }
Result verbose(const Call& call) { return setSwitch(call, call.settings().verbose); }
Result quiet(const Call& call) { return setSwitch(call, call.settings().quiet); }

// What says something about calls, lines or profiles that a handset without calls can leave as it is.
Result harmless(const Call&) { return Result::ok(); }

Result defaults(const Call& call) {
  if (call.command.number.value_or(0) > 1) return Result::plainError();
  call.settings() = {};
  return Result::ok();
}

Result identify(const Call& call) {
  const Identity& identity = call.handset().identity();
  call.answer.line(identity.manufacturer);
  call.answer.line(identity.model);
  call.answer.line("Revision: " + identity.revision);
  return Result::ok();
}

// It makes no calls and takes none.
Result noCall(const Call&) { return Result::noCarrier(); }

// The characters of the line discipline can be asked for; only the values that they have can be set.
Result lineRegister(const Call& call) {
  struct Register {
    int number;
    int value;
  };
  static constexpr std::array registers{Register{0, 0}, Register{3, 13}, Register{4, 10}, Register{5, 8}};
  for (const auto& [number, value] : registers) {
    if (call.command.number != number) continue;
    if (call.command.form == Form::Read) {
      std::string digits = std::to_string(value);
      digits.insert(0, 3 - digits.size(), '0');
      call.answer.line(digits);
      return Result::ok();
    }
    if (call.command.form == Form::Set && call.command.numberAt(0, value, value)) return Result::ok();
  }
  return Result::plainError();
}

constexpr std::array basic{
    Command{"E", echo},      Command{"V", verbose},   Command{"Q", quiet},        Command{"X", harmless},
    Command{"Z", defaults},  Command{"&F", defaults}, Command{"&W", harmless},    Command{"&C", harmless},
    Command{"&D", harmless}, Command{"&K", harmless}, Command{"&S", harmless},    Command{"I", identify},
    Command{"H", harmless},  Command{"L", harmless},  Command{"M", harmless},     Command{"A", noCall},
    Command{"D", noCall},    Command{"O", noCall},    Command{"S", lineRegister},
};

}  // namespace

std::span<const Command> basicCommands() { return basic; }

}  // namespace phonesim
