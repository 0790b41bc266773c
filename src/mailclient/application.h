// Application and NameSpace.
#pragma once

#include "mailclient/assistant.h"
#include "mailclient/folders.h"
#include "mailclient/model_object.h"
#include "mailclient/windows.h"

namespace mailclient {

class COMAddIns;
class NameSpace;
class Item;

class Application final : public ModelObject {
 public:
  explicit Application(ClientPtr client) : ModelObject(std::move(client), u"Application") {}
  std::span<const Member> members() const override;
  Guid events() const override;
  void terminate() noexcept override;
  Object parent() const override { return {}; }

  Object activeExplorer();
  Object activeInspector();
  Object activeWindow();
  Object assistant();
  Ref<COMAddIns> comAddIns();
  Ref<Item> createItem(std::int32_t type);
  Ref<Item> createItemFromTemplate(const String& path, std::optional<Object> folder);
  Ref<Explorers> explorers();
  Ref<Inspectors> inspectors();
  Ref<NameSpace> getNamespace(const String& type);
  String name() { return u"Outlook"; }
  String version() { return u"9.0.0.2711"; }
  void quit();
};

class NameSpace final : public ModelObject {
 public:
  explicit NameSpace(ClientPtr client) : ModelObject(std::move(client), u"NameSpace") {}
  std::span<const Member> members() const override;
  Guid events() const override;
  void terminate() noexcept override;
  std::int32_t objectClass() const override { return 1; }

  Ref<Folders> folders();
  Ref<MAPIFolder> getDefaultFolder(std::int32_t type);
  Ref<Item> getItemFromId(const String& entryId, std::optional<String> storeId);
};

}  // namespace mailclient
