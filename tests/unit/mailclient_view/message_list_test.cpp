// The rows of a list: order, what happens to them, and what is selected.
#include "mailclient/view/message_list.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace mailclient {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class MessageListTest : public testing::Test {
 protected:
  MessagePtr add(StringView sender, double received, StringView subject = u"s") {
    const MessagePtr m = Store::create(*inbox_, textMessageClass);
    (*m)[Text::SenderName] = sender;
    (*m)[Text::Subject] = subject;
    m->receivedTime = Date{received};
    store_.save(m);
    return m;
  }
  std::vector<String> senders() {
    std::vector<String> all;
    for (const MessagePtr& m : list_.rows()) all.push_back((*m)[Text::SenderName]);
    return all;
  }
  void showNewestFirst() { list_.show(inbox_, {Column::Received, true}); }

  Store store_;
  std::shared_ptr<Folder> inbox_ = store_.defaultFolder(DefaultFolder::Inbox);
  int rowsChanged_ = 0;
  std::vector<std::size_t> rowChanged_;
  MessageList list_{{.rowsChanged = [this] { ++rowsChanged_; },
                     .rowChanged = [this](std::size_t row) { rowChanged_.push_back(row); }}};
};

TEST_F(MessageListTest, Show_SortsAndTellsOnce) {
  add(u"a", 1);
  add(u"b", 3);
  add(u"c", 2);
  showNewestFirst();
  EXPECT_THAT(senders(), ElementsAre(u"b", u"c", u"a"));
  EXPECT_EQ(rowsChanged_, 1);
}

TEST_F(MessageListTest, NewItem_GoesToItsPlace) {
  add(u"a", 1);
  add(u"b", 3);
  showNewestFirst();
  add(u"c", 2);
  EXPECT_THAT(senders(), ElementsAre(u"b", u"c", u"a"));
  EXPECT_EQ(rowsChanged_, 2);
}

TEST_F(MessageListTest, RemovedItem_LeavesTheRowsAndTheSelection) {
  const MessagePtr a = add(u"a", 1);
  const MessagePtr b = add(u"b", 2);
  showNewestFirst();
  list_.select({a, b});
  store_.remove(b);
  EXPECT_THAT(senders(), ElementsAre(u"a"));
  EXPECT_THAT(list_.selection(), ElementsAre(a));
}

TEST_F(MessageListTest, ChangedItem_InItsPlace_IsPaintedAlone) {
  const MessagePtr a = add(u"a", 1);
  add(u"b", 2);
  showNewestFirst();
  store_.setUnread(a, true);
  EXPECT_THAT(rowChanged_, ElementsAre(1u));
  EXPECT_EQ(rowsChanged_, 1);
}

TEST_F(MessageListTest, ChangeOfTheSortedColumn_MovesTheRow) {
  const MessagePtr a = add(u"a", 1);
  add(u"b", 2);
  list_.show(inbox_, {Column::From, false});
  (*a)[Text::SenderName] = u"z";
  store_.save(a);
  EXPECT_THAT(senders(), ElementsAre(u"b", u"z"));
  EXPECT_EQ(rowsChanged_, 2);
}

TEST_F(MessageListTest, SortBy_SameColumnAgain_TurnsTheOrderRound) {
  add(u"Åsa", 1);
  add(u"bo", 2);
  add(u"Cecilia", 3);
  showNewestFirst();
  list_.sortBy(Column::From, false);
  EXPECT_THAT(senders(), ElementsAre(u"Åsa", u"bo", u"Cecilia"));
  list_.sortBy(Column::From, false);
  EXPECT_THAT(senders(), ElementsAre(u"Cecilia", u"bo", u"Åsa"));
  list_.sortBy(Column::Received, true);
  EXPECT_THAT(senders(), ElementsAre(u"Cecilia", u"bo", u"Åsa"));
}

TEST_F(MessageListTest, SameName_NewestFirst) {
  add(u"a", 1, u"old");
  add(u"a", 2, u"new");
  list_.show(inbox_, {Column::From, false});
  EXPECT_EQ((*list_.rows()[0])[Text::Subject], u"new");
  list_.sortBy(Column::From, false);
  EXPECT_EQ((*list_.rows()[0])[Text::Subject], u"new") << "also when the names run backwards";
}

