#include "stage.h"

#include "../measure.h"
#include "com/bridge.h"
#include "com/windows.h"
#include "mailclient/application.h"

namespace bench {

using mailclient::DefaultFolder;
using platform::Object;

void install() {
  for (const std::string& line : testing_support::registerProduct()) require(!line.starts_with("failed"), line.c_str());
  testing_support::removeAllOptions();
  testing_support::setOption(L"WizardDone", 1);
  testing_support::setOption(L"My_FullName", L"Eva Moberg");
  testing_support::setOption(L"My_PhoneNo", L"+46700000001");
  testing_support::setOption(L"SendReceive_UseAuto", 0u);
  const auto handset = testing_support::Handset::connect();
  handset.Plug();
  for (const std::int32_t store : {1, 2}) handset.Clear(store);
  handset.ClearSent();
}

Stage::Stage() : client_(mailclient::MailClient::create()), console_(*client_, *this) {
  client_->windows().openExplorer(client_->store().defaultFolder(DefaultFolder::Inbox));
  entry_ = client_->addIns().add(u"mrktxtmsg.connect", u"");
}

Stage::~Stage() { client_->quit(); }

Object Stage::application() const { return client_->application().get()->object(); }

Object Stage::addInInst() const { return entry_->view.get(client_, entry_).get()->object(); }

std::size_t Stage::addedButtons() const {
  std::size_t count = 0;
  client_->explorerBars().forEach(
      [&](const mailclient::ControlPtr& control) { count += control->builtIn || control->deleted ? 0 : 1; });
  return count;
}

std::string Stage::tell(const std::string& command) {
  console_.execute(command);
  const std::string result = last_.substr(last_.find(' ') + 1);
  require(result.starts_with("ok"), (command + ": " + result).c_str());
  return result;
}

void Stage::awaitItems(const std::string& folder, int count) {
  const std::string command = "wait \"" + folder + "\" " + std::to_string(count) + " 60000";
  require(tell(command) == "ok yes", command.c_str());
}

bool Stage::waitUntil(const std::function<bool()>& condition, std::int32_t milliseconds) {
  return testing_support::waitUntil(condition, static_cast<std::uint32_t>(milliseconds));
}

double processorSeconds(void* process) {
  FILETIME created, ended, kernel, user;
  require(GetProcessTimes(process, &created, &ended, &kernel, &user), "the process can be asked");
  const auto ticks = [](const FILETIME& t) {
    return static_cast<std::int64_t>(t.dwHighDateTime) * 4294967296 + t.dwLowDateTime;
  };
  return static_cast<double>(ticks(kernel) + ticks(user)) * 1e-7;
}

}  // namespace bench
