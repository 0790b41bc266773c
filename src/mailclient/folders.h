// MAPIFolder and Folders.
#pragma once

#include <optional>

#include "mailclient/folder.h"
#include "mailclient/model_object.h"

namespace mailclient {

class Explorer;
class Items;

class Folders final : public ModelObject {
 public:
  // The folders below `folder`; null stands for the list of stores.
  Folders(ClientPtr client, std::shared_ptr<Folder> folder)
      : ModelObject(std::move(client), u"Folders"), folder_(std::move(folder)) {}
  std::span<const Member> members() const override;
  std::int32_t objectClass() const override { return 15; }

  Ref<MAPIFolder> add(const String& name, std::optional<std::int32_t> type);
  std::int32_t count();
  Ref<MAPIFolder> item(const Variant& index);  // a position from 1, or a name
  Object getFirst();
  Object getNext();
  void remove(std::int32_t index);

 private:
  std::vector<std::shared_ptr<Folder>> all() const;
  Object current();

  std::shared_ptr<Folder> folder_;
  std::size_t cursor_ = 0;
};

class MAPIFolder final : public ModelObject {
 public:
  MAPIFolder(ClientPtr client, std::shared_ptr<Folder> folder);
  std::span<const Member> members() const override;
  void terminate() noexcept override { folder_->view = nullptr; }
  std::int32_t objectClass() const override { return 2; }
  Object parent() const override;

  // The folder that an argument means; error 13 when it is no folder of this mail client.
  static Folder& of(const Object& argument);
  const std::shared_ptr<Folder>& folder() const { return folder_; }

  std::int32_t defaultItemType();
  String defaultMessageClass();
  void remove();
  String description();
  void putDescription(const String& text);
  void display();
  String entryId();
  Ref<Folders> folders();
  Ref<Explorer> getExplorer(std::optional<std::int32_t> displayMode);
  Ref<Items> items();
  String name();
  void putName(const String& name);
  String storeId();
  std::int32_t unreadItemCount();

 private:
  Folder& living() const;

  std::shared_ptr<Folder> folder_;
};

}  // namespace mailclient
