#include "mailclient/view/message_list.h"

#include <algorithm>

namespace mailclient {

MessageList::~MessageList() { leave(); }

void MessageList::leave() {
  if (folder_) folder_->removeObserver(*this);
  folder_ = nullptr;
}

void MessageList::show(std::shared_ptr<Folder> folder, Sorting sorting) {
  leave();
  folder_ = std::move(folder);
  sorting_ = sorting;
  selected_.clear();
  rows_.clear();
  if (folder_) {
    folder_->addObserver(*this);
    rows_ = folder_->messages();
    std::stable_sort(rows_.begin(), rows_.end(), [&](const auto& a, const auto& b) { return before(a, b); });
  }
  painter_.rowsChanged();
}

bool MessageList::before(const MessagePtr& a, const MessagePtr& b) const {
  const int order = compare(*a, *b, sorting_.column);
  if (order == 0) return isNewer(*a, *b, sorting_.column);
  return sorting_.descending ? order > 0 : order < 0;
}

void MessageList::sortBy(Column column, bool descendingFirst) {
  sort({column, column == sorting_.column ? !sorting_.descending : descendingFirst});
}

void MessageList::sort(Sorting sorting) {
  if (sorting == sorting_) return;
  sorting_ = sorting;
  std::stable_sort(rows_.begin(), rows_.end(), [&](const auto& a, const auto& b) { return before(a, b); });
  painter_.rowsChanged();
}

std::optional<std::size_t> MessageList::rowOf(const MessagePtr& message) const {
  const auto at = std::find(rows_.begin(), rows_.end(), message);
  if (at == rows_.end()) return std::nullopt;
  return static_cast<std::size_t>(at - rows_.begin());
}

void MessageList::select(std::vector<MessagePtr> messages) {
  selected_.clear();
  for (const MessagePtr& message : messages)
    if (folder_ && isHere(message)) selected_.insert(message.get());
}

std::vector<MessagePtr> MessageList::selection() const {
  std::vector<MessagePtr> messages;
  if (selected_.empty()) return messages;
  std::copy_if(rows_.begin(), rows_.end(), std::back_inserter(messages),
               [&](const MessagePtr& m) { return isSelected(m); });
  return messages;
}

MessagePtr MessageList::neighbourOfSelection() const {
  const auto chosen = [&](const MessagePtr& m) { return isSelected(m); };
  const auto last = std::find_if(rows_.rbegin(), rows_.rend(), chosen);
  if (last == rows_.rend()) return nullptr;
  if (last != rows_.rbegin()) return *std::prev(last);
  const auto above = std::find_if_not(last, rows_.rend(), chosen);
  return above == rows_.rend() ? nullptr : *above;
}

void MessageList::insert(const MessagePtr& message) {
  const auto at =
      std::upper_bound(rows_.begin(), rows_.end(), message, [&](const auto& a, const auto& b) { return before(a, b); });
  rows_.insert(at, message);
}

// Another observer may have moved it on already.
void MessageList::itemAdded(const MessagePtr& message) {
  if (!isHere(message) || rowOf(message)) return;
  insert(message);
  painter_.rowsChanged();
}

// A change of what it is sorted by moves the row.
void MessageList::itemChanged(const MessagePtr& message) {
  const auto row = rowOf(message);
  if (!row) return;
  const bool inPlace = (*row == 0 || !before(message, rows_[*row - 1])) &&
                       (*row + 1 == rows_.size() || !before(rows_[*row + 1], message));
  if (inPlace) {
    painter_.rowChanged(*row);
    return;
  }
  const MessagePtr moved = message;
  rows_.erase(rows_.begin() + static_cast<std::ptrdiff_t>(*row));
  insert(moved);
  painter_.rowsChanged();
}

void MessageList::itemRemoved() {
  std::erase_if(rows_, [&](const MessagePtr& m) {
    if (isHere(m)) return false;
    selected_.erase(m.get());
    return true;
  });
  painter_.rowsChanged();
}

}  // namespace mailclient
