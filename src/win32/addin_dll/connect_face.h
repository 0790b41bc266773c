// The face that the mail client sees of the add-in's entry point.
#pragma once

#include "com/pointers.h"

namespace win32 {

// A new add-in object that answers IDTExtensibility2 through its vtable and through IDispatch, so that a script can
// drive it too. The methods of the vtable always return S_OK: nothing that goes wrong is the mail client's business.
// Through IDispatch, arguments of wrong type or number are refused as by any automation object.
com::Ptr<IUnknown> createConnect();

}  // namespace win32
