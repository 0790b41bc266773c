#include "addin/settings/modwinversion.h"

#include "addin/common/basapi.h"

namespace addin {

bool IsWindowsNT() { return GetPlatformId() == PLATFORM_WIN32_NT; }

}  // namespace addin
