// Events: declared once, with name, dispatch identifier and argument types, and used by the source that fires one and
// by the field that hears it. `bool&` marks a by-reference argument.
#pragma once

#include <cstdint>

#include "addin/platform/text.h"

namespace platform {

template <class... P>
struct Event {
  StringView name;
  std::int32_t dispid;
};

}  // namespace platform
