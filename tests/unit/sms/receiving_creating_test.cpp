// CreateMessage: what becomes of one listed message.
#include "addin/platform/date.h"
#include "support/seam_recorder.h"
#include "unit/sms/receiving_fixture.h"

namespace sms_tests {
namespace {

using testing_support::Recorder;
using testing_support::utf8;

class CreateMessage : public ReceivingFixture {
 protected:
  CreateMessage() {
    probe().GetFolderCollection(FOLDER_INBOX);
    probe().GetFolderCollection(FOLDER_DELETEDITEMS);
    probe().smsToDelete() = make<SMSHandlerProbe::MessageCollection>();
    probe().state() = STATE_LIST;
    clear();
  }

  std::string create(const StoredMessage& message) { return utf8(probe().CreateMessage(shortMessage(message))); }
  void inFolderAlready(FakeFolder& folder, StringView body) {
    addItem(folder, concat(me, u"\x01", sentAt), body);
    probe().colInbox() = nullptr;
    probe().colDeletedItems() = nullptr;
  }
  std::int32_t queued() { return probe().smsToDelete()->Count(); }
};

TEST_F(CreateMessage, NewMessage_IsMadeInTheOutboxAndItsEntryIdReturned) {
  EXPECT_EQ(create({}), "ID-1");
  EXPECT_EQ(trace(), createdNew("ID-1"));
  EXPECT_EQ(outbox.entryIds(), Lines{"ID-1"});
  EXPECT_EQ(queued(), 0);
}

TEST_F(CreateMessage, NewMessage_AsksAndCallsInOrder) {
  probe().colInbox() = nullptr;
  probe().colDeletedItems() = nullptr;
  addContact(contacts, u"Anna", u"+46 (70) 1111111");
  Recorder recorder;
  create({.text = u"Hello there, Me", .index = 3});
  EXPECT_EQ(
      recorder.lines(),
      (Lines{
          "ShortMessage 2:3.Originator", "Contacts.Items", "Contacts.Items.Restrict(\"[MobileTelephoneNumber] > ''\")",
          "Contacts.Items restricted.Count", "Contacts.Items restricted.Item(1)", "Contact Anna.MobileTelephoneNumber",
          "Contact Anna.FullName", "ShortMessage 2:3.Text", "ShortMessage 2:3.TimeStamp", "Inbox.Items",
          "Inbox.Items.Restrict(\"[MessageClass] = 'IPM.Note.TxtMsg'\")", "Inbox.Items restricted.Count",
          "Deleted Items.Items", "Deleted Items.Items.Restrict(\"[MessageClass] = 'IPM.Note.TxtMsg'\")",
          "Deleted Items.Items restricted.Count",
          "Helper.CreateMessage(<Application>, \"IPM.Note.TxtMsg\", \"Me [+4670]\", \"Anna [+46701111111]\", \"Hello "
          "ther...\", \"Hello there, Me\", #2/3/2001 4:05:06 AM#, #2/3/2001 4:05:06 AM#, \"010203040506\")"}));
}

TEST_F(CreateMessage, SenderAmongTheContacts_IsShownWithTheName) {
  addContact(contacts.addSubfolder("Private"), u"Anna Berg", u"+46 (70) 111 11 11");
  create({});
  ASSERT_EQ(outbox.contents.size(), 1u);
  EXPECT_EQ(to<String>(outbox.contents[0]->valueOf(u"SenderName")), u"Anna Berg [+46701111111]");
}

TEST_F(CreateMessage, TextReachesTheItemAsItCame) {
  create({.text = u" a b\r\nc \r\n\r\n"});
  EXPECT_EQ(outbox.bodies(), Lines{" a b\r\nc \r\n\r\n"});
  EXPECT_EQ(to<String>(outbox.contents[0]->valueOf(u"Subject")), u" a b c   ...");
}

TEST_F(CreateMessage, EmptyText_HasAnEmptySubject) {
  create({.text = u""});
  EXPECT_EQ(outbox.bodies(), Lines{""});
  EXPECT_EQ(to<String>(outbox.contents[0]->valueOf(u"Subject")), u"");
}

TEST_F(CreateMessage, TimeStampThatCannotBeRead_GivesThePresentDateAndKeepsTheText) {
  const auto present = dateFromParts({2003, 4, 5, 6, 7, 8});
  ASSERT_TRUE(present);
  for (const StringView stamp : {u"0102030405", u"01/02/03 04:05", u"011332000000", u""}) {
    system.time.setNow(*present);
    outbox.contents.clear();
    create({.timeStamp = stamp});
    ASSERT_EQ(outbox.contents.size(), 1u);
    EXPECT_EQ(outbox.contents[0]->valueOf(u"SentOn"), Variant(*present)) << utf8(stamp);
    EXPECT_EQ(to<String>(outbox.contents[0]->valueOf(u"ConversationTopic")), concat(me, u"\x01", stamp));
  }
}

TEST_F(CreateMessage, InTheInboxAlready_CreatesNothingAndQueuesNothing) {
  inFolderAlready(inbox, u"Hel lo\r\n");
  autoRemove();
  EXPECT_EQ(create({}), "");
  EXPECT_EQ(trace(), joined({creationBegins(1), searched(builtInbox(1), sameMessage(), true), dupe(true)}));
  EXPECT_EQ(outbox.entryIds(), Lines{});
  EXPECT_EQ(queued(), 0);
}

TEST_F(CreateMessage, InDeletedItems_IsQueuedForRemovalEvenWithAutoRemoveOff) {
  inFolderAlready(deletedItems, u"Hello");
  EXPECT_EQ(create({}), "");
  EXPECT_EQ(trace(), joined({creationBegins(0), searched(builtInbox(), {}, false), notInInbox(),
                             searched(builtDeletedItems(1), sameMessage(), true), queuedAsDeleted(), dupe(true)}));
  EXPECT_EQ(outbox.entryIds(), Lines{});
  EXPECT_EQ(queued(), 1);
}

TEST_F(CreateMessage, InDeletedItemsWithAutoRemoveOn_IsQueuedOnce) {
  inFolderAlready(deletedItems, u"Hello");
  autoRemove();
  create({});
  EXPECT_EQ(queued(), 1);
}

TEST_F(CreateMessage, InBothFolders_CountsAsInTheInbox) {
  inFolderAlready(inbox, u"Hello");
  inFolderAlready(deletedItems, u"Hello");
  create({});
  EXPECT_EQ(queued(), 0);
}

TEST_F(CreateMessage, AnotherSender_IsADuplicateAllTheSame) {
  inFolderAlready(inbox, u"Hello");
  EXPECT_EQ(create({.originator = u"+49"}), "");
}

TEST_F(CreateMessage, WithAutoRemoveOn_IsCreatedAndQueued) {
  autoRemove();
  EXPECT_EQ(create({}), "ID-1");
  EXPECT_EQ(trace(), joined({creationBegins(1), searched({}, {}, false), notInInbox(), searched({}, {}, false),
                             dupe(false), itemMade("ID-1"), queuedByTheUser()}));
  EXPECT_EQ(queued(), 1);
}

TEST_F(CreateMessage, AutoRemoveSetting_IsAnyNumberButZero) {
  const auto queuedWith = [&](const std::string& setting) {
    probe().smsToDelete() = make<SMSHandlerProbe::MessageCollection>();
    option("SendReceive_AutoRemove", setting);
    create({});
    return queued();
  };
  EXPECT_EQ(queuedWith(""), 0);
  EXPECT_EQ(queuedWith("0"), 0);
  EXPECT_EQ(queuedWith("1"), 1);
  EXPECT_EQ(queuedWith("-1"), 1);
  EXPECT_EQ(queuedWith("2"), 1);
  EXPECT_EQ(queuedWith("0.4"), 0);  // a whole number
}

TEST_F(CreateMessage, AutoRemoveSettingThatIsNoNumber_IsLoggedAndCreatesNothing) {
  option("SendReceive_AutoRemove", "yes");
  EXPECT_EQ(create({}), "");
  EXPECT_EQ(trace(), (Lines{"Inside Function CreateMessage",
                            "Check if text message should be deleted from SIM when the same found in the Inbox",
                            "Error:13, Type mismatch, mrktxtmsg"}));
  EXPECT_EQ(outbox.entryIds(), Lines{});
}

TEST_F(CreateMessage, WithoutAHelper_CreatesAndQueuesNothing) {
  probe().mapiHelper() = nullptr;
  autoRemove();
  EXPECT_EQ(create({}), "");
  EXPECT_EQ(trace(),
            joined({creationBegins(1), searched({}, {}, false), notInInbox(), searched({}, {}, false), dupe(false)}));
  EXPECT_EQ(queued(), 0);
}

TEST_F(CreateMessage, HelperThatFails_IsLoggedAndQueuesNothing) {
  autoRemove();
  helper->fails(u"CreateMessage", 70);
  EXPECT_EQ(create({}), "");
  EXPECT_EQ(trace().back(), "Error:70, Permission denied, mrktxtmsg");
  EXPECT_EQ(queued(), 0);
}

TEST_F(CreateMessage, HelperThatGivesNoEntryId_CountsAsNotMade) {
  helper->method(u"CreateMessage", [](Args) -> Variant { return u""; });
  EXPECT_EQ(create({}), "");
  EXPECT_EQ(trace(), createdNew(""));
}

// The helper has raised no error, so that it has taken the message over.
TEST_F(CreateMessage, HelperThatGivesNoEntryIdWithAutoRemoveOn_IsQueuedAllTheSame) {
  autoRemove();
  helper->method(u"CreateMessage", [](Args) -> Variant { return u""; });
  EXPECT_EQ(create({}), "");
  EXPECT_EQ(trace(), joined({creationBegins(1), searched({}, {}, false), notInInbox(), searched({}, {}, false),
                             dupe(false), itemMade(""), queuedByTheUser()}));
  EXPECT_EQ(queued(), 1);
}

// The item exists from the helper's return on, so it must be moved even when a later step fails.
TEST_F(CreateMessage, FailureAfterTheItemWasMade_ReturnsItsEntryId) {
  autoRemove();
  probe().smsToDelete() = nullptr;
  EXPECT_EQ(create({}), "ID-1");
  EXPECT_EQ(trace().back(), "Error:91, Object variable or With block variable not set, mrktxtmsg");
}

TEST_F(CreateMessage, FailureAfterTheItemWasMade_ItemStillReachesTheInbox) {
  autoRemove();
  probe().smsToDelete() = nullptr;
  answer(21, 0, newShortMessage({})->object());
  EXPECT_EQ(trace(), joined({answered(21, 0, STATE_LIST),
                             {"STATE_LIST - Got one message, tranid: 21 status: 0"},
                             creationBegins(1),
                             searched({}, {}, false),
                             notInInbox(),
                             searched({}, {}, false),
                             dupe(false),
                             itemMade("ID-1"),
                             queuedByTheUser(),
                             {"Error:91, Object variable or With block variable not set, mrktxtmsg",
                              "CreateMessage called - message will be created in outbox",
                              "Return from CreateMessage call - strEntryId = ID-1",
                              "Check if message lengt is larger than 0", "YES, Move message to Inbox: ID-1"},
                             moved("ID-1", "Outbox", "Inbox")}));
  EXPECT_EQ(inbox.entryIds(), Lines{"ID-1"});
  EXPECT_EQ(outbox.entryIds(), Lines{});
  EXPECT_EQ(probe().state(), IDLE);
}

TEST_F(CreateMessage, MessageThatCannotBeRead_IsLoggedAndCreatesNothing) {
  for (const StringView member : {u"Originator", u"Text", u"TimeStamp"}) {
    clear();
    const auto message = newShortMessage({});
    message->fails(member, 462);
    EXPECT_EQ(probe().CreateMessage(message->as<sms_objectlib::ShortMessage>()), u"");
    EXPECT_EQ(trace(), (Lines{"Inside Function CreateMessage",
                              "Check if text message should be deleted from SIM when the same found in the Inbox",
                              "Delete from SIM when displayed in Inbox:0", "Get short message properties",
                              "Error:462, The remote server machine does not exist or is unavailable, mrktxtmsg"}))
        << utf8(member);
  }
}

TEST_F(CreateMessage, WithoutAContactsFolder_IsCreatedWithTheNumberAlone) {
  handler().Contacts({});
  EXPECT_EQ(create({}), "ID-1");
  EXPECT_EQ(trace()[4], "Error:7, No m_objContacts object, BuildFromAddress");
  EXPECT_EQ(to<String>(outbox.contents[0]->valueOf(u"SenderName")), u"[+46701111111]");
}

}  // namespace
}  // namespace sms_tests
