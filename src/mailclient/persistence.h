// Where a store keeps its items between two runs. Without one, a store lives in memory only.
#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "mailclient/folder.h"

namespace mailclient {

// A form that was published; a later one of the same class and registry replaces it.
struct PublishedForm {
  String messageClass;
  String name;
  String displayName;
  std::int32_t registry = 0;  // OlFormRegistry
  friend bool operator==(const PublishedForm&, const PublishedForm&) = default;
};

// A permanent button that a program added to a menu or toolbar.
struct SavedButton {
  std::int32_t menu = 0;  // the control identifier of the popup that it lies in; 0: directly on the bar
  String bar{};           // the name of the command bar
  String caption{};
  String tag{};
  String tooltip{};
  String parameter{};
  String onAction{};
  std::int32_t faceId = 0;
  std::int32_t style = 0;
  bool beginGroup = false;
  bool enabled = true;
  bool visible = true;
  friend bool operator==(const SavedButton&, const SavedButton&) = default;
};

// What a store remembers besides its folders and items.
struct StoreState {
  String storeId;            // 32 hexadecimal digits
  std::uint64_t nextId = 1;  // no EntryID at or above this number was ever given away
  std::vector<PublishedForm> forms;
  std::vector<SavedButton> buttons;
  std::map<String, String> settings;  // of the mail client's own window, by name
};

struct LoadedFolder {
  String name;
  ItemType type = ItemType::Mail;
  std::vector<MessagePtr> messages;
  std::vector<LoadedFolder> children;
};

struct LoadedStore {
  StoreState state;
  std::vector<LoadedFolder> folders;  // below the root
};

// Each call is finished, and safe on the disk, when it returns. Failures are RuntimeErrors, and leave what was stored
// before in place.
class Persistence {
 public:
  virtual ~Persistence() = default;
  virtual LoadedStore load() = 0;
  virtual void createFolder(const Folder& folder) = 0;
  virtual void renameFolder(const Folder& folder, StringView newName) = 0;
  virtual void removeFolder(const Folder& folder) = 0;  // with everything in it
  // Stores a new or changed message; sets its `file`.
  virtual void write(const Folder& folder, Message& message) = 0;
  // Stores the read state alone.
  virtual void writeReadState(const Folder& folder, Message& message) = 0;
  virtual void move(Message& message, const Folder& from, const Folder& to) = 0;
  virtual void erase(const Folder& folder, const Message& message) = 0;
  virtual void writeState(const StoreState& state) = 0;
  // The mail client ends in good order; `root` is what the next load() will find.
  virtual void finish(const Folder& /*root*/) {}
};

}  // namespace mailclient
