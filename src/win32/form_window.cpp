// The dialog: its life, its messages, and what the user does.

#include "win32/form_window.h"

#include <algorithm>

#include "com/errors.h"
#include "win32/module.h"
#include "win32/text.h"

namespace win32 {
namespace {

using platform::Control;
using platform::ControlKind;
using platform::Form;

// A dialog template without controls; the dialog manager needs one, and reads it as double words.
struct alignas(4) EmptyTemplate {
  DLGTEMPLATE head{};
  WORD menu = 0;
  WORD windowClass = 0;
  WORD title = 0;
};

struct OtherWindows {
  HWND self;
  std::vector<HWND> found;  // that take input
};

BOOL CALLBACK addUsable(HWND window, LPARAM to) noexcept {
  auto& others = *reinterpret_cast<OtherWindows*>(to);
  if (window == others.self || !IsWindowVisible(window) || !IsWindowEnabled(window)) return TRUE;
  return com::guardedOr(BOOL{FALSE}, [&]() -> BOOL {
    others.found.push_back(window);
    return TRUE;
  });
}

RECT windowRect(HWND window) {
  RECT rect{};
  GetWindowRect(window, &rect);
  return rect;
}

RECT workArea(HWND window) {
  MONITORINFO info{};
  info.cbSize = sizeof info;
  GetMonitorInfoW(MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST), &info);
  return info.rcWork;
}

// Where `length` begins when it is centred on the middle of [from, to), moved into [low, high).
LONG centred(LONG from, LONG to, LONG length, LONG low, LONG high) {
  return std::max(low, std::min(from + (to - from - length) / 2, high - length));
}

}  // namespace

platform::Ref<FormWindow> FormWindow::open(Form& form, HWND owner, const LOGFONTW& font) {
  auto made = platform::make<FormWindow>(form, font);
  EmptyTemplate dialog;
  dialog.head.style = WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_CLIPCHILDREN | DS_MODALFRAME;
  dialog.head.dwExtendedStyle = WS_EX_CONTROLPARENT;
  CreateDialogIndirectParamW(ownModule(), &dialog.head, owner, procedure, reinterpret_cast<LPARAM>(made.get()));
  // Making windows lets others on this thread run: the form may have been unloaded meanwhile, or shown by somebody
  // else.
  const bool isWanted = form.IsLoaded() && !form.View();
  if (made.get()->ready_ && made.get()->window_ && isWanted) {
    form.SetView(made.get());
    return made;
  }
  if (made.get()->window_) DestroyWindow(made.get()->window_);
  if (isWanted) platform::raiseError(7);
  return nullptr;
}

INT_PTR CALLBACK FormWindow::procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
  return com::guardedOr(INT_PTR{FALSE}, [&]() -> INT_PTR {
    if (message == WM_INITDIALOG) {
      reinterpret_cast<FormWindow*>(lParam)->initialise(window);
      return FALSE;  // the focus is put when the window is shown
    }
    auto* const self = reinterpret_cast<FormWindow*>(GetWindowLongPtrW(window, DWLP_USER));
    if (!self) return FALSE;
    const platform::Hold<FormWindow> hold(self);
    return self->handle(message, wParam, lParam);
  });
}

INT_PTR FormWindow::handle(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_COMMAND:
      command(HIWORD(wParam), LOWORD(wParam));
      return TRUE;
    case WM_CLOSE:
      if (form_) platform::Ref<Form>(form_).get()->userCloses();
      return TRUE;
    case WM_PAINT:
      paint();
      return TRUE;
    case WM_CTLCOLORSTATIC:
    case WM_CTLCOLOREDIT:
    case WM_CTLCOLORBTN:
    case WM_CTLCOLORLISTBOX:
      return reinterpret_cast<INT_PTR>(colourFor(reinterpret_cast<HDC>(wParam), reinterpret_cast<HWND>(lParam)));
    case WM_SYSCOLORCHANGE:
      InvalidateRect(window_, nullptr, TRUE);
      return FALSE;
    case WM_NCDESTROY:
      windowHasGone();
      return FALSE;
    default:
      return FALSE;
  }
}

void FormWindow::initialise(HWND window) {
  SetWindowLongPtrW(window, DWLP_USER, reinterpret_cast<LONG_PTR>(this));
  window_ = window;
  self_ = platform::Ref<FormWindow>(this);
  keys_.emplace(window);
  SetWindowTextW(window, wide(form_.get()->Caption()));
  makeFaces();
  place();
  ready_ = true;
}

void FormWindow::place() {
  const Form& form = *form_;
  RECT inner = look_.pixels({0, 0, form.width, form.height});
  AdjustWindowRectEx(&inner, static_cast<DWORD>(GetWindowLongPtrW(window_, GWL_STYLE)), FALSE,
                     static_cast<DWORD>(GetWindowLongPtrW(window_, GWL_EXSTYLE)));
  const LONG width = inner.right - inner.left;
  const LONG height = inner.bottom - inner.top;
  const HWND owner = GetWindow(window_, GW_OWNER);
  const bool ownerIsSeen = owner && IsWindowVisible(owner) && !IsIconic(owner);
  const RECT area = workArea(ownerIsSeen ? owner : window_);
  const RECT over = ownerIsSeen ? windowRect(owner) : area;
  SetWindowPos(window_, nullptr, centred(over.left, over.right, width, area.left, area.right),
               centred(over.top, over.bottom, height, area.top, area.bottom), width, height,
               SWP_NOZORDER | SWP_NOACTIVATE);
}

