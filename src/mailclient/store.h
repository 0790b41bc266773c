// The store: folders and items, and every operation that changes them. An operation first makes the change last (on
// the disk), then makes it in memory, then tells those who observe the folders; so observers see the finished state,
// and may start operations of their own.
#pragma once

#include <functional>
#include <memory>

#include "mailclient/persistence.h"

namespace mailclient {

// The identifiers of OlDefaultFolders.
enum class DefaultFolder : std::int32_t {
  DeletedItems = 3,
  Outbox = 4,
  SentItems = 5,
  Inbox = 6,
  Calendar = 9,
  Contacts = 10,
  Journal = 11,
  Notes = 12,
  Tasks = 13,
  Drafts = 16
};

class Store {
 public:
  explicit Store(std::unique_ptr<Persistence> persistence = nullptr);
  Store(const Store&) = delete;
  Store& operator=(const Store&) = delete;

  const std::shared_ptr<Folder>& root() const { return root_; }
  std::shared_ptr<Folder> defaultFolder(DefaultFolder which) const;
  const StoreState& state() const { return state_; }

  // The first item with this EntryID; null when there is none. (A damaged store may hold two: both are kept.)
  MessagePtr find(StringView entryId) const;

  // A new item that `save` will put into `folder`.
  static MessagePtr create(Folder& folder, StringView messageClass);
  // `stored` runs when the change has been made, before anybody hears of it (here and below).
  using Stored = std::function<void()>;
  void save(
      const MessagePtr& message, const Stored& stored = [] {});
  void setUnread(const MessagePtr& message, bool unread);
  // Keeps the EntryID; an unsaved item is saved there.
  void move(
      const MessagePtr& message, Folder& to, const Stored& stored = [] {});
  // Into Deleted Items; from there (and from the folders below it), for good.
  void remove(
      const MessagePtr& message, const Stored& stored = [] {});
  // Each from the folder where it lies now. Those who hear of one may move or delete another: that one is left as it
  // is then, because among the deleted items a second removal would be for good.
  void removeAll(const std::vector<MessagePtr>& messages);

  // Hears that folders were added, renamed or removed.
  std::function<void()> foldersChanged = [] {};
  std::shared_ptr<Folder> addFolder(Folder& parent, StringView name, ItemType type);
  void renameFolder(Folder& folder, StringView name);
  void removeFolder(Folder& folder);  // with everything in it, for good

  void publishForm(PublishedForm form);
  void saveButtons(std::vector<SavedButton> buttons);
  void saveSettings(std::map<String, String> settings);
  // The mail client ends: what makes the next start quicker is stored.
  void finish();

 private:
  String newEntryId();
  bool isDeleted(const Folder& folder) const;
  void fill(Folder& folder, LoadedFolder& loaded);
  void addDefaultFolders();
  static void take(const MessagePtr& message);

  std::unique_ptr<Persistence> persistence_;
  StoreState state_;
  std::uint64_t nextId_ = 1;
  std::shared_ptr<Folder> root_;
  std::vector<std::shared_ptr<Folder>> removed_;  // unsaved items and views may still point to them
};

}  // namespace mailclient
