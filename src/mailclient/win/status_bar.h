// The status bar: what is shown, the phone's state, and a progress bar while the phone is at work.
#pragma once

#include "mailclient/win/shell.h"
#include "mailclient/win/ui.h"

namespace mailclient::win {

class StatusBar {
 public:
  void attach(HWND frame, int id);
  HWND handle() const { return bar_; }
  int height() const;
  void layout();
  void setText(const String& text);
  // Stands in the way of the text until it is empty again.
  void setHint(const String& hint);
  void showPhone(const PhoneActivity& phone);

 private:
  void paintText();

  HWND bar_ = nullptr;
  HWND progress_ = nullptr;
  String text_;
  String hint_;
  bool working_ = false;
};

}  // namespace mailclient::win
