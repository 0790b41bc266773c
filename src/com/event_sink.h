// A sink of ours, connected to the events of a foreign object.
#pragma once

#include "com/bridge.h"

namespace com {

// Connects `sink` through the source's connection points until the result is released. Error 459 when the source has no
// such events.
platform::Ref<platform::Counted> advise(IUnknown& source, const platform::Guid& events,
                                        const platform::Ref<platform::EventSink>& sink);

}  // namespace com
