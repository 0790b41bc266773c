// The System of Windows: what the add-in runs on in its DLL.
#pragma once

#include "addin/platform/system.h"

namespace win32 {

// Always the same one. It holds nothing that has to be released.
platform::System& system() noexcept;

}  // namespace win32
