// What a store brings back at the next start of the program with its windows.
#include <gtest/gtest.h>

#include "system/mailclient/addin_window_fixture.h"

namespace {

using namespace screen;

class RestartTest : public AddInWindowTest {
 protected:
  // Everything that the command line can tell of the store; folders have no order of their own.
  std::vector<std::string> everything() {
    std::vector<std::string> lines = ask("folders").lines;
    std::sort(lines.begin(), lines.end());
    for (const char* const command :
         {"list Inbox", "list Drafts", "list \"Deleted Items\"", "list Contacts", "list Contacts/Family"}) {
      const Answer answer = ask(command);
      EXPECT_TRUE(answer.ok) << command;
      lines.insert(lines.end(), answer.lines.begin(), answer.lines.end());
    }
    return lines;
  }
};

TEST_F(RestartTest, BringsBackFoldersItemsAndContacts_AndTheFormThatTheAddInPublished) {
  restartWithStore();
  ask("contact \"Anna Ek\" \"+46 (70) 123\"");
  ask("contact \"Annika Berg\" \"+46 73 9\" Family");
  for (const char* const subject : {"one", "two", "three"}) item("Inbox", subject);
  const std::string id = field(ask("list Inbox").lines.at(0), "id");
  ASSERT_TRUE(ask("delete " + id).ok);
  ASSERT_TRUE(ask("item Drafts IPM.Note.TxtMsg \"to come\" text").ok);
  const auto forms = ask("form").lines;
  ASSERT_EQ(forms, (std::vector<std::string>{"\"IPM.Note.TxtMsg\" \"TxtMsg\" 2"}));
  const auto before = everything();
  EXPECT_GT(before.size(), 16u) << "ten folders and one more, four items and two contacts";

  client_->quit();
  testing_support::setLoadBehavior(2);
  startWithStore();

  EXPECT_EQ(everything(), before);
  EXPECT_EQ(ask("form").lines, forms) << "without the add-in";
}

}  // namespace
