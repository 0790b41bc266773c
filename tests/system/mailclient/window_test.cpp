// The mail client's windows, without an add-in: what they show, and what keys and mouse do.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/win32/screenshot.h"
#include "system/mailclient/window_fixture.h"

namespace {

using namespace screen;
using testing::Contains;

TEST_F(WindowTest, Start_ShowsTheInboxWithMenusFoldersAndItems) {
  item("Inbox", "Hello");
  item("Inbox", "World");
  EXPECT_EQ(textOf(explorer_), L"Inbox - Mail Client");
  EXPECT_TRUE(waitUntil([&] { return rows(list()) == 2; }));
  EXPECT_EQ(cell(list(), 0, 1), L"Hello");
  for (const char* const caption : {"&Mail Message", "&Contact", "E&xit", "&Delete", "&Options...", "&Reply"})
    EXPECT_NE(menuItem(caption).id, 0) << caption;
  EXPECT_FALSE(menuItem("&Reply").enabled) << "nothing is selected";
  EXPECT_THAT(treeLabels(tree()), Contains(L"Contacts"));
}

TEST_F(WindowTest, DeleteKey_DeletesTheSelectedRows_AndSelectsTheNextOne) {
  item("Inbox", "One");
  item("Inbox", "Two");
  item("Inbox", "Three");
  ASSERT_TRUE(waitUntil([&] { return rows(list()) == 3; }));
  ASSERT_TRUE(toFront(explorer_));
  press(VK_HOME);
  press(VK_DOWN, false, true);
  ASSERT_TRUE(waitUntil([&] { return selectedCount() == 2; }));
  press(VK_DELETE);
  EXPECT_TRUE(waitUntil([&] { return rows(list()) == 1; }));
  EXPECT_EQ(cell(list(), 0, 1), L"Three");
  EXPECT_TRUE(waitUntil([&] { return selectedCount() == 1; }));
  EXPECT_EQ(count("Deleted Items"), 2u);
}

TEST_F(WindowTest, SelectAll_ByItsKeys_SelectsEveryRow) {
  for (int i = 0; i < 5; ++i) item("Inbox", "x");
  ASSERT_TRUE(waitUntil([&] { return rows(list()) == 5; }));
  ASSERT_TRUE(toFront(explorer_));
  press('A', true);
  EXPECT_TRUE(waitUntil([&] { return selectedCount() == 5; }));
  EXPECT_TRUE(waitUntil([&] { return statusText(status(), 0) == L"5 items, 5 selected"; }));
}

TEST_F(WindowTest, ClickOnAColumn_SortsByIt_AndAgainTheOtherWayRound) {
  item("Inbox", "b");
  item("Inbox", "c");
  item("Inbox", "a");
  ASSERT_TRUE(waitUntil([&] { return rows(list()) == 3; }));
  ASSERT_TRUE(toFront(explorer_));
  const HWND header = child(list(), WC_HEADERW);
  const auto width = static_cast<int>(SendMessageW(list(), LVM_GETCOLUMNWIDTH, 0, 0));
  clickAt(header, width + 20, 8);
  EXPECT_TRUE(waitUntil([&] { return cell(list(), 0, 1) == L"a" && cell(list(), 2, 1) == L"c"; }));
  clickAt(header, width + 90, 8);  // elsewhere: two clicks on one point are a double click
  EXPECT_TRUE(waitUntil([&] { return cell(list(), 0, 1) == L"c" && cell(list(), 2, 1) == L"a"; }));
}

TEST_F(WindowTest, MarkedAsUnread_TheFolderCounts_AndTheCommandsFollowTheSelection) {
  item("Inbox", "One");
  ASSERT_TRUE(waitUntil([&] { return rows(list()) == 1; }));
  ASSERT_TRUE(toFront(explorer_));
  press(VK_HOME);
  ASSERT_TRUE(waitUntil([&] { return menuItem("Mark as U&nread").enabled; }));
  EXPECT_TRUE(menuItem("&Reply").enabled);
  press('U', true);
  EXPECT_TRUE(waitUntil([&] { return treeLabels(tree()).at(1) == L"Inbox (1)"; }));
  press('Q', true);
  EXPECT_TRUE(waitUntil([&] { return treeLabels(tree()).at(1) == L"Inbox"; }));
}

// Two rows with the same text look the same when both are read. A bold text takes more ink: at this size every upright
// stroke is two pixels wide instead of one.
TEST_F(WindowTest, UnreadItem_IsBoldInTheListUntilItIsRead) {
  for (const char* const subject : {"Ill will fills till", "Ill will fills till", "Another"}) item("Inbox", subject);
  ASSERT_TRUE(waitUntil([&] { return rows(list()) == 3 && cell(list(), 2, 1) == L"Another"; }));
  ASSERT_TRUE(toFront(explorer_));
  const auto ink = [&](int row) { return inkIn(cellArea(list(), row, 1)); };
  const auto amount = [](const std::vector<bool>& of) { return std::count(of.begin(), of.end(), true); };
  const auto select = [&](WORD key, int row) {
    press(key);
    return waitUntil([&] { return SendMessageW(list(), LVM_GETNEXTITEM, WPARAM(-1), LVNI_SELECTED) == row; });
  };
  std::vector<bool> plain;
  ASSERT_TRUE(waitUntil([&] { return amount(plain = ink(0)) > 0 && ink(1) == plain; })) << "both are read";

  ASSERT_TRUE(select(VK_HOME, 0));
  press('U', true);
  ASSERT_TRUE(waitUntil([&] { return treeLabels(tree()).at(1) == L"Inbox (1)"; }));
  ASSERT_TRUE(select(VK_END, 2)) << "what is selected has other colours";
  EXPECT_TRUE(waitUntil([&] { return amount(ink(0)) * 4 > amount(plain) * 5; }))
      << amount(ink(0)) << " pixels, and " << amount(plain) << " when it is read";
  EXPECT_EQ(ink(1), plain) << "the other row has not changed";

  ASSERT_TRUE(select(VK_HOME, 0) && select(VK_END, 2));
  ASSERT_TRUE(waitUntil([&] { return treeLabels(tree()).at(1) == L"Inbox"; })) << "it was shown";
  EXPECT_TRUE(waitUntil([&] { return ink(0) == plain; })) << amount(ink(0)) << " pixels";
  EXPECT_EQ(ink(1), plain);
}

TEST_F(WindowTest, ReadingPane_ShowsTheSelectedItem_AndCanBeSwitchedOff) {
  ask("item Inbox IPM.Note \"Plans\" \"first\\r\\nsecond\"");
  ASSERT_TRUE(waitUntil([&] { return rows(list()) == 1; }));
  ASSERT_TRUE(toFront(explorer_));
  press(VK_HOME);
  const HWND pane = child(explorer_, WC_EDITW);
  EXPECT_TRUE(waitUntil([&] { return textOf(pane) == L"first\r\nsecond"; }));
  EXPECT_TRUE(menuItem("&Reading Pane").checked);
  choose("&Reading Pane");
  EXPECT_TRUE(waitUntil([&] { return !IsWindowVisible(pane); }));
  EXPECT_TRUE(waitUntil([&] { return !menuItem("&Reading Pane").checked; }));
}

TEST_F(WindowTest, NewContact_TypedAndSaved_IsInTheContacts) {
  ASSERT_TRUE(toFront(explorer_));
  press('C', true, true);
  const HWND form = await(processId(), inspectorClass, L"Untitled - Contact");
  ASSERT_TRUE(form && toFront(form));
  type(L"Anna Ek");
  press(VK_TAB);
  press(VK_TAB);
  type(L"+46 70 1");
  ASSERT_TRUE(waitUntil([&] { return textOf(child(form, WC_EDITW, 2)) == L"+46 70 1"; }));
  press('S', true);
  EXPECT_TRUE(awaitGone(processId(), inspectorClass));
  const auto contacts = ask("list Contacts").lines;
  ASSERT_EQ(contacts.size(), 1u);
  EXPECT_EQ(field(contacts[0], "subject"), "Anna Ek");
}

TEST_F(WindowTest, ChangedItem_ClosedByEscape_AsksAndStaysOnCancel) {
  ASSERT_TRUE(toFront(explorer_));
  press('N', true);
  const HWND form = await(processId(), inspectorClass, L"Untitled - Message");
  ASSERT_TRUE(form && toFront(form));
  type(L"somebody");
  ASSERT_TRUE(waitUntil([&] { return textOf(child(form, WC_EDITW)) == L"somebody"; }));
  press(VK_ESCAPE);
  const HWND question = await(processId(), L"#32770", L"Untitled - Message");
  ASSERT_TRUE(question && toFront(question));
  press(VK_ESCAPE);
  EXPECT_TRUE(awaitGone(processId(), L"#32770"));
  EXPECT_TRUE(IsWindow(form));
  PostMessageW(form, WM_CLOSE, 0, 0);
  const HWND again = await(processId(), L"#32770", L"Untitled - Message");
  ASSERT_TRUE(again);
  PostMessageW(again, WM_COMMAND, IDNO, 0);
  EXPECT_TRUE(awaitGone(processId(), inspectorClass));
  EXPECT_EQ(count("Drafts"), 0u);
}

TEST_F(WindowTest, NewFolder_AppearsInTheTree) {
  choose("Fol&der...");
  const HWND dialog = await(processId(), L"#32770", L"New Folder");
  ASSERT_TRUE(dialog && toFront(dialog));
  type(L"Holiday");
  ASSERT_TRUE(waitUntil([&] { return textOf(child(dialog, WC_EDITW)) == L"Holiday"; }));
  press(VK_RETURN);
  EXPECT_TRUE(waitUntil([&] {
    const auto labels = treeLabels(tree());
    return std::find(labels.begin(), labels.end(), L"Holiday") != labels.end();
  }));
}

TEST_F(WindowTest, Options_WithoutAnAddIn_HaveTheirOwnPageAlone) {
  choose("&Options...");
  const HWND dialog = await(processId(), L"#32770", L"Options");
  ASSERT_TRUE(dialog);
  EXPECT_FALSE(IsWindowEnabled(explorer_)) << "it is modal";
  EXPECT_EQ(SendMessageW(child(dialog, WC_TABCONTROLW), TCM_GETITEMCOUNT, 0, 0), 1);
  ASSERT_TRUE(toFront(dialog));
  press(VK_ESCAPE);
  EXPECT_TRUE(awaitGone(processId(), L"#32770"));
  EXPECT_TRUE(waitUntil([&] { return IsWindowEnabled(explorer_) != FALSE; }));
}

TEST_F(WindowTest, ClosingTheLastWindow_EndsTheProgram) {
  const std::string id = ask("item Inbox IPM.Note a b").result;
  ask("inspector open " + id);
  const HWND form = await(processId(), inspectorClass);
  ASSERT_TRUE(form);
  PostMessageW(explorer_, WM_CLOSE, 0, 0);
  EXPECT_TRUE(awaitGone(processId(), explorerClass));
  EXPECT_EQ(ask("status").lines.at(0), "explorers 0");
  EXPECT_TRUE(client_->isRunning()) << "an item window is open";
  PostMessageW(form, WM_CLOSE, 0, 0);
  EXPECT_TRUE(client_->waitForEnd());
}

TEST_F(WindowTest, Restart_BringsBackPlaceFolderAndSorting) {
  restartWithStore();
  SetWindowPos(explorer_, nullptr, 60, 50, 900, 600, SWP_NOZORDER);
  item("Drafts", "b");
  item("Drafts", "a");
  ASSERT_TRUE(toFront(explorer_));
  selectFolder(L"Drafts [2]", L"Drafts");
  ASSERT_TRUE(waitUntil([&] { return rows(list()) == 2; }));
  const auto width = static_cast<int>(SendMessageW(list(), LVM_GETCOLUMNWIDTH, 0, 0));
  clickAt(child(list(), WC_HEADERW), width + 20, 8);
  ASSERT_TRUE(waitUntil([&] { return cell(list(), 0, 1) == L"a"; }));
  RECT before{};
  GetWindowRect(explorer_, &before);

  PostMessageW(explorer_, WM_CLOSE, 0, 0);
  ASSERT_TRUE(client_->waitForEnd());
  startWithStore();

  RECT after{};
  GetWindowRect(explorer_, &after);
  EXPECT_TRUE(EqualRect(&before, &after))
      << after.left << " " << after.top << " " << after.right << " " << after.bottom;
  EXPECT_EQ(textOf(explorer_), L"Drafts - Mail Client");
  EXPECT_EQ(cell(list(), 0, 1), L"a");
}

}  // namespace
