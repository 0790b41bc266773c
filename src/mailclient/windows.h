// The windows: explorers (a folder's contents) and inspectors (one item), and the objects that stand for them.
//
// A closing window is still open, and counted, while its Close event runs.
#pragma once

#include <optional>
#include <variant>
#include <vector>

#include "mailclient/folder.h"
#include "mailclient/model_object.h"

namespace mailclient {

class CommandBars;
class Explorer;
class Inspector;
class Selection;

struct ExplorerWindow {
  std::shared_ptr<Folder> folder;
  std::vector<MessagePtr> selection;
  std::int32_t state = 2;  // OlWindowState: normal
  bool closing = false;
  View<Explorer> view;
};
using ExplorerPtr = std::shared_ptr<ExplorerWindow>;

struct InspectorWindow {
  MessagePtr message;
  bool closing = false;
  View<Inspector> view;
};
using InspectorPtr = std::shared_ptr<InspectorWindow>;

class Explorers final : public ModelObject {
 public:
  explicit Explorers(ClientPtr client) : ModelObject(std::move(client), u"Explorers") {}
  std::span<const Member> members() const override;
  Guid events() const override;
  void terminate() noexcept override;
  std::int32_t objectClass() const override { return 60; }

  Ref<Explorer> add(const Object& folder, std::optional<std::int32_t> displayMode);
  std::int32_t count();
  Ref<Explorer> item(const Variant& index);
};

class Inspectors final : public ModelObject {
 public:
  explicit Inspectors(ClientPtr client) : ModelObject(std::move(client), u"Inspectors") {}
  std::span<const Member> members() const override;
  Guid events() const override;
  void terminate() noexcept override;
  std::int32_t objectClass() const override { return 61; }

  Ref<Inspector> add(const Object& item);
  std::int32_t count();
  Ref<Inspector> item(const Variant& index);
};

class Explorer final : public ModelObject {
 public:
  Explorer(ClientPtr client, ExplorerPtr window)
      : ModelObject(std::move(client), u"Explorer"), window_(std::move(window)) {}
  std::span<const Member> members() const override;
  Guid events() const override;
  void terminate() noexcept override { window_->view.leave(); }
  std::int32_t objectClass() const override { return 34; }

  void activate();
  String caption();
  void close();
  Ref<CommandBars> commandBars();
  Ref<MAPIFolder> currentFolder();
  void putCurrentFolder(const Object& folder);
  void display();
  Ref<Selection> selection();
  std::int32_t windowState();
  void putWindowState(std::int32_t state);

 private:
  ExplorerPtr window_;
};

class Inspector final : public ModelObject {
 public:
  Inspector(ClientPtr client, InspectorPtr window)
      : ModelObject(std::move(client), u"Inspector"), window_(std::move(window)) {}
  std::span<const Member> members() const override;
  Guid events() const override;
  void terminate() noexcept override { window_->view.leave(); }
  std::int32_t objectClass() const override { return 35; }

  void activate();
  String caption();
  void close(std::int32_t saveMode);
  Ref<Item> currentItem();
  void display(std::optional<bool> modal);
  std::int32_t editorType() { return 1; }  // olEditorText
  bool isWordMail() { return false; }

 private:
  InspectorPtr window_;
};

// What is selected at the moment of asking.
class Selection final : public ModelObject {
 public:
  Selection(ClientPtr client, std::vector<MessagePtr> messages)
      : ModelObject(std::move(client), u"Selection"), messages_(std::move(messages)) {}
  std::span<const Member> members() const override;
  std::int32_t objectClass() const override { return 74; }

  std::int32_t count() { return static_cast<std::int32_t>(messages_.size()); }
  Ref<Item> item(const Variant& index);

 private:
  std::vector<MessagePtr> messages_;
};

// Who shows the windows on a screen; without one they are only kept. It tells Windows what the user does with them.
class WindowsHost {
 public:
  virtual void opened(const ExplorerPtr& window) = 0;
  virtual void opened(const InspectorPtr& window) = 0;
  // Brought to the front; the host reports back when the system has made it the active one.
  virtual void toFront(const ExplorerPtr& window) = 0;
  virtual void toFront(const InspectorPtr& window) = 0;
  virtual void closed(const ExplorerPtr& window) = 0;
  virtual void closed(const InspectorPtr& window) = 0;
  virtual void folderShown(const ExplorerPtr& window) = 0;
  virtual void selectionChanged(const ExplorerPtr& window) = 0;
  virtual void stateChanged(const ExplorerPtr& window) = 0;

 protected:
  ~WindowsHost() = default;
};

class Windows {
 public:
  explicit Windows(MailClient& client) : client_(client) {}

  WindowsHost* host = nullptr;

  const std::vector<ExplorerPtr>& explorers() const { return explorers_; }
  const std::vector<InspectorPtr>& inspectors() const { return inspectors_; }

  // A new window, in front of the others.
  ExplorerPtr openExplorer(const std::shared_ptr<Folder>& folder);
  // The item's window: the one that is open, or a new one; brought to the front.
  InspectorPtr openInspector(const MessagePtr& message);
  void activate(const ExplorerPtr& window);
  void activate(const InspectorPtr& window);
  // The window has become the active one, or is no longer.
  void activated(const ExplorerPtr& window);
  void activated(const InspectorPtr& window);
  void deactivated(const ExplorerPtr& window);
  void deactivated(const InspectorPtr& window);
  void close(ExplorerPtr window);
  void close(InspectorPtr window);
  void closeInspectorsOf(const MessagePtr& message);
  void closeAll();

  // False when a listener refused.
  bool showFolder(const ExplorerPtr& window, const std::shared_ptr<Folder>& folder);
  void select(const ExplorerPtr& window, std::vector<MessagePtr> messages);

  Ref<Explorer> explorerObject(const ExplorerPtr& window);
  Ref<Inspector> inspectorObject(const InspectorPtr& window);
  // The frontmost of its kind, or Nothing.
  Object activeExplorer();
  Object activeInspector();
  Object activeWindow();

  View<Explorers> explorersView;
  View<Inspectors> inspectorsView;

 private:
  using Any = std::variant<ExplorerPtr, InspectorPtr>;
  template <class Window>
  void show(const std::shared_ptr<Window>& window);
  template <class Window>
  bool makeActive(const std::shared_ptr<Window>& window);  // false when it was closed instead
  void leaveActive();
  void forget(const Any& window);

  MailClient& client_;
  std::vector<ExplorerPtr> explorers_;    // in the order of opening
  std::vector<InspectorPtr> inspectors_;  // in the order of opening
  std::vector<Any> order_;                // the frontmost is the last
  std::optional<Any> active_;             // the one with the user's attention, if it is one of ours
};

}  // namespace mailclient
