// The module-wide reference to the mail client's Application, shared by the modules of the add-in.
//
// One per thread, like all module state. It is not an object with a destructor: per-thread state must be trivial, and
// what is still held when the process ends must not be released any more. InitHandler sets it, UnInitHandler empties
// it.
#pragma once

#include "addin/common/basGlobal.h"
#include "addin/platform/outlook.h"

namespace addin {

void SetModuleApplication(const outlook::Application& application);

// Nothing before InitHandler and after UnInitHandler.
outlook::Application ModuleApplication();

}  // namespace addin
