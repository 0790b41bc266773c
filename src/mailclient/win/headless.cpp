#include "mailclient/win/headless.h"

#include <cstdio>
#include <utility>

#include "com/bridge.h"
#include "mailclient/console.h"
#include "mailclient/steps.h"
#include "mailclient/text_coding.h"
#include "mailclient/win/addin_loader.h"
#include "mailclient/win/console_input.h"

namespace mailclient::win {
namespace {

class Headless final : public ConsoleHost {
 public:
  Headless(MailClient& client, const HeadlessOptions& options)
      : client_(client), options_(options), addIns_(client), console_(client, *this) {
    client_.endProgram = [this] { quit(); };
  }
  Headless(const Headless&) = delete;
  Headless& operator=(const Headless&) = delete;
  ~Headless() { client_.endProgram = nullptr; }

  int run() {
    const ConsoleInput input([this](const std::string& line) {
      console_.execute(line);
      saveButtons();
    });
    if (options_.explorer) client_.windows().openExplorer(client_.store().defaultFolder(DefaultFolder::Inbox));
    addIns_.loadAtStartup();
    saveButtons();
    answer("0 ready");
    MSG message{};
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
      TranslateMessage(&message);
      DispatchMessageW(&message);
    }
    quit();  // when it was not we who ended the loop
    return static_cast<int>(message.wParam);
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
    if (std::exchange(ending_, true)) return;
    Steps steps;
    steps.run([&] { client_.quit(); });
    steps.run([&] { addIns_.shutDown(); });
    steps.run([&] { client_.saveSettings(); });
    if (steps.failure())
      std::fprintf(stderr, "mailclient: not everything could be saved: %s\n",
                   toUtf8(steps.failure()->description).c_str());
    PostQuitMessage(steps.failure() ? 1 : 0);
  }

 private:
  // A crash leaves the buttons that programs have added; the next run must find them by their tags.
  void saveButtons() {
    Steps silent;  // the end tries again, and says what fails
    if (!ending_) silent.run([&] { client_.saveSettings(); });
  }

  MailClient& client_;
  HeadlessOptions options_;
  AddInLoader addIns_;
  Console console_;
  bool ending_ = false;
};

}  // namespace

int runHeadless(const ClientPtr& client, const HeadlessOptions& options) { return Headless(*client, options).run(); }

}  // namespace mailclient::win
