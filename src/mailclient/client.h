// The stand-in mail client: its store, its windows, its menus, and what a user would do with them.
//
// Programs see it through application(); its host (a test, or the program mailclient.exe) works with it directly. The
// order of things is the mail client's: an event fires inside the call that causes it.
#pragma once

#include <functional>

#include "mailclient/addins.h"
#include "mailclient/assistant.h"
#include "mailclient/command_bars.h"
#include "mailclient/environment.h"
#include "mailclient/model_object.h"
#include "mailclient/property_pages.h"
#include "mailclient/store.h"
#include "mailclient/windows.h"

namespace mailclient {

class Application;
class NameSpace;

struct ClientOptions {
  std::shared_ptr<Environment> environment = std::make_shared<Environment>();
  std::unique_ptr<Persistence> persistence{};  // null: in memory only
  AssistantPresence assistant = AssistantPresence::Present;
  std::vector<std::int32_t> menusLeftOut{};  // control identifiers of built-in popups that the menu bar lacks
  String userName = u"User";
};

class MailClient : public std::enable_shared_from_this<MailClient> {
 public:
  static ClientPtr create(ClientOptions options = {});
  explicit MailClient(ClientOptions options);  // for create()

  Store& store() { return store_; }
  Environment& environment() { return *environment_; }
  const String& userName() const { return userName_; }
  Windows& windows() { return windows_; }
  BarSet& explorerBars() { return explorerBars_; }
  AssistantState& assistant() { return assistant_; }
  AddIns& addIns() { return addIns_; }

  // The objects that programs start from.
  Ref<Application> application();
  Ref<NameSpace> nameSpace();
  // The object of an item or folder.
  Ref<Item> itemObject(const MessagePtr& message);
  Ref<MAPIFolder> folderObject(const std::shared_ptr<Folder>& folder);

  // A new item of any class, to be saved into `folder`.
  MessagePtr createItem(Folder& folder, StringView messageClass);

  // The Options dialog: asks every listener for its pages.
  std::vector<OptionsPage> collectOptionsPages();

  // Stores the permanent buttons; a host calls it between two commands and at the end.
  void saveSettings();
  // Closes the windows, tells every listener that the program ends, and saves: all of it, once, and then the first
  // failure is raised. A host ends with it.
  void quit();
  // What a program means by Quit: the host's own end, where there is a host.
  void exit();
  std::function<void()> endProgram;

  Census census;  // live objects by class

  View<Application> applicationView;
  View<NameSpace> nameSpaceView;

 private:
  std::shared_ptr<Environment> environment_;
  String userName_;
  Store store_;
  BarSet explorerBars_;
  AssistantState assistant_;
  Windows windows_;
  AddIns addIns_;
  bool ended_ = false;
};

}  // namespace mailclient
