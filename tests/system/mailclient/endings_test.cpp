// How the mail client ends, and what it keeps when the disk refuses.
#include <fstream>

#include <gtest/gtest.h>

#include "support/win32/product.h"
#include "system/mailclient/window_fixture.h"

namespace {

using namespace screen;
namespace fs = std::filesystem;

class EndingsTest : public WindowTest {
 protected:
  void SetUp() override {
    WindowTest::SetUp();
    restartWithStore();
  }
  // The window behind the others, which belongs to no item and no folder.
  HWND programWindow() const {
    for (HWND window = nullptr;
         (window = FindWindowExW(nullptr, window, L"Marrick mail client", nullptr)) != nullptr;) {
      DWORD process = 0;
      GetWindowThreadProcessId(window, &process);
      if (process == processId()) return window;
    }
    return nullptr;
  }
  // What a killed program has held, Wine holds for ever, and the server would stay.
  static void endPhoneServer() {
    OleInitialize(nullptr);
    testing_support::endWorker();
    OleUninitialize();
  }
  HWND newMail() {
    if (!toFront(explorer_)) return nullptr;
    press('N', true);
    const HWND form = await(processId(), inspectorClass, L"Untitled - Message");
    return form && toFront(form) ? form : nullptr;
  }
};

TEST_F(EndingsTest, Send_DiskRefuses_TheFormStaysWithItsText_UntilItCanBeSent) {
  const HWND form = newMail();
  ASSERT_TRUE(form);
  type(L"somebody");
  ASSERT_TRUE(waitUntil([&] { return textOf(child(form, WC_EDITW)) == L"somebody"; }));
  fs::remove_all(fs::path(store_) / ".Outbox" / "tmp");
  press(VK_RETURN, true);
  const HWND notice = await(processId(), L"#32770", L"Mail Client");
  ASSERT_TRUE(notice && toFront(notice));
  press(VK_RETURN);
  ASSERT_TRUE(awaitGone(processId(), L"#32770"));
  EXPECT_EQ(textOf(child(form, WC_EDITW)), L"somebody");
  EXPECT_EQ(count("Outbox"), 0u);
  fs::create_directory(fs::path(store_) / ".Outbox" / "tmp");
  ASSERT_TRUE(toFront(form));
  press(VK_RETURN, true);
  EXPECT_TRUE(awaitGone(processId(), inspectorClass));
  EXPECT_EQ(count("Outbox"), 1u);
}

TEST_F(EndingsTest, SettingsCannotBeStored_TheProgramEndsAllTheSame) {
  const fs::path state = fs::path(store_) / "mailclient.state";
  fs::remove(state);
  fs::create_directory(state);
  PostMessageW(explorer_, WM_CLOSE, 0, 0);
  EXPECT_TRUE(client_->waitForEnd());
  EXPECT_EQ(client_->exitCode(), 1u);
}

TEST_F(EndingsTest, LogOff_AsksForWhatIsBeingWritten_AndStoresTheWindowsPlace) {
  SetWindowPos(explorer_, nullptr, 70, 60, 880, 590, SWP_NOZORDER);
  EXPECT_TRUE(SendMessageW(explorer_, WM_QUERYENDSESSION, 0, 0));
  const HWND form = newMail();
  ASSERT_TRUE(form);
  EXPECT_TRUE(SendMessageW(form, WM_QUERYENDSESSION, 0, 0)) << "nothing is written yet";
  type(L"x");
  ASSERT_TRUE(waitUntil([&] { return textOf(child(form, WC_EDITW)) == L"x"; }));
  PostMessageW(form, WM_QUERYENDSESSION, 0, 0);
  const HWND question = await(processId(), L"#32770", L"Untitled - Message");
  ASSERT_TRUE(question);
  PostMessageW(question, WM_COMMAND, IDCANCEL, 0);
  EXPECT_TRUE(awaitGone(processId(), L"#32770"));
  SendMessageW(programWindow(), WM_ENDSESSION, FALSE, 0);
  EXPECT_TRUE(client_->isRunning()) << "somebody held it up";
  EXPECT_TRUE(IsWindow(form));
  SendMessageW(programWindow(), WM_ENDSESSION, TRUE, 0);
  ASSERT_TRUE(client_->waitForEnd());
  startWithStore();
  RECT place{};
  GetWindowRect(explorer_, &place);
  const RECT expected{70, 60, 950, 650};
  EXPECT_TRUE(EqualRect(&place, &expected)) << place.left << " " << place.top;
}

TEST_F(EndingsTest, StoreInUse_ASecondProgramDoesNotStart) {
  MailClientProcess second(L"--store \"" + store_ + L"\"", L"--console");
  EXPECT_FALSE(second.isReady());
  EXPECT_TRUE(second.waitForEnd());
  EXPECT_EQ(second.exitCode(), 1u);
  item("Inbox", "still at work");
  EXPECT_EQ(count("Inbox"), 1u);
  client_->kill();
  endPhoneServer();
  startWithStore();
  EXPECT_EQ(count("Inbox"), 1u) << "the lock goes with its process";
}

TEST_F(EndingsTest, TwoWindows_TheCommandsFollowTheOneInFront) {
  const std::string id = ask("item Inbox IPM.Note a b").result;
  ASSERT_TRUE(waitUntil([&] { return rows(list()) == 1; }));
  ask("select " + id);
  ASSERT_TRUE(waitUntil([&] { return menuItem("&Reply").enabled; }));
  ask("explorer open Drafts");
  const HWND other = await(processId(), explorerClass, L"Drafts - Mail Client");
  ASSERT_TRUE(other && toFront(other));
  ASSERT_TRUE(waitUntil([&] { return !menuItem("&Reply").enabled; })) << "nothing is selected there";
  ASSERT_TRUE(toFront(explorer_));
  press('R', true);
  EXPECT_TRUE(await(processId(), inspectorClass, L"RE: a - Message"));
}

TEST_F(EndingsTest, KeysInsideAnOpenMenu_AreTheMenus) {
  item("Inbox", "a");
  ASSERT_TRUE(waitUntil([&] { return rows(list()) == 1; }));
  ASSERT_TRUE(toFront(explorer_));
  press(VK_HOME);
  ASSERT_TRUE(waitUntil([&] { return menuItem("&Delete").enabled; }));
  GUITHREADINFO info{};
  info.cbSize = sizeof info;
  const auto inMenu = [&] {
    return GetGUIThreadInfo(GetWindowThreadProcessId(explorer_, nullptr), &info) && (info.flags & GUI_INMENUMODE) != 0;
  };
  press(VK_F10);
  press(VK_DOWN);
  ASSERT_TRUE(waitUntil(inMenu));
  press('D', true);
  press(VK_ESCAPE);
  press(VK_ESCAPE);
  press(VK_ESCAPE);
  ASSERT_TRUE(waitUntil([&] { return !inMenu(); }));
  EXPECT_EQ(count("Inbox"), 1u);
}

}  // namespace
