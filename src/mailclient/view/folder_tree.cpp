#include "mailclient/view/folder_tree.h"

#include <algorithm>
#include <array>

#include "addin/platform/convert.h"
#include "mailclient/view/collate.h"

namespace mailclient {
namespace {

constexpr std::array order{DefaultFolder::Inbox,     DefaultFolder::Drafts,       DefaultFolder::Outbox,
                           DefaultFolder::SentItems, DefaultFolder::DeletedItems, DefaultFolder::Contacts,
                           DefaultFolder::Calendar,  DefaultFolder::Journal,      DefaultFolder::Notes,
                           DefaultFolder::Tasks};

std::size_t rank(const Store& store, const Folder& folder) {
  const auto* const at = std::find_if(order.begin(), order.end(),
                                      [&](DefaultFolder which) { return store.defaultFolder(which).get() == &folder; });
  return static_cast<std::size_t>(at - order.begin());
}

bool isWithoutView(ItemType type) {
  return type == ItemType::Appointment || type == ItemType::Task || type == ItemType::Journal || type == ItemType::Note;
}

bool countsAll(FolderKind kind) { return kind == FolderKind::Outbox || kind == FolderKind::Drafts; }

std::int32_t shownCount(const Store& store, const Folder& folder) {
  return countsAll(folderKind(store, folder)) ? static_cast<std::int32_t>(folder.messages().size())
                                              : folder.unreadCount();
}

}  // namespace

std::vector<std::shared_ptr<Folder>> shownChildren(const Store& store, const Folder& folder) {
  std::vector<std::shared_ptr<Folder>> shown;
  std::copy_if(folder.children().begin(), folder.children().end(), std::back_inserter(shown), [](const auto& f) {
    return !isWithoutView(f->type()) || !f->messages().empty() || !f->children().empty();
  });
  std::sort(shown.begin(), shown.end(), [&](const auto& a, const auto& b) {
    const std::size_t left = rank(store, *a);
    const std::size_t right = rank(store, *b);
    return left != right ? left < right : collate(a->name(), b->name()) < 0;
  });
  return shown;
}

String folderLabel(const Store& store, const Folder& folder) {
  const std::int32_t count = shownCount(store, folder);
  if (count == 0) return folder.name();
  const bool all = countsAll(folderKind(store, folder));
  return platform::concat(folder.name(), StringView(all ? u" [" : u" ("), count, StringView(all ? u"]" : u")"));
}

bool labelIsBold(const Store& store, const Folder& folder) { return shownCount(store, folder) != 0; }

String folderPath(const Folder& folder) {
  String path;
  for (const String& name : folder.path()) {
    if (!path.empty()) path += u'/';
    for (const char16_t c : name) {
      if (c == u'/' || c == u'\\') path += u'\\';
      path += c;
    }
  }
  return path;
}

std::shared_ptr<Folder> folderAt(const Store& store, StringView path) {
  std::shared_ptr<Folder> folder = store.root();
  while (folder && !path.empty()) {
    String name;
    std::size_t at = 0;
    for (; at < path.size() && path[at] != u'/'; ++at) {
      if (path[at] == u'\\' && at + 1 < path.size()) ++at;
      name += path[at];
    }
    folder = folder->child(name);
    path.remove_prefix(std::min(at + 1, path.size()));
  }
  return folder;
}

}  // namespace mailclient
