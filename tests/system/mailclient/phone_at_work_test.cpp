// What a user sees of the phone at work, and that everything else goes on meanwhile.
#include <gtest/gtest.h>

#include "system/mailclient/addin_window_fixture.h"

namespace {

using namespace screen;

class PhoneAtWorkTest : public AddInWindowTest {
 protected:
  void plug() {
    handset_.Plug();
    ASSERT_TRUE(waitUntil([&] { return menuItem("Send && Receive Text Messages").enabled; }));
    ASSERT_TRUE(awaitPhone(idle));
  }
  bool awaitPhone(const std::wstring& text) {
    return waitUntil([&] { return statusText(status(), 1) == text; });
  }
  bool progressShows() const { return IsWindowVisible(child(status(), PROGRESS_CLASSW)) != FALSE; }
  std::wstring subjectInPane() const { return textOf(child(explorer_, WC_STATICW)); }
  // A user goes through the list, and opens and closes an item.
  void workWithTheList() {
    ASSERT_TRUE(toFront(explorer_));
    press(VK_HOME);
    ASSERT_TRUE(waitUntil([&] { return subjectInPane() == cell(list(), 0, 1); }));
    press(VK_DOWN);
    ASSERT_TRUE(waitUntil([&] { return subjectInPane() == cell(list(), 1, 1); }));
    press(VK_RETURN);
    const HWND form = await(processId(), inspectorClass);
    ASSERT_TRUE(form && toFront(form));
    press(VK_ESCAPE);
    ASSERT_TRUE(awaitGone(processId(), inspectorClass));
  }

  static constexpr const wchar_t* idle = L"Simulated handset connected";
};

TEST_F(PhoneAtWorkTest, WhileThePhoneLists_TheWindowSaysSo_AndGoesOnWorking) {
  item("Inbox", "one");
  item("Inbox", "two");
  plug();
  handset_.AnswerNext(u"list", 0);  // the phone's memory
  handset_.SilenceNext(u"list");    // the SIM
  choose("Send && Receive Text Messages");
  ASSERT_TRUE(awaitPhone(L"Receiving text messages..."));
  ASSERT_NO_FATAL_FAILURE(workWithTheList());
  EXPECT_EQ(statusText(status(), 1), L"Receiving text messages...") << "the add-in still waits for the phone";
  EXPECT_TRUE(progressShows());
  EXPECT_TRUE(client_->quit()) << "nor does it keep the program";
}

TEST_F(PhoneAtWorkTest, WhileThePhoneSends_TheWindowSaysSo_AndGoesOnWorking) {
  item("Inbox", "one");
  item("Inbox", "two");
  plug();
  EXPECT_FALSE(progressShows());
  handset_.SilenceNext(u"send");
  write(L"070", L"Hi");
  ASSERT_TRUE(awaitPhone(L"Sending 1 text message..."));
  ASSERT_NO_FATAL_FAILURE(workWithTheList());
  const HWND form = newTextMessage();
  type(L"071");
  EXPECT_TRUE(waitUntil([&] { return textOf(to(form)) == L"071"; }));
  EXPECT_EQ(statusText(status(), 1), L"Sending 1 text message...");
  EXPECT_TRUE(progressShows());
}

TEST_F(PhoneAtWorkTest, CommandThatLeavesThePhoneAlone_IsNotTakenForReceiving) {
  plug();
  choose("About Text Message Add-In");
  ASSERT_TRUE(await(processId(), L"#32770"));
  EXPECT_EQ(statusText(status(), 1), idle);
  choose("Text Message");
  ASSERT_TRUE(await(processId(), inspectorClass));
  EXPECT_EQ(statusText(status(), 1), idle);
  EXPECT_FALSE(progressShows());
}

}  // namespace
