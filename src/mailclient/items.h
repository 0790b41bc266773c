// Items: the items of a folder, or those of them that matched a filter.
//
// Each folder.Items call makes a new object, with its own place for GetFirst and GetNext. One that stands for the whole
// folder follows it and raises its events; a restricted one is a snapshot and raises none.
#pragma once

#include <optional>
#include <vector>

#include "mailclient/filter.h"
#include "mailclient/folder.h"
#include "mailclient/model_object.h"

namespace mailclient {

class Items final : public ModelObject, private FolderObserver {
 public:
  Items(ClientPtr client, std::shared_ptr<Folder> folder);
  Items(ClientPtr client, std::shared_ptr<Folder> folder, std::vector<MessagePtr> snapshot);
  std::span<const Member> members() const override;
  Guid events() const override;
  void terminate() noexcept override;
  std::int32_t objectClass() const override { return 16; }
  Object parent() const override;

  Ref<Item> add(const Variant& type);  // an OlItemType, a message class, or nothing for the folder's default
  std::int32_t count();
  Object find(const String& filter);
  Object findNext();
  Object getFirst();
  Object getLast();
  Object getNext();
  Object getPrevious();
  Ref<Item> item(const Variant& index);  // a position from 1, or a subject
  void remove(std::int32_t index);
  Ref<Items> restrict(const String& filter);

 private:
  const std::vector<MessagePtr>& messages() const { return snapshot_ ? *snapshot_ : folder_->messages(); }
  Object current();

  void itemAdded(const MessagePtr& message) override;
  void itemChanged(const MessagePtr& message) override;
  void itemRemoved() override;

  std::shared_ptr<Folder> folder_;
  std::optional<std::vector<MessagePtr>> snapshot_;
  std::optional<Filter> sought_;
  std::size_t cursor_ = 0;
};

}  // namespace mailclient
