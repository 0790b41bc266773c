// Starting to send: SendAll, the send timer and its tick.
#include "support/errors.h"
#include "unit/sms/engine_fixture.h"

namespace sms_tests {
namespace {

using testing_support::errorOf;
using testing_support::Recorder;

const Lines armedOnce{"Enabled = False", "Periodic = 0", "Interval = 500", "Resolution = 100", "Enabled = True"};

class Sending : public EngineFixture {
 protected:
  Sending() { start(); }
};

// ---- SendAll --------------------------------------------------------------------------------------------------------

TEST_F(Sending, SendAll_ArmsTheTimerTwice) {
  EXPECT_TRUE(handler().SendAll());
  EXPECT_EQ(trace(), (Lines{"Inside Function SendAll", "SetupSendMessage: 1000000", "SendAll = True",
                            "SetupSendMessage: 1000000"}));
  Lines twice = armedOnce;
  twice.insert(twice.end(), armedOnce.begin(), armedOnce.end());
  EXPECT_EQ(sendTimer().calls(), twice);
  EXPECT_EQ(guardTimer().calls(), Lines{});
  EXPECT_EQ(probe().state(), IDLE) << "only a message on its way changes the state";
}

TEST_F(Sending, SendAll_LooksAtNoFolderYet) {
  Recorder recorder;
  handler().SendAll();
  EXPECT_EQ(recorder.lines().size(), 10u);
  EXPECT_EQ(recorder.linesWith("SendTimer.").size(), 10u);
}

class SendAllWhileBusy : public Sending, public ::testing::WithParamInterface<std::int32_t> {};

TEST_P(SendAllWhileBusy, RefusesWithAWarning) {
  probe().state() = GetParam();
  EXPECT_FALSE(handler().SendAll());
  EXPECT_EQ(system.windows.traceLines(),
            (std::vector<testing_support::TraceLine>{{"mrktxtmsg", 2, "Inside Function SendAll"},
                                                     {"mrktxtmsg", 0, "SendAll - Not Idle"}}));
  EXPECT_EQ(sendTimer().calls(), Lines{});
  EXPECT_EQ(probe().state(), GetParam());
}
INSTANTIATE_TEST_SUITE_P(States, SendAllWhileBusy, ::testing::Values(STATE_LIST, STATE_SEND, STATE_DELETE));

TEST_F(Sending, SendAllWithoutPhone_LogsWhatSetupSendMessageRaised) {
  notifyConnected(0, Object());
  clear();
  EXPECT_FALSE(handler().SendAll());
  EXPECT_EQ(trace(), (Lines{"Inside Function SendAll", "Error:-1, No phone connected, SetupSendMessage"}));
  EXPECT_EQ(sendTimer().calls(), Lines{});
}

TEST_F(Sending, SendAllWithoutTimer_LogsError6) {
  probe().timer() = nullptr;
  EXPECT_FALSE(handler().SendAll());
  EXPECT_EQ(trace(), (Lines{"Inside Function SendAll", "SetupSendMessage: 1000000",
                            "Error:6, No timer object, SetupSendMessage"}));
}

TEST_F(Sending, SecondArmingFails_HasNoResult) {
  std::int32_t arming = 0;
  sendTimer().script(u"Periodic", [&](Access, Args) {
    if (++arming == 2) raiseError(70, u"timermm", u"No more timers");
    return Variant();
  });
  EXPECT_FALSE(handler().SendAll());
  EXPECT_EQ(trace(), (Lines{"Inside Function SendAll", "SetupSendMessage: 1000000", "SendAll = True",
                            "SetupSendMessage: 1000000", "Error:70, No more timers, timermm"}));
}

// ---- SetupSendMessage -----------------------------------------------------------------------------------------------

TEST_F(Sending, SetupSendMessage_ArmsOnce) {
  EXPECT_TRUE(probe().SetupSendMessage());
  EXPECT_EQ(trace(), Lines{"SetupSendMessage: 1000000"});
  EXPECT_EQ(sendTimer().calls(), armedOnce);
}

TEST_F(Sending, SetupSendMessage_TracesTheSignedTick) {
  system.time.setTicks(-2147483647);
  probe().SetupSendMessage();
  EXPECT_EQ(trace(), Lines{"SetupSendMessage: -2147483647"});
}

TEST_F(Sending, SetupSendMessageWithoutPhone_RaisesBeforeAnything) {
  probe().sms() = nullptr;
  probe().timer() = nullptr;
  const auto error = errorOf([&] { probe().SetupSendMessage(); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number, -1);
  EXPECT_EQ(error->source, u"SetupSendMessage");
  EXPECT_EQ(error->description, u"No phone connected");
  EXPECT_EQ(trace(), Lines{});
}

TEST_F(Sending, SetupSendMessageWithoutTimer_RaisesError6) {
  probe().timer() = nullptr;
  const auto error = errorOf([&] { probe().SetupSendMessage(); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number, 6);
  EXPECT_EQ(error->source, u"SetupSendMessage");
  EXPECT_EQ(error->description, u"No timer object");
  EXPECT_EQ(trace(), Lines{"SetupSendMessage: 1000000"});
}

// ---- the tick -------------------------------------------------------------------------------------------------------

class SendTick : public Sending {
 protected:
  void run() { tick(sendTimer(), 500); }
  Lines failedCounts() {
    Lines result;
    for (const auto& line : trace())
      if (line.starts_with("Failed count:")) result.push_back(line);
    return result;
  }
};

TEST_F(SendTick, SendsTheFirstMessage) {
  const auto first = addItem(outbox,
                             u"Anna Berg [+46 (70) 123 45 67]\x01"
                             u"010203040506",
                             u"Hello");
  addItem(outbox, u"Bo [2]", u"Second");
  run();
  EXPECT_EQ(trace(), (Lines{"m_objTimer_Timer: 1000000", "Inside Function SendMessage", "[SendMessage]EntryID:ID-1",
                            "[SendMessage]To:+46701234567", "[SendMessage]MessageText:Hello",
                            "Guard timmer set to [1] parts", "SetupGuard [25000]ms", "SetupGuard 2/3/2001",
                            "Add transaction, tranid: 17 type: 1", "Transaction ID = 17", "strEntryID = ID-1",
                            "Transaction type = 1", "Inside SendMessage Function - AddTransaction called"}));
  EXPECT_EQ(probe().entryId(), u"ID-1");
  EXPECT_EQ(probe().state(), STATE_SEND);
  ASSERT_EQ(created.size(), 1u);
  EXPECT_EQ(created[0]->valueOf(u"Text"), Variant(u"Hello"));
  EXPECT_EQ(first->valueOf(u"Mileage"), Variant(u""));
  EXPECT_EQ(sendTimer().calls(), Lines{}) << "one shot: it is not armed again here";
}

TEST_F(SendTick, CallsAtTheBoundary_InOrder) {
  addItem(outbox, u"Anna [1]", u"Hello");
  Recorder recorder;
  run();
  EXPECT_EQ(recorder.lines(), (Lines{"Outbox.Items",
                                     "Outbox.Items.Restrict(\"[MessageClass] = 'IPM.Note.TxtMsg'\")",
                                     "Outbox.Items restricted.Count",
                                     "Outbox.Items restricted.Item(1)",
                                     "Item ID-1.Class",
                                     "Item ID-1.MessageClass",
                                     "Item ID-1.Body",
                                     "Item ID-1.ConversationTopic",
                                     "Item ID-1.EntryID",
                                     "Phone.IsConnected",
                                     "SMS.CreateShortMessage()",
                                     "Application.Assistant",
                                     "Assistant.On",
                                     "GuardTimer.Enabled = False",
                                     "GuardTimer.Periodic = 1",
                                     "GuardTimer.Interval = 25000",
                                     "GuardTimer.Resolution = 1000",
                                     "GuardTimer.Enabled = True",
                                     "ShortMessage.ServiceCentre = \"+46701740699\"",
                                     "ShortMessage.Destination = \"1\"",
                                     "ShortMessage.Text = \"Hello\"",
                                     "ShortMessage.Send()"}));
}

TEST_F(SendTick, EmptyOutbox_Stops) {
  addItem(outbox, u"Anna [1]", u"A mail", u"IPM.Note");
  Recorder recorder;
  run();
  EXPECT_EQ(trace(), Lines{"m_objTimer_Timer: 1000000"});
  EXPECT_EQ(recorder.lines(), (Lines{"Outbox.Items", "Outbox.Items.Restrict(\"[MessageClass] = 'IPM.Note.TxtMsg'\")",
                                     "Outbox.Items restricted.Count"}));
}

TEST_F(SendTick, ClassInOtherCase_IsPassedOver) {
  addItem(outbox, u"Anna [1]", u"Not this", u"ipm.note.txtmsg");
  addItem(outbox, u"Bo [2]", u"This");
  run();
  EXPECT_EQ(probe().entryId(), u"ID-2");
  ASSERT_EQ(created.size(), 1u);
  EXPECT_EQ(created[0]->valueOf(u"Text"), Variant(u"This"));
}

TEST_F(SendTick, ItemThatIsNoMail_IsPassedOver) {
  addItem(outbox, u"Anna [1]", u"Not this")->value(u"Class", outlook::olPost);
  run();
  EXPECT_EQ(trace(), Lines{"m_objTimer_Timer: 1000000"});
  addItem(outbox, u"Bo [2]", u"This");
  run();
  EXPECT_EQ(probe().entryId(), u"ID-2");
}

TEST_F(SendTick, WithoutHelper_SkipsAllItems) {
  addItem(outbox, u"Anna [1]", u"Hello");
  probe().mapiHelper() = nullptr;
  run();
  EXPECT_EQ(trace(), Lines{"m_objTimer_Timer: 1000000"});
  EXPECT_EQ(probe().entryId(), u"");
  EXPECT_EQ(probe().state(), IDLE);
}

TEST_F(SendTick, RecipientIsTheFirstPieceOfTheTopic) {
  addItem(outbox,
          u"A [11]\x01"
          u"B [22]\x01"
          u"C [33]",
          u"Hello");
  run();
  ASSERT_EQ(created.size(), 1u);
  EXPECT_EQ(created[0]->valueOf(u"Destination"), Variant(u"11"));
}

TEST_F(SendTick, EmptyTopic_HasNoRecipientAndCountsAFailure) {
  const auto item = addItem(outbox, u"", u"Hello");
  run();
  EXPECT_EQ(trace(), (Lines{"m_objTimer_Timer: 1000000", "Inside Function SendMessage", "[SendMessage]EntryID:ID-1",
                            "[SendMessage]To:", "[SendMessage]MessageText:Hello", "Failed count:0"}));
  EXPECT_EQ(item->valueOf(u"Mileage"), Variant(u"1"));
  EXPECT_EQ(created.size(), 0u);
  EXPECT_EQ(probe().state(), IDLE);
}

TEST_F(SendTick, RefusedSend_CountsAFailureAndArmsNothing) {
  const auto item = addItem(outbox, u"Anna [1]", u"Hello");
  probe().state() = STATE_LIST;
  run();
  EXPECT_EQ(trace(), (Lines{"m_objTimer_Timer: 1000000", "Inside Function SendMessage",
                            "Error:5, Not in a IDLE state, SendMessage", "Failed count:0"}));
  EXPECT_EQ(item->valueOf(u"Mileage"), Variant(u"1"));
  EXPECT_EQ(probe().state(), STATE_LIST);
  EXPECT_EQ(sendTimer().calls(), Lines{});
  EXPECT_TRUE(outbox.has(item)) << "it is tried again by the next SendAll";
}

// The tick does not look at the state: the item of the send in progress is what fails.
TEST_F(SendTick, DuringASend_CountsAFailureOnTheFirstItem) {
  const auto item = addItem(outbox, u"Anna [1]", u"Hello");
  run();
  clear();
  run();
  EXPECT_EQ(trace(), (Lines{"m_objTimer_Timer: 1000000", "Inside Function SendMessage",
                            "Error:5, Not in a IDLE state, SendMessage", "Failed count:0"}));
  EXPECT_EQ(item->valueOf(u"Mileage"), Variant(u"1"));
  EXPECT_EQ(probe().state(), STATE_SEND);
  EXPECT_EQ(created.size(), 1u);
}

TEST_F(SendTick, FailingOutbox_IsLogged) {
  outbox.folder->fails(u"Items", RuntimeError(-2147221219, u"Outlook", u"The store is not available."));
  run();
  EXPECT_EQ(trace(), (Lines{"m_objTimer_Timer: 1000000", "Error:-2147221219, The store is not available., Outlook"}));
}

// At the third failure the tick's own road is IDLE, so the deletion's event starts a full receive inside of it.
TEST_F(SendTick, ThirdFailure_StartsANestedReceive) {
  addItem(outbox, u"no number", u"Hello")->value(u"Mileage", u"2");
  run();
  const Lines lines = trace();
  const auto at = std::find(lines.begin(), lines.end(), "Item added to Deleted Items folder");
  ASSERT_NE(at, lines.end());
  EXPECT_EQ((Lines(at, at + 5)),
            (Lines{"Item added to Deleted Items folder", "YES, the item is our mail item - check if phone connected",
                   "m_bPhoneConnected = -1", "YES, the phone is connected", "Inside Function ReceiveAll"}));
  EXPECT_EQ(lines.back(), "ReceiveAll function called.");
  EXPECT_EQ(system.time.waits(), 2) << "both stores were listed inside the tick";
  EXPECT_EQ(outbox.contents.size(), 0u);
  EXPECT_EQ(inbox.contents.size(), 1u);
  EXPECT_EQ(deletedItems.contents.size(), 1u);
  EXPECT_EQ(probe().state(), IDLE);
}

}  // namespace
}  // namespace sms_tests
