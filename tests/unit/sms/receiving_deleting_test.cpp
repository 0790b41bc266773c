// DeleteSMSFromPhone, the deletions at the end of a run, and deletions in the mail client.
#include "support/errors.h"
#include "support/seam_recorder.h"
#include "unit/sms/receiving_fixture.h"

namespace sms_tests {
namespace {

using testing_support::errorOf;
using testing_support::Recorder;

class DeleteSMSFromPhone : public ReceivingFixture {
 protected:
  bool remove(std::int32_t& mem, std::int16_t index) { return handler().DeleteSMSFromPhone(mem, index); }
  bool remove(std::int16_t index) {
    std::int32_t mem = sim;
    return remove(mem, index);
  }
};

TEST_F(DeleteSMSFromPhone, SupportedStore_DeletesAndIsTrue) {
  store({.index = 4});
  const Recorder recorder;
  EXPECT_TRUE(remove(4));
  EXPECT_EQ(trace(), deletedFromPhone(17, 0, true));
  EXPECT_EQ(recorder.lines(),
            (Lines{"SMS.IsStorageSupported(2)", "SMS.DeleteMessage(2, 4)", "GuardTimer.Enabled = False"}));
  EXPECT_EQ(stored[sim].size(), 0u);
  EXPECT_EQ(probe().state(), IDLE);
}

TEST_F(DeleteSMSFromPhone, MessageThatIsGoneAlready_IsTrue) {
  EXPECT_TRUE(remove(4));
  EXPECT_EQ(trace(), deletedFromPhone(17, sms_objectlib::resultEmptySlot, true));
}

TEST_F(DeleteSMSFromPhone, AnyOtherStatus_IsFalse) {
  for (const std::int32_t status : {1, -1, sms_objectlib::resultMoreData}) {
    store({.index = 4});
    deletionStatus = status;
    clear();
    EXPECT_FALSE(remove(4));
    EXPECT_EQ(trace(), deletedFromPhone(nextTransaction - 1, status, false));
  }
}

TEST_F(DeleteSMSFromPhone, UnsupportedStore_BecomesTheSimInTheCallersVariableToo) {
  std::int32_t mem = 3;
  EXPECT_TRUE(remove(mem, 4));
  EXPECT_EQ(mem, sim);
  EXPECT_EQ(sms->calls(), (Lines{"IsStorageSupported(3)", "DeleteMessage(2, 4)"}));
  const Lines all = trace();
  EXPECT_EQ(
      Lines(all.begin(), all.begin() + 5),
      (Lines{"Inside Function DeleteSMSFromPhone", "DeleteSMSFromPhone - IsStorageSupported = False",
             "Storage not supported", "Storage not SM - change it to SM", "Delete SMS in phone: transaction id: 17"}));
}

TEST_F(DeleteSMSFromPhone, UnsupportedSim_StaysTheSim) {
  sms->method(u"IsStorageSupported", [](Args) -> Variant { return false; });
  std::int32_t mem = sim;
  EXPECT_TRUE(remove(mem, 4));
  EXPECT_EQ(mem, sim);
  const Lines all = trace();
  EXPECT_EQ(Lines(all.begin(), all.begin() + 4),
            (Lines{"Inside Function DeleteSMSFromPhone", "DeleteSMSFromPhone - IsStorageSupported = False",
                   "Storage not supported", "Delete SMS in phone: transaction id: 17"}));
}

TEST_F(DeleteSMSFromPhone, StateIsNotAskedFor) {
  probe().state() = STATE_SEND;
  EXPECT_TRUE(remove(4));
  EXPECT_EQ(probe().state(), IDLE);
}

TEST_F(DeleteSMSFromPhone, WaitsForTheAnswerHoweverLongItTakesWithoutPolling) {
  answersDeletions = false;
  constexpr std::int32_t aDay = 86'400'000;
  system.time.post(aDay, [&] { answer(17, 0); });
  EXPECT_TRUE(remove(4));
  EXPECT_EQ(system.time.elapsed(), aDay);
  EXPECT_LE(system.time.waits(), aDay / 10'000);
}

TEST_F(DeleteSMSFromPhone, ErrorOfTheSmsObject_GoesToTheCallerAndLeavesTheState) {
  sms->fails(u"DeleteMessage", 70);
  const auto error = errorOf([&] { remove(4); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number, 70);
  EXPECT_EQ(trace(), (Lines{"Inside Function DeleteSMSFromPhone", "DeleteSMSFromPhone - IsStorageSupported = True"}));
  EXPECT_EQ(probe().state(), STATE_DELETE);
}

TEST_F(DeleteSMSFromPhone, WithoutAnSmsObject_IsError91ToTheCaller) {
  probe().sms() = nullptr;
  const auto error = errorOf([&] { remove(4); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number, 91);
  EXPECT_EQ(trace(), Lines{"Inside Function DeleteSMSFromPhone"});
  EXPECT_EQ(probe().state(), STATE_DELETE);
}

TEST_F(DeleteSMSFromPhone, ErrorOfTheFirstQuestion_FindsTheStateSet) {
  sms->fails(u"IsStorageSupported", 70);
  const auto error = errorOf([&] { remove(4); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number, 70);
  EXPECT_EQ(trace(), Lines{"Inside Function DeleteSMSFromPhone"});
  EXPECT_EQ(probe().state(), STATE_DELETE);
}

// The status of the last answer stays until the next one: a wait that ends without an answer says what an earlier
// deletion said.
TEST_F(DeleteSMSFromPhone, ConnectNoticeAfterAnEarlierSuccess_IsTrue) {
  answersDeletions = false;
  for (const std::int32_t status : {0, sms_objectlib::resultEmptySlot}) {
    probe().deleteStatus() = status;
    clear();
    const auto before = system.time.elapsed();
    system.time.post(100, [&] { notifyConnected(1, phone->object()); });
    EXPECT_TRUE(remove(4));
    EXPECT_EQ(system.time.elapsed() - before, 100);
    EXPECT_EQ(trace().back(), "DeleteSMSFromPhone = True");
  }
}

TEST_F(DeleteSMSFromPhone, ConnectNoticeMeanwhile_EndsTheWaitWithTheLastStatus) {
  answersDeletions = false;
  probe().deleteStatus() = 7;
  system.time.post(100, [&] { notifyConnected(1, phone->object()); });
  EXPECT_FALSE(remove(4));
  EXPECT_EQ(system.time.elapsed(), 100);
}

TEST_F(DeleteSMSFromPhone, QuitMeanwhile_EndsWithFalse) {
  answersDeletions = false;
  system.time.post(100, [&] { system.time.postQuit(); });
  EXPECT_FALSE(remove(4));
  EXPECT_EQ(system.time.elapsed(), 100);
  EXPECT_EQ(trace().back(), "DeleteSMSFromPhone = False");
}

TEST_F(DeleteSMSFromPhone, EngineLetGoMeanwhile_EndsWithFalse) {
  answersDeletions = false;
  clsSMSHandler& engine = handler();
  const Hold<clsSMSHandler> memory(&engine);
  system.time.post(100, [&] { letGo(); });
  std::int32_t mem = sim;
  EXPECT_FALSE(engine.DeleteSMSFromPhone(mem, 4));
  EXPECT_EQ(system.time.elapsed(), 100);
}

// The deletions of a run
// -----------------------------------------------------------------------------------------------

class DeletionsOfARun : public ReceivingFixture {
 protected:
  DeletionsOfARun() { autoRemove(); }
};

TEST_F(DeletionsOfARun, ComeAfterBothListingsInTheOrderOfListing) {
  store({.text = u"1", .store = phoneMemory, .index = 7});
  store({.text = u"2", .index = 5});
  store({.text = u"3", .index = 2});
  EXPECT_TRUE(handler().ReceiveAll());
  EXPECT_EQ(sms->calls(),
            (Lines{"ListMessages(1, 4)", "ListMessages(2, 4)", "IsStorageSupported(1)", "IsStorageSupported(1)",
                   "DeleteMessage(1, 7)", "IsStorageSupported(2)", "IsStorageSupported(2)", "DeleteMessage(2, 5)",
                   "IsStorageSupported(2)", "IsStorageSupported(2)", "DeleteMessage(2, 2)"}));
  EXPECT_EQ(stored[phoneMemory].size() + stored[sim].size(), 0u);
  const Lines all = trace();
  const Lines ending = runEnds(3, joined({deletedInRun(19, 7, 1), deletedInRun(20, 5, 2), deletedInRun(21, 2, 2)}));
  ASSERT_GT(all.size(), ending.size());
  EXPECT_EQ(Lines(all.end() - static_cast<std::ptrdiff_t>(ending.size()), all.end()), ending);
  EXPECT_FALSE(probe().smsToDelete());
}

TEST_F(DeletionsOfARun, OneThatFails_DoesNotStopTheOthers) {
  store({.text = u"1", .index = 1});
  store({.text = u"2", .index = 2});
  deletionStatus = 5;
  EXPECT_TRUE(handler().ReceiveAll());
  const Lines all = trace();
  const Lines ending = runEnds(2, joined({deletedInRun(19, 1, 2, 5), deletedInRun(20, 2, 2, 5)}));
  EXPECT_EQ(Lines(all.end() - static_cast<std::ptrdiff_t>(ending.size()), all.end()), ending);
}

TEST_F(DeletionsOfARun, UnsupportedStore_IsChangedToTheSimInTheMessage) {
  const auto message = store({.store = phoneMemory, .index = 7});
  sms->method(u"IsStorageSupported", [](Args args) -> Variant { return CLng(args[0]) == sim; });
  const Recorder recorder;
  EXPECT_TRUE(handler().ReceiveAll());
  EXPECT_EQ(message->valueOf(u"Store"), Variant(sim));
  EXPECT_EQ(recorder.linesWith("ShortMessage 1:7.Store = "), Lines{"ShortMessage 1:7.Store = 2"});
  EXPECT_EQ(recorder.linesWith("DeleteMessage"), Lines{"SMS.DeleteMessage(2, 7)"});
  const Lines all = trace();
  const Lines ending = runEnds(
      1,
      joined({{"Delete SMS - IsStorageSupported = False", "Storage not supported", "Storage not SM - change it to SM"},
              deletedFromPhone(19, sms_objectlib::resultEmptySlot, true),
              {"Delete from SIM - index = 7", "Delete from SIM - storage = 2"}}));
  EXPECT_EQ(Lines(all.end() - static_cast<std::ptrdiff_t>(ending.size()), all.end()), ending);
}

TEST_F(DeletionsOfARun, UnsupportedSim_SaysItTwiceAndGoesOn) {
  store({.index = 7});
  sms->method(u"IsStorageSupported", [](Args) -> Variant { return false; });
  EXPECT_TRUE(handler().ReceiveAll());
  const Lines all = trace();
  EXPECT_EQ(std::count(all.begin(), all.end(), "Storage not supported"), 2);
  EXPECT_EQ(std::count(all.begin(), all.end(), "Storage not SM - change it to SM"), 0);
  EXPECT_EQ(stored[sim].size(), 0u);
}

// An error of the SMS object, unlike a failed deletion, ends the run; its result is known by then.
TEST_F(DeletionsOfARun, ErrorOfTheSmsObject_EndsThemAndKeepsTheResult) {
  store({.text = u"1", .index = 1});
  store({.text = u"2", .index = 2});
  sms->fails(u"DeleteMessage", 70);
  EXPECT_TRUE(handler().ReceiveAll());
  EXPECT_EQ(trace().back(), "Error:70, Permission denied, mrktxtmsg");
  ASSERT_TRUE(probe().smsToDelete());
  EXPECT_EQ(probe().smsToDelete()->Count(), 2);
  EXPECT_EQ(probe().state(), STATE_DELETE);
}

// The mail client ends: nothing is waited for any more, but each message is still asked to go.
TEST_F(DeletionsOfARun, QuitMeanwhile_StillAsksForTheOthers) {
  store({.text = u"1", .index = 1});
  store({.text = u"2", .index = 2});
  store({.text = u"3", .index = 3});
  answersDeletions = false;
  sms->method(u"DeleteMessage", [&](Args) -> Variant {
    const std::int32_t id = nextTransaction++;
    if (id == 19) system.time.post(100, [&] { system.time.postQuit(); });
    return id;
  });
  const auto asked = [](std::int32_t id, std::int32_t index) {
    return Lines{"Delete SMS - IsStorageSupported = True",
                 "Inside Function DeleteSMSFromPhone",
                 "DeleteSMSFromPhone - IsStorageSupported = True",
                 "Delete SMS in phone: transaction id: " + number(id),
                 "DeleteSMSFromPhone = False",
                 "Delete from SIM - index = " + number(index),
                 "Delete from SIM - storage = 2"};
  };
  EXPECT_TRUE(handler().ReceiveAll());
  EXPECT_EQ(system.time.elapsed(), 100);
  EXPECT_EQ(lastOf(sms->calls(), 9), (Lines{"IsStorageSupported(2)", "IsStorageSupported(2)", "DeleteMessage(2, 1)",
                                            "IsStorageSupported(2)", "IsStorageSupported(2)", "DeleteMessage(2, 2)",
                                            "IsStorageSupported(2)", "IsStorageSupported(2)", "DeleteMessage(2, 3)"}));
  const Lines ending = runEnds(3, joined({asked(19, 1), asked(20, 2), asked(21, 3)}));
  EXPECT_EQ(lastOf(trace(), ending.size()), ending);
  EXPECT_FALSE(probe().smsToDelete());
}

TEST_F(DeletionsOfARun, PhoneUnpluggedMeanwhile_IsError91) {
  store({.text = u"1", .index = 1});
  store({.text = u"2", .index = 2});
  sms->method(u"DeleteMessage", [&](Args) -> Variant {
    system.time.post([&] {
      answer(19, 0);
      notifyConnected(0, phone->object());
    });
    return 19;
  });
  EXPECT_TRUE(handler().ReceiveAll());
  EXPECT_EQ(trace().back(), "Error:91, Object variable or With block variable not set, mrktxtmsg");
  EXPECT_EQ(probe().state(), IDLE);
}

TEST_F(DeletionsOfARun, RunAskedForMeanwhile_IsRefusedAndTakesNothingAway) {
  store({.text = u"1", .index = 1});
  store({.text = u"2", .index = 2});
  bool refused = false;
  sms->method(u"DeleteMessage", [&](Args args) -> Variant {
    const std::int32_t id = nextTransaction++;
    std::erase_if(stored[sim],
                  [&](const auto& m) { return m->valueOf(u"Index") == Variant(std::int16_t(CInt(args[1]))); });
    system.time.post([this, id, &refused] {
      refused = !handler().ReceiveAll();
      answer(id, 0);
    });
    return id;
  });
  EXPECT_TRUE(handler().ReceiveAll());
  EXPECT_TRUE(refused);
  EXPECT_EQ(stored[sim].size(), 0u);
}

TEST_F(DeletionsOfARun, RunAskedForWhileListing_ForgetsWhatWasCollectedSoFar) {
  store({.text = u"1", .store = phoneMemory, .index = 1});
  store({.text = u"2", .index = 2});
  sms->method(u"ListMessages", [&](Args args) -> Variant {
    const std::int32_t id = nextTransaction++;
    const auto message = stored[CLng(args[0])][0];
    system.time.post([this, id, message] { answer(id, moreData, message->object()); });
    if (CLng(args[0]) == phoneMemory) system.time.post([this] { EXPECT_FALSE(handler().ReceiveAll()); });
    system.time.post([this, id] { answer(id, 0); });
    return id;
  });
  EXPECT_TRUE(handler().ReceiveAll());
  EXPECT_EQ(stored[phoneMemory].size(), 1u);  // it is listed again some other time
  EXPECT_EQ(stored[sim].size(), 0u);
  EXPECT_EQ(inbox.bodies(), (Lines{"1", "2"}));
}

// A text message is deleted in the mail client
// -------------------------------------------------------------------------

class DeletedItemsItemAdd : public ReceivingFixture {};

TEST_F(DeletedItemsItemAdd, TextMessageWithAPhone_StartsAFullRun) {
  handler().ReceiveAll();
  clear();
  addItem(inbox, u"", u"1")->invoke(u"Delete", Access::Call, {});
  EXPECT_EQ(trace(),
            joined({{"Item added to Deleted Items folder", "YES, the item is our mail item - check if phone connected",
                     "m_bPhoneConnected = -1", "YES, the phone is connected"},
                    run(true, listed(19), listed(20)),
                    {"ReceiveAll function called."}}));
  EXPECT_FALSE(probe().receiveAllFlag());
}

TEST_F(DeletedItemsItemAdd, AnyOtherItem_DoesNothing) {
  for (const StringView other : {u"IPM.Note", u"IPM.Note.TxtMsg.Special", u"ipm.note.txtmsg", u""}) {
    clear();
    arrive(deletedItems, newItem(u"", u"", other));
    EXPECT_EQ(trace(), Lines{"Item added to Deleted Items folder"});
  }
  EXPECT_EQ(sms->calls(), Lines{});
}

TEST_F(DeletedItemsItemAdd, WithoutAPhone_OnlySaysSo) {
  notifyConnected(0, phone->object());
  probe().receiveAllFlag() = false;
  clear();
  arrive(deletedItems, newItem(u"", u""));
  EXPECT_EQ(trace(), (Lines{"Item added to Deleted Items folder",
                            "YES, the item is our mail item - check if phone connected", "m_bPhoneConnected = 0"}));
  EXPECT_FALSE(probe().receiveAllFlag());
}

// What the worker said last counts, not whether there is an SMS object.
TEST_F(DeletedItemsItemAdd, WorkerSaysConnectedWithoutAnSmsObject_TriesTheRun) {
  probe().sms() = nullptr;
  arrive(deletedItems, newItem(u"", u""));
  EXPECT_EQ(trace(),
            joined({{"Item added to Deleted Items folder", "YES, the item is our mail item - check if phone connected",
                     "m_bPhoneConnected = -1", "YES, the phone is connected"},
                    runBegins(true),
                    phoneMemoryListed(false),
                    {"Error:3, Error during ListMessage, Store:1, ReceiveAll", "ReceiveAll function called."}}));
}

TEST_F(DeletedItemsItemAdd, SmsObjectButNoNoticeOfAPhone_DoesNothing) {
  probe().phoneConnected() = 0;
  arrive(deletedItems, newItem(u"", u""));
  EXPECT_EQ(trace().back(), "m_bPhoneConnected = 0");
  EXPECT_EQ(sms->calls(), Lines{});
}

TEST_F(DeletedItemsItemAdd, WhileBusy_IsRefusedButTheNextRunIsAFullOne) {
  probe().receiveAllFlag() = false;
  probe().state() = STATE_SEND;
  arrive(deletedItems, newItem(u"", u""));
  EXPECT_EQ(
      trace(),
      (Lines{"Item added to Deleted Items folder", "YES, the item is our mail item - check if phone connected",
             "m_bPhoneConnected = -1", "YES, the phone is connected", "Inside Function ReceiveAll",
             "Create m_smsToDelete collection", "Error:-1, Not idle!, ReceiveAll", "ReceiveAll function called."}));
  EXPECT_TRUE(probe().receiveAllFlag());
}

TEST_F(DeletedItemsItemAdd, ItemWithoutAClass_IsLogged) {
  const auto item = newItem(u"", u"");
  item->removed(u"MessageClass");
  deletedItems.items->fire(outlook::ItemsEvents::ItemAdd, item->object());
  EXPECT_EQ(trace(), (Lines{"Item added to Deleted Items folder",
                            "Error:438, Object doesn't support this property or method, mrktxtmsg"}));
}

}  // namespace
}  // namespace sms_tests
