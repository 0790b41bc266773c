// The mail client with its windows.
#pragma once

#include "mailclient/client.h"

namespace mailclient::win {

struct WindowOptions {
  bool explorer = true;
  bool console = false;  // commands on standard input as well
};

// Runs until the last window closes. Returns the program's exit code: 1 when not everything could be
// saved, 3 when there is no display.
int runWindows(const ClientPtr& client, const WindowOptions& options);

}  // namespace mailclient::win
