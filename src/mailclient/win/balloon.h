// The Assistant's balloon, as a small information window.
#pragma once

#include "mailclient/assistant.h"
#include "mailclient/win/ui.h"

namespace mailclient::win {

// Waits for the click: a MsoBalloonButtonType, or the number of the label.
std::int32_t showBalloon(HWND owner, const BalloonState& balloon);

}  // namespace mailclient::win
