#include "mailclient/win/command_menus.h"

#include <algorithm>
#include <utility>

#include "mailclient/built_in_commands.h"
#include "mailclient/console.h"

namespace mailclient::win {
namespace {

constexpr int toolbarId = 100;

void insertItem(HMENU menu, const MENUITEMINFOW& item) {
  InsertMenuItemW(menu, static_cast<UINT>(GetMenuItemCount(menu)), TRUE, &item);
}

MENUITEMINFOW emptyItem() {
  MENUITEMINFOW item{};
  item.cbSize = sizeof item;
  return item;
}

void describeMenu(HMENU menu, std::vector<std::string>& lines) {
  for (int i = 0; i < GetMenuItemCount(menu); ++i) {
    wchar_t text[200] = L"";
    MENUITEMINFOW item = emptyItem();
    item.fMask = MIIM_STRING | MIIM_STATE | MIIM_ID | MIIM_SUBMENU | MIIM_BITMAP | MIIM_FTYPE;
    item.dwTypeData = text;
    item.cch = 200;
    GetMenuItemInfoW(menu, static_cast<UINT>(i), TRUE, &item);
    if (item.hSubMenu)
      describeMenu(item.hSubMenu, lines);
    else if ((item.fType & MFT_SEPARATOR) == 0)
      lines.push_back("id=" + std::to_string(item.wID) + " text=" + Console::quoted(view(text)) +
                      " enabled=" + ((item.fState & MFS_GRAYED) ? "0" : "1") +
                      " checked=" + ((item.fState & MFS_CHECKED) ? "1" : "0") + " icon=" + (item.hbmpItem ? "1" : "0"));
  }
}

void forEachEntry(const std::vector<MenuEntry>& entries, const std::function<void(const MenuEntry&)>& visit) {
  for (const MenuEntry& entry : entries) {
    visit(entry);
    forEachEntry(entry.below, visit);
  }
}

}  // namespace

void CommandMenus::detach() {
  if (!menu_) return;
  SetMenu(frame_, nullptr);
  DestroyMenu(std::exchange(menu_, nullptr));
}

void CommandMenus::attach(HWND frame) {
  frame_ = frame;
  toolbar_ = makeControl(frame, TOOLBARCLASSNAMEW, L"",
                         WS_CLIPSIBLINGS | TBSTYLE_FLAT | TBSTYLE_LIST | TBSTYLE_TOOLTIPS | CCS_NODIVIDER |
                             CCS_NOPARENTALIGN | CCS_NORESIZE,
                         toolbarId);
  SendMessageW(toolbar_, TB_BUTTONSTRUCTSIZE, sizeof(TBBUTTON), 0);
  SendMessageW(toolbar_, TB_SETIMAGELIST, 0, reinterpret_cast<LPARAM>(Icons::instance().list()));
  refresh();
}

UINT CommandMenus::idOf(const ControlPtr& control) {
  for (const auto& [id, known] : controls_)
    if (known == control) return id;
  controls_[nextId_] = control;
  return nextId_++;
}

std::vector<std::string> CommandMenus::describe() const {
  std::vector<std::string> lines;
  describeMenu(menu_, lines);
  return lines;
}

ControlPtr CommandMenus::controlOf(UINT commandId) const {
  const auto at = controls_.find(commandId);
  return at == controls_.end() ? nullptr : at->second;
}

String CommandMenus::hint(UINT commandId) const {
  const ControlPtr control = controlOf(commandId);
  return control ? hintOf(*control) : String();
}

HMENU CommandMenus::makeMenu(const std::vector<MenuEntry>& entries, bool isBar) {
  const HMENU menu = isBar ? CreateMenu() : CreatePopupMenu();
  for (const MenuEntry& entry : entries) {
    if (entry.separatorBefore) {
      MENUITEMINFOW line = emptyItem();
      line.fMask = MIIM_FTYPE;
      line.fType = MFT_SEPARATOR;
      insertItem(menu, line);
    }
    String text = entry.text;  // the system wants it writable
    MENUITEMINFOW item = emptyItem();
    item.fMask = MIIM_STRING | MIIM_STATE | MIIM_ID;
    item.dwTypeData = reinterpret_cast<wchar_t*>(text.data());
    item.fState = static_cast<UINT>((entry.enabled ? MFS_ENABLED : MFS_GRAYED) | (entry.checked ? MFS_CHECKED : 0));
    item.wID = idOf(entry.control);
    if (entry.control->popup) {
      item.fMask |= MIIM_SUBMENU;
      item.hSubMenu = makeMenu(entry.below, false);
    }
    // Style 2 is "caption only".
    const bool withIcon = entry.control->faceId != 0 && entry.control->style != 2;
    if (withIcon && artOfFace(entry.control->faceId) != Art::None) {
      item.fMask |= MIIM_BITMAP;
      item.hbmpItem = HBMMENU_CALLBACK;  // see drawIcon()
    }
    insertItem(menu, item);
  }
  return menu;
}

void CommandMenus::fillToolbar(const std::vector<MenuEntry>& entries) {
  while (SendMessageW(toolbar_, TB_DELETEBUTTON, 0, 0)) {
  }
  for (const MenuEntry& entry : entries) {
    if (entry.separatorBefore) {
      TBBUTTON line{};
      line.fsStyle = BTNS_SEP;
      SendMessageW(toolbar_, TB_ADDBUTTONSW, 1, reinterpret_cast<LPARAM>(&line));
    }
    const String caption = plainCaption(entry.control->caption);
    TBBUTTON button{};
    button.iBitmap = imageOf(artOfFace(entry.control->faceId));
    button.idCommand = static_cast<int>(idOf(entry.control));
    button.fsState = static_cast<BYTE>(entry.enabled ? TBSTATE_ENABLED : 0);
    button.fsStyle = BTNS_BUTTON | BTNS_AUTOSIZE | BTNS_SHOWTEXT;
    button.iString = reinterpret_cast<INT_PTR>(caption.c_str());
    SendMessageW(toolbar_, TB_ADDBUTTONSW, 1, reinterpret_cast<LPARAM>(&button));
  }
  SendMessageW(toolbar_, TB_AUTOSIZE, 0, 0);
}

void CommandMenus::refresh() {
  std::vector<MenuEntry> menu = menuEntries(*bars_.bars().front());
  std::vector<MenuEntry> tools = menuEntries(*bars_.bars().back());
  std::erase_if(controls_, [](const auto& entry) { return entry.second->deleted; });
  if (!menu_ || !looksSame(menu, shownMenu_)) {
    const HMENU before = menu_;
    menu_ = makeMenu(menu, true);
    SetMenu(frame_, menu_);
    if (before) DestroyMenu(before);
    shownMenu_ = std::move(menu);
  }
  if (!looksSame(tools, shownTools_)) {
    const bool sameButtons = std::equal(tools.begin(), tools.end(), shownTools_.begin(), shownTools_.end(),
                                        [](const MenuEntry& a, const MenuEntry& b) {
                                          return a.control == b.control && a.text == b.text && a.faceId == b.faceId;
                                        });
    if (!sameButtons) fillToolbar(tools);
    for (const MenuEntry& entry : tools)
      SendMessageW(toolbar_, TB_ENABLEBUTTON, idOf(entry.control), MAKELPARAM(entry.enabled, 0));
    shownTools_ = std::move(tools);
  }
}

void CommandMenus::refreshStates() {
  forEachEntry(menuEntries(*bars_.bars().front()), [&](const MenuEntry& entry) {
    const UINT id = idOf(entry.control);
    EnableMenuItem(menu_, id, static_cast<UINT>(MF_BYCOMMAND | (entry.enabled ? MF_ENABLED : MF_GRAYED)));
    CheckMenuItem(menu_, id, static_cast<UINT>(MF_BYCOMMAND | (entry.checked ? MF_CHECKED : MF_UNCHECKED)));
  });
}

void CommandMenus::measureIcon(MEASUREITEMSTRUCT& wanted) {
  wanted.itemWidth = static_cast<UINT>(scaled(20));
  wanted.itemHeight = static_cast<UINT>(scaled(16));
}

// Not a bitmap of the menu's own: not every system blends those with what lies below.
void CommandMenus::drawIcon(const DRAWITEMSTRUCT& where) const {
  const ControlPtr control = controlOf(where.itemID);
  if (!control) return;
  const bool grey = (where.itemState & (ODS_GRAYED | ODS_DISABLED)) != 0;
  const int size = scaled(16);
  const int top = where.rcItem.top + (heightOf(where.rcItem) - size) / 2;
  ImageList_DrawEx(Icons::instance().list(), imageOf(artOfFace(control->faceId)), where.hDC, where.rcItem.left, top,
                   size, size, CLR_NONE, GetSysColor(COLOR_MENU), static_cast<UINT>(grey ? ILD_BLEND50 : ILD_NORMAL));
}

HACCEL commandKeys() {
  static const HACCEL keys = [] {
    std::vector<ACCEL> all;
    for (const BuiltInCommand& what : builtInCommands()) {
      const StringView text = keysOf(what.id);
      if (text.empty() || what.menu == 0) continue;
      ACCEL key{};
      key.fVirt = FVIRTKEY | FCONTROL;
      if (text.find(u"Shift") != StringView::npos) key.fVirt |= FSHIFT;
      key.key = static_cast<WORD>(text.back());
      key.cmd = static_cast<WORD>(what.id);
      all.push_back(key);
    }
    return CreateAcceleratorTableW(all.data(), static_cast<int>(all.size()));
  }();
  return keys;
}

}  // namespace mailclient::win
