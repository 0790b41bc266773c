// The phone's answers: m_objSMS_OnNotifyResponse, by the engine's state.
#include "unit/sms/engine_fixture.h"

namespace sms_tests {
namespace {

using sms_objectlib::resultMoreData;
using testing_support::Recorder;

constexpr std::int32_t failure = -2147467259;

class Response : public EngineFixture {
 protected:
  Response() { start(); }

  // A message on its way under transaction 17.
  Ref<FakeObject> sendOne(StringView mileage = u"") {
    const auto item = addItem(outbox, u"Anna [1]", u"Hello");
    item->value(u"Mileage", mileage);
    tick(sendTimer(), 500);
    item->clearCalls();
    clear();
    return item;
  }
  static Lines beginning(std::int32_t id, std::int32_t status, std::int32_t state) {
    return {"m_objSMS_OnNotifyResponse - TransID:" + std::to_string(id) + ", Status:" + std::to_string(status) +
                ", State:" + std::to_string(state),
            "disablar guard timer"};
  }
};

// ---- every state ----------------------------------------------------------------------------------------------------

class ResponseInAnyState : public Response, public ::testing::WithParamInterface<std::int32_t> {};

TEST_P(ResponseInAnyState, SwitchesTheGuardOffFirst) {
  probe().state() = GetParam();
  answer(5, -1);
  EXPECT_EQ(guardTimer().calls(), Lines{"Enabled = False"});
  const Lines lines = trace();
  EXPECT_EQ(firstOf(lines, 2), beginning(5, -1, GetParam()));
}

TEST_P(ResponseInAnyState, EndsTheRequestInProgress) {
  probe().state() = GetParam();
  answer(5, -1);
  EXPECT_EQ(probe().state(), IDLE);
}

TEST_P(ResponseInAnyState, WithoutGuardTimer_WritesNoLineOfIt) {
  probe().guardTimer() = nullptr;
  probe().state() = GetParam();
  answer(5, -1);
  EXPECT_EQ(trace().at(0), beginning(5, -1, GetParam())[0]);
  for (const auto& line : trace()) EXPECT_NE(line, "disablar guard timer");
}

TEST_P(ResponseInAnyState, GuardThatFailsToStop_IsLoggedAndLeavesTheState) {
  guardTimer().fails(u"Enabled", 5);
  probe().state() = GetParam();
  answer(5, 0);
  Lines expected = beginning(5, 0, GetParam());
  expected.emplace_back("Error:5, Invalid procedure call or argument, mrktxtmsg");
  EXPECT_EQ(trace(), expected);
  EXPECT_EQ(probe().state(), GetParam());
}
INSTANTIATE_TEST_SUITE_P(States, ResponseInAnyState, ::testing::Values(IDLE, STATE_LIST, STATE_SEND, STATE_DELETE));

TEST_F(Response, WhenIdle_IsDropped) {
  const auto item = addItem(outbox, u"Anna [1]", u"Hello");
  probe().AddTransaction(17, u"ID-1", enTransactionType::Send);
  clear();
  answer(17, 0, newShortMessage({})->object());
  EXPECT_EQ(trace(), beginning(17, 0, 0));
  EXPECT_TRUE(outbox.has(item));
  EXPECT_EQ(probe().transactions()->Count(), 1);
}

TEST_F(Response, InAStateThatIsNone_IsDropped) {
  probe().state() = 7;
  answer(17, 0);
  EXPECT_EQ(trace(), beginning(17, 0, 7));
  EXPECT_EQ(probe().state(), 7);
}

// ---- sending --------------------------------------------------------------------------------------------------------

TEST_F(Response, SendSucceeded_MovesTheItemReadAndStartsTheNext) {
  const auto item = sendOne();
  Recorder recorder;
  answer(17, 0);
  Lines expected = beginning(17, 0, 2);
  for (const char* line : {"STATE_SEND - Send went well, remove transaction and move message to sent items folder",
                           "Move message to sent items, and change status to read - EntryID = ID-1",
                           "Inside Function MoveMessage", "MoveMessage - EntryId: ID-1 From: Outbox To: Sent Items",
                           "MoveMessage - restrict folder items to TextMessage's", "MoveMessage = True",
                           "To folder = Sent Items", "MoveMessage - bMoved: True",
                           "Remove from transaction collection - TransactionID = 17", "SetupSendMessage: 1000000"})
    expected.emplace_back(line);
  EXPECT_EQ(trace(), expected);
  EXPECT_TRUE(sentMail.has(item));
  EXPECT_EQ(item->valueOf(u"UnRead"), Variant(false));
  EXPECT_EQ(probe().transactions()->Count(), 0);
  EXPECT_EQ(probe().state(), IDLE);
  EXPECT_EQ(recorder.lines(),
            (Lines{"GuardTimer.Enabled = False", "Outbox[default]", "Sent Items[default]", "Outbox.Items",
                   "Outbox.Items.Restrict(\"[MessageClass] = 'IPM.Note.TxtMsg'\")", "Outbox.Items restricted.Count",
                   "Outbox.Items restricted.Item(1)", "Item ID-1.EntryID", "Item ID-1.UnRead = False",
                   "Item ID-1.Move(<Sent Items>)", "Sent Items[default]", "Application.Assistant", "Assistant.On",
                   "SendTimer.Enabled = False", "SendTimer.Periodic = 0", "SendTimer.Interval = 500",
                   "SendTimer.Resolution = 100", "SendTimer.Enabled = True"}));
}

TEST_F(Response, SendSucceededWithAssistantOn_StopsTheAnimationBeforeTheNextSend) {
  sendOne();
  assistant->value(u"On", true);
  Recorder recorder;
  answer(17, 0);
  EXPECT_EQ(firstOf(lastOf(recorder.lines(), 11), 6),
            (Lines{"Application.Assistant", "Assistant.On", "Application.Assistant", "Assistant.Animation = 1",
                   "Assistant.Visible = False", "Assistant.On = False"}));
}

TEST_F(Response, SendFailed_CountsAndStartsNothing) {
  const auto item = sendOne();
  answer(17, failure);
  Lines expected = beginning(17, failure, 2);
  expected.emplace_back("SendMessage Failed!!! TransactionID: 17 Status: -2147467259");
  expected.emplace_back("Failed count:0");
  EXPECT_EQ(trace(), expected);
  EXPECT_EQ(item->valueOf(u"Mileage"), Variant(u"1"));
  EXPECT_TRUE(outbox.has(item));
  EXPECT_EQ(probe().transactions()->Count(), 1);
  EXPECT_EQ(probe().state(), IDLE);
  EXPECT_EQ(sendTimer().calls(), Lines{});
}

TEST_F(Response, MoreDataWhileSending_IsAFailureLikeAnyOther) {
  sendOne();
  answer(17, resultMoreData);
  EXPECT_EQ(trace().at(2), "SendMessage Failed!!! TransactionID: 17 Status: -2004352980");
  EXPECT_EQ(probe().state(), IDLE);
}

// A failure is counted on the item in progress, whatever ID the answer carries.
TEST_F(Response, SendFailedUnderAnotherId_CountsOnTheItemInProgress) {
  const auto item = sendOne();
  answer(99, failure);
  EXPECT_EQ(item->valueOf(u"Mileage"), Variant(u"1"));
}

TEST_F(Response, ThirdFailure_ReportsAndItsEventFindsTheEngineBusy) {
  const auto item = sendOne(u"2");
  probe().receiveAllFlag() = false;
  answer(17, failure);
  Lines expected = beginning(17, failure, 2);
  for (const char* line :
       {"SendMessage Failed!!! TransactionID: 17 Status: -2147467259", "Failed count:2", "CreateMessage:ID-2",
        "Inside Function MoveMessage", "MoveMessage - EntryId: ID-2 From: Outbox To: Inbox",
        "MoveMessage - restrict folder items to TextMessage's", "MoveMessage = True", "To folder = Inbox",
        "MoveMessage - bMoved: True", "Item added to Deleted Items folder",
        "YES, the item is our mail item - check if phone connected", "m_bPhoneConnected = -1",
        "YES, the phone is connected", "Inside Function ReceiveAll", "Create m_smsToDelete collection",
        "Error:-1, Not idle!, ReceiveAll", "ReceiveAll function called."})
    expected.emplace_back(line);
  EXPECT_EQ(trace(), expected);
  EXPECT_TRUE(deletedItems.has(item));
  EXPECT_EQ(inbox.entryIds(), Lines{"ID-2"});
  EXPECT_EQ(probe().state(), IDLE);
  EXPECT_TRUE(probe().receiveAllFlag());
}

TEST_F(Response, SuccessOfAnUnknownId_MovesNothingAndArmsNothing) {
  const auto item = sendOne();
  answer(18, 0);
  Lines expected = beginning(18, 0, 2);
  expected.emplace_back("STATE_SEND - Send went well, remove transaction and move message to sent items folder");
  EXPECT_EQ(trace(), expected);
  EXPECT_EQ(probe().state(), IDLE);
  EXPECT_TRUE(outbox.has(item));
  EXPECT_EQ(sendTimer().calls(), Lines{});
  EXPECT_EQ(probe().transactions()->Count(), 1);
}

TEST_F(Response, SuccessWhenTheStoredIdDiffers_MovesNothing) {
  const auto item = sendOne();
  probe().transactions()->Item(u"Key:17")->TransactionID = 18;
  answer(17, 0);
  EXPECT_EQ(trace().size(), 3u);
  EXPECT_EQ(probe().state(), IDLE);
  EXPECT_TRUE(outbox.has(item));
}

TEST_F(Response, SuccessWithoutACollection_IsIdle) {
  sendOne();
  probe().transactions() = nullptr;
  answer(17, 0);
  EXPECT_EQ(trace().size(), 3u);
  EXPECT_EQ(probe().state(), IDLE);
}

TEST_F(Response, SuccessOfAnotherTypeOfTransaction_IsRemovedButMovesNothing) {
  const auto item = addItem(outbox, u"Anna [1]", u"Hello");
  probe().AddTransaction(17, u"ID-1", enTransactionType::List);
  probe().state() = STATE_SEND;
  clear();
  answer(17, 0);
  Lines expected = beginning(17, 0, 2);
  for (const char* line : {"STATE_SEND - Send went well, remove transaction and move message to sent items folder",
                           "Remove from transaction collection - TransactionID = 17", "SetupSendMessage: 1000000"})
    expected.emplace_back(line);
  EXPECT_EQ(trace(), expected);
  EXPECT_TRUE(outbox.has(item));
  EXPECT_EQ(probe().transactions()->Count(), 0);
}

// The answer is matched by its own ID: an earlier send that the guard gave up is what moves.
TEST_F(Response, LateSuccessOfAnEarlierSend_MovesTheEarlierItem) {
  const auto first = sendOne();
  tick(guardTimer(), 25000);
  tick(sendTimer(), 500);  // the same item again, under 18
  clear();
  answer(17, 0);
  EXPECT_TRUE(sentMail.has(first));
  EXPECT_EQ(probe().transactions()->Count(), 1);
  EXPECT_EQ(probe().transactions()->Item(u"Key:18")->TransactionID, 18);
  EXPECT_EQ(probe().state(), IDLE);
}

// What moves is the item of the transaction, though another one is in progress by now.
TEST_F(Response, LateSuccessWhileAnotherItemIsOnItsWay_MovesTheItemOfTheTransaction) {
  const auto first = sendOne();
  tick(guardTimer(), 25000);
  const auto second = newItem(u"Bo [2]", u"Second");
  outbox.contents.insert(outbox.contents.begin(), second);
  tick(sendTimer(), 500);
  ASSERT_EQ(created.size(), 2u);
  clear();
  answer(17, 0);
  Lines expected = beginning(17, 0, 2);
  for (const char* line : {"STATE_SEND - Send went well, remove transaction and move message to sent items folder",
                           "Move message to sent items, and change status to read - EntryID = ID-1",
                           "Inside Function MoveMessage", "MoveMessage - EntryId: ID-1 From: Outbox To: Sent Items",
                           "MoveMessage - restrict folder items to TextMessage's", "MoveMessage = True",
                           "To folder = Sent Items", "MoveMessage - bMoved: True",
                           "Remove from transaction collection - TransactionID = 17", "SetupSendMessage: 1000000"})
    expected.emplace_back(line);
  EXPECT_EQ(trace(), expected);
  EXPECT_EQ(sentMail.entryIds(), Lines{"ID-1"});
  EXPECT_EQ(first->valueOf(u"UnRead"), Variant(false));
  EXPECT_EQ(outbox.entryIds(), Lines{"ID-2"});
  EXPECT_EQ(second->valueOf(u"UnRead"), Variant(true));
  ASSERT_EQ(probe().transactions()->Count(), 1);
  EXPECT_EQ(probe().transactions()->Item(u"Key:18")->EntryID, u"ID-2");
  EXPECT_EQ(probe().entryId(), u"ID-2");
  EXPECT_EQ(probe().state(), IDLE);
  EXPECT_EQ(sendTimer().calls(),
            (Lines{"Enabled = False", "Periodic = 0", "Interval = 500", "Resolution = 100", "Enabled = True"}));
}

// The tick makes its item the one in progress before the send is refused: the failure of the send that really is in
// progress is counted on it, too.
TEST_F(Response, SendFailedAfterARefusedTick_CountsOnTheItemOfTheTick) {
  const auto first = sendOne();
  const auto second = newItem(u"Bo [2]", u"Second");
  outbox.contents.insert(outbox.contents.begin(), second);
  tick(sendTimer(), 500);
  EXPECT_EQ(second->valueOf(u"Mileage"), Variant(u"1"));
  EXPECT_EQ(probe().entryId(), u"ID-2");
  EXPECT_EQ(probe().state(), STATE_SEND);
  answer(17, -1);
  EXPECT_EQ(second->valueOf(u"Mileage"), Variant(u"2"));
  EXPECT_EQ(first->valueOf(u"Mileage"), Variant(u""));
  EXPECT_EQ(outbox.entryIds(), (Lines{"ID-2", "ID-1"}));
  EXPECT_EQ(probe().state(), IDLE);
}

TEST_F(Response, AnswerBeforeTheTransactionIsKept_IsDropped) {
  const auto item = addItem(outbox, u"Anna [1]", u"Hello");
  sms->method(u"CreateShortMessage", [this](Args) -> Variant {
    const auto message = testing_support::fake("ShortMessage");
    message->value(u"ServiceCentre", u"").value(u"Destination", u"").value(u"Text", u"");
    message->method(u"Send", [this](Args) -> Variant {
      answer(17, 0);
      return 17;
    });
    created.push_back(message);
    return message->object();
  });
  tick(sendTimer(), 500);
  EXPECT_TRUE(outbox.has(item));
  EXPECT_EQ(probe().state(), IDLE);
  EXPECT_EQ(probe().transactions()->Count(), 1);
  EXPECT_EQ(trace().back(), "Inside SendMessage Function - AddTransaction called");
}

TEST_F(Response, ItemThatIsGone_IsRemovedFromTheTransactionsAllTheSame) {
  const auto item = sendOne();
  outbox.contents.clear();
  answer(17, 0);
  const Lines lines = trace();
  EXPECT_EQ(lastOf(lines, 4),
            (Lines{"MoveMessage - restrict folder items to TextMessage's", "MoveMessage - bMoved: False",
                   "Remove from transaction collection - TransactionID = 17", "SetupSendMessage: 1000000"}));
}

TEST_F(Response, PhoneGoneAtTheSuccess_IsLoggedAfterTheMove) {
  const auto item = sendOne();
  assistant->script(u"On", [this](Access access, Args) -> Variant {
    if (access == Access::Get) notifyConnected(0, Object());
    return false;
  });
  answer(17, 0);
  EXPECT_TRUE(sentMail.has(item));
  EXPECT_EQ(lastOf(trace(), 3),
            (Lines{"m_bPhoneConnected = 0", "Phone disconnected!", "Error:-1, No phone connected, SetupSendMessage"}));
  EXPECT_EQ(probe().state(), IDLE);
}

TEST_F(Response, TwoMessages_GoOutOneAfterTheOther) {
  addItem(outbox, u"Anna [1]", u"First");
  addItem(outbox, u"Bo [2]", u"Second");
  handler().SendAll();
  tick(sendTimer(), 500);
  answer(17, 0);
  tick(sendTimer(), 500);
  answer(18, 0);
  tick(sendTimer(), 500);
  EXPECT_EQ(sentMail.bodies(), (Lines{"First", "Second"}));
  EXPECT_EQ(created.size(), 2u);
  EXPECT_EQ(trace().back(), "m_objTimer_Timer: 1000000") << "the last tick finds nothing";
}

// ---- listing --------------------------------------------------------------------------------------------------------

class ListingResponse : public Response {
 protected:
  ListingResponse() { probe().state() = STATE_LIST; }
};

TEST_F(ListingResponse, WithoutAMessage_EndsTheListing) {
  answer(21, 4);
  Lines expected = beginning(21, 4, 1);
  expected.emplace_back("No message, tranid: 21 status: 4");
  EXPECT_EQ(trace(), expected);
  EXPECT_EQ(probe().state(), IDLE);
}

TEST_F(ListingResponse, WithoutAMessageButMoreData_EndsItToo) {
  answer(21, resultMoreData);
  EXPECT_EQ(trace().back(), "No message, tranid: 21 status: -2004352980");
  EXPECT_EQ(probe().state(), IDLE);
}

TEST_F(ListingResponse, LastMessage_IsCreatedMovedAndEndsTheListing) {
  probe().smsToDelete() = make<SMSHandlerProbe::MessageCollection>();
  answer(21, 0, newShortMessage({.text = u"Hi", .status = sms_objectlib::receivedRead})->object());
  const Lines lines = trace();
  EXPECT_EQ(lines.at(2), "STATE_LIST - Got one message, tranid: 21 status: 0");
  EXPECT_EQ(lines.at(3), "Inside Function CreateMessage");
  const auto at = std::find(lines.begin(), lines.end(), "CreateMessage:ID-1");
  ASSERT_NE(at, lines.end());
  EXPECT_EQ((Lines(at + 1, lines.end())),
            (Lines{"CreateMessage called - message will be created in outbox",
                   "Return from CreateMessage call - strEntryId = ID-1", "Check if message lengt is larger than 0",
                   "YES, Move message to Inbox: ID-1", "Inside Function MoveMessage",
                   "MoveMessage - EntryId: ID-1 From: Outbox To: Inbox",
                   "MoveMessage - restrict folder items to TextMessage's", "MoveMessage = True", "To folder = Inbox",
                   "MoveMessage - bMoved: True"}));
  ASSERT_EQ(inbox.bodies(), Lines{"Hi"});
  EXPECT_EQ(inbox.contents[0]->valueOf(u"UnRead"), Variant(true)) << "the helper's read state stays";
  EXPECT_EQ(probe().state(), IDLE);
}

TEST_F(ListingResponse, MoreData_StaysAndExtendsTheTimeOutAfterTheMove) {
  probe().timeOut()->InitTimeOut(5000);
  system.time.advance(4000);
  // The item's way into the Inbox takes its time; what counts is when it has arrived.
  helper->method(u"CreateMessage", [this](Args) -> Variant {
    system.time.advance(3000);
    return arrive(outbox, newItem(u"", u"Hi")), u"ID-1";
  });
  answer(21, resultMoreData, newShortMessage({.text = u"Hi"})->object());
  EXPECT_EQ(lastOf(trace(), 3),
            (Lines{"MoveMessage - bMoved: True", "More data to come, don't remove transaction from collection",
                   "Extend timeout"}));
  EXPECT_EQ(probe().state(), STATE_LIST);
  system.time.advance(5000);
  EXPECT_FALSE(probe().timeOut()->TimeOut());
  system.time.advance(1);
  EXPECT_TRUE(probe().timeOut()->TimeOut());
}

TEST_F(ListingResponse, MoveThatTakesLong_IsNotTakenFromTheNextGap) {
  probe().timeOut()->InitTimeOut(5000);
  system.time.advance(4000);
  const auto item = newItem(u"", u"Hi");
  item->method(u"Move", [this, item = item.get()](Args args) -> Variant {
    system.time.advance(3000);
    moveTo(Ref<FakeObject>(item), *folderOf(to<Object>(args[0])));
    return item->object();
  });
  helper->method(u"CreateMessage", [this, item](Args) -> Variant { return arrive(outbox, item), u"ID-1"; });
  answer(21, resultMoreData, newShortMessage({.text = u"Hi"})->object());
  EXPECT_EQ(inbox.entryIds(), Lines{"ID-1"});
  EXPECT_EQ(system.time.elapsed(), 7000);
  system.time.advance(5000);
  EXPECT_FALSE(probe().timeOut()->TimeOut());
  system.time.advance(1);
  EXPECT_TRUE(probe().timeOut()->TimeOut());
}

class StoredOutgoing : public ListingResponse, public ::testing::WithParamInterface<std::int32_t> {};

TEST_P(StoredOutgoing, CreatesNothingButExtendsTheTimeOut) {
  probe().timeOut()->InitTimeOut(5000);
  system.time.advance(4000);
  answer(21, resultMoreData, newShortMessage({.status = GetParam()})->object());
  Lines expected = beginning(21, resultMoreData, 1);
  for (const char* line : {"STATE_LIST - Got one message, tranid: 21 status: -2004352980",
                           "More data to come, don't remove transaction from collection", "Extend timeout"})
    expected.emplace_back(line);
  EXPECT_EQ(trace(), expected);
  EXPECT_EQ(helper->calls(), Lines{});
  EXPECT_EQ(probe().state(), STATE_LIST);
  system.time.advance(5000);
  EXPECT_FALSE(probe().timeOut()->TimeOut());
}
INSTANTIATE_TEST_SUITE_P(Statuses, StoredOutgoing, ::testing::Values(2, 3, 4, -1));

TEST_F(ListingResponse, EmptyEntryId_MovesNothing) {
  helper->method(u"CreateMessage", [](Args) -> Variant { return u""; });
  answer(21, 0, newShortMessage({})->object());
  EXPECT_EQ(lastOf(trace(), 3),
            (Lines{"CreateMessage called - message will be created in outbox",
                   "Return from CreateMessage call - strEntryId = ", "Check if message lengt is larger than 0"}));
  EXPECT_EQ(probe().state(), IDLE);
}

TEST_F(ListingResponse, StatusThatFails_IsLoggedAndTheStateStays) {
  const auto message = newShortMessage({});
  message->fails(u"Status", -2147023174);
  answer(21, 0, message->object());
  EXPECT_EQ(trace().at(3).substr(0, 18), "Error:-2147023174,");
  EXPECT_EQ(probe().state(), STATE_LIST);
}

TEST_F(ListingResponse, SendTimerIsNotTouched) {
  answer(21, 0);
  EXPECT_EQ(sendTimer().calls(), Lines{});
}

// ---- deleting -------------------------------------------------------------------------------------------------------

TEST_F(Response, WhileDeleting_KeepsTheStatus) {
  probe().state() = STATE_DELETE;
  answer(33, sms_objectlib::resultEmptySlot);
  Lines expected = beginning(33, -2004352824, 3);
  expected.emplace_back("STATE_DELETE - Response from delete SMS: 33 status: -2004352824");
  EXPECT_EQ(trace(), expected);
  EXPECT_EQ(probe().deleteStatus(), -2004352824);
  EXPECT_EQ(probe().state(), IDLE);
}

}  // namespace
}  // namespace sms_tests
