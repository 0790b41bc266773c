#include "mailclient/view/menu_text.h"

#include <algorithm>

#include "mailclient/built_in_commands.h"

namespace mailclient {

std::vector<MenuEntry> menuEntries(const Bar& bar) {
  constexpr std::int32_t down = -1;  // msoButtonDown
  std::vector<MenuEntry> entries;
  for (const ControlPtr& control : bar.controls) {
    if (!control->visible) continue;
    MenuEntry entry;
    entry.control = control;
    entry.text = control->caption;
    entry.enabled = control->enabled;
    entry.faceId = control->faceId;
    entry.style = control->style;
    if (control->popup) {
      entry.below = menuEntries(*control->popup);
      if (entry.below.empty()) continue;
    }
    if (control->builtIn && !keysOf(control->id).empty()) entry.text += u"\t" + String(keysOf(control->id));
    entry.checked = control->state == down;
    entry.separatorBefore = control->beginGroup && !entries.empty();
    entries.push_back(std::move(entry));
  }
  return entries;
}

String plainCaption(StringView caption) {
  String plain;
  for (std::size_t i = 0; i < caption.size(); ++i) {
    if (caption[i] == u'&' && ++i == caption.size()) break;
    plain += caption[i];
  }
  return plain;
}

String hintOf(const Control& control) {
  return control.tooltip.empty() ? plainCaption(control.caption) : control.tooltip;
}

bool looksSame(const std::vector<MenuEntry>& a, const std::vector<MenuEntry>& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const MenuEntry& x, const MenuEntry& y) {
    return x.control == y.control && x.text == y.text && x.enabled == y.enabled && x.checked == y.checked &&
           x.faceId == y.faceId && x.style == y.style && x.separatorBefore == y.separatorBefore &&
           looksSame(x.below, y.below);
  });
}

}  // namespace mailclient
