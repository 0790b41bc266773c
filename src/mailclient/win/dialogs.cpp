#include "mailclient/win/dialogs.h"

#include <algorithm>

#include "com/errors.h"

namespace mailclient::win {
namespace {

// A dialog template without a control.
struct EmptyTemplate {
  alignas(4) DLGTEMPLATE dialog{};
  WORD menu = 0;
  WORD windowClass = 0;
  WORD title = 0;
};

}  // namespace

INT_PTR Dialog::run(HWND owner, const String& title) {
  EmptyTemplate empty;
  empty.dialog.style = WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_MODALFRAME;
  title_ = title;
  return DialogBoxIndirectParamW(GetModuleHandleW(nullptr), &empty.dialog, owner, &Dialog::procedure,
                                 reinterpret_cast<LPARAM>(this));
}

void Dialog::opened() {
  const SIZE size = layout();
  RECT frame{0, 0, size.cx, size.cy};
  AdjustWindowRectEx(&frame, static_cast<DWORD>(GetWindowLongPtrW(handle_, GWL_STYLE)), FALSE,
                     static_cast<DWORD>(GetWindowLongPtrW(handle_, GWL_EXSTYLE)));
  placeOver(GetWindow(handle_, GW_OWNER), handle_, widthOf(frame), heightOf(frame));
}

void placeOver(HWND owner, HWND dialog, int width, int height) {
  RECT over{};
  if (owner && !IsIconic(owner))
    GetWindowRect(owner, &over);
  else
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &over, 0);
  place(dialog, over.left + (widthOf(over) - width) / 2, over.top + (heightOf(over) - height) / 3, width, height);
}

INT_PTR CALLBACK Dialog::procedure(HWND window, UINT message, WPARAM wide, LPARAM extra) {
  if (message == WM_INITDIALOG) SetWindowLongPtrW(window, DWLP_USER, extra);
  auto* const self = reinterpret_cast<Dialog*>(GetWindowLongPtrW(window, DWLP_USER));
  if (!self) return FALSE;
  return com::guardedOr<INT_PTR>(FALSE, [&]() -> INT_PTR {
    if (message == WM_INITDIALOG) {
      self->handle_ = window;
      SetWindowTextW(window, win::wide(self->title_));
      self->opened();
      const HWND first = GetNextDlgTabItem(window, nullptr, FALSE);
      if (first) SetFocus(first);
      return FALSE;
    }
    if (message != WM_COMMAND) return FALSE;
    self->command(LOWORD(wide), HIWORD(wide));
    return TRUE;
  });
}

int Dialog::placeButtons(const std::vector<std::pair<int, String>>& buttons, int width, int top) {
  const int margin = scaled(11);
  const int buttonWidth = scaled(78);
  const int height = lineHeight() + scaled(10);
  int left = width - margin - static_cast<int>(buttons.size()) * (buttonWidth + scaled(7)) + scaled(7);
  for (const auto& [id, text] : buttons) {
    const bool isDefault = id == buttons.front().first;
    const HWND button = makeControl(handle_, WC_BUTTONW, wide(text),
                                    WS_TABSTOP | static_cast<DWORD>(isDefault ? BS_DEFPUSHBUTTON : BS_PUSHBUTTON), id);
    place(button, left, top, buttonWidth, height);
    left += buttonWidth + scaled(7);
  }
  SendMessageW(handle_, DM_SETDEFID, static_cast<WPARAM>(buttons.front().first), 0);
  return top + height + margin;
}

namespace {

class TextQuestion final : public Dialog {
 public:
  TextQuestion(String question, String& text) : question_(std::move(question)), text_(text) {}

 protected:
  SIZE layout() override {
    const int margin = scaled(11);
    const int width = scaled(340);
    place(makeControl(handle(), WC_STATICW, wide(question_), SS_LEFT), margin, margin, width - 2 * margin,
          lineHeight());
    edit_ = makeControl(handle(), WC_EDITW, L"", WS_TABSTOP | ES_AUTOHSCROLL, idEdit, WS_EX_CLIENTEDGE);
    const int top = margin + lineHeight() + scaled(5);
    place(edit_, margin, top, width - 2 * margin, fieldHeight());
    SendMessageW(edit_, EM_SETLIMITTEXT, 200, 0);
    const int bottom = placeButtons({{IDOK, u"OK"}, {IDCANCEL, u"Cancel"}}, width, top + fieldHeight() + margin);
    return {width, bottom};
  }
  void command(int id, int) override {
    if (id == IDOK) text_ = textOf(edit_);
    if (id == IDOK || id == IDCANCEL) end(id);
  }

 private:
  static constexpr int idEdit = 10;
  String question_;
  String& text_;
  HWND edit_ = nullptr;
};

}  // namespace

bool askForText(HWND owner, const String& title, const String& question, String& text) {
  return TextQuestion(question, text).run(owner, title) == IDOK && !text.empty();
}

}  // namespace mailclient::win
