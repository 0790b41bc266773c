// The main window: folders, the list of one folder's items, and the item that is selected.
#pragma once

#include "mailclient/win/command_menus.h"
#include "mailclient/win/folder_tree_view.h"
#include "mailclient/win/message_list_view.h"
#include "mailclient/win/reading_pane.h"
#include "mailclient/win/status_bar.h"

namespace mailclient::win {

class ExplorerFrame final : public Window {
 public:
  ExplorerFrame(Shell& shell, ExplorerPtr window);

  bool open();  // false when there is no display
  void close();
  void toFront();
  void showFolder();
  void showSelection();
  void showState();
  void refreshCommands();
  void showPhone();
  void foldersChanged();
  bool isText(HWND control) const { return control == pane_.text(); }
  void rememberPlace();

  std::vector<std::string> menuItems() const { return menus_.describe(); }
  const ExplorerPtr& window() const { return window_; }
  // A built-in command that works on this window; false for one that does not.
  bool run(std::int32_t id);
  static constexpr const wchar_t* className = L"Marrick mail client explorer";

 protected:
  LRESULT onMessage(UINT message, WPARAM wide, LPARAM extra) override;

 private:
  void createControls();
  void layout();
  LRESULT onNotify(const NMHDR& header);
  LRESULT onCommand(UINT id);
  LRESULT onActivate(bool active);
  LRESULT onClose();
  void onMenuSelect(WPARAM wide);
  void onSplitter(UINT message, LPARAM where);
  bool onSetCursor();
  int splitterAt(POINT where) const;
  bool chooseFolder(const std::shared_ptr<Folder>& folder);
  void selectionChanged();
  void showItem();
  void showCounts();
  void updateCommands();
  void removeSelected();
  void markSelected(bool unread);
  void markShownAsRead();
  void newFolder();
  std::vector<MessagePtr> selected() const { return list_.model().selection(); }
  String caption() const;

  Shell& shell_;
  ExplorerPtr window_;
  CommandMenus menus_;
  FolderTreeView tree_;
  MessageListView list_;
  ReadingPane pane_;
  StatusBar status_;
  HWND focus_ = nullptr;  // the pane that had it when the window was left
  MessagePtr shown_;      // in the reading pane
  int treeWidth_ = 0;     // pixels
  int listShare_ = 55;    // of the height, in per cent
  bool paneVisible_ = true;
  int dragging_ = 0;  // the splitter that follows the mouse: 1 beside the tree, 2 below the list
  bool inMenu_ = false;
  bool staleMenus_ = false;
  bool staleTree_ = false;
  bool homeless_ = false;  // its folder has gone, and it is on its way to another
};

}  // namespace mailclient::win
