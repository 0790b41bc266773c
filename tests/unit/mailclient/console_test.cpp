// The command line, as a program on the other end of its pipes sees it.
#include "mailclient/console.h"

#include "mailclient/text_coding.h"
#include "unit/mailclient/fixture.h"

namespace mailclient {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

class ConsoleTest : public MailClientTest, public ConsoleHost {
 protected:
  void SetUp() override {
    start({.menusLeftOut = {menu::newItem}});
    console_ = std::make_unique<Console>(*client, *this);
  }

  // The answer to one command, without the command's number.
  std::vector<std::string> ask(const std::string& line) {
    answers_.clear();
    console_->execute(line);
    ++asked_;
    std::vector<std::string> lines;
    const std::string mark = std::to_string(asked_) + " ";
    for (const std::string& answer : answers_) {
      EXPECT_THAT(answer, StartsWith(mark));
      lines.push_back(answer.substr(mark.size()));
    }
    return lines;
  }
  // The EntryID that a command tells.
  std::string idOf(const std::string& line) {
    const auto answer = ask(line);
    EXPECT_THAT(answer, ElementsAre(StartsWith("ok 0")));
    return answer.at(0).substr(3);
  }

  void answer(const std::string& line) override { answers_.push_back(line); }
  bool waitUntil(const std::function<bool()>& condition, std::int32_t milliseconds) override {
    said.push_back("wait " + std::to_string(milliseconds));
    if (duringWait) std::exchange(duringWait, nullptr)();
    return condition();
  }
  void connectAddIn(const String& progId) override { said.push_back("connect " + toUtf8(progId)); }
  void disconnectAddIn(const String& progId, std::int32_t mode) override {
    said.push_back("disconnect " + toUtf8(progId) + " " + std::to_string(mode));
  }
  void quit() override { said.push_back("quit"); }

