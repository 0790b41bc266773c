#include "mailclient/command_bars.h"

#include <algorithm>

#include "addin/platform/office.h"
#include "mailclient/built_in_commands.h"
#include "mailclient/command_bar_objects.h"

namespace mailclient {
namespace {

struct BuiltIn {
  std::int32_t id;
  StringView caption;
};

constexpr std::array menus{
    BuiltIn{menu::file, u"&File"},           BuiltIn{menu::edit, u"&Edit"},   BuiltIn{menu::view, u"&View"},
    BuiltIn{menu::favorites, u"F&avorites"}, BuiltIn{menu::tools, u"&Tools"}, BuiltIn{menu::actions, u"&Actions"},
    BuiltIn{menu::help, u"&Help"},
};

constexpr StringView standardBarName = u"Standard";
constexpr std::int32_t toolbarType = 0;
constexpr std::int32_t menuBarType = 1;
constexpr std::int32_t popupBarType = 2;

ControlPtr popup(Bar& on, const BuiltIn& what) {
  auto control = std::make_shared<Control>();
  control->type = ControlType::Popup;
  control->id = what.id;
  control->builtIn = true;
  control->bar = &on;
  control->caption = what.caption;
  control->popup = std::make_shared<Bar>();
  control->popup->name = what.caption;
  control->popup->type = popupBarType;
  control->popup->menuId = what.id;
  on.controls.push_back(control);
  return control;
}

BarPtr makeBar(StringView name, std::int32_t type) {
  auto bar = std::make_shared<Bar>();
  bar->name = name;
  bar->type = type;
  return bar;
}

bool matches(const Control& c, const ControlQuery& q) {
  if (q.type && *q.type != static_cast<std::int32_t>(c.type)) return false;
  if (q.id && *q.id != c.id) return false;
  if (q.tag && *q.tag != c.tag) return false;
  return !q.visibleOnly || c.visible;
}

void visitBar(const Bar& bar, const std::function<void(const ControlPtr&)>& visit) {
  for (const ControlPtr& control : bar.controls) {
    visit(control);
    if (control->popup) visitBar(*control->popup, visit);
  }
}

}  // namespace

BarSet::BarSet(const std::vector<std::int32_t>& leftOut, const std::vector<SavedButton>& saved) {
  const auto isThere = [&](std::int32_t id) { return std::find(leftOut.begin(), leftOut.end(), id) == leftOut.end(); };
  bars_ = {makeBar(menuBarName, menuBarType), makeBar(standardBarName, toolbarType)};
  for (const BuiltIn& what : menus) {
    if (!isThere(what.id)) continue;
    const ControlPtr control = popup(*bars_.front(), what);
    if (what.id == menu::file && isThere(menu::newItem)) popup(*control->popup, {menu::newItem, u"Ne&w"});
  }
  for (const BuiltInCommand& what : builtInCommands()) addBuiltIn(what);
  for (const SavedButton& button : saved) restore(button);
}

void BarSet::addBuiltIn(const BuiltInCommand& what) {
  Bar* home = bars_.back().get();
  if (what.menu != 0) {
    const ControlPtr owner = find(*bars_.front(), {.id = what.menu}, true);
    if (!owner) return;
    home = owner->popup.get();
  }
  const ControlPtr control = addButton(*home, std::nullopt, false);
  control->builtIn = true;
  control->id = what.id;
  control->caption = what.caption;
  control->tooltip = what.tooltip;
  control->faceId = what.faceId;
  control->beginGroup = what.beginGroup;
}

void BarSet::restore(const SavedButton& saved) {
  const BarPtr on = bar(saved.bar);
  Bar* home = on.get();
  if (on && saved.menu != 0) {
    const ControlPtr owner = find(*on, {.id = saved.menu}, true);
    home = owner ? owner->popup.get() : nullptr;
  }
  if (!home) {
    homeless_.push_back(saved);
    return;
  }
  const ControlPtr control = addButton(*home, std::nullopt, false);
  control->caption = saved.caption;
  control->tag = saved.tag;
  control->tooltip = saved.tooltip;
  control->parameter = saved.parameter;
  control->onAction = saved.onAction;
  control->faceId = saved.faceId;
  control->style = saved.style;
  control->beginGroup = saved.beginGroup;
  control->enabled = saved.enabled;
  control->visible = saved.visible;
}

std::vector<ControlPtr> BarSet::controlsOf(std::int32_t id) const {
  std::vector<ControlPtr> found;
  forEach([&](const ControlPtr& control) {
    if (control->builtIn && control->id == id) found.push_back(control);
  });
  return found;
}

std::vector<SavedButton> BarSet::permanentButtons() const {
  std::vector<SavedButton> buttons;
  for (const BarPtr& on : bars_)
    visitBar(*on, [&](const ControlPtr& c) {
      if (c->builtIn || c->temporary) return;
      buttons.push_back({c->bar->menuId, on->name, c->caption, c->tag, c->tooltip, c->parameter, c->onAction, c->faceId,
                         c->style, c->beginGroup, c->enabled, c->visible});
    });
  buttons.insert(buttons.end(), homeless_.begin(), homeless_.end());
  return buttons;
}

BarPtr BarSet::bar(StringView name) const {
  const auto at = std::find_if(bars_.begin(), bars_.end(), [&](const BarPtr& b) { return sameName(b->name, name); });
  return at == bars_.end() ? nullptr : *at;
}

ControlPtr BarSet::find(const Bar& bar, const ControlQuery& query, bool recursive) {
  for (const ControlPtr& control : bar.controls) {
    if (matches(*control, query)) return control;
    if (!recursive || !control->popup) continue;
    if (const ControlPtr below = find(*control->popup, query, true)) return below;
  }
  return nullptr;
}

ControlPtr BarSet::find(const ControlQuery& query) const {
  for (const BarPtr& bar : bars_)
    if (const ControlPtr control = find(*bar, query, true)) return control;
  return nullptr;
}

ControlPtr BarSet::addButton(Bar& bar, std::optional<std::size_t> position, bool temporary) {
  auto control = std::make_shared<Control>();
  control->bar = &bar;
  control->temporary = temporary;
  const std::size_t at = std::min(position.value_or(bar.controls.size()), bar.controls.size());
  bar.controls.insert(bar.controls.begin() + static_cast<std::ptrdiff_t>(at), control);
  return control;
}

void BarSet::remove(const ControlPtr& given) {
  const ControlPtr control = given;
  if (control->deleted) fail(failure::unspecified, u"The control was deleted.");
  control->deleted = true;
  std::erase(control->bar->controls, control);
}

bool BarSet::click(const ControlPtr& control) {
  if (control->deleted || !control->enabled || !control->visible) return false;
  if (control->builtIn) {
    if (runBuiltIn) runBuiltIn(control->id);
    return true;
  }
  const Ref<CommandBarControl> button(control->view.live());
  if (!button) return true;
  bool cancelDefault = false;
  button.get()->fire(platform::office::CommandBarButtonEvents::Click, button.get()->object(), cancelDefault);
  return true;
}

void BarSet::forEach(const std::function<void(const ControlPtr&)>& visit) const {
  for (const BarPtr& bar : bars_) visitBar(*bar, visit);
}

}  // namespace mailclient
