#include "mailclient/client.h"

#include <utility>

#include "addin/platform/outlook.h"
#include "mailclient/application.h"
#include "mailclient/events.h"
#include "mailclient/item.h"
#include "mailclient/steps.h"

namespace mailclient {

ClientPtr MailClient::create(ClientOptions options) { return std::make_shared<MailClient>(std::move(options)); }

MailClient::MailClient(ClientOptions options)
    : environment_(std::move(options.environment)),
      userName_(std::move(options.userName)),
      store_(std::move(options.persistence)),
      explorerBars_(options.menusLeftOut, store_.state().buttons),
      windows_(*this) {
  assistant_.presence = options.assistant;
}

Ref<Application> MailClient::application() { return applicationView.get(shared_from_this()); }
Ref<NameSpace> MailClient::nameSpace() { return nameSpaceView.get(shared_from_this()); }

Ref<Item> MailClient::itemObject(const MessagePtr& message) {
  return message->view ? Ref<Item>(message->view) : Item::create(shared_from_this(), message);
}

Ref<MAPIFolder> MailClient::folderObject(const std::shared_ptr<Folder>& folder) {
  return folder->view ? Ref<MAPIFolder>(folder->view) : make<MAPIFolder>(shared_from_this(), folder);
}

MessagePtr MailClient::createItem(Folder& folder, StringView messageClass) {
  if (messageClass.empty()) raiseError(5);
  return Store::create(folder, messageClass);
}

std::vector<OptionsPage> MailClient::collectOptionsPages() {
  const Ref<PropertyPages> pages = make<PropertyPages>(shared_from_this());
  application().get()->fire(platform::outlook::ApplicationEvents::OptionsPagesAdd, pages.get()->object());
  return pages.get()->pages();
}

void MailClient::saveSettings() { store_.saveButtons(explorerBars_.permanentButtons()); }

void MailClient::quit() {
  if (std::exchange(ended_, true)) return;
  Steps steps;
  steps.run([&] { windows_.closeAll(); });
  steps.run([&] { application().get()->fire(ApplicationEvents::Quit); });
  steps.run([&] { saveSettings(); });
  steps.run([&] { store_.finish(); });
  steps.raise();
}

void MailClient::exit() {
  const auto end = endProgram;
  if (end)
    end();
  else
    quit();
}

}  // namespace mailclient
