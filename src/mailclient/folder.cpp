#include "mailclient/folder.h"

#include <algorithm>

namespace mailclient {

StringView messageClassOf(ItemType type) {
  switch (type) {
    case ItemType::Mail:
      return u"IPM.Note";
    case ItemType::Appointment:
      return u"IPM.Appointment";
    case ItemType::Contact:
      return u"IPM.Contact";
    case ItemType::Task:
      return u"IPM.Task";
    case ItemType::Journal:
      return u"IPM.Activity";
    case ItemType::Note:
      return u"IPM.StickyNote";
    case ItemType::Post:
      return u"IPM.Post";
  }
  raiseError(5);
}

std::shared_ptr<Folder> Folder::child(StringView name) const {
  const auto at =
      std::find_if(children_.begin(), children_.end(), [&](const auto& c) { return sameName(c->name_, name); });
  return at == children_.end() ? nullptr : *at;
}

std::int32_t Folder::unreadCount() const {
  return static_cast<std::int32_t>(
      std::count_if(messages_.begin(), messages_.end(), [](const MessagePtr& m) { return m->unread; }));
}

std::vector<String> Folder::path() const {
  std::vector<String> names;
  for (const Folder* f = this; f->parent_; f = f->parent_) names.push_back(f->name_);
  std::reverse(names.begin(), names.end());
  return names;
}

}  // namespace mailclient