  std::unique_ptr<Console> console_;
  std::vector<std::string> answers_;
  std::vector<std::string> said;
  std::function<void()> duringWait;
  int asked_ = 0;
};

TEST_F(ConsoleTest, Compose_PutsATextMessageIntoTheOutbox) {
  const std::string id = idOf(R"(compose "Anna [+46]" "Hi \"you\"\r\n\u0001\ud800")");
  const auto list = ask("list Outbox");
  ASSERT_EQ(list.size(), 2u);
  EXPECT_THAT(list[0], StartsWith("- id=" + id + R"( class="IPM.Note.TxtMsg" unread=0 to="Anna [+46]")"));
  EXPECT_THAT(list[0], HasSubstr(R"(topic="Anna [+46]")"));
  EXPECT_THAT(list[0], HasSubstr(R"(body="Hi \"you\"\u000d\u000a\u0001\ud800")"));
  EXPECT_EQ(list[1], "ok 1");
  const MessagePtr message = client->store().defaultFolder(DefaultFolder::Outbox)->messages().at(0);
  EXPECT_EQ((*message)[Text::Body], String(u"Hi \"you\"\r\n\u0001") + char16_t{0xD800});
}

TEST_F(ConsoleTest, Contact_InAFolderOfItsOwn_IsMadeOnce) {
  idOf("contact Anna +46 Work");
  idOf("contact Bo +47 Work");
  EXPECT_THAT(ask("list Contacts/Work"), ElementsAre(HasSubstr("IPM.Contact"), HasSubstr("IPM.Contact"), "ok 2"));
  EXPECT_THAT(ask("folders"), testing::Contains("- \"Contacts/Work\" items=2 unread=0"));
}

TEST_F(ConsoleTest, DeleteAndMove_FollowTheEntryId) {
  const std::string id = idOf("item Inbox IPM.Note.TxtMsg S B");
  EXPECT_THAT(ask("move " + id + " \"Sent Items\""), ElementsAre("ok"));
  EXPECT_THAT(ask("delete " + id), ElementsAre("ok"));
  EXPECT_THAT(ask("list \"Deleted Items\"").back(), "ok 1");
  EXPECT_THAT(ask("delete " + id), ElementsAre("ok"));
  EXPECT_THAT(ask("delete " + id), ElementsAre(StartsWith("error -2147221233 ")));
}

TEST_F(ConsoleTest, Mistakes_AreAnsweredAndChangeNothing) {
  const std::vector<std::string> mistakes{
      "",        "nonsense",   "list",        "list Nowhere",      "list Inbox more",
      "compose", "wait x y z", "compose \"a", R"(compose "\x" b)", "explorer fly",
      "select 0"};
  for (const std::string& line : mistakes) EXPECT_THAT(ask(line), ElementsAre(StartsWith("error "))) << line;
  EXPECT_THAT(ask("list Outbox"), ElementsAre("ok 0"));
}

TEST_F(ConsoleTest, CommandInsideAWait_AnswersUnderItsOwnNumber) {
  duringWait = [&] { console_->execute("compose A B"); };
  console_->execute("wait Outbox 1 500");
  EXPECT_THAT(answers_, ElementsAre(StartsWith("2 ok 0"), "1 ok yes"));
  EXPECT_THAT(said, ElementsAre("wait 500"));
}

TEST_F(ConsoleTest, WindowsAndSelection) {
  EXPECT_THAT(ask("explorer open Outbox"), ElementsAre("ok"));
  const std::string id = idOf("compose A B");
  EXPECT_THAT(ask("select " + id), ElementsAre("ok"));
  EXPECT_EQ(application.ActiveExplorer().Selection().Count(), 1);
  EXPECT_THAT(ask("inspector open " + id), ElementsAre("ok"));
  EXPECT_THAT(ask("status"), ElementsAre("- explorers 1", "- inspectors 1", "ok"));
  EXPECT_THAT(ask("inspector close"), ElementsAre("ok"));
  EXPECT_THAT(ask("explorer close"), ElementsAre("ok"));
  EXPECT_THAT(ask("explorer close"), ElementsAre(StartsWith("error 5 ")));
}

TEST_F(ConsoleTest, ButtonsAndClick) {
  const ControlPtr tools = client->explorerBars().find({.id = menu::tools});
  const ControlPtr button = BarSet::addButton(*tools->popup, std::nullopt, false);
  button->tag = u"T";
  button->caption = u"C && D";
  button->enabled = false;
  EXPECT_THAT(ask("buttons"),
              ElementsAre(R"(- menu=30007 tag="T" caption="C && D" tooltip="" enabled=0 face=0 style=0)", "ok"));
  EXPECT_THAT(ask("click T"), ElementsAre("ok ignored"));
  button->enabled = true;
  EXPECT_THAT(ask("click T"), ElementsAre("ok clicked"));
  EXPECT_THAT(ask("click Other"), ElementsAre("ok ignored"));
}

TEST_F(ConsoleTest, References_CountWhatIsHeldOutside) {
  session = {};
  application = {};
  EXPECT_THAT(ask("references"), ElementsAre("ok 0"));
  const Object held = client->application().get()->object();
  EXPECT_THAT(ask("references"), ElementsAre("- Application 1", "ok 1"));
}

TEST_F(ConsoleTest, AddInsAndTheEnd_AreTheHosts) {
  ask("connect a.b");
  ask("disconnect a.b");
  ask("disconnect a.b 0");
  ask("quit");
  EXPECT_THAT(said, ElementsAre("connect a.b", "disconnect a.b 1", "disconnect a.b 0", "quit"));
}

TEST_F(ConsoleTest, Help_NamesCommandsThatExist) {
  const auto lines = ask("help");
  ASSERT_GT(lines.size(), 20u);
  for (std::size_t i = 0; i + 1 < lines.size(); ++i) {
    const std::string command = lines[i].substr(2, lines[i].find_first_of(" |", 2) - 2);
    const std::string tooMany = command + std::string(command == "select" ? " x" : " 1 2 3 4 5 6");
    const auto answer = ask(tooMany);
    EXPECT_THAT(answer, ElementsAre(StartsWith("error "))) << command;
    const char* const what = command == "select" ? "no such item" : "wrong number of arguments";
    EXPECT_THAT(answer.at(0), HasSubstr(what)) << command;
  }
}

}  // namespace
}  // namespace mailclient
