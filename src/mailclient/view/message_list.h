// The rows of a message list: the items of a folder in the chosen order, and which of them are selected. It follows the
// folder; whoever paints it is told after each change.
#pragma once

#include <functional>
#include <optional>
#include <unordered_set>

#include "mailclient/view/columns.h"

namespace mailclient {

struct Sorting {
  Column column = Column::Received;
  bool descending = true;
  friend bool operator==(const Sorting&, const Sorting&) = default;
};

class MessageList final : private FolderObserver {
 public:
  // `rowsChanged` hears that rows were added, removed or have moved; `rowChanged` that one looks different.
  struct Painter {
    std::function<void()> rowsChanged = [] {};
    std::function<void(std::size_t row)> rowChanged = [](std::size_t) {};
  };

  explicit MessageList(Painter painter) : painter_(std::move(painter)) {}
  MessageList(const MessageList&) = delete;
  MessageList& operator=(const MessageList&) = delete;
  ~MessageList();

  // Shows a folder, or none; nothing is selected then.
  void show(std::shared_ptr<Folder> folder, Sorting sorting);
  const std::shared_ptr<Folder>& folder() const { return folder_; }
  const Sorting& sorting() const { return sorting_; }
  // The same column again turns the order round.
  void sortBy(Column column, bool descendingFirst);
  void sort(Sorting sorting);

  const std::vector<MessagePtr>& rows() const { return rows_; }
  std::optional<std::size_t> rowOf(const MessagePtr& message) const;

  void select(std::vector<MessagePtr> messages);
  bool isSelected(const MessagePtr& message) const { return selected_.contains(message.get()); }
  bool hasSelection() const { return !selected_.empty(); }
  // In the order of the rows.
  std::vector<MessagePtr> selection() const;

  // Of the selected rows, the one to select when they have gone: the one below them, else the one above.
  MessagePtr neighbourOfSelection() const;

 private:
  void itemAdded(const MessagePtr& message) override;
  void itemChanged(const MessagePtr& message) override;
  void itemRemoved() override;

  bool before(const MessagePtr& a, const MessagePtr& b) const;
  bool isHere(const MessagePtr& message) const { return !message->gone && message->folder == folder_.get(); }
  void insert(const MessagePtr& message);
  void leave();

  Painter painter_;
  std::shared_ptr<Folder> folder_;
  Sorting sorting_;
  std::vector<MessagePtr> rows_;
  std::unordered_set<const Message*> selected_;  // all of them rows
};

}  // namespace mailclient
