// Events of the mail client that its own host raises and that the add-in does not listen to.
#pragma once

#include "addin/platform/event.h"

namespace mailclient {

struct ApplicationEvents {
  static constexpr platform::Event<> Startup{u"Startup", 0xF006};
  static constexpr platform::Event<> Quit{u"Quit", 0xF007};
};

}  // namespace mailclient
