// The store on disk: a Maildir++ tree, one message file per item, which other mail programs can read.
//
//   <root>/                  the Inbox, itself a Maildir: cur/, new/, tmp/
//   <root>/.Sent Items/      a folder: a Maildir with an empty-named marker file "maildirfolder" that tells its type
//   <root>/.Contacts.Work/   a folder inside another; names are in modified UTF-7, as IMAP servers write them
//   <root>/mailclient.state  what the store remembers besides (see state_file.h)
//   <root>/mailclient.cache  a copy of a large store's files (see store_cache.h)
//
// A file is written to tmp/ and renamed into cur/, so that it is there as a whole or not at all; a changed item
// replaces its file in the same way; moving an item and its read state are one rename each. So a crash at any point
// loses nothing that was saved and doubles nothing. File names are "<time>.<number>_<item>.mailclient:2,<flags>", and
// sort in the order of arrival. The flag S (seen) is the read state. ":" names a stream of a file on Windows, so there
// the separator is ";"; both are read.
//
// One process at a time works on a tree: it holds <root>/mailclient.lock. Files of other programs are read as far as
// they can be, and never changed or removed unless the user does so with their item; what lies in tmp/ is left alone.
#pragma once

#include <memory>

#include "mailclient/environment.h"
#include "mailclient/persistence.h"
#include "mailclient/store_cache.h"

namespace mailclient {

inline constexpr char flagSeparator = std::filesystem::path::preferred_separator == u'\\' ? ';' : ':';

class Maildir final : public Persistence {
 public:
  Maildir(std::filesystem::path root, std::shared_ptr<Environment> environment, char separator = flagSeparator,
          std::size_t worthACache = 500);

  LoadedStore load() override;
  void createFolder(const Folder& folder) override;
  void renameFolder(const Folder& folder, StringView newName) override;
  void removeFolder(const Folder& folder) override;
  void write(const Folder& folder, Message& message) override;
  void writeReadState(const Folder& folder, Message& message) override;
  void move(Message& message, const Folder& from, const Folder& to) override;
  void erase(const Folder& folder, const Message& message) override;
  void writeState(const StoreState& state) override;
  void finish(const Folder& root) override;

 private:
  std::filesystem::path folderPath(const std::vector<String>& names) const;
  std::filesystem::path folderPath(const Folder& folder) const { return folderPath(folder.path()); }
  // A name for a message's file that is free in cur/ of `folder`, and sorts behind every other.
  std::string freshBase(const Message& message, const std::filesystem::path& folder);
  // Stores a file as a whole; `name` is its place below `folder`.
  FileStamp replaceFile(const std::filesystem::path& folder, const std::filesystem::path& name,
                        const std::string& content);
  void loadMessages(const std::filesystem::path& folder, LoadedFolder& into);
  MessagePtr loadMessage(const std::filesystem::path& file, const FileStamp& stamp, std::string_view content);
  void noteArrival(const std::string& base);
  // The name of a message's file in the cache.
  std::string cacheKey(const std::filesystem::path& folder, const std::string& base) const;
  std::string cacheOf(const Folder& root) const;
  void dropCache();

  std::filesystem::path root_;
  std::shared_ptr<Environment> environment_;
  char separator_;
  std::size_t worthACache_;  // messages: of fewer, the files themselves are read quickly enough
  String storeId_;
  std::shared_ptr<void> lock_;    // the tree is ours
  StoreCache cache_;              // while loading
  std::size_t fromCache_ = 0;     // messages that came out of it
  bool cacheIsTrue_ = false;      // what lies on the disk holds every message, and nothing else
  std::uint64_t highestId_ = 0;   // of the EntryIDs that were found
  std::uint64_t lastSecond_ = 0;  // the last name that was made or found: seconds since 1970,
  std::uint64_t lastNumber_ = 0;  // and the number within that second
};

}  // namespace mailclient
