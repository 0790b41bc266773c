// What a failed send does to its item: HandleSendFailure and CreateErrorReport.
#include "addin/platform/date.h"
#include "support/errors.h"
#include "unit/sms/engine_fixture.h"

namespace sms_tests {
namespace {

using testing_support::errorOf;
using testing_support::FaultInjector;
using testing_support::Recorder;

const String reportHead = u"The TextMessage Service was unable to deliver the following message.\r\n\r\n";

class SendFailure : public EngineFixture {
 protected:
  SendFailure() {
    start();
    system.time.setNow(*dateFromParts({2001, 2, 3, 4, 5, 6}));
    item = addItem(outbox, u"Anna [1]", u"Hello");
    item->value(u"To", u"Anna [1]")
        .value(u"SenderName", u"Me [9]")
        .value(u"SentOn", *dateFromParts({2000, 12, 31, 23, 59, 58}));
    probe().state() = STATE_SEND;  // as on the roads of the answer and of the guard
    clear();
  }

  Ref<FakeObject> item;
};

TEST_F(SendFailure, First_IsCountedAndSaved) {
  Recorder recorder;
  probe().HandleSendFailure(u"ID-1");
  EXPECT_EQ(trace(), Lines{"Failed count:0"});
  EXPECT_EQ(recorder.lines(),
            (Lines{"Application.Assistant", "Assistant.On", "Outbox.Application", "Application.GetNamespace(\"MAPI\")",
                   "Outbox.StoreID", "NameSpace.GetItemFromID(\"ID-1\", \"Store\")", "Item ID-1.Class",
                   "Item ID-1.Mileage", "Item ID-1.Mileage = \"1\"", "Item ID-1.Save()"}));
  EXPECT_TRUE(outbox.has(item));
}

TEST_F(SendFailure, Second_LeavesTheItemInTheOutbox) {
  item->value(u"Mileage", u"1");
  probe().HandleSendFailure(u"ID-1");
  EXPECT_EQ(trace(), Lines{"Failed count:1"});
  EXPECT_EQ(item->valueOf(u"Mileage"), Variant(u"2"));
  EXPECT_TRUE(outbox.has(item));
  EXPECT_EQ(inbox.contents.size(), 0u);
}

TEST_F(SendFailure, Third_PutsAReportIntoTheInboxAndDeletesTheItem) {
  item->value(u"Mileage", u"2");
  Recorder recorder;
  probe().HandleSendFailure(u"ID-1");
  EXPECT_EQ(recorder.linesWith("Item ID-1"),
            (Lines{"Item ID-1.Class", "Item ID-1.Mileage", "Item ID-1.Mileage = \"3\"", "Item ID-1.Save()",
                   "Item ID-1.To", "Item ID-1.SenderName", "Item ID-1.Body", "Item ID-1.SentOn", "Item ID-1.EntryID",
                   "Item ID-1.Delete()", "Item ID-1.MessageClass"}));
  EXPECT_EQ(recorder.linesWith("Helper."),
            Lines{"Helper.CreateMessage(<Application>, \"IPM.Note.TxtMsg\", \"Anna [1]\", \"Me [9]\", \"TextMessage "
                  "Service - Error Report\", \"The TextMessage Service was unable to deliver the following "
                  "message.\\r\\n\\r\\nHello\", #12/31/2000 11:59:58 PM#, #2/3/2001 4:05:06 AM#, \"\")"});
  ASSERT_EQ(inbox.contents.size(), 1u);
  EXPECT_EQ(inbox.contents[0]->valueOf(u"Body"), Variant(reportHead + u"Hello"));
  EXPECT_EQ(inbox.contents[0]->valueOf(u"UnRead"), Variant(true));
  EXPECT_EQ(outbox.contents.size(), 0u);
  EXPECT_TRUE(deletedItems.has(item));
}

// The whole trace on the road of the send tick, where the state is IDLE: the report's creation starts a send, the
// item's deletion a receive.
TEST_F(SendFailure, ThirdOnTheTicksRoad_RunsEverythingThatItsEventsStart) {
  probe().state() = IDLE;
  item->value(u"Mileage", u"2");
  probe().HandleSendFailure(u"ID-1");
  EXPECT_EQ(trace(), (Lines{"Failed count:2",
                            "m_objOutboxItems_ItemAdd, trigger a sendall",
                            "Inside Function SendAll",
                            "SetupSendMessage: 1000000",
                            "SendAll = True",
                            "SetupSendMessage: 1000000",
                            "CreateMessage:ID-2",
                            "Inside Function MoveMessage",
                            "MoveMessage - EntryId: ID-2 From: Outbox To: Inbox",
                            "MoveMessage - restrict folder items to TextMessage's",
                            "MoveMessage = True",
                            "To folder = Inbox",
                            "MoveMessage - bMoved: True",
                            "Item added to Deleted Items folder",
                            "YES, the item is our mail item - check if phone connected",
                            "m_bPhoneConnected = -1",
                            "YES, the phone is connected",
                            "Inside Function ReceiveAll",
                            "Create m_smsToDelete collection",
                            "Inside ReceiveAll Function - m_bReceiveAll = True",
                            "List Message - InitTimeOut 5000ms",
                            "Wait for async operation to complete",
                            "m_objSMS_OnNotifyResponse - TransID:17, Status:0, State:1",
                            "disablar guard timer",
                            "No message, tranid: 17 status: 0",
                            "ListMessage - cpSMSMEMessageStore - bRet = True",
                            "List Message - InitTimeOut 5000ms",
                            "Wait for async operation to complete",
                            "m_objSMS_OnNotifyResponse - TransID:18, Status:0, State:1",
                            "disablar guard timer",
                            "No message, tranid: 18 status: 0",
                            "ListMessage - cpSMSSIMMessageStore - bRet = True",
                            "ListMessage function called",
                            "Go through collection and delete SMSs from the SIM card",
                            "The number of the SMSs in collection = 0",
                            "Clear the m_smsToDelete collection",
                            "ReceiveAll function called."}));
}

struct Count {
  StringView before;
  std::string line;
  StringView after;
};
class FailureCount : public SendFailure, public ::testing::WithParamInterface<Count> {};

TEST_P(FailureCount, IsReadAsANumberOrCountsAsNothing) {
  item->value(u"Mileage", GetParam().before);
  probe().HandleSendFailure(u"ID-1");
  EXPECT_EQ(trace().at(0), GetParam().line);
  EXPECT_EQ(item->valueOf(u"Mileage"), Variant(GetParam().after));
}
INSTANTIATE_TEST_SUITE_P(Mileage, FailureCount,
                         ::testing::Values(Count{u"", "Failed count:0", u"1"}, Count{u"12abc", "Failed count:0", u"1"},
                                           Count{u"two", "Failed count:0", u"1"}, Count{u" 1 ", "Failed count:1", u"2"},
                                           Count{u"0.5", "Failed count:0", u"1"},
                                           Count{u"-3", "Failed count:-3", u"-2"},
                                           Count{u"99999999999", "Failed count:0", u"1"},
                                           Count{u"2147483647", "Failed count:2147483647", u"2147483647"}));

TEST_F(SendFailure, CountAboveThree_IsStillReported) {
  item->value(u"Mileage", u"7");
  probe().HandleSendFailure(u"ID-1");
  EXPECT_EQ(item->valueOf(u"Mileage"), Variant(u"8"));
  EXPECT_EQ(inbox.contents.size(), 1u);
  EXPECT_FALSE(outbox.has(item));
}

TEST_F(SendFailure, UnknownItem_Stops) {
  probe().HandleSendFailure(u"ID-77");
  EXPECT_EQ(trace(), Lines{});
}

TEST_F(SendFailure, NoMailItem_Stops) {
  item->value(u"Class", outlook::olContact);
  probe().HandleSendFailure(u"ID-1");
  EXPECT_EQ(trace(), Lines{});
  EXPECT_EQ(item->valueOf(u"Mileage"), Variant(u""));
}

// Only an item that says it is no mail item is let off: a failing question is ignored like every other failing step.
TEST_F(SendFailure, ItemThatCannotBeAskedForItsClass_IsCountedAllTheSame) {
  item->fails(u"Class", -2147023174);
  probe().HandleSendFailure(u"ID-1");
  EXPECT_EQ(trace(), Lines{"Failed count:0"});
  EXPECT_EQ(item->calls(), (Lines{"Class", "Mileage", "Mileage = \"1\"", "Save()"}));
}

TEST_F(SendFailure, NothingIsFound_Stops) {
  nameSpace->method(u"GetItemFromID", [](Args) -> Variant { return Object(); });
  probe().HandleSendFailure(u"ID-1");
  EXPECT_EQ(trace(), Lines{});
}

TEST_F(SendFailure, NoOutbox_Stops) {
  probe().outbox() = nullptr;
  probe().HandleSendFailure(u"ID-1");
  EXPECT_EQ(trace(), Lines{});
}

TEST_F(SendFailure, FailingSteps_AreIgnoredAndTheNextOneRuns) {
  item->fails(u"Mileage", 5).fails(u"Save", 5);
  probe().HandleSendFailure(u"ID-1");
  EXPECT_EQ(trace(), Lines{"Failed count:0"});
  EXPECT_EQ(item->calls(), (Lines{"Class", "Mileage", "Mileage = \"1\"", "Save()"}));
}

// The report is deliberately not waited for: an item that cannot be reported would be tried for ever.
TEST_F(SendFailure, ReportFails_NoLineAndTheItemGoesAllTheSame) {
  item->value(u"Mileage", u"2");
  probe().mapiHelper() = nullptr;
  probe().receiveAllFlag() = false;
  probe().phoneConnected() = 0;
  probe().HandleSendFailure(u"ID-1");
  EXPECT_EQ(trace(), (Lines{"Failed count:2", "Item added to Deleted Items folder",
                            "YES, the item is our mail item - check if phone connected", "m_bPhoneConnected = 0"}));
  EXPECT_TRUE(deletedItems.has(item));
  EXPECT_EQ(inbox.contents.size(), 0u);
}

TEST_F(SendFailure, ItemThatWillNotBeDeleted_IsReportedOnce) {
  item->value(u"Mileage", u"2").fails(u"Delete", 5);
  probe().HandleSendFailure(u"ID-1");
  EXPECT_EQ(inbox.contents.size(), 1u);
  EXPECT_TRUE(outbox.has(item));
}

TEST_F(SendFailure, AssistantOn_IsSetBackFirst) {
  assistant->value(u"On", true);
  probe().assistantVisible() = true;
  Recorder recorder;
  probe().HandleSendFailure(u"ID-1");
  EXPECT_EQ(firstOf(recorder.lines(), 7),
            (Lines{"Application.Assistant", "Assistant.On", "Application.Assistant", "Assistant.Animation = 1",
                   "Assistant.Visible = True", "Assistant.On = False", "Outbox.Application"}));
}

// ---- the report by itself -------------------------------------------------------------------------------------------

class ErrorReport : public SendFailure {
 protected:
  bool create() { return probe().CreateErrorReport(u"To", u"Sender", u"Body", Date{36526.0}); }
  void expectError(StringView description) {
    const auto error = errorOf([&] { create(); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->number, -1);
    EXPECT_EQ(error->source, u"CreateErrorReport");
    EXPECT_EQ(error->description, description);
  }
};

TEST_F(ErrorReport, Success_IsMovedUnread) {
  EXPECT_TRUE(create());
  EXPECT_EQ(trace(), (Lines{"CreateMessage:ID-2", "Inside Function MoveMessage",
                            "MoveMessage - EntryId: ID-2 From: Outbox To: Inbox",
                            "MoveMessage - restrict folder items to TextMessage's", "MoveMessage = True",
                            "To folder = Inbox", "MoveMessage - bMoved: True"}));
  EXPECT_EQ(inbox.entryIds(), Lines{"ID-2"});
  EXPECT_EQ(outbox.entryIds(), Lines{"ID-1"});
}

TEST_F(ErrorReport, NoHelper_Raises) {
  probe().mapiHelper() = nullptr;
  expectError(u"No m_objMapiHelper object");
  EXPECT_EQ(trace(), Lines{});
}

TEST_F(ErrorReport, NoEntryId_RaisesAfterItsLine) {
  helper->method(u"CreateMessage", [](Args) -> Variant { return u""; });
  expectError(u"Failed to create error report");
  EXPECT_EQ(trace(), Lines{"CreateMessage:"});
}

TEST_F(ErrorReport, NotMoved_Raises) {
  helper->method(u"CreateMessage", [](Args) -> Variant { return u"ID-77"; });
  expectError(u"Failed to move error report");
  EXPECT_EQ(trace().back(), "MoveMessage - bMoved: False");
}

TEST_F(ErrorReport, FailingHelper_KeepsItsOwnError) {
  helper->fails(u"CreateMessage", RuntimeError(430, u"Mrktxtmsghelper.TxtMsg", u"No MAPI"));
  const auto error = errorOf([&] { create(); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number, 430);
  EXPECT_EQ(error->source, u"Mrktxtmsghelper.TxtMsg");
}

}  // namespace
}  // namespace sms_tests
