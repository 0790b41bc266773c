#include "phonesim/handset/commands.h"

#include <algorithm>
#include <array>

namespace phonesim {

namespace {

std::array<std::span<const Command>, 6> tables() {
  return {basicCommands(),          generalCommands(),   messageCommands(),
          messageSettingCommands(), phoneBookCommands(), serviceCommands()};
}

// What a SIM that does not work makes of a command that needs it.
std::optional<Result> simRefusal(SimState sim, ErrorFamily family) {
  const bool message = family == ErrorFamily::Message;
  switch (sim) {
    case SimState::Ready:
      return std::nullopt;
    case SimState::PinNeeded:
      return message ? Result::cms(cms::simPinRequired) : Result::cme(cme::simPinRequired);
    case SimState::PukNeeded:
      return message ? Result::cms(cms::simPukRequired) : Result::cme(cme::simPukRequired);
    case SimState::Absent:
      return message ? Result::cms(cms::simNotInserted) : Result::cme(cme::simNotInserted);
  }
  return std::nullopt;
}

}  // namespace

const Command* findCommand(std::string_view name) {
  for (const auto table : tables()) {
    const auto found = std::ranges::find(table, name, &Command::name);
    if (found != table.end()) return &*found;
  }
  return nullptr;
}

std::vector<std::string_view> commandNames() {
  std::vector<std::string_view> names;
  for (const auto table : tables())
    for (const Command& command : table) names.push_back(command.name);
  return names;
}

Result run(const Call& call) {
  const Command* const command = findCommand(call.command.name);
  if (!command) {
    const bool basic = call.command.name.size() == 1 || call.command.name[0] == '&' || call.command.name[0] == '\\';
    return basic ? Result::plainError() : Result::cme(cme::operationNotSupported);
  }
  // What can be asked for is known without a SIM.
  if (command->needsSim && call.command.form != Form::Test)
    if (const auto refusal = simRefusal(call.handset().sim(), command->family)) return *refusal;
  return command->handler(call);
}

}  // namespace phonesim
