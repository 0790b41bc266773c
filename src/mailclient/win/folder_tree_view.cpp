#include "mailclient/win/folder_tree_view.h"

#include <algorithm>

namespace mailclient::win {

// A folder's unread count follows its items.
class FolderTreeView::Watcher final : public FolderObserver {
 public:
  Watcher(std::shared_ptr<Folder> folder, FolderTreeView& tree) : folder_(std::move(folder)), tree_(tree) {
    folder_->addObserver(*this);
  }
  Watcher(const Watcher&) = delete;
  Watcher& operator=(const Watcher&) = delete;
  ~Watcher() { folder_->removeObserver(*this); }

  void itemAdded(const MessagePtr&) override { tree_.stale_(); }
  void itemChanged(const MessagePtr&) override { tree_.stale_(); }
  void itemRemoved() override { tree_.stale_(); }

 private:
  std::shared_ptr<Folder> folder_;
  FolderTreeView& tree_;
};

FolderTreeView::FolderTreeView(Store& store, std::function<void(const std::shared_ptr<Folder>&)> chosen,
                               std::function<void()> stale)
    : store_(store), chosen_(std::move(chosen)), stale_(std::move(stale)) {}
FolderTreeView::~FolderTreeView() = default;

void FolderTreeView::detach() {
  tree_ = nullptr;
  nodes_.clear();
}

void FolderTreeView::attach(HWND frame, int id) {
  tree_ = makeControl(frame, WC_TREEVIEWW, L"Folders",
                      WS_TABSTOP | TVS_HASBUTTONS | TVS_LINESATROOT | TVS_HASLINES | TVS_SHOWSELALWAYS, id,
                      WS_EX_CLIENTEDGE);
  SendMessageW(tree_, TVM_SETIMAGELIST, TVSIL_NORMAL, reinterpret_cast<LPARAM>(Icons::instance().list()));
  SendMessageW(tree_, TVM_SETITEMHEIGHT, static_cast<WPARAM>(std::max(lineHeight(), scaled(16)) + scaled(5)), 0);
  build();
}

const FolderTreeView::Node* FolderTreeView::nodeOf(const Folder* folder) const {
  const auto at = std::find_if(nodes_.begin(), nodes_.end(), [&](const Node& n) { return n.folder.get() == folder; });
  return at == nodes_.end() ? nullptr : &*at;
}

void FolderTreeView::add(const std::shared_ptr<Folder>& folder, HTREEITEM parent, Art art) {
  String label = folderLabel(store_, *folder);
  TVINSERTSTRUCTW what{};
  what.hParent = parent;
  what.hInsertAfter = TVI_LAST;
  what.item.mask = TVIF_TEXT | TVIF_IMAGE | TVIF_SELECTEDIMAGE | TVIF_PARAM;
  what.item.pszText = reinterpret_cast<wchar_t*>(label.data());
  what.item.iImage = what.item.iSelectedImage = imageOf(art);
  what.item.lParam = reinterpret_cast<LPARAM>(folder.get());
  const auto item =
      reinterpret_cast<HTREEITEM>(SendMessageW(tree_, TVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&what)));
  nodes_.push_back({folder, item, std::make_unique<Watcher>(folder, *this)});
  for (const auto& below : shownChildren(store_, *folder)) add(below, item, artOf(folderKind(store_, *below)));
  const bool isCollapsed = (u"\n" + collapsed_).find(u"\n" + folderPath(*folder) + u"\n") != String::npos;
  if (!isCollapsed) SendMessageW(tree_, TVM_EXPAND, TVE_EXPAND, reinterpret_cast<LPARAM>(item));
}

void FolderTreeView::build() {
  applying_ = true;
  nodes_.clear();
  SendMessageW(tree_, WM_SETREDRAW, FALSE, 0);
  SendMessageW(tree_, TVM_DELETEITEM, 0, reinterpret_cast<LPARAM>(TVI_ROOT));
  add(store_.root(), TVI_ROOT, Art::Store);
  SendMessageW(tree_, WM_SETREDRAW, TRUE, 0);
  applying_ = false;
  paintLabels();
  if (shown_) show(shown_);
}

// The same folders in the same order.
bool FolderTreeView::matchesStore() const {
  std::vector<const Folder*> all;
  const std::function<void(const Folder&)> walk = [&](const Folder& folder) {
    all.push_back(&folder);
    for (const auto& below : shownChildren(store_, folder)) walk(*below);
  };
  walk(*store_.root());
  return std::equal(all.begin(), all.end(), nodes_.begin(), nodes_.end(),
                    [](const Folder* folder, const Node& node) { return node.folder.get() == folder; });
}

void FolderTreeView::paintLabels() {
  for (const Node& node : nodes_) {
    const String label = node.folder == store_.root() ? node.folder->name() : folderLabel(store_, *node.folder);
    wchar_t text[260];
    TVITEMW item{};
    item.mask = TVIF_HANDLE | TVIF_TEXT | TVIF_STATE;
    item.hItem = node.item;
    item.pszText = text;
    item.cchTextMax = 260;
    item.stateMask = TVIS_BOLD;
    SendMessageW(tree_, TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item));
    const UINT bold = labelIsBold(store_, *node.folder) ? TVIS_BOLD : 0;
    if (view(text) == label && (item.state & TVIS_BOLD) == bold) continue;
    item.pszText = const_cast<wchar_t*>(wide(label));
    item.state = bold;
    SendMessageW(tree_, TVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&item));
  }
}

void FolderTreeView::refresh() {
  if (matchesStore())
    paintLabels();
  else
    build();
}

void FolderTreeView::show(const std::shared_ptr<Folder>& folder) {
  shown_ = folder;
  const Node* const node = nodeOf(folder.get());
  if (!node) return;
  applying_ = true;
  SendMessageW(tree_, TVM_SELECTITEM, TVGN_CARET, reinterpret_cast<LPARAM>(node->item));
  applying_ = false;
}

void FolderTreeView::rememberFolding(const NMTREEVIEWW& change) {
  const Node* const node = nodeOf(reinterpret_cast<const Folder*>(change.itemNew.lParam));
  if (!node) return;
  const String name = folderPath(*node->folder) + u"\n";
  String all = u"\n" + collapsed_;
  if (const std::size_t at = all.find(u"\n" + name); at != String::npos) all.erase(at, name.size());
  collapsed_ = all.substr(1);
  if (change.action == TVE_COLLAPSE) collapsed_ += name;
}

LRESULT FolderTreeView::onNotify(const NMHDR& header) {
  const auto& change = reinterpret_cast<const NMTREEVIEWW&>(header);
  if (applying_) return 0;
  if (header.code == TVN_SELCHANGEDW) {
    const Node* const node = nodeOf(reinterpret_cast<const Folder*>(change.itemNew.lParam));
    if (node) chosen_(std::shared_ptr<Folder>(node->folder));
  } else if (header.code == TVN_ITEMEXPANDEDW) {
    rememberFolding(change);
  }
  return 0;
}

}  // namespace mailclient::win
