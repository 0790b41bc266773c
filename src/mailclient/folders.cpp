#include "mailclient/folders.h"

#include "mailclient/client.h"
#include "mailclient/items.h"

namespace mailclient {

std::span<const Member> Folders::members() const {
  static constexpr auto table = withCommon({
      method<&Folders::add>(u"Add", 0x5F),
      method<&Folders::count>(u"Count", 0x50),
      method<&Folders::getFirst>(u"GetFirst", 0x56),
      method<&Folders::getNext>(u"GetNext", 0x57),
      method<&Folders::item>(u"Item", 0x51),
      method<&Folders::remove>(u"Remove", 0x54),
  });
  return table;
}

std::vector<std::shared_ptr<Folder>> Folders::all() const {
  return folder_ ? folder_->children() : std::vector{client().store().root()};
}

// The type is named by the default folder that holds it (olFolderContacts for contacts); by default it is the parent's.
Ref<MAPIFolder> Folders::add(const String& name, std::optional<std::int32_t> type) {
  if (!folder_) fail(failure::noAccess, u"You cannot create a folder here.");
  const ItemType itemType =
      type ? client().store().defaultFolder(static_cast<DefaultFolder>(*type))->type() : folder_->type();
  return client().folderObject(client().store().addFolder(*folder_, name, itemType));
}

std::int32_t Folders::count() { return static_cast<std::int32_t>(all().size()); }

Ref<MAPIFolder> Folders::item(const Variant& index) {
  const auto folders = all();
  if (const String* const name = index.as<String>()) {
    for (const auto& folder : folders)
      if (sameName(folder->name(), *name)) return client().folderObject(folder);
    fail(failure::notFound, u"The operation failed. An object could not be found.");
  }
  return client().folderObject(folders[positionOf(index, folders.size())]);
}

Object Folders::current() {
  const auto folders = all();
  return cursor_ < folders.size() ? client().folderObject(folders[cursor_]).get()->object() : Object();
}

Object Folders::getFirst() {
  cursor_ = 0;
  return current();
}

Object Folders::getNext() {
  ++cursor_;
  return current();
}

void Folders::remove(std::int32_t index) {
  const auto folders = all();
  client().store().removeFolder(*folders[positionOf(index, folders.size())]);
}

std::span<const Member> MAPIFolder::members() const {
  static constexpr auto table = withCommon({
      method<&MAPIFolder::items>(u"Items", 0x3100),
      method<&MAPIFolder::folders>(u"Folders", 0x2103),
      property<&MAPIFolder::name, &MAPIFolder::putName>(u"Name", 0x3001),
      method<&MAPIFolder::storeId>(u"StoreID", 0x3108),
      method<&MAPIFolder::entryId>(u"EntryID", 0xF01E),
      method<&MAPIFolder::unreadItemCount>(u"UnReadItemCount", 0x3603),
      property<&MAPIFolder::description, &MAPIFolder::putDescription>(u"Description", 0x3004),
      method<&MAPIFolder::defaultItemType>(u"DefaultItemType", 0x3106),
      method<&MAPIFolder::defaultMessageClass>(u"DefaultMessageClass", 0x3107),
      method<&MAPIFolder::display>(u"Display", 0x3104),
      method<&MAPIFolder::getExplorer>(u"GetExplorer", 0x3101),
      method<&MAPIFolder::remove>(u"Delete", 0xF045),
  });
  return table;
}

MAPIFolder::MAPIFolder(ClientPtr client, std::shared_ptr<Folder> folder)
    : ModelObject(std::move(client), u"MAPIFolder"), folder_(std::move(folder)) {
  folder_->view = this;
}

Folder& MAPIFolder::of(const Object& argument) {
  const auto* const native = platform::nativeOf<MAPIFolder>(argument);
  if (!native) raiseError(13);
  return native->living();
}

Folder& MAPIFolder::living() const {
  if (folder_->isGone()) fail(failure::deleted, u"The folder has been moved or deleted.");
  return *folder_;
}

Object MAPIFolder::parent() const {
  Folder* const above = living().parent();
  return above ? client().folderObject(above->shared_from_this()).get()->object() : session();
}

std::int32_t MAPIFolder::defaultItemType() { return static_cast<std::int32_t>(living().type()); }
String MAPIFolder::defaultMessageClass() { return String(messageClassOf(living().type())); }
void MAPIFolder::remove() { client().store().removeFolder(living()); }
String MAPIFolder::description() { return living().description; }
void MAPIFolder::putDescription(const String& text) { living().description = text; }
void MAPIFolder::display() { client().windows().openExplorer(folder_); }
Ref<Folders> MAPIFolder::folders() { return make<Folders>(clientPtr(), (living(), folder_)); }
Ref<Items> MAPIFolder::items() { return make<Items>(clientPtr(), (living(), folder_)); }
String MAPIFolder::name() { return living().name(); }
void MAPIFolder::putName(const String& name) { client().store().renameFolder(living(), name); }
String MAPIFolder::storeId() { return client().store().state().storeId; }
std::int32_t MAPIFolder::unreadItemCount() { return living().unreadCount(); }

Ref<Explorer> MAPIFolder::getExplorer(std::optional<std::int32_t> /*displayMode*/) {
  living();
  return client().windows().explorerObject(client().windows().openExplorer(folder_));
}

// A folder has no stored number of its own: its place in the tree identifies it.
String MAPIFolder::entryId() {
  String id = u"00000001" + client().store().state().storeId;
  for (const String& name : living().path()) {
    constexpr StringView digits = u"0123456789ABCDEF";
    for (const char16_t c : name)
      for (int shift = 12; shift >= 0; shift -= 4) id += digits[(c >> shift) & 15];
    id += u"0000";
  }
  return id;
}

}  // namespace mailclient
