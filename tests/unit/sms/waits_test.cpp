// The two waits: how they end, and that they sleep meanwhile.
#include <limits>

#include "support/errors.h"
#include "unit/sms/engine_fixture.h"

namespace sms_tests {
namespace {

using testing_support::errorNumberOf;

const Lines listingBegun{"List Message - InitTimeOut 5000ms", "Wait for async operation to complete"};

class Waits : public EngineFixture {
 protected:
  Waits() { start(); }
  bool list() { return probe().ListMessage(1, 4); }
  static Lines with(Lines lines, std::initializer_list<const char*> more) {
    lines.insert(lines.end(), more.begin(), more.end());
    return lines;
  }
};

// ---- listing --------------------------------------------------------------------------------------------------------

TEST_F(Waits, Listing_WithoutAnswer_TimesOutAfterOneSleep) {
  answersListings = false;
  EXPECT_FALSE(list());
  EXPECT_EQ(trace(), with(listingBegun, {"Error:6, Operation Timed Out, ListMessage"}));
  EXPECT_EQ(system.time.waited(), 5001) << "5000 have to be passed";
  EXPECT_EQ(system.time.waits(), 1);
  EXPECT_EQ(probe().state(), STATE_LIST) << "nothing but an answer or a connect notice ends the state";
}

TEST_F(Waits, ReceiveAllWithoutAnswer_FailsForTheStoreAndLeavesTheRest) {
  answersListings = false;
  EXPECT_FALSE(handler().ReceiveAll());
  EXPECT_EQ(trace(), (Lines{"Inside Function ReceiveAll", "Create m_smsToDelete collection",
                            "Inside ReceiveAll Function - m_bReceiveAll = True", "List Message - InitTimeOut 5000ms",
                            "Wait for async operation to complete", "Error:6, Operation Timed Out, ListMessage",
                            "ListMessage - cpSMSMEMessageStore - bRet = False",
                            "Error:3, Error during ListMessage, Store:1, ReceiveAll"}));
  EXPECT_TRUE(probe().smsToDelete()) << "stays until the next run replaces it";
  EXPECT_TRUE(probe().receiveAllFlag());
}

// Each piece of other work wakes the wait; it goes on sleeping for what is left.
TEST_F(Waits, Listing_WokenByOtherWork_TimesOutAllTheSame) {
  answersListings = false;
  int woken = 0;
  for (int i = 1; i <= 9; ++i) system.time.post(i * 500, [&] { ++woken; });
  EXPECT_FALSE(list());
  EXPECT_EQ(woken, 9);
  EXPECT_EQ(system.time.waited(), 5001);
  EXPECT_EQ(system.time.waits(), 10);
}

TEST_F(Waits, Listing_AnswerInTime_Ends) {
  answersListings = false;
  system.time.post(5000, [this] { answer(17, 0); });
  EXPECT_TRUE(list());
  EXPECT_EQ(system.time.waited(), 5000);
  EXPECT_EQ(probe().state(), IDLE);
}

TEST_F(Waits, Listing_GapsBelowTheTimeOut_AddUpToMore) {
  answersListings = false;
  const auto message = newShortMessage({.status = sms_objectlib::storedSent});
  for (int i = 1; i <= 4; ++i)
    system.time.post(i * 4000, [this, message] { answer(17, sms_objectlib::resultMoreData, message->object()); });
  system.time.post(20000, [this] { answer(17, 0); });
  EXPECT_TRUE(list());
  EXPECT_EQ(system.time.waited(), 20000);
}

TEST_F(Waits, Listing_OneGapTooLong_TimesOut) {
  answersListings = false;
  const auto message = newShortMessage({.status = sms_objectlib::storedSent});
  system.time.post(4000, [this, message] { answer(17, sms_objectlib::resultMoreData, message->object()); });
  EXPECT_FALSE(list());
  EXPECT_EQ(system.time.waited(), 9001);
}

TEST_F(Waits, Listing_ConnectNoticeInside_EndsItAsSuccess) {
  answersListings = false;
  system.time.post(100, [this] { notifyConnected(1, phone->object()); });
  EXPECT_TRUE(list());
  EXPECT_EQ(trace(), with(listingBegun,
                          {"m_bPhoneConnected = 1", "New phone connected!", "Old phone still connected, use this"}));
}

TEST_F(Waits, Listing_DisconnectNoticeInside_TimesOut) {
  answersListings = false;
  system.time.post(100, [this] { notifyConnected(0, Object()); });
  EXPECT_FALSE(list());
  EXPECT_EQ(trace(), with(listingBegun, {"m_bPhoneConnected = 0", "Phone disconnected!",
                                         "Error:6, Operation Timed Out, ListMessage"}));
}

TEST_F(Waits, Listing_QuitMessage_EndsItFalseAndStaysPosted) {
  answersListings = false;
  system.time.post(100, [this] { system.time.postQuit(); });
  EXPECT_FALSE(list());
  EXPECT_EQ(trace(), listingBegun);
  EXPECT_EQ(system.time.waits(), 1);
  EXPECT_EQ(system.time.waited(), 100);
  EXPECT_FALSE(system.time.wait(0)) << "the mail client's own loop finds it too";
}

TEST_F(Waits, ReceiveAll_QuitMessage_EndsItFalse) {
  answersListings = false;
  system.time.post(100, [this] { system.time.postQuit(); });
  EXPECT_FALSE(handler().ReceiveAll());
  EXPECT_EQ(trace().back(), "Error:3, Error during ListMessage, Store:1, ReceiveAll");
  EXPECT_EQ(system.time.waits(), 1);
}

TEST_F(Waits, Listing_NearTheSignedLimit_OverflowsIntoItsHandler) {
  answersListings = false;
  system.time.setTicks(std::numeric_limits<std::int32_t>::max() - 4999);
  EXPECT_FALSE(list());
  EXPECT_EQ(trace(), with(listingBegun, {"Error:6, Overflow, mrktxtmsg"}));
  EXPECT_EQ(system.time.waits(), 0);
  EXPECT_EQ(probe().state(), STATE_LIST);
}

// The end just fits, and then the ticks go round: it lies ahead of them for weeks. An answer still ends the wait, which
// sleeps meanwhile.
TEST_F(Waits, Listing_TicksGoRoundInside_WaitsForTheAnswerAndSleeps) {
  answersListings = false;
  system.time.setTicks(std::numeric_limits<std::int32_t>::max() - 5000);
  system.time.post(60000, [this] { answer(17, 0); });
  EXPECT_TRUE(list());
  EXPECT_EQ(system.time.waited(), 60000);
  EXPECT_LE(system.time.waits(), 13);
}

TEST_F(Waits, Listing_WithNegativeTicks_TimesOutAsEver) {
  answersListings = false;
  system.time.setTicks(std::numeric_limits<std::int32_t>::min());
  EXPECT_FALSE(list());
  EXPECT_EQ(system.time.waited(), 5001);
}

TEST_F(Waits, Listing_SendAllInside_IsRefused) {
  answersListings = false;
  bool sent = true;
  system.time.post(10, [&] { sent = handler().SendAll(); });
  system.time.post(20, [this] { answer(17, 0); });
  EXPECT_TRUE(list());
  EXPECT_FALSE(sent);
  EXPECT_EQ(trace().at(3), "SendAll - Not Idle");
}

// ---- deleting -------------------------------------------------------------------------------------------------------

TEST_F(Waits, Deletion_WithoutAnswer_GoesOnForHoursAndSleeps) {
  answersDeletions = false;
  system.time.post(3'600'000, [this] { answer(17, 0); });
  std::int32_t store = 2;
  EXPECT_TRUE(handler().DeleteSMSFromPhone(store, 1));
  EXPECT_EQ(system.time.waited(), 3'600'000);
  EXPECT_LE(system.time.waits(), 61);
}

TEST_F(Waits, Deletion_QuitMessage_EndsItFalseAndStaysPosted) {
  answersDeletions = false;
  probe().deleteStatus() = 0;  // of an earlier deletion
  system.time.post(100, [this] { system.time.postQuit(); });
  std::int32_t store = 2;
  EXPECT_FALSE(handler().DeleteSMSFromPhone(store, 1));
  EXPECT_EQ(trace().back(), "DeleteSMSFromPhone = False");
  EXPECT_EQ(system.time.waits(), 1);
  EXPECT_FALSE(system.time.wait(0));
}

// The phone server is gone: no answer will ever come. The wait keeps serving the mail client, which can end.
TEST_F(Waits, Deletion_ServerDiesInside_ServesOtherWorkUntilTheQuit) {
  answersDeletions = false;
  int served = 0;
  sms->method(u"IsStorageSupported", [](Args) -> Variant { return true; });
  system.time.post(10, [this] {
    for (const char16_t* member : {u"IsStorageSupported", u"DeleteMessage", u"ListMessages", u"CreateShortMessage"})
      sms->fails(member, RuntimeError(-2147023174, u"SMS", u"The RPC server is unavailable."));
    phone->fails(u"IsConnected", -2147023174);
  });
  system.time.post(120'000, [&] { ++served; });
  system.time.post(240'000, [&] {
    ++served;
    system.time.postQuit();
  });
  std::int32_t store = 2;
  EXPECT_FALSE(handler().DeleteSMSFromPhone(store, 1));
  EXPECT_EQ(served, 2);
  EXPECT_LE(system.time.waits(), 7);
}

TEST_F(Waits, Deletion_ConnectNoticeInside_EndsIt) {
  answersDeletions = false;
  probe().deleteStatus() = 5;
  system.time.post(100, [this] { notifyConnected(1, phone->object()); });
  std::int32_t store = 2;
  EXPECT_FALSE(handler().DeleteSMSFromPhone(store, 1)) << "the last status is an earlier one's";
}

TEST_F(Waits, Deletion_ErrorOfThePhone_GoesToTheCallerWithTheStateSet) {
  sms->fails(u"DeleteMessage", RuntimeError(-2147023174, u"SMS", u"The RPC server is unavailable."));
  std::int32_t store = 2;
  EXPECT_EQ(errorNumberOf([&] { handler().DeleteSMSFromPhone(store, 1); }), -2147023174);
  EXPECT_EQ(probe().state(), STATE_DELETE);
  EXPECT_EQ(system.time.waits(), 0);
}

}  // namespace
}  // namespace sms_tests
