// The Options dialog: the mail client's own page, and those that add-ins bring.
#pragma once

#include "mailclient/win/shell.h"
#include "mailclient/win/ui.h"

namespace mailclient::win {

// Modal. A page that is no control that can be shown is left out.
void showOptions(Shell& shell, HWND owner);

}  // namespace mailclient::win
