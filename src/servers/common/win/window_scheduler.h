// The scheduler on window messages: work runs from the message loop of the thread that asked for it.
//
// Each thread with waiting work has a hidden window of its own; it goes with the last of that work, so that neither a
// thread nor this module is kept by it.
#pragma once

#include "servers/common/scheduler.h"

namespace servers {

Scheduler& windowScheduler() noexcept;

}  // namespace servers
