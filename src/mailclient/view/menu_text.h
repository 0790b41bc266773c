// What a menu or toolbar shows of a command bar's controls.
#pragma once

#include <vector>

#include "mailclient/command_bars.h"

namespace mailclient {

struct MenuEntry {
  ControlPtr control;
  String text;  // with "&" before the letter that chooses it, and the keys behind a tab
  std::int32_t faceId = 0;
  std::int32_t style = 0;
  bool enabled = true;
  bool checked = false;
  bool separatorBefore = false;
  std::vector<MenuEntry> below;  // of a popup
};

// Without what is invisible, and without popups that have nothing to show. A group begins with a separator, except at
// the top.
std::vector<MenuEntry> menuEntries(const Bar& bar);

// What the status bar says of a control: its tooltip, or its caption.
String hintOf(const Control& control);
// A caption without the marks of its letter: "&&" is "&".
String plainCaption(StringView caption);

// True when two menus look the same, so that nothing needs to be made anew.
bool looksSame(const std::vector<MenuEntry>& a, const std::vector<MenuEntry>& b);

}  // namespace mailclient
