// Collections walked across the border: Enumerator to IEnumVARIANT and back.
#pragma once

#include "com/bridge.h"

namespace com {

// Walks `collection`. Error 438 when it is no collection.
Ptr<IEnumVARIANT> exportedEnumerator(platform::Automation& collection);

// `result` is what a collection's member -4 returned. Error 438 when that is no enumerator.
platform::Ref<platform::Enumerator> importedEnumerator(const VARIANT& result);

}  // namespace com
