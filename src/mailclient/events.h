// Events of the mail client that its own host raises and that the add-in does not listen to.
#pragma once

#include "addin/platform/event.h"
#include "addin/platform/object.h"

namespace mailclient {

struct ApplicationEvents {
  static constexpr platform::Event<> Startup{u"Startup", 0xF006};
  static constexpr platform::Event<> Quit{u"Quit", 0xF007};
};

struct ExplorerEvents {
  static constexpr platform::Event<> Activate{u"Activate", 0xF001};
  static constexpr platform::Event<> FolderSwitch{u"FolderSwitch", 0xF002};
  static constexpr platform::Event<platform::Object, bool&> BeforeFolderSwitch{u"BeforeFolderSwitch", 0xF003};
  static constexpr platform::Event<> Deactivate{u"Deactivate", 0xF006};
};

struct InspectorEvents {
  static constexpr platform::Event<> Activate{u"Activate", 0xF001};
  static constexpr platform::Event<> Deactivate{u"Deactivate", 0xF006};
};

}  // namespace mailclient
