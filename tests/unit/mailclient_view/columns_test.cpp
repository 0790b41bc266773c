// Columns, the folder tree's labels, menus, and the phone's state as text.
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "mailclient/built_in_commands.h"
#include "mailclient/view/canvas.h"
#include "mailclient/view/collate.h"
#include "mailclient/view/folder_tree.h"
#include "mailclient/view/icon_art.h"
#include "mailclient/view/menu_text.h"
#include "mailclient/view/phone_activity.h"

namespace mailclient {
namespace {

using testing::ElementsAre;

std::vector<String> titlesOf(FolderKind kind) {
  std::vector<String> titles;
  for (const ColumnInfo& info : columnsOf(kind)) titles.emplace_back(info.title);
  return titles;
}

TEST(ColumnsTest, FolderKind_FollowsTheDefaultFoldersAndTheItemType) {
  Store store;
  const auto kindOfDefault = [&](DefaultFolder f) { return folderKind(store, *store.defaultFolder(f)); };
  EXPECT_EQ(kindOfDefault(DefaultFolder::Inbox), FolderKind::Inbox);
  EXPECT_EQ(kindOfDefault(DefaultFolder::SentItems), FolderKind::Sent);
  EXPECT_EQ(kindOfDefault(DefaultFolder::Contacts), FolderKind::Contacts);
  EXPECT_EQ(kindOfDefault(DefaultFolder::Notes), FolderKind::Other);
  EXPECT_EQ(folderKind(store, *store.addFolder(*store.root(), u"Mine", ItemType::Mail)), FolderKind::Plain);
  EXPECT_EQ(folderKind(store, *store.addFolder(*store.root(), u"People", ItemType::Contact)), FolderKind::Contacts);
}

TEST(ColumnsTest, WhatWasSent_ShowsItsRecipient_WhatCame_ItsSender) {
  EXPECT_THAT(titlesOf(FolderKind::Inbox), ElementsAre(u"From", u"Subject", u"Received"));
  EXPECT_THAT(titlesOf(FolderKind::Outbox), ElementsAre(u"To", u"Subject", u"Sent"));
  EXPECT_THAT(titlesOf(FolderKind::Contacts),
              ElementsAre(u"Full Name", u"Company", u"Mobile Phone", u"Business Phone"));
}

TEST(ColumnsTest, Cells_AreOneLine_AndTheTimeIsTheLocalOne) {
  Message m;
  m[Text::SenderName] = u"Anna";
  m[Text::Subject] = u"two\r\nlines\tand a tab";
  m.receivedTime = Date{36925.25};
  const TimeText timeText = [](Date utc) { return utc.days == 36925.25 ? String(u"early") : String(u"?"); };
  EXPECT_EQ(cellText(m, Column::From, timeText), u"Anna");
  EXPECT_EQ(cellText(m, Column::Subject, timeText), u"two lines and a tab");
  EXPECT_EQ(cellText(m, Column::Received, timeText), u"early");
  EXPECT_EQ(cellText(m, Column::Sent, timeText), u"early") << "never sent from here: the time it came";
  m.receivedTime = {};
  EXPECT_EQ(cellText(m, Column::Received, timeText), u"None");
}

TEST(CollateTest, CaseAndAccentsCountLast) {
  EXPECT_LT(collate(u"anna", u"Bo"), 0);
  EXPECT_LT(collate(u"Åke", u"bo"), 0);
  EXPECT_LT(collate(u"Ann", u"Anna"), 0);
  EXPECT_EQ(collate(u"Anna", u"Anna"), 0);
  EXPECT_NE(collate(u"Anna", u"anna"), 0);
  EXPECT_GT(collate(u"жук", u"zebra"), 0);
}

TEST(FolderTreeTest, Children_InTheMailClientsOrder_EmptyOnesWithoutAViewAreLeftOut) {
  Store store;
  store.addFolder(*store.root(), u"Zoo", ItemType::Mail);
  store.addFolder(*store.root(), u"älg", ItemType::Mail);
  const MessagePtr note = Store::create(*store.defaultFolder(DefaultFolder::Notes), u"IPM.StickyNote");
  store.save(note);
  std::vector<String> names;
  for (const auto& folder : shownChildren(store, *store.root())) names.push_back(folder->name());
  EXPECT_THAT(names, ElementsAre(u"Inbox", u"Drafts", u"Outbox", u"Sent Items", u"Deleted Items", u"Contacts", u"Notes",
                                 u"älg", u"Zoo"));
}

TEST(FolderTreeTest, Labels_CountUnreadItems_AndAllOfTheOutbox) {
  Store store;
  Folder& inbox = *store.defaultFolder(DefaultFolder::Inbox);
  Folder& outbox = *store.defaultFolder(DefaultFolder::Outbox);
  EXPECT_EQ(folderLabel(store, inbox), u"Inbox");
  EXPECT_FALSE(labelIsBold(store, inbox));
  const MessagePtr m = Store::create(inbox, u"IPM.Note");
  store.save(m);
  EXPECT_EQ(folderLabel(store, inbox), u"Inbox");
  store.setUnread(m, true);
  EXPECT_EQ(folderLabel(store, inbox), u"Inbox (1)");
  EXPECT_TRUE(labelIsBold(store, inbox));
  store.save(Store::create(outbox, u"IPM.Note"));
  EXPECT_EQ(folderLabel(store, outbox), u"Outbox [1]");
}

TEST(FolderTreeTest, Path_LeadsBackToTheFolder) {
  Store store;
  const auto below = store.addFolder(*store.defaultFolder(DefaultFolder::Contacts), u"Family", ItemType::Contact);
  EXPECT_EQ(folderPath(*below), u"Contacts/Family");
  EXPECT_EQ(folderAt(store, u"contacts/FAMILY"), below);
  EXPECT_EQ(folderAt(store, u"Contacts/Gone"), nullptr);
  EXPECT_EQ(folderAt(store, u""), store.root());
  const auto odd = store.addFolder(*below, u"on/off \\ \"x\"", ItemType::Mail);
  const auto trap = store.addFolder(*store.addFolder(*below, u"on", ItemType::Mail), u"off", ItemType::Mail);
  EXPECT_EQ(folderAt(store, folderPath(*odd)), odd) << "a name may hold the separator";
  EXPECT_EQ(folderAt(store, folderPath(*trap)), trap);
}

// ---- menus
// --------------------------------------------------------------------------------------------------------------

class MenuTextTest : public testing::Test {
 protected:
  Bar& popup(std::int32_t id) { return *bars_.find({.id = id})->popup; }
  std::vector<String> texts(std::int32_t id) {
    std::vector<String> all;
    for (const MenuEntry& entry : menuEntries(popup(id)))
      all.push_back((entry.separatorBefore ? u"-" : u"") + entry.text);
    return all;
  }

