// The guard timer: it gives up when the phone does not answer in time.
#include <limits>

#include "addin/platform/date.h"
#include "support/errors.h"
#include "unit/sms/engine_fixture.h"

namespace sms_tests {
namespace {

using testing_support::errorOf;

class Guard : public EngineFixture {
 protected:
  Guard() {
    start();
    system.time.setNow(*dateFromParts({2001, 2, 3, 4, 5, 6}));
  }
};

TEST_F(Guard, Setup_TracesAndArms) {
  EXPECT_TRUE(probe().SetupGuard(2));
  EXPECT_EQ(trace(), (Lines{"SetupGuard [50000]ms", "SetupGuard 2/3/2001 4:05:06 AM"}));
  EXPECT_EQ(guardTimer().calls(),
            (Lines{"Enabled = False", "Periodic = 1", "Interval = 25000", "Resolution = 1000", "Enabled = True"}));
  EXPECT_EQ(probe().guardParts(), 2);
  EXPECT_EQ(sendTimer().calls(), Lines{});
}

TEST_F(Guard, SetupWithoutTimer_RaisesError6AfterItsLines) {
  probe().guardTimer() = nullptr;
  const auto error = errorOf([&] { probe().SetupGuard(3); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number, 6);
  EXPECT_EQ(error->source, u"SetupGuard");
  EXPECT_EQ(error->description, u"No guard timer object");
  EXPECT_EQ(trace(), (Lines{"SetupGuard [75000]ms", "SetupGuard 2/3/2001 4:05:06 AM"}));
  EXPECT_EQ(probe().guardParts(), 0);
}

TEST_F(Guard, ProductAtTheLimit_IsComputed) {
  EXPECT_TRUE(probe().SetupGuard(85899));
  EXPECT_EQ(trace().at(0), "SetupGuard [2147475000]ms");
}

TEST_F(Guard, ProductBeyondTheRange_IsOverflow) {
  const auto error = errorOf([&] { probe().SetupGuard(85900); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number, 6);
  EXPECT_EQ(error->description, u"Overflow");
  EXPECT_EQ(trace(), Lines{});
  EXPECT_EQ(guardTimer().calls(), Lines{});
}

TEST_F(Guard, TickWithPartsLeft_OnlyCountsDown) {
  addItem(outbox, u"Anna [1]", String(160, u'x'));
  tick(sendTimer(), 500);
  clear();
  tick(guardTimer(), 25000);
  EXPECT_EQ(trace(),
            (Lines{"Guard time passed! 2/3/2001 4:05:06 AM", "Guard time passed ms: 25000", "Number of parts left:1"}));
  EXPECT_EQ(guardTimer().calls(), Lines{}) << "periodic: it goes on by itself";
  EXPECT_EQ(probe().state(), STATE_SEND);
}

TEST_F(Guard, LastTick_GivesUpAndStartsNoNextMessage) {
  const auto item = addItem(outbox, u"Anna [1]", String(160, u'x'));
  const auto second = addItem(outbox, u"Bo [2]", u"Next");
  tick(sendTimer(), 500);
  tick(guardTimer(), 25000);
  clear();
  tick(guardTimer(), 25000);
  EXPECT_EQ(trace(), (Lines{"Guard time passed! 2/3/2001 4:05:06 AM", "Guard time passed ms: 25000",
                            "Number of parts left:0", "Failed count:0"}));
  EXPECT_EQ(guardTimer().calls(), Lines{"Enabled = False"});
  EXPECT_EQ(item->valueOf(u"Mileage"), Variant(u"1"));
  EXPECT_EQ(second->valueOf(u"Mileage"), Variant(u""));
  EXPECT_EQ(probe().state(), IDLE);
  EXPECT_EQ(probe().transactions()->Count(), 1) << "the transaction stays";
  EXPECT_EQ(sendTimer().calls(), Lines{}) << "and the send timer is not armed";
  EXPECT_TRUE(outbox.has(item));
}

// The failure is counted before the state is IDLE again: a third one deletes the item, and the event of that finds the
// engine busy.
TEST_F(Guard, ThirdFailure_FindsTheEngineBusy) {
  const auto item = addItem(outbox, u"Anna [1]", u"Hello");
  item->value(u"Mileage", u"2");
  tick(sendTimer(), 500);
  clear();
  probe().receiveAllFlag() = false;
  tick(guardTimer(), 25000);
  EXPECT_EQ(trace(),
            (Lines{"Guard time passed! 2/3/2001 4:05:06 AM", "Guard time passed ms: 25000", "Number of parts left:0",
                   "Failed count:2", "CreateMessage:ID-2", "Inside Function MoveMessage",
                   "MoveMessage - EntryId: ID-2 From: Outbox To: Inbox",
                   "MoveMessage - restrict folder items to TextMessage's", "MoveMessage = True", "To folder = Inbox",
                   "MoveMessage - bMoved: True", "Item added to Deleted Items folder",
                   "YES, the item is our mail item - check if phone connected", "m_bPhoneConnected = -1",
                   "YES, the phone is connected", "Inside Function ReceiveAll", "Create m_smsToDelete collection",
                   "Error:-1, Not idle!, ReceiveAll", "ReceiveAll function called."}));
  EXPECT_EQ(probe().state(), IDLE);
  EXPECT_TRUE(probe().receiveAllFlag()) << "the refused run leaves its wish";
  EXPECT_TRUE(deletedItems.has(item));
}

TEST_F(Guard, TickWhenIdle_CountsAFailureOnTheLastItemAllTheSame) {
  const auto item = addItem(outbox, u"Anna [1]", u"Hello");
  tick(sendTimer(), 500);
  notifyConnected(1, phone->object());  // IDLE, and the guard runs on
  clear();
  tick(guardTimer(), 25000);
  EXPECT_EQ(trace().back(), "Failed count:0");
  EXPECT_EQ(item->valueOf(u"Mileage"), Variant(u"1"));
}

// A connect notice forgets the send but leaves its guard running. When that runs out, it does not ask whose state it
// ends: whatever waits then, waits no longer.
class GuardThatRunsOn : public Guard {
 protected:
  GuardThatRunsOn() : item(addItem(outbox, u"Anna [1]", u"Hello")) {
    tick(sendTimer(), 500);
    notifyConnected(1, phone->object());
    clear();
    system.time.post(100, [this] { tick(guardTimer(), 25000); });
  }
  void expectRanOut() {
    const Lines lines = trace();
    const auto at = std::find(lines.begin(), lines.end(), "Guard time passed ms: 25000");
    ASSERT_GE(lines.end() - at, 3);
    EXPECT_EQ((Lines(at + 1, at + 3)), (Lines{"Number of parts left:0", "Failed count:0"}));
    EXPECT_EQ(guardTimer().calls(), Lines{"Enabled = False"});
    EXPECT_EQ(item->valueOf(u"Mileage"), Variant(u"1"));
    EXPECT_EQ(system.time.elapsed(), 100);
    EXPECT_EQ(probe().state(), IDLE);
  }

  Ref<FakeObject> item;
};

TEST_F(GuardThatRunsOn, DuringAListing_EndsTheWaitAsSuccess) {
  answersListings = false;
  EXPECT_TRUE(probe().ListMessage(1, 4));
  expectRanOut();
}

TEST_F(GuardThatRunsOn, DuringADeletion_EndsTheWaitWithTheLastStatus) {
  answersDeletions = false;
  probe().deleteStatus() = 7;
  std::int32_t store = 2;
  EXPECT_FALSE(handler().DeleteSMSFromPhone(store, 1));
  expectRanOut();
}

TEST_F(Guard, Tick_TracesTheMillisecondsThatTheTimerSays) {
  probe().guardParts() = 3;
  tick(guardTimer(), 25017);
  EXPECT_EQ(trace(),
            (Lines{"Guard time passed! 2/3/2001 4:05:06 AM", "Guard time passed ms: 25017", "Number of parts left:2"}));
}

TEST_F(Guard, GuardTimerThatFailsToStop_IsLoggedAndLeavesTheState) {
  addItem(outbox, u"Anna [1]", u"Hello");
  tick(sendTimer(), 500);
  guardTimer().fails(u"Enabled", 5);
  clear();
  tick(guardTimer(), 25000);
  EXPECT_EQ(trace(), (Lines{"Guard time passed! 2/3/2001 4:05:06 AM", "Guard time passed ms: 25000",
                            "Number of parts left:0", "Error:5, Invalid procedure call or argument, mrktxtmsg"}));
  EXPECT_EQ(probe().state(), STATE_SEND);
}

TEST_F(Guard, CountBelowTheRange_IsOverflow) {
  probe().guardParts() = std::numeric_limits<std::int32_t>::min();
  tick(guardTimer(), 25000);
  EXPECT_EQ(trace(), (Lines{"Guard time passed! 2/3/2001 4:05:06 AM", "Guard time passed ms: 25000",
                            "Error:6, Overflow, mrktxtmsg"}));
}

TEST_F(Guard, AnswerAfterIt_FindsIdleAndIsDropped) {
  const auto item = addItem(outbox, u"Anna [1]", u"Hello");
  tick(sendTimer(), 500);
  tick(guardTimer(), 25000);
  clear();
  answer(17, 0);
  EXPECT_EQ(trace(), (Lines{"m_objSMS_OnNotifyResponse - TransID:17, Status:0, State:0", "disablar guard timer"}));
  EXPECT_TRUE(outbox.has(item)) << "though the phone has sent it";
  EXPECT_EQ(item->valueOf(u"Mileage"), Variant(u"1"));
  EXPECT_EQ(probe().transactions()->Count(), 1);
}

}  // namespace
}  // namespace sms_tests
