// What the user and programs do while the add-in waits for the phone inside an event: the real windows, one inside the
// other.
#include "system/mailclient/addin_window_fixture.h"

namespace {

using namespace screen;

class ReentranceTest : public AddInWindowTest {
 protected:
  static constexpr int toolDelete = 1002;  // the inspector's WM_COMMAND

  void SetUp() override {
    AddInWindowTest::SetUp();
    handset_.Plug();
    ASSERT_TRUE(waitUntil([&] { return menuItem(sendAndReceive).enabled; }));
  }
  std::string textMessage(const std::string& subject) {
    return ask("item Inbox IPM.Note.TxtMsg " + subject + " text").result;
  }
  // The phone holds a message (it is not asked for the list of an empty store), and the list takes its time.
  void deliverSlowly(platform::StringView text = u"Are you there?") {
    handset_.Deliver(u"+4670123", text, u"261121101500");
    slowListing(700);
  }

  static constexpr const char* sendAndReceive = "Send && Receive Text Messages";
};

TEST_F(ReentranceTest, DeletePressedAgain_WhileThePhoneIsAsked_DeletesNothingForGood) {
  for (const char* const subject : {"a", "b", "c"}) textMessage(subject);
  ASSERT_TRUE(waitUntil([&] { return rows(list()) == 3; }));
  ASSERT_TRUE(toFront(explorer_));
  press('A', true);
  ASSERT_TRUE(waitUntil([&] { return selectedCount() == 3; }));
  deliverSlowly();
  press(VK_DELETE);
  press(VK_DELETE);
  EXPECT_TRUE(waitUntil([&] { return count("Inbox") == 1; })) << "the phone's message has come";
  EXPECT_EQ(count("Deleted Items"), 3u);

  // The tool of an item's own window.
  const std::string id = textMessage("d");
  ask("inspector open " + id);
  const HWND form = await(processId(), inspectorClass);
  ASSERT_TRUE(form);
  deliverSlowly(u"Hello?");
  PostMessageW(form, WM_COMMAND, toolDelete, 0);
  PostMessageW(form, WM_COMMAND, toolDelete, 0);
  EXPECT_TRUE(waitUntil([&] { return count("Inbox") == 2; }));
  EXPECT_FALSE(find(processId(), inspectorClass));
  EXPECT_EQ(count("Deleted Items"), 4u);
}

TEST_F(ReentranceTest, ItemsAndAddInTakenAway_WhileThePhoneIsAsked_TheWindowsLiveOn) {
  const std::string open = textMessage("open");
  const std::string selected = textMessage("selected");
  ASSERT_TRUE(waitUntil([&] { return rows(list()) == 2; }));
  ask("inspector open " + open);
  ASSERT_TRUE(await(processId(), inspectorClass));
  ask("select " + selected);
  deliverSlowly();
  choose(sendAndReceive);
  for (int i = 0; i < 2; ++i) {
    EXPECT_TRUE(ask("delete " + open).ok);
    EXPECT_TRUE(ask("delete " + selected).ok);
  }
  EXPECT_TRUE(ask("inspector close").ok);
  EXPECT_TRUE(ask("disconnect mrktxtmsg.connect").ok);
  EXPECT_TRUE(waitUntil([&] { return menuItem("Text Message").id == 0; })) << "its buttons went with it";
  EXPECT_EQ(count("Deleted Items"), 0u);
  EXPECT_TRUE(waitUntil([&] { return textOf(child(explorer_, WC_EDITW)).empty(); })) << "nothing is read any more";
  EXPECT_TRUE(client_->quit());
  EXPECT_EQ(client_->exitCode(), 0u);
}

TEST_F(ReentranceTest, LastWindowClosed_WhileThePhoneIsAsked_TheProgramEnds) {
  deliverSlowly();
  choose(sendAndReceive);
  PostMessageW(explorer_, WM_CLOSE, 0, 0);
  EXPECT_TRUE(client_->waitForEnd());
  EXPECT_EQ(client_->exitCode(), 0u);
}

TEST_F(ReentranceTest, OpenedByEnter_ForwardCarriesTheMark_AnOrdinaryReplyDoesNot) {
  handset_.Deliver(u"+4670123", u"Are you there?", u"261121101500");
  choose(sendAndReceive);
  ASSERT_TRUE(waitUntil([&] { return rows(list()) == 1; }));
  const std::string original = field(ask("list Inbox").lines.at(0), "id");
  ASSERT_TRUE(toFront(explorer_));
  press(VK_HOME);
  ASSERT_TRUE(waitUntil([&] { return selectedCount() == 1; }));
  press(VK_RETURN);
  const HWND read = await(processId(), inspectorClass);
  ASSERT_TRUE(read && toFront(read));
  press('F', true);
  HWND forward = nullptr;
  ASSERT_TRUE(waitUntil([&] { return (forward = find(processId(), inspectorClass)) && forward != read; }));
  ASSERT_TRUE(toFront(forward));
  EXPECT_EQ(textOf(to(forward)), L"");
  EXPECT_EQ(textOf(body(forward)), L"Are you there?");
  type(L"0701");
  ASSERT_TRUE(waitUntil([&] { return textOf(to(forward)) == L"0701"; }));
  press(VK_RETURN, true);
  ASSERT_TRUE(waitUntil([&] { return count("Sent Items") == 1; }));
  EXPECT_EQ(field(ask("list \"Sent Items\"").lines.at(0), "billing"), "F;" + original + ";");
  EXPECT_EQ(handset_.SentDestination(0), u"0701");

  const std::string mail = ask("item Inbox IPM.Note Plans text").result;
  ASSERT_TRUE(waitUntil([&] { return rows(list()) == 2; }));
  ask("select " + mail);
  ask("inspector close");
  ASSERT_TRUE(toFront(explorer_));
  ASSERT_TRUE(waitUntil([&] { return menuItem("&Reply").enabled; }));
  press('R', true);
  const HWND reply = await(processId(), inspectorClass, L"RE: Plans - Message");
  ASSERT_TRUE(reply && toFront(reply));
  EXPECT_TRUE(child(reply, WC_EDITW, 3)) << "the ordinary form: recipients, copies, subject and text";
  type(L"anna@example.org");
  ASSERT_TRUE(waitUntil([&] { return textOf(to(reply)) == L"anna@example.org"; }));
  press(VK_RETURN, true);
  EXPECT_TRUE(awaitGone(processId(), inspectorClass));
  const auto waiting = ask("list Outbox").lines;
  ASSERT_EQ(waiting.size(), 1u);
  EXPECT_EQ(field(waiting[0], "billing"), "");
}

TEST_F(ReentranceTest, NumberThatBeginsAContacts_IsKept_AndASavedDraftDoesNotAskAgain) {
  const HWND form = newTextMessage();
  type(L"+46");
  const HWND matches = child(form, WC_LISTBOXW);
  ASSERT_TRUE(waitUntil([&] { return IsWindowVisible(matches) && SendMessageW(matches, LB_GETCOUNT, 0, 0) == 2; }));
  press('S', true);
  EXPECT_TRUE(waitUntil([&] { return count("Inbox") == 1; }));
  EXPECT_EQ(textOf(to(form)), L"[+46]");
  press(VK_TAB);
  EXPECT_EQ(textOf(to(form)), L"[+46]");
  press(VK_ESCAPE);
  EXPECT_TRUE(awaitGone(processId(), inspectorClass)) << "nothing has changed since it was saved";

  const HWND again = newTextMessage();
  type(L"+46");
  ASSERT_TRUE(waitUntil([&] { return IsWindowVisible(child(again, WC_LISTBOXW)); }));
  press(VK_TAB);
  EXPECT_TRUE(waitUntil([&] { return textOf(to(again)) == L"[+46]"; })) << "not Anna, whose number is longer";
  PostMessageW(again, WM_CLOSE, 0, 0);
  const HWND question = await(processId(), L"#32770");
  ASSERT_TRUE(question);
  PostMessageW(again, WM_CLOSE, 0, 0);
  SendMessageW(again, WM_NULL, 0, 0);  // now the second close has been served
  PostMessageW(question, WM_COMMAND, IDCANCEL, 0);
  EXPECT_TRUE(awaitGone(processId(), L"#32770")) << "it asks once";
  EXPECT_TRUE(IsWindow(again));
}

}  // namespace
