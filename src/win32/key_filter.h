// Text boxes whose form wants to see each character before it is inserted.
#pragma once

#include "addin/platform/form.h"
#include "com/windows.h"

namespace win32 {

// Every character that comes to the edit control, by key or by paste, goes through the control's KeyPress; the code
// that comes back goes on, unless it is 0 or 1. Copy, cut, undo and paste by keyboard stay what they are. The edit
// control must go before the control.
void filterKeys(HWND edit, platform::Control& control);

}  // namespace win32
