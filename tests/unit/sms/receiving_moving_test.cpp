// MoveMessage.
#include "support/seam_recorder.h"
#include "unit/sms/receiving_fixture.h"

namespace sms_tests {
namespace {

using testing_support::Recorder;

class MoveMessage : public ReceivingFixture {
 protected:
  bool move(StringView entryId) { return probe().MoveMessage(entryId, outbox.facade(), inbox.facade()); }
  static bool unread(const Ref<FakeObject>& item) { return to<bool>(item->valueOf(u"UnRead")); }
};

TEST_F(MoveMessage, MovesTheItemWithThatEntryIdAndKeepsItsReadState) {
  addItem(outbox, u"", u"1");
  const auto item = addItem(outbox, u"", u"2");
  addItem(outbox, u"", u"3");
  EXPECT_TRUE(move(u"ID-2"));
  EXPECT_EQ(trace(), moved("ID-2", "Outbox", "Inbox"));
  EXPECT_EQ(outbox.entryIds(), (Lines{"ID-1", "ID-3"}));
  EXPECT_EQ(inbox.entryIds(), Lines{"ID-2"});
  EXPECT_TRUE(unread(item));
}

TEST_F(MoveMessage, MarkingAsRead_ComesBeforeTheMove) {
  const auto item = addItem(outbox, u"", u"1");
  Recorder recorder;
  EXPECT_TRUE(probe().MoveMessage(u"ID-1", outbox.facade(), sentMail.facade(), true));
  EXPECT_EQ(recorder.lines(),
            (Lines{"Outbox[default]", "Sent Items[default]", "Outbox.Items",
                   "Outbox.Items.Restrict(\"[MessageClass] = 'IPM.Note.TxtMsg'\")", "Outbox.Items restricted.Count",
                   "Outbox.Items restricted.Item(1)", "Item ID-1.EntryID", "Item ID-1.UnRead = False",
                   "Item ID-1.Move(<Sent Items>)", "Sent Items[default]"}));
  EXPECT_FALSE(unread(item));
  EXPECT_EQ(trace(), moved("ID-1", "Outbox", "Sent Items"));
}

TEST_F(MoveMessage, WithMarkReadFalse_LeavesTheReadState) {
  const auto item = addItem(outbox, u"", u"1");
  EXPECT_TRUE(probe().MoveMessage(u"ID-1", outbox.facade(), inbox.facade(), false));
  EXPECT_TRUE(unread(item));
}

TEST_F(MoveMessage, NoSuchItem_IsFalse) {
  addItem(outbox, u"", u"1");
  EXPECT_FALSE(move(u"ID-9"));
  EXPECT_EQ(trace(), joined({moveBegins("ID-9", "Outbox", "Inbox"),
                             {"MoveMessage - restrict folder items to TextMessage's", "MoveMessage - bMoved: False"}}));
  EXPECT_EQ(outbox.entryIds(), Lines{"ID-1"});
}

TEST_F(MoveMessage, EntryIdsAreComparedExactly) {
  addItem(outbox, u"", u"1");
  for (const StringView other : {u"id-1", u"ID-1 ", u"ID-", u""}) EXPECT_FALSE(move(other));
  EXPECT_EQ(outbox.entryIds(), Lines{"ID-1"});
}

TEST_F(MoveMessage, ItemOfAnotherClass_IsNotSeen) {
  addItem(outbox, u"", u"1", u"IPM.Note");
  EXPECT_FALSE(move(u"ID-1"));
}

TEST_F(MoveMessage, TwoItemsWithEqualEntryIds_OnlyTheFirstMoves) {
  addItem(outbox, u"", u"first");
  addItem(outbox, u"", u"second")->value(u"EntryID", u"ID-1");
  EXPECT_TRUE(move(u"ID-1"));
  EXPECT_EQ(inbox.bodies(), Lines{"first"});
  EXPECT_EQ(outbox.bodies(), Lines{"second"});
}

TEST_F(MoveMessage, MissingFolder_MovesNothingAndIsNoError) {
  addItem(outbox, u"", u"1");
  EXPECT_FALSE(probe().MoveMessage(u"ID-1", {}, inbox.facade()));
  EXPECT_EQ(trace(), joined({moveBegins("ID-1", "", "Inbox"), {"MoveMessage - bMoved: False"}}));
  clear();
  EXPECT_FALSE(probe().MoveMessage(u"ID-1", outbox.facade(), {}));
  EXPECT_EQ(trace(), joined({moveBegins("ID-1", "Outbox", ""), {"MoveMessage - bMoved: False"}}));
  clear();
  EXPECT_FALSE(probe().MoveMessage(u"ID-1", {}, {}));
  EXPECT_EQ(trace(), joined({moveBegins("ID-1", "", ""), {"MoveMessage - bMoved: False"}}));
  EXPECT_EQ(outbox.entryIds(), Lines{"ID-1"});
  EXPECT_EQ(outbox.items->calls(), Lines{});
}

TEST_F(MoveMessage, FolderWithoutADefaultMember_IsShownByItsNameElseAsNothing) {
  outbox.folder->removed(u"");
  inbox.folder->removed(u"").removed(u"Name");
  addItem(outbox, u"", u"1");
  EXPECT_TRUE(move(u"ID-1"));
  EXPECT_EQ(trace(), moved("ID-1", "Outbox", ""));
}

TEST_F(MoveMessage, MoveThatFails_IsLoggedAndFalse) {
  addItem(outbox, u"", u"1")->fails(u"Move", 70);
  EXPECT_FALSE(move(u"ID-1"));
  EXPECT_EQ(
      trace(),
      joined({moveBegins("ID-1", "Outbox", "Inbox"),
              {"MoveMessage - restrict folder items to TextMessage's", "Error:70, Permission denied, mrktxtmsg"}}));
}

TEST_F(MoveMessage, FolderThatCannotBeRestricted_IsLoggedAndFalse) {
  outbox.items->fails(u"Restrict", 70);
  EXPECT_FALSE(move(u"ID-1"));
  EXPECT_EQ(trace().back(), "Error:70, Permission denied, mrktxtmsg");
}

// Moving raises events, and those may change the fields that the arguments came from.
TEST_F(MoveMessage, FieldsEmptiedByTheMove_DoNoHarm) {
  const auto item = addItem(outbox, u"", u"1");
  item->method(u"Move", [&](Args) -> Variant {
    moveTo(item, inbox);
    probe().inbox() = {};
    probe().outbox() = {};
    probe().entryId().clear();
    return Object();
  });
  probe().entryId() = u"ID-1";
  EXPECT_TRUE(probe().MoveMessage(probe().entryId(), probe().outbox(), probe().inbox()));
  EXPECT_EQ(trace(), moved("ID-1", "Outbox", "Inbox"));
}

}  // namespace
}  // namespace sms_tests
