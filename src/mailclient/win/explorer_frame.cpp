#include "mailclient/win/explorer_frame.h"

#include <algorithm>
#include <cwchar>

#include "addin/platform/convert.h"
#include "mailclient/built_in_commands.h"
#include "mailclient/win/dialogs.h"

namespace mailclient::win {
namespace {

enum ControlId : int { idTree = 101, idList = 102, idPane = 110, idStatus = 120 };
constexpr UINT refreshMenus = WM_APP + 11;
constexpr UINT refreshTree = WM_APP + 12;
constexpr UINT leaveFolder = WM_APP + 13;
constexpr int gap = 5;  // between the panes: there the user drags

}  // namespace

ExplorerFrame::ExplorerFrame(Shell& shell, ExplorerPtr window)
    : shell_(shell),
      window_(std::move(window)),
      menus_(shell.client().explorerBars()),
      tree_(
          shell.client().store(), [this](const auto& folder) { chooseFolder(folder); }, [this] { foldersChanged(); }),
      list_(shell, {.selectionChanged = [this] { selectionChanged(); },
                    .open = [this] { run(command::open); },
                    .remove = [this] { run(command::remove); }}),
      pane_(shell) {}

String ExplorerFrame::caption() const { return window_->folder->name() + u" - Mail Client"; }

bool ExplorerFrame::open() {
  WindowPlace saved;
  const bool known = readPlace(shell_.setting(u"explorer.place"), saved);
  const auto others = static_cast<int>(shell_.client().windows().explorers().size()) - 1;
  const RECT where = known && others == 0 ? saved.rectangle : freePlace(1000, 680, others);
  if (!create({className, caption(), WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, 0, where})) return false;
  SendMessageW(handle(), WM_SETICON, ICON_SMALL,
               reinterpret_cast<LPARAM>(Icons::instance().icon(Art::Application, GetSystemMetrics(SM_CXSMICON))));
  SendMessageW(handle(), WM_SETICON, ICON_BIG,
               reinterpret_cast<LPARAM>(Icons::instance().icon(Art::Application, GetSystemMetrics(SM_CXICON))));
  createControls();
  showFolder();
  ShowWindow(handle(), known && saved.maximized && others == 0 ? SW_SHOWMAXIMIZED : SW_SHOW);
  UpdateWindow(handle());
  SetFocus(list_.handle());
  return true;
}

void ExplorerFrame::createControls() {
  int tree = 0;
  int pane = 1;
  if (std::swscanf(wide(shell_.setting(u"explorer.panes")), L"%d %d %d", &tree, &listShare_, &pane) != 3) tree = 0;
  treeWidth_ = tree > 0 ? scaled(tree) : scaled(200);
  listShare_ = std::clamp(listShare_, 10, 90);
  paneVisible_ = pane != 0;
  menus_.attach(handle());
  tree_.setCollapsed(shell_.setting(u"explorer.collapsed"));
  tree_.attach(handle(), idTree);
  list_.attach(handle(), idList);
  pane_.attach(handle(), idPane);
  status_.attach(handle(), idStatus);
  pane_.setVisible(paneVisible_);
  layout();
  showPhone();
}

void ExplorerFrame::rememberPlace() {
  if (!handle()) return;
  list_.rememberColumns();
  wchar_t panes[60];
  std::swprintf(panes, 60, L"%d %d %d", MulDiv(treeWidth_, 96, scaled(96)), listShare_, paneVisible_ ? 1 : 0);
  shell_.putSetting(u"explorer.place", placeText(handle()));
  shell_.putSetting(u"explorer.panes", String(view(panes)));
  shell_.putSetting(u"explorer.collapsed", tree_.collapsed());
  shell_.putSetting(u"explorer.folder", folderPath(*window_->folder));
}

void ExplorerFrame::close() {
  list_.detach();
  tree_.detach();
  menus_.detach();
  destroy();
}

void ExplorerFrame::toFront() {
  if (IsIconic(handle())) ShowWindow(handle(), SW_RESTORE);
  SetForegroundWindow(handle());
}

void ExplorerFrame::layout() {
  const RECT area = clientArea(handle());
  if (widthOf(area) == 0 || !list_.handle()) return;
  SIZE tools{};
  SendMessageW(menus_.toolbar(), TB_GETMAXSIZE, 0, reinterpret_cast<LPARAM>(&tools));
  const int bar = std::max(static_cast<int>(tools.cy), fieldHeight()) + scaled(4);
  const int between = scaled(gap);
  place(menus_.toolbar(), scaled(2), scaled(2), widthOf(area) - scaled(4), bar - scaled(2));
  status_.layout();
  const int top = bar;
  const int bottom = area.bottom - status_.height() - scaled(2);
  treeWidth_ = std::clamp(treeWidth_, scaled(60), std::max(scaled(60), widthOf(area) - scaled(160)));
  place(tree_.handle(), 0, top, treeWidth_, bottom - top);
  const int left = treeWidth_ + between;
  const int listBottom = paneVisible_ ? top + (bottom - top) * listShare_ / 100 : bottom;
  place(list_.handle(), left, top, widthOf(area) - left, listBottom - top);
  if (paneVisible_) pane_.layout({left, listBottom + between, area.right, bottom});
}

// ---- folders and items
// ------------------------------------------------------------------------------------------------

bool ExplorerFrame::chooseFolder(const std::shared_ptr<Folder>& folder) {
  if (folder->isGone() || !shell_.client().windows().showFolder(window_, folder)) {
    tree_.show(window_->folder);
    return false;
  }
  return true;
}

void ExplorerFrame::showFolder() {
  markShownAsRead();
  tree_.show(window_->folder);
  list_.show(window_->folder);
  SetWindowTextW(handle(), wide(caption()));
  showItem();
  showCounts();
  updateCommands();
}

// A program selected something.
void ExplorerFrame::showSelection() {
  if (list_.model().selection() == window_->selection) return;
  list_.select(window_->selection);
  showItem();
  showCounts();
  updateCommands();
}

void ExplorerFrame::selectionChanged() {
  showItem();
  showCounts();
  updateCommands();
  shell_.client().windows().select(window_, selected());
}

void ExplorerFrame::showItem() {
  const auto onlyOne = [](const std::vector<MessagePtr>& all) { return all.size() == 1 ? all.front() : nullptr; };
  auto chosen = selected();
  if (onlyOne(chosen) != shown_) {
    markShownAsRead();  // those who hear that may select something else
    chosen = selected();
  }
  const MessagePtr one = onlyOne(chosen);
  shown_ = one;
  String why;
  if (chosen.size() > 1)
    why = platform::concat(static_cast<std::int32_t>(chosen.size()), StringView(u" items are selected."));
  pane_.show(one, why);
}

// What was read in the pane counts as read when the user goes on to something else.
void ExplorerFrame::markShownAsRead() {
  const MessagePtr read = std::exchange(shown_, nullptr);
  if (!read || read->gone || !read->unread || !paneVisible_) return;
  attempt(shell_, handle(), [&] { shell_.client().store().setUnread(read, false); });
}

void ExplorerFrame::showCounts() {
  const auto count = static_cast<std::int32_t>(window_->folder->messages().size());
  const std::int32_t unread = window_->folder->unreadCount();
  String text = platform::concat(count, StringView(count == 1 ? u" item" : u" items"));
  if (unread != 0) text += platform::concat(StringView(u", "), unread, StringView(u" unread"));
  const auto chosen = static_cast<std::int32_t>(selected().size());
  if (chosen > 1) text += platform::concat(StringView(u", "), chosen, StringView(u" selected"));
  status_.setText(text);
}

void ExplorerFrame::removeSelected() {
  const auto chosen = selected();
  const MessagePtr next = list_.model().neighbourOfSelection();
  shown_ = nullptr;  // an unread item that is deleted stays unread
  attempt(shell_, handle(), [&] { shell_.client().store().removeAll(chosen); });
  if (!handle() || chosen.empty()) return;
  if (next && !next->gone) list_.select({next});
  selectionChanged();
}

void ExplorerFrame::markSelected(bool unread) {
  const auto chosen = selected();
  if (unread) shown_ = nullptr;
  attempt(shell_, handle(), [&] {
    for (const MessagePtr& message : chosen)
      if (!message->gone) shell_.client().store().setUnread(message, unread);
  });
}

void ExplorerFrame::newFolder() {
  String name;
  if (!askForText(handle(), u"New Folder", u"&Name of the folder:", name)) return;
  const bool isContacts = window_->folder->type() == ItemType::Contact;
  attempt(shell_, handle(), [&] {
    shell_.client().store().addFolder(*window_->folder, name, isContacts ? ItemType::Contact : ItemType::Mail);
  });
}

// ---- commands
// -----------------------------------------------------------------------------------------------------------

bool ExplorerFrame::run(std::int32_t id) {
  const auto chosen = selected();
  switch (id) {
    case command::open:
      shell_.open(chosen);
      return true;
    case command::newFolder:
      newFolder();
      return true;
    case command::remove:
      removeSelected();
      return true;
    case command::selectAll:
      list_.selectAll();
      return true;
    case command::markRead:
    case command::markUnread:
      markSelected(id == command::markUnread);
      return true;
    case command::reply:
    case command::replyAll:
    case command::forward:
      if (chosen.size() == 1)
        shell_.answer(chosen.front(), id == command::reply      ? Answer::Reply
                                      : id == command::replyAll ? Answer::ReplyAll
                                                                : Answer::Forward);
      return true;
    case command::readingPane:
      paneVisible_ = !paneVisible_;
      pane_.setVisible(paneVisible_);
      layout();
      InvalidateRect(handle(), nullptr, TRUE);
      updateCommands();
      return true;
    default:
      return false;
  }
}

// What is possible with the present selection.
void ExplorerFrame::updateCommands() {
  constexpr std::int32_t down = -1;  // msoButtonDown
  constexpr std::int32_t mailKind = 43;
  BarSet& bars = shell_.client().explorerBars();
  const auto chosen = selected();
  const bool answerable =
      chosen.size() == 1 && kindOf((*chosen.front())[Text::MessageClass]) == mailKind && chosen.front()->saved();
  const auto enable = [&](std::int32_t id, bool on) {
    for (const ControlPtr& control : bars.controlsOf(id)) control->enabled = on;
  };
  for (const std::int32_t id : {command::reply, command::replyAll, command::forward}) enable(id, answerable);
  for (const std::int32_t id : {command::open, command::remove, command::markRead, command::markUnread})
    enable(id, !chosen.empty());
  for (const ControlPtr& control : bars.controlsOf(command::readingPane)) control->state = paneVisible_ ? down : 0;
  refreshCommands();
}

void ExplorerFrame::refreshCommands() {
  if (handle() && !std::exchange(staleMenus_, true)) PostMessageW(handle(), refreshMenus, 0, 0);
}

void ExplorerFrame::foldersChanged() {
  if (!handle()) return;
  // The folder was deleted, by a program: there is nothing to show of it.
  if (window_->folder->isGone() && !std::exchange(homeless_, true)) PostMessageW(handle(), leaveFolder, 0, 0);
  if (!std::exchange(staleTree_, true)) PostMessageW(handle(), refreshTree, 0, 0);
}

void ExplorerFrame::showPhone() { status_.showPhone(shell_.phone()); }

void ExplorerFrame::showState() {
  constexpr int commands[] = {SW_SHOWMAXIMIZED, SW_SHOWMINIMIZED, SW_SHOWNORMAL};
  ShowWindow(handle(), commands[window_->state]);
}

LRESULT ExplorerFrame::onCommand(UINT id) {
  if (const ControlPtr control = menus_.controlOf(id)) {
    shell_.click(control);
    return 0;
  }
  // A key: as the menu's own entry, and only while that can be chosen.
  const auto controls = shell_.client().explorerBars().controlsOf(static_cast<std::int32_t>(id));
  if (!controls.empty()) shell_.click(controls.front());
  return 0;
}

void ExplorerFrame::onMenuSelect(WPARAM wide) {
  const UINT flags = HIWORD(wide);
  const bool closed = flags == 0xFFFF;
  status_.setHint(closed || (flags & (MF_POPUP | MF_SEPARATOR)) ? String() : menus_.hint(LOWORD(wide)));
}

// ---- the mouse between the panes
// --------------------------------------------------------------------------------------

int ExplorerFrame::splitterAt(POINT where) const {
  RECT tree{};
  GetWindowRect(tree_.handle(), &tree);
  RECT list{};
  GetWindowRect(list_.handle(), &list);
  ClientToScreen(handle(), &where);
  if (where.y < tree.top || where.y >= tree.bottom) return 0;
  if (where.x >= tree.right && where.x < list.left) return 1;
  return paneVisible_ && where.x >= list.left && where.y >= list.bottom && where.y < list.bottom + scaled(gap) ? 2 : 0;
}

bool ExplorerFrame::onSetCursor() {
  POINT where{};
  GetCursorPos(&where);
  ScreenToClient(handle(), &where);
  const int splitter = splitterAt(where);
  if (splitter == 0) return false;
  SetCursor(LoadCursorW(nullptr, splitter == 1 ? IDC_SIZEWE : IDC_SIZENS));
  return true;
}

void ExplorerFrame::onSplitter(UINT message, LPARAM where) {
  const POINT at{static_cast<short>(LOWORD(where)), static_cast<short>(HIWORD(where))};
  if (message == WM_LBUTTONDOWN) {
    dragging_ = splitterAt(at);
    if (dragging_ != 0) SetCapture(handle());
  } else if (message == WM_LBUTTONUP) {
    if (dragging_ != 0) ReleaseCapture();
  } else if (dragging_ == 1) {
    treeWidth_ = at.x;
    layout();
  } else if (dragging_ == 2) {
    RECT tree{};
    GetWindowRect(tree_.handle(), &tree);
    POINT top{0, tree.top};
    ScreenToClient(handle(), &top);
    listShare_ = std::clamp(static_cast<int>((at.y - top.y) * 100 / std::max(1, heightOf(tree))), 10, 90);
    layout();
  }
}

// ---- messages
// -----------------------------------------------------------------------------------------------------------

LRESULT ExplorerFrame::onActivate(bool active) {
  if (!active) focus_ = GetFocus();
  if (active && !IsIconic(handle())) SetFocus(handle());
  // The commands are shared by all windows: they speak of the one that is in front.
  if (active && list_.handle()) updateCommands();
  if (active)
    shell_.client().windows().activated(window_);
  else
    shell_.client().windows().deactivated(window_);
  return 0;
}

LRESULT ExplorerFrame::onClose() {
  rememberPlace();
  markShownAsRead();
  shell_.client().windows().close(window_);
  return 0;
}

LRESULT ExplorerFrame::onNotify(const NMHDR& header) {
  if (header.hwndFrom == list_.handle()) return list_.onNotify(header);
  if (header.hwndFrom == tree_.handle()) return tree_.onNotify(header);
  if (header.code == TTN_GETDISPINFOW) {
    auto& wanted = reinterpret_cast<NMTTDISPINFOW&>(const_cast<NMHDR&>(header));
    lstrcpynW(wanted.szText, wide(menus_.hint(static_cast<UINT>(header.idFrom))), 80);
  }
  return 0;
}

LRESULT ExplorerFrame::onMessage(UINT message, WPARAM wide, LPARAM extra) {
  switch (message) {
    case WM_SIZE:
      if (wide != SIZE_MINIMIZED) window_->state = wide == SIZE_MAXIMIZED ? 0 : 2;
      if (wide == SIZE_MINIMIZED) window_->state = 1;
      layout();
      return 0;
    case WM_GETMINMAXINFO:
      reinterpret_cast<MINMAXINFO*>(extra)->ptMinTrackSize = {scaled(420), scaled(300)};
      return 0;
    case WM_NOTIFY:
      return onNotify(*reinterpret_cast<NMHDR*>(extra));
    case WM_COMMAND:
      return extra == 0 || reinterpret_cast<HWND>(extra) == menus_.toolbar() ? onCommand(LOWORD(wide)) : 0;
    case listIsStale:
      list_.catchUp();
      return 0;
    case refreshMenus:
      if (inMenu_) return 0;
      staleMenus_ = false;
      menus_.refresh();
      return 0;
    case refreshTree:
      staleTree_ = false;
      tree_.refresh();
      showCounts();
      return 0;
    case leaveFolder:
      homeless_ = false;
      if (window_->folder->isGone()) chooseFolder(shell_.client().store().defaultFolder(DefaultFolder::Inbox));
      return 0;
    case WM_ENTERMENULOOP:
      inMenu_ = true;
      return 0;
    case WM_EXITMENULOOP:
      inMenu_ = false;
      status_.setHint({});
      if (staleMenus_) PostMessageW(handle(), refreshMenus, 0, 0);
      return 0;
    case WM_INITMENUPOPUP:
      menus_.refreshStates();
      return 0;
    case WM_MEASUREITEM:
      CommandMenus::measureIcon(*reinterpret_cast<MEASUREITEMSTRUCT*>(extra));
      return TRUE;
    case WM_DRAWITEM:
      menus_.drawIcon(*reinterpret_cast<DRAWITEMSTRUCT*>(extra));
      return TRUE;
    case WM_MENUSELECT:
      onMenuSelect(wide);
      return 0;
    case WM_LBUTTONDOWN:
    case WM_LBUTTONUP:
    case WM_MOUSEMOVE:
      onSplitter(message, extra);
      return 0;
    case WM_CAPTURECHANGED:
      dragging_ = 0;
      return 0;
    // Text to be read stands on paper, like the list.
    case WM_CTLCOLORSTATIC:
      if (reinterpret_cast<HWND>(extra) != pane_.text()) return byDefault(message, wide, extra);
      SetBkColor(reinterpret_cast<HDC>(wide), GetSysColor(COLOR_WINDOW));
      return reinterpret_cast<LRESULT>(GetSysColorBrush(COLOR_WINDOW));
    case WM_SETCURSOR:
      return onSetCursor() ? TRUE : byDefault(message, wide, extra);
    case WM_ACTIVATE:
      return onActivate(LOWORD(wide) != WA_INACTIVE);
    case WM_SETFOCUS:
      SetFocus(focus_ && IsChild(handle(), focus_) ? focus_ : list_.handle());
      return 0;
    case WM_CLOSE:
      return onClose();
    default:
      return byDefault(message, wide, extra);
  }
}

}  // namespace mailclient::win
