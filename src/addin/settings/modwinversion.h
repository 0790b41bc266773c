// Which Windows this is.
#pragma once

namespace addin {

// True when the operating system's platform is Windows NT.
bool IsWindowsNT();

}  // namespace addin
