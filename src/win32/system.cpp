#include "win32/system.h"

#include <type_traits>

#include "win32/clock.h"
#include "win32/files.h"
#include "win32/locale.h"
#include "win32/module.h"
#include "win32/objects.h"
#include "win32/pump.h"
#include "win32/registry.h"
#include "win32/shell.h"
#include "win32/user_interface.h"
#include "win32/window_messages.h"

namespace win32 {
namespace {

struct Parts {
  Clock clock;
  Pump pump;
  Locale locale;
  Registry registry;
  Windows windows;
  Shell shell;
  Objects objects;
  Files files;
  UserInterface ui;
  Module module;
};

// Nothing may run when the DLL is unloaded or the process ends.
static_assert(std::is_trivially_destructible_v<Parts> && std::is_trivially_destructible_v<platform::System>);

constinit Parts parts;
constinit platform::System theSystem{parts.clock, parts.pump,    parts.locale, parts.registry, parts.windows,
                                     parts.shell, parts.objects, parts.files,  parts.ui,       parts.module};

}  // namespace

platform::System& system() noexcept { return theSystem; }

}  // namespace win32
