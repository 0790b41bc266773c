// The objects that stand for windows: Explorers, Explorer, Inspectors, Inspector, Selection.
#include "addin/platform/outlook.h"
#include "mailclient/client.h"
#include "mailclient/command_bar_objects.h"
#include "mailclient/folders.h"
#include "mailclient/item.h"
#include "mailclient/windows.h"

namespace mailclient {

namespace outlook = platform::outlook;

std::span<const Member> Explorers::members() const {
  static constexpr auto table = withCommon({
      method<&Explorers::add>(u"Add", 0x5F),
      method<&Explorers::count>(u"Count", 0x50),
      method<&Explorers::item>(u"Item", 0x51),
  });
  return table;
}

Guid Explorers::events() const { return outlook::ExplorersEvents::iid; }
void Explorers::terminate() noexcept { client().windows().explorersView.leave(); }
std::int32_t Explorers::count() { return static_cast<std::int32_t>(client().windows().explorers().size()); }

Ref<Explorer> Explorers::add(const Object& folder, std::optional<std::int32_t> /*displayMode*/) {
  Windows& windows = client().windows();
  return windows.explorerObject(windows.openExplorer(MAPIFolder::of(folder).shared_from_this()));
}

Ref<Explorer> Explorers::item(const Variant& index) {
  const auto& all = client().windows().explorers();
  return client().windows().explorerObject(all[positionOf(index, all.size())]);
}

std::span<const Member> Inspectors::members() const {
  static constexpr auto table = withCommon({
      method<&Inspectors::add>(u"Add", 0x5F),
      method<&Inspectors::count>(u"Count", 0x50),
      method<&Inspectors::item>(u"Item", 0x51),
  });
  return table;
}

Guid Inspectors::events() const { return outlook::InspectorsEvents::iid; }
void Inspectors::terminate() noexcept { client().windows().inspectorsView.leave(); }
std::int32_t Inspectors::count() { return static_cast<std::int32_t>(client().windows().inspectors().size()); }

Ref<Inspector> Inspectors::add(const Object& item) {
  Windows& windows = client().windows();
  return windows.inspectorObject(windows.openInspector(Item::of(item)));
}

Ref<Inspector> Inspectors::item(const Variant& index) {
  const auto& all = client().windows().inspectors();
  return client().windows().inspectorObject(all[positionOf(index, all.size())]);
}

std::span<const Member> Explorer::members() const {
  static constexpr auto table = withCommon({
      method<&Explorer::activate>(u"Activate", 0x2113),
      method<&Explorer::caption>(u"Caption", 0x2111),
      method<&Explorer::close>(u"Close", 0x2103),
      method<&Explorer::commandBars>(u"CommandBars", 0x2100),
      property<&Explorer::currentFolder, &Explorer::putCurrentFolder>(u"CurrentFolder", 0x2101),
      method<&Explorer::display>(u"Display", 0x2104),
      method<&Explorer::selection>(u"Selection", 0x2202),
      property<&Explorer::windowState, &Explorer::putWindowState>(u"WindowState", 0x2112),
  });
  return table;
}

Guid Explorer::events() const { return outlook::ExplorerEvents::iid; }
void Explorer::activate() { client().windows().activate(window_); }
void Explorer::close() { client().windows().close(window_); }
void Explorer::display() { activate(); }
String Explorer::caption() { return window_->folder->name() + u" - " + String(productName); }
Ref<CommandBars> Explorer::commandBars() { return client().explorerBars().view.get(clientPtr()); }
Ref<MAPIFolder> Explorer::currentFolder() { return client().folderObject(window_->folder); }
std::int32_t Explorer::windowState() { return window_->state; }

void Explorer::putWindowState(std::int32_t state) {
  if (state < 0 || state > 2) raiseError(5);
  window_->state = state;
  if (WindowsHost* const host = client().windows().host) host->stateChanged(window_);
}

void Explorer::putCurrentFolder(const Object& folder) {
  client().windows().showFolder(window_, MAPIFolder::of(folder).shared_from_this());
}

// What was selected and has left the folder since is no longer selected.
Ref<Selection> Explorer::selection() {
  std::vector<MessagePtr> selected;
  for (const MessagePtr& message : window_->selection)
    if (!message->gone && message->folder == window_->folder.get()) selected.push_back(message);
  return make<Selection>(clientPtr(), std::move(selected));
}

std::span<const Member> Inspector::members() const {
  static constexpr auto table = withCommon({
      method<&Inspector::activate>(u"Activate", 0x2113),
      method<&Inspector::caption>(u"Caption", 0x2111),
      method<&Inspector::close>(u"Close", 0x2103),
      method<&Inspector::currentItem>(u"CurrentItem", 0x2102),
      method<&Inspector::display>(u"Display", 0x2104),
      method<&Inspector::editorType>(u"EditorType", 0x2110),
      method<&Inspector::isWordMail>(u"IsWordMail", 0x2105),
  });
  return table;
}

Guid Inspector::events() const { return outlook::InspectorEvents::iid; }
void Inspector::activate() { client().windows().activate(window_); }
void Inspector::display(std::optional<bool> /*modal*/) { activate(); }
String Inspector::caption() { return (*window_->message)[Text::Subject] + u" - Message"; }
Ref<Item> Inspector::currentItem() { return client().itemObject(window_->message); }

void Inspector::close(std::int32_t saveMode) {
  constexpr std::int32_t saving = 0;  // olSave
  const MessagePtr message = window_->message;
  if (saveMode == saving && message->changed && !message->gone) client().store().save(message);
  client().windows().close(window_);
}

std::span<const Member> Selection::members() const {
  static constexpr auto table = withCommon({
      method<&Selection::count>(u"Count", 0x50),
      method<&Selection::item>(u"Item", 0x51),
  });
  return table;
}

Ref<Item> Selection::item(const Variant& index) {
  return client().itemObject(messages_[positionOf(index, messages_.size())]);
}

}  // namespace mailclient
