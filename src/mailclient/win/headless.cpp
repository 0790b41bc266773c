#include "mailclient/win/headless.h"

#include "mailclient/win/program.h"

namespace mailclient::win {
namespace {

class Headless final : public Program {
 public:
  Headless(MailClient& client, const HeadlessOptions& options) : Program(client), client_(client), options_(options) {
    client_.endProgram = [this] { quit(); };
  }
  ~Headless() { client_.endProgram = nullptr; }

  int run() {
    const ConsoleInput input([this](const std::string& line) { execute(line); });
    if (options_.explorer) client_.windows().openExplorer(client_.store().defaultFolder(DefaultFolder::Inbox));
    loadAddIns();
    answer("0 ready");
    return serveMessages();
  }

 private:
  MailClient& client_;
  HeadlessOptions options_;
};

}  // namespace

int runHeadless(const ClientPtr& client, const HeadlessOptions& options) { return Headless(*client, options).run(); }

}  // namespace mailclient::win
