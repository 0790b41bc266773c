#include "support/win32/dialog_user.h"

#include <algorithm>

#include "support/win32/product.h"

namespace testing_support {
namespace {

std::wstring classOf(HWND window) {
  wchar_t name[64] = L"";
  RealGetWindowClassW(window, name, 64);
  return name;
}

}  // namespace

DialogUser::DialogUser(const std::wstring& title) {
  waitUntil([&] {
    dialog_ = FindWindowW(L"#32770", title.c_str());
    return isThere();
  });
}

bool DialogUser::hasGone() const {
  return waitUntil([&] { return !IsWindow(dialog_); });
}

std::vector<HWND> DialogUser::controls() const {
  std::vector<HWND> found;
  for (HWND child = GetWindow(dialog_, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT))
    if (IsWindowVisible(child)) found.push_back(child);
  return found;
}

HWND DialogUser::find(const wchar_t* className, const std::wstring& caption) const {
  for (const HWND child : controls())
    if (classOf(child) == className && captionOf(child) == caption) return child;
  return nullptr;
}

HWND DialogUser::find(const wchar_t* className, std::size_t n) const {
  for (const HWND child : controls())
    if (classOf(child) == className && n-- == 0) return child;
  return nullptr;
}

bool DialogUser::waitFor(const std::wstring& caption, bool enabled) const {
  return waitUntil([&] {
    const HWND found = button(caption);
    return found && (IsWindowEnabled(found) != FALSE) == enabled;
  });
}

HWND DialogUser::focus() const {
  GUITHREADINFO info{};
  info.cbSize = sizeof info;
  GetGUIThreadInfo(GetWindowThreadProcessId(dialog_, nullptr), &info);
  return info.hwndFocus;
}

bool DialogUser::waitForFocus(HWND control) const {
  return waitUntil([&] { return focus() == control; });
}

bool DialogUser::click(const std::wstring& caption) const {
  if (!waitFor(caption)) return false;
  SendMessageW(button(caption), BM_CLICK, 0, 0);
  return true;
}

void DialogUser::select(HWND list, int index) const {
  SendMessageW(list, CB_SETCURSEL, static_cast<WPARAM>(index), 0);
  SendMessageW(dialog_, WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(list), CBN_SELCHANGE), reinterpret_cast<LPARAM>(list));
}

void DialogUser::closeByMenu() const { SendMessageW(dialog_, WM_SYSCOMMAND, SC_CLOSE, 0); }

void DialogUser::press(WORD virtualKey) const {
  const HWND before = focus();
  PostMessageW(before, WM_KEYDOWN, virtualKey, 1);
  PostMessageW(before, WM_KEYUP, virtualKey, static_cast<LPARAM>(0xC0000001));
}

void DialogUser::pressWithAlt(wchar_t letter) const {
  constexpr LPARAM altIsDown = 1 << 29;
  PostMessageW(focus(), WM_SYSCHAR, letter, altIsDown | 1);
}

void DialogUser::type(const std::wstring& text) const {
  for (const wchar_t c : text) PostMessageW(focus(), WM_CHAR, c, 1);
}

std::wstring DialogUser::textOf(HWND control) {
  std::wstring text(static_cast<std::size_t>(SendMessageW(control, WM_GETTEXTLENGTH, 0, 0)) + 1, L'\0');
  text.resize(
      static_cast<std::size_t>(SendMessageW(control, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()))));
  return text;
}

std::wstring DialogUser::captionOf(HWND control) {
  std::wstring text = textOf(control);
  text.erase(std::remove(text.begin(), text.end(), L'&'), text.end());
  return text;
}

}  // namespace testing_support
