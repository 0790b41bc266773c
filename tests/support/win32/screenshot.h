// Pictures of the screen.
#pragma once

#include <string>

#include "com/windows.h"

namespace screen {

// Writes a PNG file that shows all windows of a process together, as soon as they have been painted. False when there
// is none, or the file cannot be written. COM must be initialised.
bool saveScreenshot(DWORD process, const std::wstring& file);

}  // namespace screen
