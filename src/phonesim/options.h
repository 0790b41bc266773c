// The program's command line.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "phonesim/handset/handset.h"
#include "phonesim/line/exchange.h"

namespace phonesim {

// What becomes of a message for a number that no simulator has.
enum class Elsewhere {
  Lost,      // it is sent, and that is all
  Returned,  // it comes back to this handset
  Answered,  // the number that it was sent to sends it back
};

struct Options {
  bool help = false;
  Identity identity;
  std::string memoryFile;  // empty: nothing is kept
  std::optional<int> phoneCapacity;
  std::optional<int> simCapacity;
  std::optional<std::string> centre;
  std::string pin;
  int lineSpeed = 0;
  std::optional<Endpoint> listen = Endpoint{"127.0.0.1", 0};
  bool terminal = false;
  std::string terminalLink;
  std::optional<Endpoint> control;
  std::string script;
  bool console = true;
  bool exchange = false;
  Exchange::Options network;
  Elsewhere elsewhere = Elsewhere::Lost;
};

// Throws std::runtime_error with what is wrong.
Options parseOptions(const std::vector<std::string>& arguments);
std::string_view optionsHelp();

}  // namespace phonesim
