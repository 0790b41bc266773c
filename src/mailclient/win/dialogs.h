// Modal dialogs that are laid out in code, with the system's dialog keys.
#pragma once

#include <functional>

#include "mailclient/win/ui.h"

namespace mailclient::win {

// A modal dialog. Its controls are made when it opens; Enter and Esc are IDOK and IDCANCEL.
class Dialog {
 public:
  virtual ~Dialog() = default;
  // Runs it; the result is what end() was given.
  INT_PTR run(HWND owner, const String& title);

 protected:
  HWND handle() const { return handle_; }
  // Makes the controls; returns the size that they need.
  virtual SIZE layout() = 0;
  virtual void command(int id, int what) = 0;
  void end(INT_PTR result) { EndDialog(handle_, result); }
  // Buttons at the right of the bottom line, the first one the default. `top` is the line's.
  int placeButtons(const std::vector<std::pair<int, String>>& buttons, int width, int top);

 private:
  static INT_PTR CALLBACK procedure(HWND window, UINT message, WPARAM wide, LPARAM extra);
  void opened();

  HWND handle_ = nullptr;
  String title_;
};

// Where a dialog of this size goes over the window that it belongs to, or on the screen without one.
void placeOver(HWND owner, HWND dialog, int width, int height);

// A line of text from the user; false when cancelled or empty.
bool askForText(HWND owner, const String& title, const String& question, String& text);

}  // namespace mailclient::win
