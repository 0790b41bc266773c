// Pictures of the screen.
#pragma once

#include <string>
#include <vector>

#include "com/windows.h"

namespace screen {

// Writes a PNG file that shows all windows of a process together, as soon as they have been painted. False when there
// is none, or the file cannot be written. COM must be initialised.
bool saveScreenshot(DWORD process, const std::wstring& file);

// Which pixels of the screen there, line by line, have another colour than the first one, as it looks at this moment.
std::vector<bool> inkIn(const RECT& area);

}  // namespace screen
