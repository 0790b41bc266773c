// The message list of an explorer window: a virtual list view, which asks for the rows that it paints.
#pragma once

#include <functional>

#include "mailclient/view/message_list.h"
#include "mailclient/win/icons.h"
#include "mailclient/win/shell.h"

namespace mailclient::win {

class MessageListView {
 public:
  struct Hears {
    std::function<void()> selectionChanged;  // by the user, or because a selected item has gone
    std::function<void()> open;
    std::function<void()> remove;
  };

  MessageListView(Shell& shell, Hears hears);
  MessageListView(const MessageListView&) = delete;
  MessageListView& operator=(const MessageListView&) = delete;

  void attach(HWND frame, int id);
  // Follows no folder any more: the window goes, the object perhaps later.
  void detach();
  HWND handle() const { return list_; }
  void show(const std::shared_ptr<Folder>& folder);
  const MessageList& model() const { return model_; }
  MessageList& model() { return model_; }

  LRESULT onNotify(const NMHDR& header);
  // Later than the events that it comes from: brings rows and selection up to date.
  void catchUp();
  bool isStale() const { return rowsStale_ || selectionStale_; }
  void select(const std::vector<MessagePtr>& messages);
  void selectAll();

  // Sorting and widths of the present folder's columns go into the settings.
  void rememberColumns();

 private:
  void makeColumns();
  void showSorting();
  void applyRows();
  void takeSelection();
  void setFocus(int row);
  void focusRow(std::size_t row);
  void fill(NMLVDISPINFOW& wanted) const;
  LRESULT paint(NMLVCUSTOMDRAW& what) const;
  LRESULT findRow(const NMLVFINDITEMW& sought) const;
  void note(bool& stale);
  String settingName() const;
  const Message* messageAt(int row) const;

  Shell& shell_;
  Hears hears_;
  HWND list_ = nullptr;
  MessageList model_;
  FolderKind kind_ = FolderKind::Plain;
  std::vector<Column> columns_;
  bool rowsStale_ = false;
  bool selectionStale_ = false;
  bool applying_ = false;
};

// Posted to the frame when catchUp() has something to do.
inline constexpr UINT listIsStale = WM_APP + 10;

}  // namespace mailclient::win
