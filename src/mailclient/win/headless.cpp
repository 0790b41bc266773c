#include "mailclient/win/headless.h"

#include "com/bridge.h"
#include "mailclient/console.h"
#include "mailclient/win/addin_loader.h"
#include "mailclient/win/console_input.h"

namespace mailclient::win {
namespace {

class Headless final : public ConsoleHost {
 public:
  Headless(MailClient& client, const HeadlessOptions& options)
      : client_(client), options_(options), addIns_(client), console_(client, *this) {}

  int run() {
    const ConsoleInput input([this](const std::string& line) { console_.execute(line); });
    if (options_.explorer) client_.windows().openExplorer(client_.store().defaultFolder(DefaultFolder::Inbox));
    addIns_.loadAtStartup();
    answer("0 ready");
    MSG message{};
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
      TranslateMessage(&message);
      DispatchMessageW(&message);
    }
    return 0;
  }

  void answer(const std::string& line) override { writeAnswer(line); }
  bool waitUntil(const std::function<bool()>& condition, std::int32_t milliseconds) override {
    return serveUntil(condition, static_cast<DWORD>(milliseconds));
  }
  void connectAddIn(const String& progId) override { addIns_.connect(progId, ConnectMode::AfterStartup); }
  void disconnectAddIn(const String& progId, std::int32_t removeMode) override {
    addIns_.disconnect(progId, removeMode);
  }
  void quit() override {
    client_.quit();
    addIns_.shutDown();
    client_.saveSettings();
    PostQuitMessage(0);
  }

 private:
  MailClient& client_;
  HeadlessOptions options_;
  AddInLoader addIns_;
  Console console_;
};

}  // namespace

int runHeadless(const ClientPtr& client, const HeadlessOptions& options) { return Headless(*client, options).run(); }

}  // namespace mailclient::win
