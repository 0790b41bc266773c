#include "win32/pump.h"

#include <algorithm>

#include "com/windows.h"

namespace win32 {
namespace {

// A window that posts to itself without end would otherwise keep the caller from ever looking at its own time-out.
constexpr int mostMessages = 200;

}  // namespace

bool Pump::wait(std::int32_t milliseconds) {
  // MWMO_INPUTAVAILABLE: a message that an earlier look has seen and left in the queue ends the wait as well.
  const auto time = static_cast<DWORD>(std::max(milliseconds, 0));
  MsgWaitForMultipleObjectsEx(0, nullptr, time, QS_ALLINPUT, MWMO_INPUTAVAILABLE);

  MSG message;
  for (int i = 0; i < mostMessages && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE); ++i) {
    if (message.message == WM_QUIT) {
      PostQuitMessage(static_cast<int>(message.wParam));  // for the loops outside of this one
      return false;
    }
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
  return true;
}

}  // namespace win32
