// The folder tree of an explorer window.
#pragma once

#include <functional>

#include "mailclient/view/folder_tree.h"
#include "mailclient/win/icons.h"

namespace mailclient::win {

class FolderTreeView {
 public:
  // `chosen` hears which folder the user chose; `stale` that refresh() has something to do (from inside an operation on
  // the store, so it should only make a note).
  FolderTreeView(Store& store, std::function<void(const std::shared_ptr<Folder>&)> chosen, std::function<void()> stale);
  FolderTreeView(const FolderTreeView&) = delete;
  FolderTreeView& operator=(const FolderTreeView&) = delete;
  ~FolderTreeView();

  void attach(HWND frame, int id);
  // Follows no folder any more: the window goes, the object perhaps later.
  void detach();
  HWND handle() const { return tree_; }
  void refresh();
  void show(const std::shared_ptr<Folder>& folder);
  LRESULT onNotify(const NMHDR& header);
  // The names of the folders that are folded in.
  String collapsed() const { return collapsed_; }
  void setCollapsed(const String& names) { collapsed_ = names; }

 private:
  class Watcher;
  struct Node {
    std::shared_ptr<Folder> folder;
    HTREEITEM item;
    std::unique_ptr<Watcher> watcher;
  };

  void add(const std::shared_ptr<Folder>& folder, HTREEITEM parent, Art art);
  void build();
  bool matchesStore() const;
  void paintLabels();
  const Node* nodeOf(const Folder* folder) const;
  void rememberFolding(const NMTREEVIEWW& change);

  Store& store_;
  std::function<void(const std::shared_ptr<Folder>&)> chosen_;
  std::function<void()> stale_;
  HWND tree_ = nullptr;
  std::vector<Node> nodes_;
  std::shared_ptr<Folder> shown_;
  String collapsed_;
  bool applying_ = false;  // what changes now is not the user's doing
};

}  // namespace mailclient::win