  BarSet bars_{{}, {}};
};

TEST_F(MenuTextTest, PopupsWithNothingToShow_AreLeftOut) {
  std::vector<String> texts;
  for (const MenuEntry& entry : menuEntries(*bars_.bar(menuBarName))) texts.push_back(entry.text);
  EXPECT_THAT(texts, ElementsAre(u"&File", u"&Edit", u"&View", u"&Tools", u"&Actions", u"&Help")) << "no Favorites";
}

TEST_F(MenuTextTest, ButtonsOfPrograms_StandBehindTheBuiltInOnes) {
  const ControlPtr button = BarSet::addButton(popup(menu::tools), std::nullopt, false);
  button->caption = u"Send && Receive";
  button->enabled = false;
  button->beginGroup = true;
  EXPECT_THAT(texts(menu::tools), ElementsAre(u"&Options...", u"-Send && Receive"));
  EXPECT_FALSE(menuEntries(popup(menu::tools))[1].enabled);
  button->visible = false;
  EXPECT_THAT(texts(menu::tools), ElementsAre(u"&Options..."));
}

TEST_F(MenuTextTest, Keys_StandBehindATab_AndAPressedButtonIsChecked) {
  EXPECT_THAT(texts(menu::newItem),
              ElementsAre(u"&Mail Message\tCtrl+N", u"&Contact\tCtrl+Shift+C", u"Fol&der...\tCtrl+Shift+E"));
  EXPECT_FALSE(menuEntries(popup(menu::view))[0].checked);
  bars_.controlsOf(command::readingPane).at(0)->state = -1;
  EXPECT_TRUE(menuEntries(popup(menu::view))[0].checked);
}

TEST_F(MenuTextTest, Hint_IsTheTooltip_ElseThePlainCaption) {
  Control control;
  control.caption = u"Send && &Receive&";
  EXPECT_EQ(hintOf(control), u"Send & Receive");
  control.tooltip = u"Tip";
  EXPECT_EQ(hintOf(control), u"Tip");
}

TEST_F(MenuTextTest, LooksSame_UntilSomethingThatIsShownChanges) {
  const auto before = menuEntries(*bars_.bar(menuBarName));
  EXPECT_TRUE(looksSame(before, menuEntries(*bars_.bar(menuBarName))));
  bars_.controlsOf(command::options).at(0)->enabled = false;
  EXPECT_FALSE(looksSame(before, menuEntries(*bars_.bar(menuBarName))));
}

TEST_F(MenuTextTest, LooksSame_NotWithAnotherIconOrStyle) {
  const ControlPtr button = BarSet::addButton(popup(menu::tools), std::nullopt, false);
  const auto before = menuEntries(popup(menu::tools));
  button->faceId = 5;
  const auto withIcon = menuEntries(popup(menu::tools));
  EXPECT_FALSE(looksSame(before, withIcon));
  button->style = 2;
  EXPECT_FALSE(looksSame(withIcon, menuEntries(popup(menu::tools))));
}

TEST_F(MenuTextTest, BuiltInCommand_Clicked_RunsInTheWindow_UnlessDisabled) {
  std::vector<std::int32_t> ran;
  bars_.runBuiltIn = [&](std::int32_t id) { ran.push_back(id); };
  const ControlPtr reply = bars_.controlsOf(command::reply).at(0);
  EXPECT_TRUE(bars_.click(reply));
  reply->enabled = false;
  EXPECT_FALSE(bars_.click(reply));
  EXPECT_THAT(ran, ElementsAre(command::reply));
}

TEST_F(MenuTextTest, Keys_AreNotGivenTwice) {
  std::set<String> seen;
  std::set<std::int32_t> ids;
  for (const BuiltInCommand& what : builtInCommands()) {
    if (!ids.insert(what.id).second || keysOf(what.id).empty()) continue;
    EXPECT_TRUE(seen.insert(String(keysOf(what.id))).second) << std::string(what.caption.begin(), what.caption.end());
  }
}

// ---- the phone
// ------------------------------------------------------------------------------------------------------------

TEST(PhoneActivityTest, WithoutServiceOrPhone_SaysSo) {
  PhoneActivity phone;
  EXPECT_EQ(phone.text(0), u"No phone service");
  phone.attached(false, {});
  EXPECT_EQ(phone.text(0), u"No phone connected");
  phone.attached(true, u"T68");
  EXPECT_EQ(phone.text(0), u"T68 connected");
  phone.serviceLost();
  EXPECT_EQ(phone.text(0), u"No phone service");
}

TEST(PhoneActivityTest, MessageInTheOutbox_IsSentUntilItLeaves) {
  PhoneActivity phone;
  phone.attached(true, u"T68");
  phone.outboxHolds(2, 5, 100);
  EXPECT_EQ(phone.text(200), u"Sending 2 text messages...");
  EXPECT_TRUE(phone.isWorking(200));
  phone.answered(true, 300);
  phone.outboxHolds(1, 5, 300);
  EXPECT_EQ(phone.text(300), u"Sending 1 text message...");
  phone.outboxHolds(0, 0, 400);
  EXPECT_EQ(phone.text(400), u"T68 connected");
  EXPECT_FALSE(phone.isWorking(400));
}

TEST(PhoneActivityTest, SendThatIsNeverAnswered_GoesOnAsLongAsTheTextsPartsAreWaitedFor) {
  struct Case {
    std::size_t characters;
    std::uint32_t span;
  };
  for (const auto& [characters, span] : {Case{1, 25000}, Case{159, 25000}, Case{160, 50000}, Case{500, 100000}}) {
    PhoneActivity phone;
    phone.attached(true, u"T68");
    phone.outboxHolds(1, characters, 0);
    EXPECT_EQ(phone.text(span - 1), u"Sending 1 text message...") << characters;
    EXPECT_EQ(phone.text(span), u"T68 connected") << characters;
  }
}

TEST(PhoneActivityTest, SendThatFails_IsOver_UntilACommandThatListsTriesAgain) {
  PhoneActivity phone;
  phone.attached(true, u"T68");
  phone.outboxHolds(1, 5, 0);
  phone.answered(false, 10);
  EXPECT_EQ(phone.text(20), u"T68 connected");
  phone.commandBegan();
  phone.answered(true, 150);
  phone.commandEnded(200);
  EXPECT_EQ(phone.text(2000), u"Sending 1 text message...");
  EXPECT_EQ(phone.text(25200), u"T68 connected");
}

TEST(PhoneActivityTest, MessageDeletedFromTheOutbox_SendsNothing) {
  PhoneActivity phone;
  phone.attached(true, u"T68");
  phone.outboxHolds(2, 5, 0);
  phone.answered(false, 10);
  phone.outboxHolds(1, 5, 20);
  EXPECT_EQ(phone.text(20), u"T68 connected");
}

TEST(PhoneActivityTest, WaitingMessagesWithoutAPhone_AreNotSent) {
  PhoneActivity phone;
  phone.attached(false, {});
  phone.outboxHolds(1, 5, 0);
  EXPECT_EQ(phone.text(10), u"No phone connected");
  phone.attached(true, u"T68");
  EXPECT_EQ(phone.text(20), u"T68 connected");
}

TEST(PhoneActivityTest, CommandWithoutThePhone_SaysNothingOfIt) {
  PhoneActivity phone;
  phone.attached(true, u"T68");
  phone.outboxHolds(1, 5, 0);
  phone.answered(false, 10);
  phone.delivered(100);
  phone.commandBegan();
  EXPECT_EQ(phone.text(2000), u"T68 connected") << "what was heard before it is of another command";
  phone.commandEnded(2000);
  EXPECT_EQ(phone.text(2000), u"T68 connected");
}

TEST(PhoneActivityTest, Listing_ShowsForAMoment_AndAsLongAsItsCommandRuns) {
  PhoneActivity phone;
  phone.attached(true, u"T68");
  phone.delivered(0xFFFFFF00u);
  EXPECT_EQ(phone.state(0x00000100u), PhoneActivity::State::Receiving) << "the clock has begun again";
  EXPECT_EQ(phone.state(0x00001000u), PhoneActivity::State::Idle);
  phone.commandBegan();
  phone.delivered(0x2000);
  phone.commandBegan();  // from inside the first one's wait
  phone.commandEnded(0x3000);
  EXPECT_EQ(phone.text(0x9000), u"Receiving text messages...");
  phone.commandEnded(0x9000);
  EXPECT_EQ(phone.text(0x9000), u"T68 connected");
}

// ---- icons
// ----------------------------------------------------------------------------------------------------------------

TEST(CanvasTest, Rectangle_CoversItsPixels_AndHalfOfThoseItCuts) {
  Canvas c(4, 4);
  c.rectangle(1, 1, 1.5, 2, {255, 0, 0});
  const auto at = [&](std::size_t x, std::size_t y) { return c.pixels()[y * 4 + x]; };
  EXPECT_EQ(at(0, 0), 0u);
  EXPECT_EQ(at(1, 1), 0xFFFF0000u);
  EXPECT_EQ(at(2, 2), 0x80800000u) << "half covered, multiplied by alpha";
  EXPECT_EQ(at(3, 1), 0u);
  EXPECT_EQ(at(1, 3), 0u);
}

TEST(CanvasTest, LaterShapes_LieOnTop) {
  Canvas c(2, 2);
  c.rectangle(0, 0, 2, 2, {255, 0, 0});
  c.rectangle(0, 0, 1, 2, {0, 0, 255});
  c.rectangle(1, 0, 1, 2, {0, 255, 0, 128});
  EXPECT_EQ(c.pixels()[0], 0xFF0000FFu);
  EXPECT_EQ(c.pixels()[1] >> 24, 0xFFu);
  EXPECT_EQ((c.pixels()[1] >> 8) & 0xFF, 0x80u);
}

TEST(IconArtTest, EveryPicture_ShowsSomethingAndStaysItself) {
  for (const int size : {16, 20, 24, 32}) {
    std::set<std::vector<std::uint32_t>> seen;
    for (int i = 1; i < artCount; ++i) {
      const Canvas picture = draw(static_cast<Art>(i), size);
      EXPECT_EQ(picture.pixels().size(), static_cast<std::size_t>(size * size));
      EXPECT_TRUE(std::any_of(picture.pixels().begin(), picture.pixels().end(), [](auto p) { return p >> 24 == 255; }))
          << i;
      seen.insert(picture.pixels());
    }
    EXPECT_EQ(seen.size(), static_cast<std::size_t>(artCount - 2)) << "store and application share one, no others";
  }
}

TEST(IconArtTest, Messages_ByClassAndReadState) {
  Message m;
  m[Text::MessageClass] = u"IPM.Note.TxtMsg";
  m.unread = true;
  EXPECT_EQ(artOf(m), Art::TextUnread);
  m.unread = false;
  EXPECT_EQ(artOf(m), Art::TextRead);
  m[Text::MessageClass] = u"IPM.Note";
  EXPECT_EQ(artOf(m), Art::MailRead);
  m[Text::MessageClass] = u"IPM.Contact";
  EXPECT_EQ(artOf(m), Art::Contact);
  EXPECT_EQ(artOfFace(1757), Art::NewMail);
  EXPECT_EQ(artOfFace(4711), Art::None);
}

}  // namespace
}  // namespace mailclient
