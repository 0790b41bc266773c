// New objects of registered classes.
#pragma once

#include "com/pointers.h"

namespace com {

// From a DLL or a local server. A server that was killed may still be on offer, and what it offers is dead; one that is
// just ending may be gone in the middle of it. A try takes such an offer away, so that a later one gets a server that
// lives, however many were killed before anybody asked.
HRESULT createObject(REFCLSID clsid, Ptr<IDispatch>& made) noexcept;

}  // namespace com
