// The menu bar and the toolbar of a window, made from the command bars.
#pragma once

#include <map>

#include "mailclient/view/menu_text.h"
#include "mailclient/win/icons.h"

namespace mailclient::win {

class CommandMenus {
 public:
  explicit CommandMenus(BarSet& bars) : bars_(bars) {}
  CommandMenus(const CommandMenus&) = delete;
  CommandMenus& operator=(const CommandMenus&) = delete;
  ~CommandMenus() { detach(); }

  void attach(HWND frame);
  // While the window is still there: a menu that goes with it must not be destroyed a second time.
  void detach();
  HWND toolbar() const { return toolbar_; }
  // Makes menus and toolbar anew where they no longer look as the command bars say. Not while a menu is open.
  void refresh();
  // An open menu follows what was switched on and off meanwhile.
  void refreshStates();

  // What the menus show, item by item; see ConsoleHost::menuItems().
  std::vector<std::string> describe() const;

  // The control that a WM_COMMAND means; null when it is none of ours.
  ControlPtr controlOf(UINT commandId) const;
  // What is written about the highlighted control; empty for none.
  String hint(UINT commandId) const;

  // WM_MEASUREITEM and WM_DRAWITEM: the icons of menu items.
  static void measureIcon(MEASUREITEMSTRUCT& wanted);
  void drawIcon(const DRAWITEMSTRUCT& where) const;

 private:
  HMENU makeMenu(const std::vector<MenuEntry>& entries, bool isBar);
  void fillToolbar(const std::vector<MenuEntry>& entries);
  UINT idOf(const ControlPtr& control);

  BarSet& bars_;
  HWND frame_ = nullptr;
  HWND toolbar_ = nullptr;
  HMENU menu_ = nullptr;
  std::vector<MenuEntry> shownMenu_;
  std::vector<MenuEntry> shownTools_;
  std::map<UINT, ControlPtr> controls_;
  UINT nextId_ = firstControlId;

  static constexpr UINT firstControlId = 30000;  // below lie the commands' own identifiers
};

// Keys for the built-in commands; their WM_COMMAND has the command's own identifier.
HACCEL commandKeys();

}  // namespace mailclient::win
