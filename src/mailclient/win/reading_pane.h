// The reading pane: one item's header and text.
#pragma once

#include "mailclient/win/shell.h"
#include "mailclient/win/ui.h"

namespace mailclient::win {

class ReadingPane {
 public:
  explicit ReadingPane(Shell& shell) : shell_(shell) {}

  void attach(HWND frame, int id);
  HWND text() const { return body_; }
  void layout(const RECT& area);
  void setVisible(bool visible);
  // Null shows nothing; `why` then stands in the header ("3 items selected").
  void show(const MessagePtr& message, const String& why = {});

 private:
  static constexpr int usualLines = 3;
  void setHeader(const String& text);

  Shell& shell_;
  HWND subject_ = nullptr;
  HWND header_ = nullptr;
  HWND body_ = nullptr;
  int headerLines_ = usualLines;
  RECT area_{};
};

// An item's text with the line breaks that an edit control wants.
String editText(StringView body);

}  // namespace mailclient::win
