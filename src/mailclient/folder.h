// The tree of mail folders, as data. The object model's folders (folders.h) are views of it.
#pragma once

#include <vector>

#include "mailclient/message.h"

namespace mailclient {

class MAPIFolder;

// What a folder is made to hold: the default item type (OlItemType) and the message class that goes with it.
enum class ItemType : std::int32_t {
  Mail = 0,
  Appointment = 1,
  Contact = 2,
  Task = 3,
  Journal = 4,
  Note = 5,
  Post = 6
};
StringView messageClassOf(ItemType type);

// Hears what happens in one folder, inside the operation that causes it. It may change the folder while it hears.
class FolderObserver {
 public:
  virtual void itemAdded(const MessagePtr& message) = 0;
  virtual void itemChanged(const MessagePtr& message) = 0;
  virtual void itemRemoved() = 0;

 protected:
  ~FolderObserver() = default;
};

class Folder : public std::enable_shared_from_this<Folder> {
 public:
  Folder(Folder* parent, StringView name, ItemType type) : parent_(parent), name_(name), type_(type) {}

  Folder* parent() const { return parent_; }  // null for the root
  const String& name() const { return name_; }
  ItemType type() const { return type_; }
  const std::vector<MessagePtr>& messages() const { return messages_; }  // in the order of arrival
  bool isGone() const { return gone_; }                                  // deleted, itself or with a folder above it
  const std::vector<std::shared_ptr<Folder>>& children() const { return children_; }
  std::shared_ptr<Folder> child(StringView name) const;  // null when there is none; names ignore case
  std::int32_t unreadCount() const;
  // Names from below the root down to this folder.
  std::vector<String> path() const;

  void addObserver(FolderObserver& observer) { observers_.push_back(&observer); }
  void removeObserver(FolderObserver& observer) { std::erase(observers_, &observer); }

  String description;
  MAPIFolder* view = nullptr;  // the live object-model folder, if any

 private:
  friend class Store;  // the only one who changes the tree

  template <class... P, class... A>
  void tell(void (FolderObserver::*what)(P...), const A&... arguments);

  Folder* parent_;
  String name_;
  ItemType type_;
  bool gone_ = false;
  std::vector<MessagePtr> messages_;
  std::vector<std::shared_ptr<Folder>> children_;
  std::vector<FolderObserver*> observers_;
};

}  // namespace mailclient
