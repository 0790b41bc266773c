// The objects of the command bars: CommandBars, CommandBar, CommandBarControls, CommandBarButton and CommandBarPopup.
#pragma once

#include <optional>

#include "mailclient/command_bars.h"
#include "mailclient/model_object.h"

namespace mailclient {

class CommandBarControls;

class CommandBars final : public ModelObject {
 public:
  explicit CommandBars(ClientPtr client);
  std::span<const Member> members() const override;
  void terminate() noexcept override { bars_->view.leave(); }
  Ref<platform::Enumerator> enumerate() override;

  Ref<CommandBar> activeMenuBar();
  std::int32_t count();
  Object findControl(const Variant& type, const Variant& id, const Variant& tag, const Variant& visible);
  Ref<CommandBar> item(const Variant& index);  // a name, or a position from 1

 private:
  BarSet* bars_;
};

class CommandBar final : public ModelObject {
 public:
  CommandBar(ClientPtr client, BarPtr bar) : ModelObject(std::move(client), u"CommandBar"), bar_(std::move(bar)) {}
  std::span<const Member> members() const override;
  void terminate() noexcept override { bar_->view.leave(); }

  Ref<CommandBarControls> controls();
  bool enabled() { return bar_->enabled; }
  void putEnabled(bool on) { bar_->enabled = on; }
  Object findControl(const Variant& type, const Variant& id, const Variant& tag, const Variant& visible,
                     const Variant& recursive);
  String name() { return bar_->name; }
  std::int32_t type() { return bar_->type; }
  bool visible() { return bar_->visible; }
  void putVisible(bool on) { bar_->visible = on; }

 private:
  BarPtr bar_;
};

class CommandBarControls final : public ModelObject {
 public:
  CommandBarControls(ClientPtr client, BarPtr bar)
      : ModelObject(std::move(client), u"CommandBarControls"), bar_(std::move(bar)) {}
  std::span<const Member> members() const override;
  Ref<platform::Enumerator> enumerate() override;
  Object parent() const override { return bar_->view.get(clientPtr(), bar_).get()->object(); }

  Ref<CommandBarControl> add(const Variant& type, const Variant& id, const Variant& parameter, const Variant& before,
                             const Variant& temporary);
  std::int32_t count() { return static_cast<std::int32_t>(bar_->controls.size()); }
  Ref<CommandBarControl> item(const Variant& index);  // a position from 1, or a caption

 private:
  BarPtr bar_;
};

// Every kind of control: the table of members is the kind's own.
class CommandBarControl final : public ModelObject {
 public:
  CommandBarControl(ClientPtr client, ControlPtr control);
  std::span<const Member> members() const override;
  Guid events() const override;
  void terminate() noexcept override { control_->view.leave(); }
  Object parent() const override;

  template <auto Field>
  auto read() {
    return living().*Field;
  }
  template <auto Field, class Value>
  void write(const Value& value) {
    living().*Field = value;
    tellChanged();
  }
  bool builtIn() { return living().builtIn; }
  void remove(std::optional<bool> temporary);
  void execute();
  std::int32_t id() { return living().id; }
  std::int32_t index();
  std::int32_t type() { return static_cast<std::int32_t>(living().type); }
  // Of a popup.
  Ref<CommandBar> commandBar();
  Ref<CommandBarControls> controls();

 private:
  Control& living() const;
  void tellChanged() const;

  ControlPtr control_;
};

}  // namespace mailclient