TEST_F(MessageListTest, ContactWithoutAName_IsSortedByWhatItShows) {
  const auto contacts = store_.defaultFolder(DefaultFolder::Contacts);
  for (const StringView name : {u"Anna", u"Olle"}) {
    const MessagePtr m = Store::create(*contacts, u"IPM.Contact");
    (*m)[Text::FullName] = name;
    store_.save(m);
  }
  const MessagePtr plumber = Store::create(*contacts, u"IPM.Contact");
  (*plumber)[Text::FileAs] = u"Plumber";
  store_.save(plumber);
  list_.show(contacts, {Column::FullName, false});
  EXPECT_EQ(list_.rows().back(), plumber);
}

TEST_F(MessageListTest, FolderThatIsRemoved_LeavesNoRows) {
  const auto mine = store_.addFolder(*store_.root(), u"Mine", ItemType::Mail);
  const MessagePtr m = Store::create(*mine, textMessageClass);
  store_.save(m);
  list_.show(mine, {});
  list_.select({m});
  const int before = rowsChanged_;
  store_.removeFolder(*mine);
  EXPECT_THAT(list_.rows(), IsEmpty());
  EXPECT_FALSE(list_.hasSelection());
  EXPECT_EQ(rowsChanged_, before + 1);
}

TEST_F(MessageListTest, Selection_SurvivesSortingAndComesInRowOrder) {
  const MessagePtr a = add(u"a", 1);
  const MessagePtr b = add(u"b", 2);
  showNewestFirst();
  list_.select({a, b});
  EXPECT_THAT(list_.selection(), ElementsAre(b, a));
  list_.sortBy(Column::From, false);
  EXPECT_THAT(list_.selection(), ElementsAre(a, b));
}

TEST_F(MessageListTest, Select_ItemsOfOtherFolders_AreNotTaken) {
  const MessagePtr a = add(u"a", 1);
  store_.move(a, *store_.defaultFolder(DefaultFolder::Drafts));
  showNewestFirst();
  list_.select({a});
  EXPECT_THAT(list_.selection(), IsEmpty());
}

TEST_F(MessageListTest, NeighbourOfSelection_IsTheRowBelowElseTheOneAbove) {
  const MessagePtr a = add(u"a", 3);
  const MessagePtr b = add(u"b", 2);
  const MessagePtr c = add(u"c", 1);
  showNewestFirst();
  EXPECT_EQ(list_.neighbourOfSelection(), nullptr);
  list_.select({a});
  EXPECT_EQ(list_.neighbourOfSelection(), b);
  list_.select({b, c});
  EXPECT_EQ(list_.neighbourOfSelection(), a);
  list_.select({a, b, c});
  EXPECT_EQ(list_.neighbourOfSelection(), nullptr);
}

TEST_F(MessageListTest, AfterShowingAnotherFolder_TheFirstOneIsNotHeard) {
  add(u"a", 1);
  showNewestFirst();
  list_.show(store_.defaultFolder(DefaultFolder::Drafts), {});
  const int before = rowsChanged_;
  add(u"b", 2);
  EXPECT_EQ(rowsChanged_, before);
  EXPECT_THAT(list_.rows(), IsEmpty());
}

// Two observers of one folder: the first one moves on what has just come.
TEST_F(MessageListTest, ItemThatWasMovedOnInsideItsArrival_IsNoRow) {
  class Mover final : public FolderObserver {
   public:
    Mover(Store& store, Folder& inbox) : store_(store), inbox_(inbox) { inbox_.addObserver(*this); }
    ~Mover() { inbox_.removeObserver(*this); }
    void itemAdded(const MessagePtr& m) override { store_.move(m, *store_.defaultFolder(DefaultFolder::Drafts)); }
    void itemChanged(const MessagePtr&) override {}
    void itemRemoved() override {}

   private:
    Store& store_;
    Folder& inbox_;
  };
  const Mover mover(store_, *inbox_);
  showNewestFirst();
  add(u"a", 1);
  EXPECT_THAT(list_.rows(), IsEmpty());
}

}  // namespace
}  // namespace mailclient
