// The mail client without a window: commands from standard input, served by a real message loop.
#pragma once

#include "mailclient/client.h"

namespace mailclient::win {

struct HeadlessOptions {
  bool explorer = true;
};

// Runs until the command "quit", or until standard input ends. Returns the program's exit code: 1
// when not everything could be saved.
int runHeadless(const ClientPtr& client, const HeadlessOptions& options);

}  // namespace mailclient::win
