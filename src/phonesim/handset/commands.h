// The commands that the handset understands.
#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "phonesim/handset/port.h"

namespace phonesim {

struct Call {
  Port& port;
  const Invocation& command;
  Answer& answer;

  Handset& handset() const { return port.handset(); }
  Settings& settings() const { return port.settings; }
};

using Handler = Result (*)(const Call&);

struct Command {
  std::string_view name;
  Handler handler;
  bool needsSim = false;
  ErrorFamily family = ErrorFamily::Equipment;
};

// Null for a command that the handset does not know.
const Command* findCommand(std::string_view name);
// All, in the order of the tables.
std::vector<std::string_view> commandNames();

// Runs one command, with the refusals that all have in common.
Result run(const Call& call);

// The tables: basic commands, TS 27.007, TS 27.005, phone book and services of TS 27.007.
std::span<const Command> basicCommands();
std::span<const Command> generalCommands();
std::span<const Command> messageCommands();
std::span<const Command> messageSettingCommands();
std::span<const Command> phoneBookCommands();
std::span<const Command> serviceCommands();

}  // namespace phonesim
