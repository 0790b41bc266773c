// Somebody before a dialog of this or another process, on a thread that is not the dialog's. What is waited for has a
// limit. Mouse steps end when the dialog has dealt with them; keys are only put into its queue, so wait for what comes
// of them.
#pragma once

#include <string>
#include <vector>

#include "com/windows.h"

namespace testing_support {

class DialogUser {
 public:
  // Waits for a dialog with this title that can be seen.
  explicit DialogUser(const std::wstring& title);

  bool isThere() const { return IsWindow(dialog_) && IsWindowVisible(dialog_); }
  HWND dialog() const { return dialog_; }
  // Waits until the dialog has gone.
  bool hasGone() const;

  // A control that can be seen: of this class, and with this caption (without its accelerator mark), or the n-th of its
  // class, counted from 0. Null when there is none.
  HWND find(const wchar_t* className, const std::wstring& caption) const;
  HWND find(const wchar_t* className, std::size_t n = 0) const;
  HWND button(const std::wstring& caption) const { return find(L"Button", caption); }
  HWND edit(std::size_t n = 0) const { return find(L"Edit", n); }
  HWND list() const { return find(L"ComboBox"); }

  // Waits until a button with this caption can be seen and is enabled or disabled as told.
  bool waitFor(const std::wstring& caption, bool enabled = true) const;
  bool waitForFocus(HWND control) const;
  HWND focus() const;  // of the dialog's thread

  // By the mouse.
  bool click(const std::wstring& caption) const;  // false when it cannot be clicked
  void select(HWND list, int index) const;
  void closeByMenu() const;
  // By the keyboard, to whatever has the focus.
  void press(WORD virtualKey) const;
  void pressWithAlt(wchar_t letter) const;
  void type(const std::wstring& text) const;

  static std::wstring textOf(HWND control);
  static std::wstring captionOf(HWND control);  // without the accelerator mark
  static bool isTicked(HWND box) { return SendMessageW(box, BM_GETCHECK, 0, 0) == BST_CHECKED; }

  // What can be seen, in the order of the Tab key.
  std::vector<HWND> controls() const;

 private:
  HWND dialog_ = nullptr;
};

}  // namespace testing_support
