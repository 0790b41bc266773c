// The add-in in the mail client's windows: its buttons, and a text message from the first key to the phone.
#include "system/mailclient/addin_window_fixture.h"

namespace {

using namespace screen;

TEST_F(AddInWindowTest, Buttons_AppearWithTheirIcons_AndFollowThePhone) {
  EXPECT_TRUE(waitUntil([&] { return menuItem("Send && Receive Text Messages").id != 0; }));
  EXPECT_FALSE(menuItem("Send && Receive Text Messages").enabled) << "no phone yet";
  EXPECT_TRUE(menuItem("Send && Receive Text Messages").icon);
  EXPECT_TRUE(menuItem("Text Message").enabled);
  EXPECT_TRUE(menuItem("About Text Message Add-In").icon);
  EXPECT_NE(menuItem("Text Message Add-In Help").id, 0);
  EXPECT_FALSE(menuItem("Text Message Add-In Help").icon);
  handset_.Plug();
  EXPECT_TRUE(waitUntil([&] { return menuItem("Send && Receive Text Messages").enabled; }));
  EXPECT_TRUE(waitUntil([&] { return statusText(status(), 1) == L"Simulated handset connected"; }));
  handset_.Unplug();
  EXPECT_TRUE(waitUntil([&] { return !menuItem("Send && Receive Text Messages").enabled; }));
  EXPECT_TRUE(waitUntil([&] { return statusText(status(), 1) == L"No phone connected"; }));
}

TEST_F(AddInWindowTest, TextMessage_ToACompletedContact_ReachesThePhone) {
  handset_.Plug();
  const HWND form = newTextMessage();
  type(L"an");
  const HWND matches = child(form, WC_LISTBOXW);
  ASSERT_TRUE(waitUntil([&] { return IsWindowVisible(matches) && SendMessageW(matches, LB_GETCOUNT, 0, 0) == 2; }));
  press(VK_DOWN);
  press(VK_RETURN);
  ASSERT_TRUE(waitUntil([&] { return textOf(to(form)) == L"Annika Berg [+46 73 9]"; }));
  press(VK_TAB);
  type(L"Hello Annika");
  ASSERT_TRUE(waitUntil([&] { return textOf(child(form, WC_STATICW, 1)) == L"12 characters, 1 message (148 left)"; }));
  press(VK_RETURN, true);
  ASSERT_TRUE(waitUntil([&] { return handset_.SentCount() == 1; }));
  EXPECT_EQ(handset_.SentDestination(0), u"+46739");
  EXPECT_EQ(handset_.SentText(0), u"Hello Annika");
  ASSERT_TRUE(waitUntil([&] { return count("Sent Items") == 1; }));
  const std::string sent = ask("list \"Sent Items\"").lines.at(0);
  EXPECT_EQ(field(sent, "to"), "Annika Berg [+46 73 9]");
  EXPECT_EQ(field(sent, "topic"), "Annika Berg [+46 73 9]");
  EXPECT_EQ(field(sent, "subject"), "Hello Anni...");
}

TEST_F(AddInWindowTest, BareNumber_IsPutInBrackets_AndReachesThePhone) {
  handset_.Plug();
  write(L"0701-22 33", L"Hi");
  ASSERT_TRUE(waitUntil([&] { return handset_.SentCount() == 1; }));
  EXPECT_EQ(handset_.SentDestination(0), u"07012233");
}

TEST_F(AddInWindowTest, UnknownRecipient_IsNotSent_AndTheFormStays) {
  handset_.Plug();
  const HWND form = newTextMessage();
  type(L"nobody");
  press(VK_TAB);
  type(L"x");
  ASSERT_TRUE(waitUntil([&] { return textOf(body(form)) == L"x"; }));
  press(VK_RETURN, true);
  const HWND notice = await(processId(), L"#32770");
  ASSERT_TRUE(notice && toFront(notice));
  press(VK_RETURN);
  EXPECT_TRUE(awaitGone(processId(), L"#32770"));
  EXPECT_TRUE(IsWindow(form));
  EXPECT_EQ(count("Outbox"), 0u);
}

TEST_F(AddInWindowTest, WithoutAPhone_TheBalloonSaysSo_AndTheMessageWaits) {
  write(L"070", L"Hi");
  const HWND balloon = await(processId(), L"#32770", L"Office Assistant");
  ASSERT_TRUE(balloon && toFront(balloon));
  press(VK_RETURN);
  EXPECT_TRUE(awaitGone(processId(), L"#32770"));
  EXPECT_EQ(count("Outbox"), 1u);
}

TEST_F(AddInWindowTest, ReceivedMessage_AnsweredByItsKeys_CarriesTheMark) {
  handset_.Plug();
  handset_.Deliver(u"+4670123", u"Are you there?", u"261121101500");
  ASSERT_TRUE(waitUntil([&] { return menuItem("Send && Receive Text Messages").enabled; }));
  choose("Send && Receive Text Messages");
  ASSERT_TRUE(waitUntil([&] { return rows(list()) == 1; }));
  EXPECT_EQ(cell(list(), 0, 0), L"Anna Ek [+4670123]");
  EXPECT_TRUE(waitUntil([&] { return treeLabels(tree()).at(1) == L"Inbox (1)"; }));
  ASSERT_TRUE(toFront(explorer_));
  press(VK_HOME);
  ASSERT_TRUE(waitUntil([&] { return menuItem("&Reply").enabled; }));
  press('R', true);
  const HWND form = await(processId(), inspectorClass, L"Untitled - Text Message");
  ASSERT_TRUE(form && toFront(form));
  EXPECT_EQ(textOf(to(form)), L"Anna Ek [+4670123]");
  type(L"Yes");
  ASSERT_TRUE(waitUntil([&] { return textOf(body(form)) == L"Yes"; }));
  press(VK_RETURN, true);
  ASSERT_TRUE(waitUntil([&] { return count("Sent Items") == 1; }));
  const std::string original = field(ask("list Inbox").lines.at(0), "id");
  EXPECT_EQ(field(ask("list \"Sent Items\"").lines.at(0), "billing"), "R;" + original + ";");
}

TEST_F(AddInWindowTest, ClosingTheWindow_DisconnectsTheAddIn_AndEnds) {
  handset_.Plug();
  ASSERT_TRUE(waitUntil([&] { return menuItem("Send && Receive Text Messages").enabled; }));
  PostMessageW(explorer_, WM_CLOSE, 0, 0);
  EXPECT_TRUE(client_->waitForEnd());
}

}  // namespace
