// The keyboard of our modeless dialogs.
//
// The mail client's message loop knows nothing of them, so Tab, Enter, Esc and the accelerators would never be dialog
// keys. While one of our dialogs is open, a message hook of its thread looks at the keys that the loop takes from the
// queue, and gives those for a dialog to the dialog manager.
#pragma once

#include "com/windows.h"

namespace win32 {

class DialogKeys {
 public:
  explicit DialogKeys(HWND dialog) noexcept;
  DialogKeys(const DialogKeys&) = delete;
  DialogKeys& operator=(const DialogKeys&) = delete;
  ~DialogKeys();

 private:
  static LRESULT CALLBACK hear(int code, WPARAM removed, LPARAM message) noexcept;

  HWND dialog_;
  DialogKeys* next_;
};

}  // namespace win32
