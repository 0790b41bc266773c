// New objects of registered classes.
#pragma once

#include "com/pointers.h"

namespace com {

// From a DLL or a local server. A server that was killed a moment ago may still be on offer, and what it offers is
// dead: then a second try gets a server that lives.
HRESULT createObject(REFCLSID clsid, Ptr<IDispatch>& made) noexcept;

}  // namespace com
