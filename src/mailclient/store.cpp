#include "mailclient/store.h"

#include <algorithm>
#include <array>
#include <utility>

namespace mailclient {
namespace {

struct DefaultEntry {
  DefaultFolder which;
  StringView name;
  ItemType type;
};

constexpr std::array defaultEntries{
    DefaultEntry{DefaultFolder::Calendar, u"Calendar", ItemType::Appointment},
    DefaultEntry{DefaultFolder::Contacts, u"Contacts", ItemType::Contact},
    DefaultEntry{DefaultFolder::DeletedItems, u"Deleted Items", ItemType::Mail},
    DefaultEntry{DefaultFolder::Drafts, u"Drafts", ItemType::Mail},
    DefaultEntry{DefaultFolder::Inbox, u"Inbox", ItemType::Mail},
    DefaultEntry{DefaultFolder::Journal, u"Journal", ItemType::Journal},
    DefaultEntry{DefaultFolder::Notes, u"Notes", ItemType::Note},
    DefaultEntry{DefaultFolder::Outbox, u"Outbox", ItemType::Mail},
    DefaultEntry{DefaultFolder::SentItems, u"Sent Items", ItemType::Mail},
    DefaultEntry{DefaultFolder::Tasks, u"Tasks", ItemType::Task},
};

// EntryIDs are numbered; the number's upper limit is stored ahead in steps of this size, so that no number comes back
// after a crash and not every new item costs a write of its own.
constexpr std::uint64_t idsPerStep = 256;

String hexadecimal(std::uint64_t number) {
  constexpr StringView digits = u"0123456789ABCDEF";
  String text(16, u'0');
  for (auto at = text.rbegin(); number != 0; ++at, number >>= 4) *at = digits[number & 15];
  return text;
}

}  // namespace

template <class... P, class... A>
void Folder::tell(void (FolderObserver::*what)(P...), const A&... arguments) {
  const auto now = observers_;
  for (FolderObserver* const observer : now)
    if (std::find(observers_.begin(), observers_.end(), observer) != observers_.end()) (observer->*what)(arguments...);
}

Store::Store(std::unique_ptr<Persistence> persistence)
    : persistence_(std::move(persistence)),
      root_(std::make_shared<Folder>(nullptr, u"Personal Folders", ItemType::Mail)) {
  state_.storeId.assign(32, u'0');
  if (persistence_) {
    LoadedStore loaded = persistence_->load();
    state_ = std::move(loaded.state);
    nextId_ = state_.nextId;
    for (LoadedFolder& f : loaded.folders) {
      root_->children_.push_back(std::make_shared<Folder>(root_.get(), f.name, f.type));
      fill(*root_->children_.back(), f);
    }
  }
  addDefaultFolders();
}

void Store::fill(Folder& folder, LoadedFolder& loaded) {
  folder.messages_ = std::move(loaded.messages);
  for (const MessagePtr& message : folder.messages_) {
    message->folder = &folder;
    message->changed = false;
    if (message->entryId.empty()) message->entryId = newEntryId();
  }
  for (LoadedFolder& below : loaded.children) {
    folder.children_.push_back(std::make_shared<Folder>(&folder, below.name, below.type));
    fill(*folder.children_.back(), below);
  }
}

void Store::addDefaultFolders() {
  for (const DefaultEntry& entry : defaultEntries)
    if (const auto existing = root_->child(entry.name))
      existing->type_ = entry.type;
    else
      addFolder(*root_, entry.name, entry.type);
}

std::shared_ptr<Folder> Store::defaultFolder(DefaultFolder which) const {
  const auto* const entry = std::find_if(defaultEntries.begin(), defaultEntries.end(),
                                         [&](const DefaultEntry& e) { return e.which == which; });
  if (entry == defaultEntries.end()) raiseError(5);
  return root_->child(entry->name);
}

MessagePtr Store::find(StringView entryId) const {
  std::vector<const Folder*> waiting{root_.get()};
  while (!waiting.empty()) {
    const Folder* const folder = waiting.back();
    waiting.pop_back();
    for (const MessagePtr& message : folder->messages_)
      if (message->entryId == entryId) return message;
    for (const auto& below : folder->children_) waiting.push_back(below.get());
  }
  return nullptr;
}

String Store::newEntryId() {
  if (nextId_ >= state_.nextId) {
    StoreState ahead = state_;
    ahead.nextId = nextId_ + idsPerStep;
    if (persistence_) persistence_->writeState(ahead);
    state_ = std::move(ahead);
  }
  return u"00000000" + state_.storeId + hexadecimal(nextId_++);
}

MessagePtr Store::create(Folder& folder, StringView messageClass) {
  auto message = std::make_shared<Message>();
  (*message)[Text::MessageClass] = messageClass;
  message->folder = &folder;
  return message;
}

void Store::save(const MessagePtr& given, const Stored& stored) {
  const MessagePtr message = given;  // the caller's may be the list's own
  Folder* const folder = message->folder;
  if (message->gone || folder->isGone()) fail(failure::deleted, u"The item has been moved or deleted.");
  if (folder == root_.get()) fail(failure::noAccess, u"This folder cannot hold items.");
  const bool isNew = !message->saved();
  if (isNew) message->entryId = newEntryId();
  try {
    if (persistence_) persistence_->write(*folder, *message);
  } catch (const RuntimeError&) {
    if (isNew) message->entryId.clear();
    throw;
  }
  message->changed = false;
  if (isNew) folder->messages_.push_back(message);
  stored();
  folder->tell(isNew ? &FolderObserver::itemAdded : &FolderObserver::itemChanged, message);
}

void Store::setUnread(const MessagePtr& given, bool unread) {
  const MessagePtr message = given;
  if (message->gone) fail(failure::deleted, u"The item has been moved or deleted.");
  if (message->unread == unread) return;
  message->unread = unread;
  if (!message->saved()) return;
  try {
    if (persistence_) persistence_->writeReadState(*message->folder, *message);
  } catch (const RuntimeError&) {
    message->unread = !unread;
    throw;
  }
  message->folder->tell(&FolderObserver::itemChanged, message);
}

// Searched from the end: what is moved or deleted has mostly just arrived.
void Store::take(const MessagePtr& message) {
  auto& messages = message->folder->messages_;
  const auto at = std::find(messages.rbegin(), messages.rend(), message);
  if (at != messages.rend()) messages.erase(std::next(at).base());
}

void Store::move(const MessagePtr& given, Folder& to, const Stored& stored) {
  const MessagePtr message = given;
  if (message->gone || to.isGone()) fail(failure::deleted, u"The item has been moved or deleted.");
  if (&to == root_.get()) fail(failure::noAccess, u"This folder cannot hold items.");
  Folder* const from = message->folder;
  if (!message->saved()) {
    Folder* const planned = std::exchange(message->folder, &to);
    try {
      save(message, stored);
    } catch (const RuntimeError&) {
      if (!message->saved()) message->folder = planned;
      throw;
    }
    return;
  }
  if (from == &to) {
    stored();
    return;
  }
  if (persistence_) persistence_->move(*message, *from, to);
  take(message);
  to.messages_.push_back(message);
  message->folder = &to;
  stored();
  from->tell(&FolderObserver::itemRemoved);
  to.tell(&FolderObserver::itemAdded, message);
}

bool Store::isDeleted(const Folder& folder) const {
  const Folder* const deletedItems = defaultFolder(DefaultFolder::DeletedItems).get();
  for (const Folder* f = &folder; f; f = f->parent_)
    if (f == deletedItems) return true;
  return false;
}

void Store::remove(const MessagePtr& given, const Stored& stored) {
  const MessagePtr message = given;
  if (message->gone) fail(failure::deleted, u"The item has been moved or deleted.");
  if (!message->saved()) {
    message->gone = true;
    stored();
    return;
  }
  Folder* const from = message->folder;
  if (!isDeleted(*from)) {
    move(message, *defaultFolder(DefaultFolder::DeletedItems), stored);
    return;
  }
  if (persistence_) persistence_->erase(*from, *message);
  take(message);
  message->gone = true;
  stored();
  from->tell(&FolderObserver::itemRemoved);
}

void Store::removeAll(const std::vector<MessagePtr>& messages) {
  std::vector<std::pair<MessagePtr, const Folder*>> all;
  for (const MessagePtr& message : messages) all.emplace_back(message, message->folder);
  for (const auto& [message, folder] : all)
    if (!message->gone && message->folder == folder) remove(message);
}

std::shared_ptr<Folder> Store::addFolder(Folder& parent, StringView name, ItemType type) {
  if (name.empty() || parent.isGone()) raiseError(5);
  if (parent.child(name)) fail(failure::collision, u"A folder with this name already exists.");
  auto folder = std::make_shared<Folder>(&parent, name, type);
  if (persistence_) persistence_->createFolder(*folder);
  parent.children_.push_back(folder);
  foldersChanged();
  return folder;
}

void Store::renameFolder(Folder& folder, StringView name) {
  if (!folder.parent_ || folder.isGone() || name.empty()) raiseError(5);
  for (const DefaultEntry& entry : defaultEntries)
    if (folder.parent_ == root_.get() && sameName(folder.name_, entry.name))
      fail(failure::noAccess, u"This folder cannot be renamed.");
  const auto other = folder.parent_->child(name);
  if (other && other.get() != &folder) fail(failure::collision, u"A folder with this name already exists.");
  if (persistence_) persistence_->renameFolder(folder, name);
  folder.name_ = name;
  foldersChanged();
}

void Store::removeFolder(Folder& folder) {
  if (!folder.parent_ || folder.isGone()) raiseError(5);
  for (const DefaultEntry& entry : defaultEntries)
    if (folder.parent_ == root_.get() && sameName(folder.name_, entry.name))
      fail(failure::noAccess, u"This folder cannot be deleted.");
  if (persistence_) persistence_->removeFolder(folder);
  std::vector<Folder*> waiting{&folder};
  std::vector<Folder*> emptied;
  while (!waiting.empty()) {
    Folder* const f = waiting.back();
    waiting.pop_back();
    f->gone_ = true;
    for (const MessagePtr& message : f->messages_) message->gone = true;
    if (!f->messages_.empty()) emptied.push_back(f);
    f->messages_.clear();
    for (const auto& below : f->children_) waiting.push_back(below.get());
  }
  const auto keep = std::find_if(folder.parent_->children_.begin(), folder.parent_->children_.end(),
                                 [&](const auto& f) { return f.get() == &folder; });
  removed_.push_back(*keep);
  folder.parent_->children_.erase(keep);
  for (Folder* const f : emptied) f->tell(&FolderObserver::itemRemoved);
  foldersChanged();
}

void Store::publishForm(PublishedForm form) {
  StoreState next = state_;
  std::erase_if(next.forms, [&](const PublishedForm& f) {
    return f.registry == form.registry && sameName(f.messageClass, form.messageClass);
  });
  next.forms.push_back(std::move(form));
  if (persistence_) persistence_->writeState(next);
  state_ = std::move(next);
}

void Store::saveButtons(std::vector<SavedButton> buttons) {
  if (buttons == state_.buttons) return;
  StoreState next = state_;
  next.buttons = std::move(buttons);
  if (persistence_) persistence_->writeState(next);
  state_ = std::move(next);
}

void Store::saveSettings(std::map<String, String> settings) {
  if (settings == state_.settings) return;
  StoreState next = state_;
  next.settings = std::move(settings);
  if (persistence_) persistence_->writeState(next);
  state_ = std::move(next);
}

void Store::finish() {
  if (persistence_) persistence_->finish(*root_);
}

}  // namespace mailclient
