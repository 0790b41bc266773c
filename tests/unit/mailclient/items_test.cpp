// Items and their folders: what Save, Move and Delete do, and which events they raise.
#include <limits>

#include "mapi/mapi_props.h"
#include "unit/mailclient/fixture.h"

namespace mailclient {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ItemsTest : public MailClientTest {
 protected:
  outlook::MAPIFolder inbox = {};
  outlook::MAPIFolder deletedItems = {};
  void SetUp() override {
    MailClientTest::SetUp();
    inbox = folder(outlook::olFolderInbox);
    deletedItems = folder(outlook::olFolderDeletedItems);
  }
};

TEST_F(ItemsTest, Add_BeforeSave_BelongsToNoFolderAndHasNoEntryId) {
  const outlook::MailItem item = inbox.Items().Add(u"IPM.Note.TxtMsg");
  EXPECT_EQ(item.EntryID(), u"");
  EXPECT_EQ(inbox.Items().Count(), 0);
  EXPECT_EQ(item.MessageClass(), u"IPM.Note.TxtMsg");
  EXPECT_EQ(item.Class(), outlook::olMail);

  item.Save();

  EXPECT_EQ(inbox.Items().Count(), 1);
  EXPECT_NE(item.EntryID(), u"");
  EXPECT_EQ(inbox.Items().Item(1), item);
}

TEST_F(ItemsTest, Save_FirstTimeAndLater_RaisesItemAddThenItemChange) {
  Heard heard;
  const auto listener = make<ItemsListener>(heard);
  listener.get()->items = inbox.Items();

  const outlook::MailItem item = textMessage(inbox, u"one");
  item.Mileage(u"1");
  EXPECT_THAT(heard, ElementsAre(u"added one"));
  item.Save();
  EXPECT_THAT(heard, ElementsAre(u"added one", u"changed one"));
  item.UnRead(true);
  EXPECT_THAT(heard, ElementsAre(u"added one", u"changed one", u"changed one"));
  item.UnRead(true);
  EXPECT_EQ(heard.size(), 3u) << "nothing changed";
}

TEST_F(ItemsTest, Move_ToAnotherFolder_KeepsEntryIdAndObjectAndTellsBothFolders) {
  const outlook::MailItem item = textMessage(inbox, u"m");
  const String id = item.EntryID();
  Heard heard;
  const auto from = make<ItemsListener>(heard, u"inbox ");
  const auto to = make<ItemsListener>(heard, u"sent ");
  from.get()->items = inbox.Items();
  to.get()->items = folder(outlook::olFolderSentMail).Items();

  const outlook::MailItem moved = item.Move(folder(outlook::olFolderSentMail));

  EXPECT_EQ(moved, item);
  EXPECT_EQ(moved.EntryID(), id);
  EXPECT_EQ(inbox.Items().Count(), 0);
  EXPECT_EQ(folder(outlook::olFolderSentMail).Items().Count(), 1);
  EXPECT_THAT(heard, ElementsAre(u"inbox removed", u"sent added m"));
  EXPECT_EQ(session.GetItemFromID(id, inbox.StoreID()), item);
}

TEST_F(ItemsTest, Delete_GoesToDeletedItemsThenForGood) {
  const outlook::MailItem item = textMessage(inbox, u"d");
  const String id = item.EntryID();
  Heard heard;
  const auto listener = make<ItemsListener>(heard, u"deleted ");
  listener.get()->items = deletedItems.Items();

  item.Delete();
  EXPECT_EQ(inbox.Items().Count(), 0);
  EXPECT_EQ(deletedItems.Items().Count(), 1);
  EXPECT_EQ(item.EntryID(), id);
  EXPECT_THAT(heard, ElementsAre(u"deleted added d"));

  item.Delete();
  EXPECT_EQ(deletedItems.Items().Count(), 0);
  EXPECT_THAT(heard, ElementsAre(u"deleted added d", u"deleted removed"));
  expectError(failure::deleted, [&] { item.Body(); });
  expectError(failure::notFound, [&] { session.GetItemFromID(id, inbox.StoreID()); });
}

TEST_F(ItemsTest, Delete_Unsaved_LeavesNoTrace) {
  const outlook::MailItem item = inbox.Items().Add(u"IPM.Note");
  item.Delete();
  EXPECT_EQ(deletedItems.Items().Count(), 0);
  expectError(failure::deleted, [&] { item.Save(); });
}

TEST_F(ItemsTest, EntryIds_OfDeletedItems_AreNotUsedAgain) {
  std::set<String> seen;
  for (int i = 0; i < 600; ++i) {
    const outlook::MailItem item = textMessage(deletedItems);
    EXPECT_TRUE(seen.insert(item.EntryID()).second) << i;
    item.Delete();
  }
}

TEST_F(ItemsTest, Items_EachCallIsANewObject_FollowingTheFolder) {
  const outlook::Items first = inbox.Items();
  const outlook::Items second = inbox.Items();
  EXPECT_FALSE(first == second);
  textMessage(inbox);
  EXPECT_EQ(first.Count(), 1);
  EXPECT_EQ(second.Count(), 1);
}

TEST_F(ItemsTest, Item_OutsideOneToCount_IsAnError) {
  textMessage(inbox);
  const outlook::Items items = inbox.Items();
  EXPECT_EQ(items.Item(1).Body(), u"Hello");
  expectError(440, [&] { items.Item(0); });
  expectError(440, [&] { items.Item(2); });
}

TEST_F(ItemsTest, Restrict_IsASnapshotOfTheMatches) {
  textMessage(inbox, u"first");
  inbox.Items().Add(u"IPM.Note").Save();
  const outlook::MailItem second = textMessage(inbox, u"second");
  const outlook::Items found = inbox.Items().Restrict(u"[MessageClass] = 'IPM.Note.TxtMsg'");
  ASSERT_EQ(found.Count(), 2);

  second.Move(deletedItems);
  textMessage(inbox, u"third");

  EXPECT_EQ(found.Count(), 2);
  EXPECT_EQ(found.Item(1).Body(), u"first");
  EXPECT_EQ(found.Item(2).Body(), u"second");
}

TEST_F(ItemsTest, Restricted_RaisesNoEvents) {
  Heard heard;
  const auto listener = make<ItemsListener>(heard);
  listener.get()->items = inbox.Items().Restrict(u"[MessageClass] = 'IPM.Note'");
  textMessage(inbox);
  EXPECT_THAT(heard, IsEmpty());
}

TEST_F(ItemsTest, ReadOnlyMembers_RefuseToBePut) {
  const LateBound item(textMessage(inbox));
  for (const StringView name : {u"EntryID", u"ConversationTopic", u"SenderName", u"SentOn", u"ReceivedTime", u"Class"})
    expectError(438, [&] { item.let(name, u"x"); });
}

TEST_F(ItemsTest, Subject_Put_RewritesTheConversationTopic) {
  const LateBound item(textMessage(inbox));
  item.let(u"Subject", u"Lunch");
  EXPECT_EQ(item.get<String>(u"ConversationTopic"), u"Lunch");
  item.let(u"Subject", u"RE: Lunch");
  EXPECT_EQ(item.get<String>(u"ConversationTopic"), u"Lunch");
  item.let(u"Subject", u"Fwd.: Lunch");
  EXPECT_EQ(item.get<String>(u"ConversationTopic"), u"Fwd.: Lunch") << "too long to be a mark";
  item.let(u"Subject", u"12: Lunch");
  EXPECT_EQ(item.get<String>(u"ConversationTopic"), u"12: Lunch") << "digits are no mark";
}

TEST_F(ItemsTest, MapiObject_WritesWhatTheObjectModelDoesNot) {
  const outlook::MailItem item = folder(outlook::olFolderOutbox).Items().Add(u"IPM.Note.TxtMsg");
  const auto opaque = LateBound(item).get<platform::Opaque>(u"MAPIOBJECT");
  auto* const props = dynamic_cast<mapi::MessageProps*>(opaque.thing.get());
  ASSERT_NE(props, nullptr);
  props->setString(mapi::tag::subject, u"RE: S");
  props->setString(mapi::tag::conversationTopic, u"Anna [+46]\u0001010203040506");
  props->setString(mapi::tag::senderName, u"Bo [+47]");
  props->setTime(mapi::tag::clientSubmitTime, Date{36000.25});
  props->setTime(mapi::tag::messageDeliveryTime, Date{36000.5});
  for (const double days : {-657435.0, 2958466.0, std::numeric_limits<double>::quiet_NaN()})
    expectError(failure::invalid, [&] { props->setTime(mapi::tag::clientSubmitTime, Date{days}); });
  props->setLong(mapi::tag::messageFlags, 0);
  EXPECT_EQ(folder(outlook::olFolderOutbox).Items().Count(), 0) << "stored by the next Save";
  item.Save();

  EXPECT_EQ(item.ConversationTopic(), u"Anna [+46]\u0001010203040506");
  EXPECT_EQ(item.SenderName(), u"Bo [+47]");
  EXPECT_EQ(item.SentOn(), Date{36000.25});
  EXPECT_EQ(LateBound(item).get<Date>(u"ReceivedTime"), Date{36000.5});
  EXPECT_TRUE(LateBound(item).get<bool>(u"UnRead"));
  EXPECT_TRUE(LateBound(item).get<bool>(u"Sent"));
  expectError(failure::computed, [&] { props->setLong(mapi::tag::messageFlags, mapi::flagRead); });
  expectError(failure::unknownTag, [&] { props->setString(0x1234001E, u"?"); });
}

TEST_F(ItemsTest, UnReadItemCount_CountsTheUnread) {
  textMessage(inbox).UnRead(true);
  textMessage(inbox);
  EXPECT_EQ(LateBound(inbox).get<std::int32_t>(u"UnReadItemCount"), 1);
}

TEST_F(ItemsTest, Kinds_FollowTheMessageClass) {
  const outlook::Items items = inbox.Items();
  EXPECT_EQ(items.Add(u"IPM.Contact").Class(), outlook::olContact);
  EXPECT_EQ(items.Add(u"IPM.Post").Class(), outlook::olPost);
  EXPECT_EQ(items.Add(u"IPM.Appointment").Class(), outlook::olAppointment);
  EXPECT_EQ(items.Add(u"IPM.Notebook").Class(), outlook::olMail) << "no subclass of IPM.Note, but mail all the same";
  expectError(438, [&] { items.Add(u"IPM.Contact").SenderName(); });
  expectError(438, [&] { outlook::ContactItem(items.Add(u"IPM.Note").automation()).FullName(); });
}

// The engine reacts to an addition by moving the item on, from inside the event.
class Mover final : public platform::Counted {
 public:
  void added(Object item) { outlook::MailItem(item.automation()).Move(target); }
  outlook::MAPIFolder target;
  platform::WithEvents<outlook::Items> items{this, platform::on<outlook::ItemsEvents::ItemAdd, &Mover::added>};
};

TEST_F(ItemsTest, ItemAdd_HandlerMovesTheItem_EverybodySeesTheFinishedState) {
  const auto mover = make<Mover>();
  mover.get()->target = deletedItems;
  mover.get()->items = inbox.Items();
  const outlook::MailItem item = textMessage(inbox, u"x");
  EXPECT_EQ(inbox.Items().Count(), 0);
  EXPECT_EQ(deletedItems.Items().Count(), 1);
  EXPECT_EQ(deletedItems.Items().Item(1), item);
}

TEST_F(ItemsTest, Folders_InOneAnother_AreFoundByPositionAndName) {
  const outlook::Folders below = folder(outlook::olFolderContacts).Folders();
  EXPECT_EQ(below.Count(), 0);
  const auto work = LateBound(below).call<outlook::MAPIFolder>(u"Add", u"Work");
  EXPECT_EQ(below.Count(), 1);
  EXPECT_EQ(below.Item(1), work);
  EXPECT_EQ(LateBound(below).call<Object>(u"Item", u"WORK"), work);
  EXPECT_EQ(LateBound(work).get<std::int32_t>(u"DefaultItemType"), 2) << "as the folder above";
  expectError(failure::collision, [&] { LateBound(below).call<Object>(u"Add", u"work"); });
  expectError(failure::notFound, [&] { LateBound(below).call<Object>(u"Item", u"Home"); });
  expectError(438, [&] { LateBound(work).get<String>(u""); });
}

TEST_F(ItemsTest, Folder_Deleted_TakesItsItemsAlong) {
  const auto work = LateBound(folder(outlook::olFolderContacts).Folders()).call<outlook::MAPIFolder>(u"Add", u"Work");
  const outlook::MailItem saved = textMessage(work);
  const outlook::MailItem unsaved = work.Items().Add(u"IPM.Note");
  LateBound(work).call(u"Delete");
  expectError(failure::deleted, [&] { saved.Body(); });
  expectError(failure::deleted, [&] { unsaved.Save(); });
  expectError(failure::deleted, [&] { work.Items(); });
  expectError(failure::noAccess, [&] { LateBound(inbox).call(u"Delete"); });
}

TEST_F(ItemsTest, Census_ShowsWhatIsStillReferenced) {
  textMessage(inbox);
  inbox = {};
  deletedItems = {};
  session = {};
  application = {};
  EXPECT_THAT(client->census, IsEmpty());
  const Object held =
      client->itemObject(client->store().defaultFolder(DefaultFolder::Inbox)->messages()[0]).get()->object();
  EXPECT_THAT(client->census, ElementsAre(testing::Pair(StringView(u"MailItem"), 1)));
}

}  // namespace
}  // namespace mailclient
