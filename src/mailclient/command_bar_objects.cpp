#include "mailclient/command_bar_objects.h"

#include <algorithm>

#include "addin/platform/office.h"
#include "mailclient/client.h"

namespace mailclient {
namespace {

class ObjectWalk final : public platform::Enumerator {
 public:
  explicit ObjectWalk(std::vector<Object> objects) : objects_(std::move(objects)) {}
  bool next(Variant& element) override {
    if (at_ == objects_.size()) return false;
    element = objects_[at_++];
    return true;
  }

 private:
  std::vector<Object> objects_;
  std::size_t at_ = 0;
};

bool isGiven(const Variant& argument) { return !argument.isMissing() && !argument.isEmpty(); }

ControlQuery queryOf(const Variant& type, const Variant& id, const Variant& tag, const Variant& visible) {
  ControlQuery query;
  if (isGiven(type)) query.type = platform::CLng(type);
  if (isGiven(id)) query.id = platform::CLng(id);
  if (isGiven(tag)) query.tag = platform::CStr(tag);
  query.visibleOnly = isGiven(visible) && platform::CBool(visible);
  return query;
}

Ref<CommandBarControl> controlObject(const ClientPtr& client, const ControlPtr& control) {
  return control->view.get(client, control);
}

Ref<CommandBar> barObject(const ClientPtr& client, const BarPtr& bar) { return bar->view.get(client, bar); }

Object objectOrNothing(const ClientPtr& client, const ControlPtr& control) {
  return control ? controlObject(client, control).get()->object() : Object();
}

template <auto Field, class Value>
constexpr Member part(StringView name, std::int32_t dispid) {
  return property<&CommandBarControl::read<Field>, &CommandBarControl::write<Field, Value>>(name, dispid);
}

}  // namespace

CommandBars::CommandBars(ClientPtr given)
    : ModelObject(std::move(given), u"CommandBars"), bars_(&client().explorerBars()) {}

std::span<const Member> CommandBars::members() const {
  static constexpr std::array table{
      method<&CommandBars::item>(u"Item", 0),
      method<&CommandBars::activeMenuBar>(u"ActiveMenuBar", 0x60030001),
      method<&CommandBars::count>(u"Count", 0x60030003),
      method<&CommandBars::findControl>(u"FindControl", 0x60030008),
      method<&ModelObject::application>(u"Application", 0x60020000),
  };
  return table;
}

Ref<platform::Enumerator> CommandBars::enumerate() {
  std::vector<Object> all;
  for (const BarPtr& bar : bars_->bars()) all.push_back(barObject(clientPtr(), bar).get()->object());
  return make<ObjectWalk>(std::move(all));
}

Ref<CommandBar> CommandBars::activeMenuBar() { return barObject(clientPtr(), bars_->bars().front()); }
std::int32_t CommandBars::count() { return static_cast<std::int32_t>(bars_->bars().size()); }

Object CommandBars::findControl(const Variant& type, const Variant& id, const Variant& tag, const Variant& visible) {
  return objectOrNothing(clientPtr(), bars_->find(queryOf(type, id, tag, visible)));
}

Ref<CommandBar> CommandBars::item(const Variant& index) {
  if (const String* const name = index.as<String>()) {
    const BarPtr bar = bars_->bar(*name);
    if (!bar) raiseError(5);
    return barObject(clientPtr(), bar);
  }
  return barObject(clientPtr(), bars_->bars()[positionOf(index, bars_->bars().size())]);
}

std::span<const Member> CommandBar::members() const {
  static constexpr std::array table{
      method<&CommandBar::controls>(u"Controls", 0x60040003),
      property<&CommandBar::enabled, &CommandBar::putEnabled>(u"Enabled", 0x60040005),
      method<&CommandBar::findControl>(u"FindControl", 0x60040007),
      method<&CommandBar::name>(u"Name", 0x6004000E),
      method<&CommandBar::name>(u"NameLocal", 0x60040010),
      method<&CommandBar::type>(u"Type", 0x6004001D),
      property<&CommandBar::visible, &CommandBar::putVisible>(u"Visible", 0x6004001E),
      method<&ModelObject::application>(u"Application", 0x60030000),
  };
  return table;
}

Ref<CommandBarControls> CommandBar::controls() { return make<CommandBarControls>(clientPtr(), bar_); }

Object CommandBar::findControl(const Variant& type, const Variant& id, const Variant& tag, const Variant& visible,
                               const Variant& recursive) {
  const bool deep = isGiven(recursive) && platform::CBool(recursive);
  return objectOrNothing(clientPtr(), BarSet::find(*bar_, queryOf(type, id, tag, visible), deep));
}

std::span<const Member> CommandBarControls::members() const {
  static constexpr std::array table{
      method<&CommandBarControls::item>(u"Item", 0),
      method<&CommandBarControls::add>(u"Add", 0x60030000),
      method<&CommandBarControls::count>(u"Count", 0x60030001),
      method<&ModelObject::parent>(u"Parent", 0x60030004),
      method<&ModelObject::application>(u"Application", 0x60020000),
  };
  return table;
}

Ref<platform::Enumerator> CommandBarControls::enumerate() {
  std::vector<Object> all;
  for (const ControlPtr& control : bar_->controls) all.push_back(controlObject(clientPtr(), control).get()->object());
  return make<ObjectWalk>(std::move(all));
}

// Only buttons of a program's own: other types, and copies of built-in controls, are refused.
Ref<CommandBarControl> CommandBarControls::add(const Variant& type, const Variant& id, const Variant& parameter,
                                               const Variant& before, const Variant& temporary) {
  const auto button = static_cast<std::int32_t>(ControlType::Button);
  if (isGiven(type) && platform::CLng(type) != button) raiseError(5);
  if (isGiven(id) && platform::CLng(id) != 1) raiseError(5);
  std::optional<std::size_t> position;
  if (isGiven(before)) position = positionOf(before, bar_->controls.size());
  const String text = isGiven(parameter) ? platform::CStr(parameter) : String();
  const ControlPtr control = BarSet::addButton(*bar_, position, isGiven(temporary) && platform::CBool(temporary));
  control->parameter = text;
  client().explorerBars().changed();
  return controlObject(clientPtr(), control);
}

Ref<CommandBarControl> CommandBarControls::item(const Variant& index) {
  if (const String* const caption = index.as<String>()) {
    for (const ControlPtr& control : bar_->controls)
      if (sameName(control->caption, *caption)) return controlObject(clientPtr(), control);
    raiseError(5);
  }
  return controlObject(clientPtr(), bar_->controls[positionOf(index, bar_->controls.size())]);
}

CommandBarControl::CommandBarControl(ClientPtr client, ControlPtr control)
    : ModelObject(std::move(client), control->type == ControlType::Popup ? u"CommandBarPopup" : u"CommandBarButton"),
      control_(std::move(control)) {}

namespace {

template <std::size_t N>
constexpr auto controlMembers(const Member (&own)[N]) {
  constexpr std::array shared{
      part<&Control::beginGroup, bool>(u"BeginGroup", 0x60040000),
      method<&CommandBarControl::builtIn>(u"BuiltIn", 0x60040002),
      part<&Control::caption, String>(u"Caption", 0x60040003),
      method<&CommandBarControl::remove>(u"Delete", 0x60040007),
      part<&Control::enabled, bool>(u"Enabled", 0x6004000A),
      method<&CommandBarControl::execute>(u"Execute", 0x6004000C),
      method<&CommandBarControl::id>(u"Id", 0x60040013),
      method<&CommandBarControl::index>(u"Index", 0x60040014),
      part<&Control::onAction, String>(u"OnAction", 0x6004001A),
      method<&ModelObject::parent>(u"Parent", 0x6004001C),
      part<&Control::parameter, String>(u"Parameter", 0x6004001D),
      part<&Control::tag, String>(u"Tag", 0x60040023),
      part<&Control::tooltip, String>(u"TooltipText", 0x60040025),
      method<&CommandBarControl::type>(u"Type", 0x60040028),
      part<&Control::visible, bool>(u"Visible", 0x60040029),
      method<&ModelObject::application>(u"Application", 0x60030000),
  };
  std::array<Member, shared.size() + N> all{};
  std::copy(shared.begin(), shared.end(), all.begin());
  std::copy(std::begin(own), std::end(own), all.begin() + shared.size());
  return all;
}

}  // namespace

std::span<const Member> CommandBarControl::members() const {
  static constexpr auto button = controlMembers({
      part<&Control::faceId, std::int32_t>(u"FaceId", 0x60050003),
      part<&Control::state, std::int32_t>(u"State", 0x60050008),
      part<&Control::style, std::int32_t>(u"Style", 0x6005000A),
  });
  static constexpr auto popup = controlMembers({
      method<&CommandBarControl::commandBar>(u"CommandBar", 0x60050000),
      method<&CommandBarControl::controls>(u"Controls", 0x60050001),
  });
  if (control_->type == ControlType::Popup) return popup;
  return button;
}

Guid CommandBarControl::events() const {
  return control_->type == ControlType::Button ? platform::office::CommandBarButtonEvents::iid : Guid{};
}

Object CommandBarControl::parent() const {
  for (const BarPtr& bar : client().explorerBars().bars())
    if (bar.get() == living().bar) return barObject(clientPtr(), bar).get()->object();
  ControlPtr owner;
  client().explorerBars().forEach([&](const ControlPtr& c) {
    if (c->popup.get() == control_->bar) owner = c;
  });
  return owner ? barObject(clientPtr(), owner->popup).get()->object() : Object();
}

Control& CommandBarControl::living() const {
  if (control_->deleted) fail(failure::unspecified, u"The control was deleted.");
  return *control_;
}

void CommandBarControl::tellChanged() const { client().explorerBars().changed(); }

void CommandBarControl::remove(std::optional<bool> /*temporary*/) {
  if (living().builtIn) fail(failure::unspecified, u"A built-in menu cannot be deleted.");
  BarSet::remove(control_);
  tellChanged();
}

void CommandBarControl::execute() {
  living();
  client().explorerBars().click(control_);
}

std::int32_t CommandBarControl::index() {
  const auto& all = living().bar->controls;
  return static_cast<std::int32_t>(std::find(all.begin(), all.end(), control_) - all.begin()) + 1;
}

Ref<CommandBar> CommandBarControl::commandBar() { return barObject(clientPtr(), living().popup); }
Ref<CommandBarControls> CommandBarControl::controls() { return make<CommandBarControls>(clientPtr(), living().popup); }

}  // namespace mailclient
