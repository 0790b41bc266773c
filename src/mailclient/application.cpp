#include "mailclient/application.h"

#include "addin/platform/outlook.h"
#include "mailclient/addins.h"
#include "mailclient/client.h"
#include "mailclient/item.h"
#include "mailclient/template_file.h"

namespace mailclient {

std::span<const Member> Application::members() const {
  static constexpr auto table = withCommon({
      method<&Application::activeExplorer>(u"ActiveExplorer", 0x111),
      method<&Application::activeInspector>(u"ActiveInspector", 0x112),
      method<&Application::activeWindow>(u"ActiveWindow", 0x11F),
      method<&Application::assistant>(u"Assistant", 0x114),
      method<&Application::comAddIns>(u"COMAddIns", 0x118),
      method<&Application::createItem>(u"CreateItem", 0x10A),
      method<&Application::createItemFromTemplate>(u"CreateItemFromTemplate", 0x10B),
      method<&Application::explorers>(u"Explorers", 0x119),
      method<&Application::inspectors>(u"Inspectors", 0x11A),
      method<&Application::getNamespace>(u"GetNamespace", 0x110),
      method<&Application::name>(u"Name", 0x3001),
      method<&Application::quit>(u"Quit", 0x113),
      method<&Application::version>(u"Version", 0x116),
  });
  return table;
}

Guid Application::events() const { return platform::outlook::ApplicationEvents::iid; }
void Application::terminate() noexcept { client().applicationView.leave(); }

Object Application::activeExplorer() { return client().windows().activeExplorer(); }
Object Application::activeInspector() { return client().windows().activeInspector(); }
Object Application::activeWindow() { return client().windows().activeWindow(); }
Object Application::assistant() { return client().assistant().object(clientPtr()); }
Ref<COMAddIns> Application::comAddIns() { return make<COMAddIns>(clientPtr()); }
Ref<Explorers> Application::explorers() { return client().windows().explorersView.get(clientPtr()); }
Ref<Inspectors> Application::inspectors() { return client().windows().inspectorsView.get(clientPtr()); }
void Application::quit() { client().exit(); }

Ref<NameSpace> Application::getNamespace(const String& type) {
  if (!sameName(type, u"MAPI")) fail(failure::automation, u"The namespace type is not known.");
  return client().nameSpace();
}

Ref<Item> Application::createItem(std::int32_t type) {
  if (type < 0 || type > static_cast<std::int32_t>(ItemType::Post)) raiseError(5);
  Store& store = client().store();
  const auto itemType = static_cast<ItemType>(type);
  constexpr std::array homes{DefaultFolder::Drafts, DefaultFolder::Calendar, DefaultFolder::Contacts,
                             DefaultFolder::Tasks,  DefaultFolder::Journal,  DefaultFolder::Notes,
                             DefaultFolder::Inbox};
  const auto home = store.defaultFolder(homes[static_cast<std::size_t>(type)]);
  return client().itemObject(client().createItem(*home, messageClassOf(itemType)));
}

Ref<Item> Application::createItemFromTemplate(const String& path, std::optional<Object> folder) {
  const String messageClass = readTemplateClass(path);
  Folder* home = client().store().defaultFolder(DefaultFolder::Drafts).get();
  if (folder) home = &MAPIFolder::of(*folder);
  return client().itemObject(client().createItem(*home, messageClass));
}

std::span<const Member> NameSpace::members() const {
  static constexpr auto table = withCommon({
      method<&NameSpace::folders>(u"Folders", 0x2103),
      method<&NameSpace::getDefaultFolder>(u"GetDefaultFolder", 0x210B),
      method<&NameSpace::getItemFromId>(u"GetItemFromID", 0x2109),
  });
  return table;
}

Guid NameSpace::events() const { return platform::outlook::NameSpaceEvents::iid; }
void NameSpace::terminate() noexcept { client().nameSpaceView.leave(); }

// One store, so one folder: the root of it.
Ref<Folders> NameSpace::folders() { return make<Folders>(clientPtr(), nullptr); }

Ref<MAPIFolder> NameSpace::getDefaultFolder(std::int32_t type) {
  return client().folderObject(client().store().defaultFolder(static_cast<DefaultFolder>(type)));
}

Ref<Item> NameSpace::getItemFromId(const String& entryId, std::optional<String> storeId) {
  const MessagePtr message =
      storeId && *storeId != client().store().state().storeId ? nullptr : client().store().find(entryId);
  if (entryId.empty() || !message) fail(failure::notFound, u"The operation failed. An object could not be found.");
  return client().itemObject(message);
}

}  // namespace mailclient