// The windows that lose the activation are told, and one of them may unload the form.
void FormWindow::bringToFront() {
  if (!form_) return;
  const bool wasHidden = !IsWindowVisible(window_);
  ShowWindow(window_, SW_SHOW);
  if (!form_) return;
  SetForegroundWindow(window_);
  if (!form_ || !wasHidden) return;
  if (Control* const active = form_.get()->ActiveControl(); active && active->IsUsable())
    focusMoved(*active);
  else if (const HWND first = GetNextDlgTabItem(window_, nullptr, FALSE))
    SendMessageW(window_, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(first), TRUE);
}

// What the user does --------------------------------------------------------------------------------------------------

void FormWindow::command(WORD code, WORD id) {
  if (!form_) return;
  const platform::Ref<Form> form(form_);  // a handler may unload it
  if (id == IDCANCEL) {                   // Esc, by way of the dialog manager
    for (const Face& face : std::vector<Face>(faces_))
      if (face.control->isCancel) face.control->userClicks();
    return;
  }
  const auto index = static_cast<std::size_t>(id) - firstId;
  if (id < firstId || index >= faces_.size()) return;
  notice(*faces_[index].control, code, faces_[index].window);
  leaveUnusable();
}

void FormWindow::notice(Control& control, WORD code, HWND source) {
  const bool isList = control.Kind() == ControlKind::DropDownList;
  const bool isText = control.Kind() == ControlKind::TextBox;
  if (isText && code == EN_CHANGE) {
    if (applying_) return;
    platform::String text(static_cast<std::size_t>(GetWindowTextLengthW(source)), u'\0');
    text.resize(static_cast<std::size_t>(GetWindowTextW(source, wide(text), static_cast<int>(text.size()) + 1)));
    control.userEdits(text);
  } else if (isList && (code == CBN_SELCHANGE || code == CBN_SELENDCANCEL || code == CBN_CLOSEUP)) {
    // What an open list is closed with need not be what was told last: Esc takes the choice back without a word.
    control.userSelects(static_cast<std::int32_t>(SendMessageW(source, CB_GETCURSEL, 0, 0)));
  } else if (!isText && !isList && code == BN_CLICKED) {
    control.userClicks();
  }
}

// The keyboard would be dead when the control that has the focus was disabled or hidden: some systems leave it there,
// others leave it nowhere.
void FormWindow::leaveUnusable() {
  if (!window_ || GetActiveWindow() != window_) return;
  const HWND focus = GetFocus();
  if (focus && focus != window_ && IsWindowEnabled(focus) && IsWindowVisible(focus)) return;
  HWND next = nullptr;
  for (const Face& face : faces_)
    if (face.control->isDefault && face.control->IsUsable()) next = face.window;
  if (!next) next = GetNextDlgTabItem(window_, nullptr, FALSE);
  if (next) SendMessageW(window_, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(next), TRUE);
}

// Other windows -------------------------------------------------------------------------------------------------------

void FormWindow::blockOthers() {
  OtherWindows others{window_, {}};
  EnumThreadWindows(GetCurrentThreadId(), addUsable, reinterpret_cast<LPARAM>(&others));
  for (const HWND window : others.found) {
    blocked_.push_back(window);
    EnableWindow(window, FALSE);
    if (form_) continue;
    EnableWindow(window, TRUE);  // told of this, it unloaded the form, maybe before it was disabled
    return;
  }
}

void FormWindow::letOthersGo() {
  for (const HWND window : std::exchange(blocked_, {}))
    if (IsWindow(window)) EnableWindow(window, TRUE);
}

// The end -------------------------------------------------------------------------------------------------------------

void FormWindow::unloaded() {
  const platform::Hold<FormWindow> hold(this);
  letOthersGo();  // first: Windows makes an enabled owner the active window, and otherwise another program's
  if (const HWND window = window_) DestroyWindow(window);
  // A wait for a modal form may be asleep while the call that unloaded it came in beside the message queue.
  PostThreadMessageW(GetCurrentThreadId(), WM_NULL, 0, 0);
}

void FormWindow::windowHasGone() {
  const platform::Hold<FormWindow> hold(this);
  letOthersGo();
  keys_.reset();
  faces_.clear();
  window_ = nullptr;
  if (const platform::Ref<Form> form = std::exchange(form_, nullptr)) {
    if (form.get()->View() == this) {  // it went with its owner
      form.get()->SetView(nullptr);
      form.get()->Unload();
      PostThreadMessageW(GetCurrentThreadId(), WM_NULL, 0, 0);
    }
  }
  self_ = nullptr;
}

}  // namespace win32
