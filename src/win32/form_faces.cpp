// The controls of the dialog, and how they follow the form's data.

#include "com/errors.h"
#include "win32/accelerators.h"
#include "win32/form_window.h"
#include "win32/key_filter.h"
#include "win32/module.h"
#include "win32/text.h"

namespace win32 {
namespace {

using platform::Control;
using platform::ControlKind;
using platform::Property;
using platform::String;

constexpr std::int32_t listRows = 8;   // of an open list
constexpr std::int32_t rowHeight = 9;  // dialog units

// Nobody reads more of an entry, and measuring ten megabytes of one would take the system its time.
constexpr std::size_t longestEntry = 1000;

struct WindowKind {
  const wchar_t* className;
  DWORD style;
  DWORD extendedStyle;
};

WindowKind kindOf(const Control& control) {
  switch (control.Kind()) {
    case ControlKind::Label:
      return {L"STATIC", SS_LEFT | (control.noMnemonic ? DWORD{SS_NOPREFIX} : 0), 0};
    case ControlKind::TextBox:
      return {L"EDIT", WS_TABSTOP | ES_AUTOHSCROLL, WS_EX_CLIENTEDGE};
    case ControlKind::CheckBox:
      return {L"BUTTON", WS_TABSTOP | BS_CHECKBOX | BS_MULTILINE | BS_TOP, 0};
    case ControlKind::Button:
      return {L"BUTTON", WS_TABSTOP | (control.isDefault ? DWORD{BS_DEFPUSHBUTTON} : DWORD{BS_PUSHBUTTON}), 0};
    case ControlKind::DropDownList:
      return {L"COMBOBOX", WS_TABSTOP | WS_VSCROLL | CBS_DROPDOWNLIST, 0};
    default:
      return {nullptr, 0, 0};
  }
}

bool isField(const Control& control) {
  return control.Kind() == ControlKind::TextBox || control.Kind() == ControlKind::DropDownList;
}

}  // namespace

void FormWindow::makeFaces() {
  for (Control* const control : form_.get()->Controls()) {
    const auto id = static_cast<WORD>(firstId + faces_.size());
    faces_.push_back({control, nullptr});
    faces_.back().window = makeWindow(*control, id);
    if (control->isDefault) SendMessageW(window_, DM_SETDEFID, id, 0);
  }
  applyCaptions();
  for (const Face& face : faces_)
    for (const Property property :
         {Property::MaxLength, Property::Text, Property::Value, Property::List, Property::Enabled})
      apply(face, property);
}

HWND FormWindow::makeWindow(Control& control, WORD id) {
  const WindowKind kind = kindOf(control);
  if (!kind.className) return nullptr;
  if (!control.accessibleName.empty()) makeHiddenLabel(control);
  RECT at = pixels(control);
  if (control.Kind() == ControlKind::DropDownList)
    at.bottom += look_.pixels({0, 0, 0, listRows * rowHeight}).bottom;  // its height is that of the open list
  const DWORD shown = control.IsShown() ? DWORD{WS_VISIBLE} : 0;
  const HWND made = CreateWindowExW(kind.extendedStyle, kind.className, L"", WS_CHILD | shown | kind.style, at.left,
                                    at.top, at.right - at.left, at.bottom - at.top, window_,
                                    reinterpret_cast<HMENU>(static_cast<UINT_PTR>(id)), ownModule(), nullptr);
  if (!made) platform::raiseError(7);
  SendMessageW(made, WM_SETFONT, reinterpret_cast<WPARAM>(control.bold ? look_.boldFont() : look_.font()), FALSE);
  if (control.Kind() == ControlKind::TextBox && control.KeyPress) filterKeys(made, control);
  return made;
}

// Screen readers call a field by the label in front of it, be it hidden.
void FormWindow::makeHiddenLabel(const Control& control) {
  CreateWindowExW(0, L"STATIC", wide(control.accessibleName), WS_CHILD | SS_NOPREFIX, 0, 0, 0, 0, window_, nullptr,
                  ownModule(), nullptr);
}

void FormWindow::fillList(const Face& face) {
  const Control& control = *face.control;
  SendMessageW(face.window, WM_SETREDRAW, FALSE, 0);
  SendMessageW(face.window, CB_RESETCONTENT, 0, 0);
  for (std::int32_t i = 0; i < control.ListCount(); ++i) {
    const String entry = control.List(i).substr(0, longestEntry);
    SendMessageW(face.window, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(wide(entry)));
  }
  SendMessageW(face.window, WM_SETREDRAW, TRUE, 0);
  apply(face, Property::ListIndex);
}

void FormWindow::apply(const Face& face, Property property) {
  if (!face.window) return;
  const Control& control = *face.control;
  const bool wasApplying = std::exchange(applying_, true);
  switch (property) {
    case Property::Text:
      if (control.Kind() == ControlKind::TextBox) SetWindowTextW(face.window, wide(control.Text()));
      break;
    case Property::Value:
      if (control.Kind() == ControlKind::CheckBox)
        SendMessageW(face.window, BM_SETCHECK, control.Value() ? BST_CHECKED : BST_UNCHECKED, 0);
      break;
    case Property::Enabled:
      EnableWindow(face.window, control.Enabled());
      break;
    case Property::MaxLength:
      if (control.Kind() == ControlKind::TextBox) SendMessageW(face.window, EM_LIMITTEXT, control.MaxLength(), 0);
      break;
    case Property::List:
      if (control.Kind() == ControlKind::DropDownList) fillList(face);
      break;
    case Property::ListIndex:
      if (control.Kind() == ControlKind::DropDownList)
        SendMessageW(face.window, CB_SETCURSEL, static_cast<WPARAM>(control.ListIndex()), 0);
      break;
    default:  // what concerns several windows at once is applied by changed()
      break;
  }
  applying_ = wasApplying;
  InvalidateRect(face.window, nullptr, TRUE);
}

void FormWindow::changed(Control& control, Property property) {
  if (property == Property::Caption) {
    applyCaptions();
  } else if (property == Property::Visible) {
    applyVisibility();
  } else if (const Face* const face = faceOf(control)) {
    apply(*face, property);
  }
}

void FormWindow::captionChanged() { SetWindowTextW(window_, wide(form_.get()->Caption())); }

void FormWindow::focusMoved(Control& control) {
  const Face* const face = faceOf(control);
  if (face && face->window && IsWindowVisible(window_))
    SendMessageW(window_, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(face->window), TRUE);
}

// A page shows or hides all that lies on it, and what the dialog paints for it.
void FormWindow::applyVisibility() {
  for (const Face& face : faces_) {
    if (!face.window) continue;
    const bool isShown = (GetWindowLongPtrW(face.window, GWL_STYLE) & WS_VISIBLE) != 0;
    if (isShown != face.control->IsShown()) ShowWindow(face.window, isShown ? SW_HIDE : SW_SHOWNA);
  }
  InvalidateRect(window_, nullptr, TRUE);
}

// The accelerators of all captions depend on each other.
void FormWindow::applyCaptions() {
  std::vector<AcceleratorText> texts;
  std::vector<HWND> windows;
  for (std::size_t i = 0; i < faces_.size(); ++i) {
    const Face& face = faces_[i];
    const Control& control = *face.control;
    if (!face.window || isField(control)) continue;
    const bool namesAField = i + 1 < faces_.size() && isField(*faces_[i + 1].control);
    if (control.Kind() == ControlKind::Label && (control.noMnemonic || !namesAField)) {
      SetWindowTextW(face.window, wide(control.Caption()));
      continue;
    }
    const Face* const page = control.Container() ? faceOf(*control.Container()) : nullptr;
    texts.push_back({control.Caption(), page ? static_cast<int>(page - faces_.data()) + 1 : 0});
    windows.push_back(face.window);
  }
  addAccelerators(texts);
  for (std::size_t i = 0; i < texts.size(); ++i) SetWindowTextW(windows[i], wide(texts[i].text));
}

const FormWindow::Face* FormWindow::faceOf(const Control& control) const {
  for (const Face& face : faces_)
    if (face.control == &control) return &face;
  return nullptr;
}

const FormWindow::Face* FormWindow::faceOf(HWND window) const {
  for (const Face& face : faces_)
    if (face.window && face.window == window) return &face;
  return nullptr;
}

RECT FormWindow::pixels(const Control& control) const {
  platform::Place place = control.place;
  if (const Control* const frame = control.Container()) {
    place.left += frame->place.left;
    place.top += frame->place.top;
  }
  return look_.pixels(place);
}

}  // namespace win32
