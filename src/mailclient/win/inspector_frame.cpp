#include "mailclient/win/inspector_frame.h"

#include <algorithm>
#include <cwchar>
#include <utility>

#include "mailclient/item.h"

namespace mailclient::win {
namespace {

constexpr int inspectorToolbarId = 100;
constexpr int firstTool = 1000;  // WM_COMMAND identifiers of the tools

}  // namespace

InspectorFrame::InspectorFrame(Shell& shell, InspectorPtr window) : shell_(shell), window_(std::move(window)) {}

bool InspectorFrame::open() {
  int width = 0;
  int height = 0;
  const String name = u"inspector." + String(view(kind()));
  if (std::swscanf(wide(shell_.setting(name)), L"%d %d", &width, &height) != 2 || width < 200 || height < 150) {
    width = firstSize().cx;
    height = firstSize().cy;
  }
  const auto others = static_cast<int>(shell_.client().windows().inspectors().size());
  if (!create({className, title(), WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, WS_EX_CONTROLPARENT,
               freePlace(width, height, others)}))
    return false;
  const HICON icon = Icons::instance().icon(artOf(message()), GetSystemMetrics(SM_CXSMICON));
  SendMessageW(handle(), WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(icon));
  createTools();
  createFields();
  layout();
  focus_ = firstFocus();
  ShowWindow(handle(), SW_SHOW);
  UpdateWindow(handle());
  return true;
}

void InspectorFrame::toFront() {
  if (IsIconic(handle())) ShowWindow(handle(), SW_RESTORE);
  SetForegroundWindow(handle());
}

void InspectorFrame::createTools() {
  toolbar_ =
      makeControl(handle(), TOOLBARCLASSNAMEW, L"",
                  TBSTYLE_FLAT | TBSTYLE_LIST | TBSTYLE_TOOLTIPS | CCS_NODIVIDER | CCS_NOPARENTALIGN | CCS_NORESIZE,
                  inspectorToolbarId);
  SendMessageW(toolbar_, TB_BUTTONSTRUCTSIZE, sizeof(TBBUTTON), 0);
  SendMessageW(toolbar_, TB_SETIMAGELIST, 0, reinterpret_cast<LPARAM>(Icons::instance().list()));
  for (const Tool& tool : tools()) {
    TBBUTTON button{};
    button.iBitmap = imageOf(tool.art);
    button.idCommand = firstTool + tool.id;
    button.fsState = TBSTATE_ENABLED;
    button.fsStyle = BTNS_BUTTON | BTNS_AUTOSIZE | BTNS_SHOWTEXT;
    button.iString = reinterpret_cast<INT_PTR>(tool.text);
    SendMessageW(toolbar_, TB_ADDBUTTONSW, 1, reinterpret_cast<LPARAM>(&button));
  }
  SendMessageW(toolbar_, TB_AUTOSIZE, 0, 0);
}

InspectorFrame::Field InspectorFrame::addField(const wchar_t* label, const String& text, bool readOnly, int id) {
  Field field{};
  field.label = makeControl(handle(), WC_STATICW, label, SS_LEFT);
  // What is only read looks like text, and can be selected and copied.
  const DWORD style = WS_TABSTOP | static_cast<DWORD>(ES_AUTOHSCROLL | (readOnly ? ES_READONLY : 0));
  field.control = makeControl(handle(), WC_EDITW, wide(text), style, id, readOnly ? 0u : WS_EX_CLIENTEDGE);
  fields_.push_back(field);
  return field;
}

HWND InspectorFrame::addBody(const String& text, bool readOnly, int id) {
  const HWND body = makeControl(handle(), WC_EDITW, L"",
                                WS_TABSTOP | WS_VSCROLL | ES_MULTILINE | ES_AUTOVSCROLL | ES_NOHIDESEL |
                                    static_cast<DWORD>(readOnly ? ES_READONLY : ES_WANTRETURN),
                                id, WS_EX_CLIENTEDGE);
  SendMessageW(body, EM_SETMARGINS, EC_LEFTMARGIN | EC_RIGHTMARGIN, MAKELPARAM(scaled(6), scaled(6)));
  SendMessageW(body, EM_SETLIMITTEXT, 0, 0);
  SetWindowTextW(body, wide(text));
  text_ = body;
  return body;
}

void InspectorFrame::layout() {
  const RECT area = clientArea(handle());
  if (!toolbar_ || widthOf(area) == 0) return;
  const int margin = scaled(8);
  SIZE size{};
  SendMessageW(toolbar_, TB_GETMAXSIZE, 0, reinterpret_cast<LPARAM>(&size));
  int top = scaled(2);
  place(toolbar_, scaled(2), top, widthOf(area) - scaled(4), size.cy);
  top += size.cy + scaled(6);
  int labelWidth = 0;
  for (const Field& field : fields_) labelWidth = std::max(labelWidth, textWidth(textOf(field.label)));
  for (const Field& field : fields_) {
    const bool framed = (GetWindowLongPtrW(field.control, GWL_EXSTYLE) & WS_EX_CLIENTEDGE) != 0;
    const int height = framed ? fieldHeight() : lineHeight() + scaled(2);
    const int inset = framed ? scaled(4) : 0;
    place(field.label, margin, top + inset, labelWidth + scaled(2), lineHeight());
    place(field.control, margin + labelWidth + scaled(8), top, widthOf(area) - 2 * margin - labelWidth - scaled(8),
          height);
    top += height + scaled(framed ? 5 : 3);
  }
  layoutBelow({0, top + scaled(2), area.right, area.bottom});
}

bool InspectorFrame::run(int id) {
  switch (id) {
    case toolSave:
      save();
      return true;
    case toolReply:
      shell_.answer(messagePtr(), Answer::Reply);
      return true;
    case toolReplyAll:
      shell_.answer(messagePtr(), Answer::ReplyAll);
      return true;
    case toolForward:
      shell_.answer(messagePtr(), Answer::Forward);
      return true;
    case toolDelete:
      removeItem();
      return true;
    default:
      return false;
  }
}

void InspectorFrame::sendItem() {
  const Ref<Item> item = shell_.client().itemObject(messagePtr());
  if (auto* const mail = dynamic_cast<MailItem*>(item.get())) mail->send();
}

void InspectorFrame::removeItem() {
  const MessagePtr item = messagePtr();
  shell_.client().store().remove(item, [&] { shell_.client().windows().closeInspectorsOf(item); });
}

bool InspectorFrame::onKey(WPARAM key, bool control) {
  if (key == VK_ESCAPE) {
    PostMessageW(handle(), WM_CLOSE, 0, 0);
    return true;
  }
  const auto has = [&](int id) {
    const auto all = tools();
    return std::any_of(all.begin(), all.end(), [&](const Tool& t) { return t.id == id; });
  };
  const auto press = [&](int id) {
    if (!has(id)) return false;
    PostMessageW(handle(), WM_COMMAND, static_cast<WPARAM>(firstTool + id), 0);
    return true;
  };
  if (control && key == 'S') return press(toolSave);
  if (control && key == VK_RETURN) return press(toolSend);
  if (control && key == 'R') return press(toolReply);
  if (control && key == 'F') return press(toolForward);
  return false;
}

template <class F>
void InspectorFrame::alone(F&& action) {
  if (std::exchange(busy_, true)) return;
  struct AtEnd {
    bool& flag;
    ~AtEnd() { flag = false; }
  } const atEnd{busy_};
  action();
}

bool InspectorFrame::mayClose() {
  bool may = false;
  alone([&] {
    may = message().gone || !isChanged();
    if (may) return;
    const int answer =
        MessageBoxW(handle(), L"Do you want to save the changes?", wide(title()), MB_YESNOCANCEL | MB_ICONQUESTION);
    if (answer == IDYES) attempt(shell_, handle(), [&] { save(); });
    may = answer == IDNO || (answer == IDYES && !isChanged());
  });
  return may;
}

LRESULT InspectorFrame::onClose() {
  if (!mayClose() || !handle()) return 0;
  const RECT area = [&] {
    WINDOWPLACEMENT now{};
    now.length = sizeof now;
    GetWindowPlacement(handle(), &now);
    return now.rcNormalPosition;
  }();
  wchar_t size[40];
  std::swprintf(size, 40, L"%d %d", MulDiv(widthOf(area), 96, scaled(96)), MulDiv(heightOf(area), 96, scaled(96)));
  shell_.putSetting(u"inspector." + String(view(kind())), String(view(size)));
  shell_.client().windows().close(window_);
  return 0;
}

LRESULT InspectorFrame::onActivate(bool active) {
  if (active) {
    if (!IsIconic(handle())) SetFocus(focus_ && IsChild(handle(), focus_) ? focus_ : firstFocus());
    shell_.client().windows().activated(window_);
  } else {
    if (const HWND focus = GetFocus(); IsChild(handle(), focus)) focus_ = focus;
    shell_.client().windows().deactivated(window_);
  }
  return 0;
}

LRESULT InspectorFrame::onTip(NMHDR& header) {
  for (const Tool& tool : tools())
    if (static_cast<UINT_PTR>(firstTool + tool.id) == header.idFrom)
      lstrcpynW(reinterpret_cast<NMTTDISPINFOW&>(header).szText, tool.hint, 80);
  return 0;
}

LRESULT InspectorFrame::onMessage(UINT what, WPARAM wide, LPARAM extra) {
  switch (what) {
    case WM_SIZE:
      layout();
      return 0;
    case WM_GETMINMAXINFO:
      reinterpret_cast<MINMAXINFO*>(extra)->ptMinTrackSize = {scaled(360), scaled(240)};
      return 0;
    case WM_COMMAND:
      if (LOWORD(wide) >= firstTool) {
        alone([&] { attempt(shell_, handle(), [&] { run(LOWORD(wide) - firstTool); }); });
        return 0;
      }
      if (extra != 0) changed(LOWORD(wide), HIWORD(wide));
      return 0;
    case WM_NOTIFY:
      if (auto& header = *reinterpret_cast<NMHDR*>(extra); header.code == TTN_GETDISPINFOW) return onTip(header);
      return 0;
    // Text to be read stands on paper, as in the reading pane.
    case WM_CTLCOLORSTATIC:
      if (reinterpret_cast<HWND>(extra) != text_) return byDefault(what, wide, extra);
      SetBkColor(reinterpret_cast<HDC>(wide), GetSysColor(COLOR_WINDOW));
      return reinterpret_cast<LRESULT>(GetSysColorBrush(COLOR_WINDOW));
    case WM_ACTIVATE:
      return onActivate(LOWORD(wide) != WA_INACTIVE);
    case WM_CLOSE:
      return onClose();
    // The user logs off; a text that is being written may hold that up.
    case WM_QUERYENDSESSION:
      return mayClose() ? TRUE : FALSE;
    default:
      return byDefault(what, wide, extra);
  }
}

}  // namespace mailclient::win
