// A foreign IDispatch as an Automation object.
#pragma once

#include "com/bridge.h"

namespace com {

platform::Ref<platform::Automation> importForeign(IDispatch* foreign);

// What importForeign() was given; null when the object is not a foreign one.
IDispatch* foreignDispatch(platform::Automation& object);

}  // namespace com
