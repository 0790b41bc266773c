// ReceiveAll and ListMessage: what is asked of the phone, how long is waited, and what a run leaves behind.
#include "support/seam_recorder.h"
#include "unit/sms/receiving_fixture.h"

namespace sms_tests {
namespace {

using testing_support::Recorder;

class ListMessage : public ReceivingFixture {};
class ReceiveAll : public ReceivingFixture {};

const Lines timedOut{"Error:6, Operation Timed Out, ListMessage"};

// ListMessage
// ----------------------------------------------------------------------------------------------------------

TEST_F(ListMessage, EmptyMemory_EndsWithTrue) {
  EXPECT_TRUE(probe().ListMessage(phoneMemory, 0));
  EXPECT_EQ(trace(), listed(17));
  EXPECT_EQ(probe().state(), IDLE);
}

TEST_F(ListMessage, AsksTheWorkerAndThenTheSmsObject) {
  const Recorder recorder;
  probe().ListMessage(sim, 4);
  EXPECT_EQ(recorder.lines(), (Lines{"Worker.IsConnected", "SMS.ListMessages(2, 4)", "GuardTimer.Enabled = False"}));
}

TEST_F(ListMessage, StateIsSetBeforeThePhoneIsAsked) {
  std::int32_t state = -1;
  sms->method(u"ListMessages", [&](Args) -> Variant {
    state = probe().state();
    system.time.post([&] { answer(99, 0); });
    return 99;
  });
  EXPECT_TRUE(probe().ListMessage(phoneMemory, 0));
  EXPECT_EQ(state, STATE_LIST);
}

TEST_F(ListMessage, WhileBusy_RefusesAndLeavesTheState) {
  for (const std::int32_t state : {STATE_LIST, STATE_SEND, STATE_DELETE}) {
    clear();
    probe().state() = state;
    EXPECT_FALSE(probe().ListMessage(phoneMemory, 0));
    EXPECT_EQ(trace(), Lines{"Error:5, Not in a IDLE state, ListMessage"});
    EXPECT_EQ(system.windows.traceLines()[0].level, 2);
    EXPECT_EQ(probe().state(), state);
    EXPECT_EQ(sms->calls(), Lines{});
  }
}

TEST_F(ListMessage, WithoutAWorkerAPhoneOrAnSmsObject_IsFalseAndSaysNothing) {
  worker->value(u"IsConnected", false);
  EXPECT_FALSE(probe().ListMessage(phoneMemory, 0));
  EXPECT_EQ(sms->calls(), Lines{});

  worker->value(u"IsConnected", true);
  probe().sms() = nullptr;
  EXPECT_FALSE(probe().ListMessage(phoneMemory, 0));

  probe().capi() = nullptr;
  EXPECT_FALSE(probe().ListMessage(phoneMemory, 0));
  EXPECT_EQ(trace(), Lines{});
  EXPECT_EQ(probe().state(), IDLE);
}

TEST_F(ListMessage, NoAnswer_TimesOutAfterMoreThan5000MillisecondsAndLeavesTheState) {
  answersListings = false;
  const auto before = system.time.elapsed();
  EXPECT_FALSE(probe().ListMessage(phoneMemory, 0));
  EXPECT_EQ(trace(), joined({listingBegins(), timedOut}));
  EXPECT_EQ(system.time.elapsed() - before, 5001);
  EXPECT_LE(system.time.waits(), 2);  // it sleeps, it does not poll
  EXPECT_EQ(probe().state(), STATE_LIST);
}

// The time runs from before the request: a phone that takes long to accept it has less left to answer.
TEST_F(ListMessage, TimeSpentInTheRequest_Counts) {
  sms->method(u"ListMessages", [&](Args) -> Variant {
    system.time.advance(3000);
    return 17;
  });
  EXPECT_FALSE(probe().ListMessage(phoneMemory, 0));
  EXPECT_EQ(trace(), joined({listingBegins(), timedOut}));
  EXPECT_EQ(system.time.elapsed(), 5001);
}

TEST_F(ListMessage, RequestThatTakesTheWholeTime_TimesOutWithoutAWait) {
  sms->method(u"ListMessages", [&](Args) -> Variant {
    system.time.advance(5001);
    return 17;
  });
  EXPECT_FALSE(probe().ListMessage(phoneMemory, 0));
  EXPECT_EQ(trace(), joined({listingBegins(), timedOut}));
  EXPECT_EQ(system.time.waits(), 0);
}

TEST_F(ListMessage, AnswerAtTheLastMoment_IsInTime) {
  answersListings = false;
  system.time.post(5000, [&] { answer(17, 0); });
  EXPECT_TRUE(probe().ListMessage(phoneMemory, 0));
  EXPECT_EQ(trace(), listed(17));
}

// The gap between two answers counts, not the whole listing.
TEST_F(ListMessage, EachAnswerWithMoreToCome_StartsTheTimeOutAgain) {
  answersListings = false;
  const auto skipped = newShortMessage({.status = sms_objectlib::storedSent});
  for (const std::int32_t at : {4000, 8000, 12000})
    system.time.post(at, [&] { answer(17, moreData, skipped->object()); });
  system.time.post(16000, [&] { answer(17, 0); });
  EXPECT_TRUE(probe().ListMessage(phoneMemory, 0));
  EXPECT_EQ(system.time.elapsed(), 16000);
}

TEST_F(ListMessage, AfterAnAnswerWithMoreToCome_SilenceTimesOutToo) {
  answersListings = false;
  const auto skipped = newShortMessage({.status = sms_objectlib::storedSent});
  system.time.post(4000, [&] { answer(17, moreData, skipped->object()); });
  EXPECT_FALSE(probe().ListMessage(phoneMemory, 0));
  EXPECT_EQ(system.time.elapsed(), 9001);
}

// Creating and moving an item may take long; the phone is not blamed for it.
TEST_F(ListMessage, TimeSpentOnCreatingAnItem_DoesNotCount) {
  answersListings = false;
  helper->method(u"CreateMessage", [&](Args) -> Variant {
    system.time.advance(20000);
    return u"";
  });
  const auto message = newShortMessage({});
  system.time.post(4000, [&] { answer(17, moreData, message->object()); });
  system.time.post(28000, [&] { answer(17, 0); });
  EXPECT_TRUE(probe().ListMessage(phoneMemory, 0));
  EXPECT_EQ(system.time.elapsed(), 28000);
}

TEST_F(ListMessage, LastAnswerCarriesAMessage_EndsTheListing) {
  answersListings = false;
  const auto skipped = newShortMessage({.status = sms_objectlib::storedUnsent});
  system.time.post(10, [&] { answer(17, 0, skipped->object()); });
  EXPECT_TRUE(probe().ListMessage(phoneMemory, 0));
  EXPECT_EQ(
      trace(),
      joined({listingBegins(), answered(17, 0, STATE_LIST), {"STATE_LIST - Got one message, tranid: 17 status: 0"}}));
}

TEST_F(ListMessage, PhoneThatRefuses_IsLoggedAndLeavesTheStateSet) {
  sms->fails(u"ListMessages", 70);
  EXPECT_FALSE(probe().ListMessage(phoneMemory, 0));
  EXPECT_EQ(trace(), (Lines{"List Message - InitTimeOut 5000ms", "Error:70, Permission denied, mrktxtmsg"}));
  EXPECT_EQ(probe().state(), STATE_LIST);
}

TEST_F(ListMessage, WorkerThatFails_IsLoggedAndStartsNothing) {
  worker->fails(u"IsConnected", 462);
  EXPECT_FALSE(probe().ListMessage(phoneMemory, 0));
  EXPECT_EQ(trace(), Lines{"Error:462, The remote server machine does not exist or is unavailable, mrktxtmsg"});
  EXPECT_EQ(probe().state(), IDLE);
}

TEST_F(ListMessage, NearTheEndOfTheTicks_TheTimeOutOverflows) {
  answersListings = false;
  system.time.setTicks(2147483647 - 4999);
  EXPECT_FALSE(probe().ListMessage(phoneMemory, 0));
  EXPECT_EQ(trace(), joined({listingBegins(), {"Error:6, Overflow, mrktxtmsg"}}));
}

TEST_F(ListMessage, JustBeforeTheEndOfTheTicks_Works) {
  answersListings = false;
  system.time.setTicks(2147483647 - 5000);
  system.time.post(5000, [&] { answer(17, 0); });
  EXPECT_TRUE(probe().ListMessage(phoneMemory, 0));
}

TEST_F(ListMessage, ConnectNoticeMeanwhile_EndsTheWaitAsSuccess) {
  answersListings = false;
  system.time.post(100, [&] { notifyConnected(1, phone->object()); });
  EXPECT_TRUE(probe().ListMessage(phoneMemory, 0));
  EXPECT_EQ(system.time.elapsed(), 100);
  EXPECT_EQ(trace(),
            joined({listingBegins(),
                    {"m_bPhoneConnected = 1", "New phone connected!", "Old phone still connected, use this"}}));
}

TEST_F(ListMessage, DisconnectNoticeMeanwhile_LetsItTimeOut) {
  answersListings = false;
  system.time.post(100, [&] { notifyConnected(0, phone->object()); });
  EXPECT_FALSE(probe().ListMessage(phoneMemory, 0));
  EXPECT_EQ(trace(), joined({listingBegins(), {"m_bPhoneConnected = 0", "Phone disconnected!"}, timedOut}));
  EXPECT_EQ(probe().state(), STATE_LIST);
}

TEST_F(ListMessage, QuitMessageMeanwhile_EndsTheWaitWithFalse) {
  answersListings = false;
  system.time.post(100, [&] { system.time.postQuit(); });
  EXPECT_FALSE(probe().ListMessage(phoneMemory, 0));
  EXPECT_EQ(system.time.elapsed(), 100);
  EXPECT_EQ(trace(), listingBegins());
}

TEST_F(ListMessage, EngineLetGoMeanwhile_EndsTheWaitWithFalse) {
  answersListings = false;
  bool fieldsEmpty = false;
  const Hold<clsSMSHandler> memory(&handler());
  system.time.post(100, [&] {
    letGo();
    fieldsEmpty = !memory->Outbox() && !memory->OutlookApplication() && !memory->IsPhoneConnected();
  });
  EXPECT_FALSE(probe().ListMessage(phoneMemory, 0));
  EXPECT_TRUE(fieldsEmpty);  // at once, not when the stack has unwound
  EXPECT_EQ(system.time.elapsed(), 100);
  EXPECT_EQ(trace(), listingBegins());
}

// ReceiveAll
// -----------------------------------------------------------------------------------------------------------

TEST_F(ReceiveAll, FirstRunOnAnEmptyPhone_ListsEverythingOnce) {
  EXPECT_TRUE(handler().ReceiveAll());
  EXPECT_EQ(trace(), run(true, listed(17), listed(18)));
  EXPECT_EQ(sms->calls(), (Lines{"ListMessages(1, 4)", "ListMessages(2, 4)"}));
  EXPECT_FALSE(probe().receiveAllFlag());
  EXPECT_FALSE(probe().smsToDelete());
  EXPECT_EQ(inbox.entryIds(), Lines{});
}

TEST_F(ReceiveAll, LaterRun_ListsUnreadMessagesOnly) {
  handler().ReceiveAll();
  clear();
  EXPECT_TRUE(handler().ReceiveAll());
  EXPECT_EQ(trace(), run(false, listed(19), listed(20)));
  EXPECT_EQ(sms->calls(), (Lines{"ListMessages(1, 0)", "ListMessages(2, 0)"}));
}

TEST_F(ReceiveAll, AfterANewPhone_ListsEverythingAgain) {
  handler().ReceiveAll();
  notifyConnected(1, phone->object());
  clear();
  EXPECT_TRUE(handler().ReceiveAll());
  EXPECT_EQ(sms->calls(), (Lines{"ListMessages(1, 4)", "ListMessages(2, 4)"}));
  EXPECT_FALSE(probe().receiveAllFlag());
}

TEST_F(ReceiveAll, Full_ForgetsTheCachesFirst) {
  probe().GetFolderCollection(FOLDER_INBOX);
  probe().GetFolderCollection(FOLDER_DELETEDITEMS);
  handler().ReceiveAll();
  EXPECT_FALSE(probe().colInbox());
  EXPECT_FALSE(probe().colDeletedItems());
}

TEST_F(ReceiveAll, UnreadOnly_KeepsTheCaches) {
  probe().receiveAllFlag() = false;
  const auto first = probe().GetFolderCollection(FOLDER_INBOX);
  const auto second = probe().GetFolderCollection(FOLDER_DELETEDITEMS);
  handler().ReceiveAll();
  EXPECT_EQ(probe().colInbox(), first);
  EXPECT_EQ(probe().colDeletedItems(), second);
}

TEST_F(ReceiveAll, WhileBusy_RefusesButHasReplacedTheCollection) {
  for (const std::int32_t state : {STATE_LIST, STATE_SEND, STATE_DELETE}) {
    clear();
    probe().state() = state;
    probe().smsToDelete() = make<SMSHandlerProbe::MessageCollection>();
    probe().smsToDelete()->Add(shortMessage({}));
    EXPECT_FALSE(handler().ReceiveAll());
    EXPECT_EQ(trace(), (Lines{"Inside Function ReceiveAll", "Create m_smsToDelete collection",
                              "Error:-1, Not idle!, ReceiveAll"}));
    ASSERT_TRUE(probe().smsToDelete());
    EXPECT_EQ(probe().smsToDelete()->Count(), 0);
    EXPECT_EQ(probe().state(), state);
    EXPECT_TRUE(probe().receiveAllFlag());
    EXPECT_EQ(application->calls(), Lines{});  // the Assistant is not asked
  }
}

TEST_F(ReceiveAll, PhoneMemoryTimesOut_SkipsTheSimAndTheDeletions) {
  answersListings = false;
  EXPECT_FALSE(handler().ReceiveAll());
  EXPECT_EQ(trace(), joined({runBegins(true),
                             listingBegins(),
                             timedOut,
                             phoneMemoryListed(false),
                             {"Error:3, Error during ListMessage, Store:1, ReceiveAll"}}));
  EXPECT_EQ(sms->calls(), Lines{"ListMessages(1, 4)"});
  EXPECT_TRUE(probe().receiveAllFlag());  // the next run lists everything
  ASSERT_TRUE(probe().smsToDelete());     // stays until the next run replaces it
}

TEST_F(ReceiveAll, SimTimesOut_SkipsTheDeletionsAndKeepsWhatIsCollected) {
  autoRemove();
  store({.store = phoneMemory});
  sms->method(u"ListMessages", [this](Args args) -> Variant {
    if (CLng(args[0]) == sim) return 18;
    const auto message = stored[phoneMemory][0];
    system.time.post([this, message] { answer(17, moreData, message->object()); });
    system.time.post([this] { answer(17, 0); });
    return 17;
  });
  EXPECT_FALSE(handler().ReceiveAll());
  const Lines all = trace();
  EXPECT_EQ(Lines(all.end() - 6, all.end()), joined({phoneMemoryListed(true),
                                                     listingBegins(),
                                                     timedOut,
                                                     simListed(false),
                                                     {"Error:3, Error during ListMessage, Store:2, ReceiveAll"}}));
  EXPECT_TRUE(probe().receiveAllFlag());
  ASSERT_TRUE(probe().smsToDelete());
  EXPECT_EQ(probe().smsToDelete()->Count(), 1);
  EXPECT_EQ(stored[phoneMemory].size(), 1u);
}

TEST_F(ReceiveAll, AfterATimeOut_RefusesUntilALateAnswerComes) {
  answersListings = false;
  handler().ReceiveAll();
  clear();
  EXPECT_FALSE(handler().ReceiveAll());
  EXPECT_EQ(trace().back(), "Error:-1, Not idle!, ReceiveAll");
  answer(17, 0);
  answersListings = true;
  clear();
  EXPECT_TRUE(handler().ReceiveAll());
  EXPECT_EQ(trace(), run(true, listed(18), listed(19)));
}

TEST_F(ReceiveAll, WithoutAPhone_Fails) {
  worker->value(u"IsConnected", false);
  EXPECT_FALSE(handler().ReceiveAll());
  EXPECT_EQ(
      trace(),
      joined({runBegins(true), phoneMemoryListed(false), {"Error:3, Error during ListMessage, Store:1, ReceiveAll"}}));
}

TEST_F(ReceiveAll, FlagSetDuringAFullRun_IsClearedAtItsEnd) {
  system.time.post([&] { notifyConnected(1, phone->object()); });  // inside the first wait
  EXPECT_TRUE(handler().ReceiveAll());
  EXPECT_FALSE(probe().receiveAllFlag());
}

TEST_F(ReceiveAll, FlagSetDuringAnUnreadRun_StaysForTheNext) {
  probe().receiveAllFlag() = false;
  system.time.post([&] { probe().receiveAllFlag() = true; });
  EXPECT_TRUE(handler().ReceiveAll());
  EXPECT_EQ(sms->calls(), (Lines{"ListMessages(1, 0)", "ListMessages(2, 0)"}));
  EXPECT_TRUE(probe().receiveAllFlag());
}

// The Assistant
// --------------------------------------------------------------------------------------------------------

// It is set back behind the listings; the deletions go without it.
TEST_F(ReceiveAll, WithTheAssistantOn_AnimatesItAroundTheListings) {
  autoRemove();
  store({.index = 3});
  assistant->value(u"On", true);
  const Recorder recorder;
  EXPECT_TRUE(handler().ReceiveAll());
  Lines order;
  for (const std::string& line : recorder.lines())
    if (line.starts_with("SMS.") || (line.starts_with("Assistant.") && line.find(" = ") != std::string::npos))
      order.push_back(line);
  EXPECT_EQ(order, (Lines{"Assistant.On = True", "Assistant.Visible = True", "Assistant.MoveWhenInTheWay = True",
                          "Assistant.Animation = 23", "SMS.ListMessages(1, 4)", "SMS.ListMessages(2, 4)",
                          "Assistant.Animation = 1", "Assistant.Visible = False", "Assistant.On = True",
                          "SMS.IsStorageSupported(2)", "SMS.IsStorageSupported(2)", "SMS.DeleteMessage(2, 3)"}));
}

TEST_F(ReceiveAll, FailedListingWithTheAssistantOn_DoesNotSetItBack) {
  assistant->value(u"On", true);
  answersListings = false;
  EXPECT_FALSE(handler().ReceiveAll());
  EXPECT_EQ(trace().back(), "Error:3, Error during ListMessage, Store:1, ReceiveAll");
  EXPECT_EQ(assistant->calls(),
            (Lines{"On", "On", "Visible", "On = True", "Visible = True", "MoveWhenInTheWay = True", "Animation = 23"}));
}

TEST_F(ReceiveAll, WithTheAssistantOff_IsAskedTwiceAndLeftAlone) {
  handler().ReceiveAll();
  EXPECT_EQ(assistant->calls(), (Lines{"On", "On"}));
}

TEST_F(ReceiveAll, WithoutAnAssistant_RunsTheSame) {
  application->fails(u"Assistant", 438);
  EXPECT_TRUE(handler().ReceiveAll());
  EXPECT_EQ(trace(), run(true, listed(17), listed(18)));
}

// Tear-down inside a run
// -----------------------------------------------------------------------------------------------

TEST_F(ReceiveAll, EngineLetGoWhileListing_EndsFalseAndLeavesNothing) {
  answersListings = false;
  system.time.post(100, [&] { letGo(); });
  clsSMSHandler& engine = handler();
  const Hold<clsSMSHandler> memory(&engine);
  EXPECT_FALSE(engine.ReceiveAll());
  EXPECT_EQ(system.time.elapsed(), 100);
  EXPECT_EQ(trace(), joined({runBegins(true),
                             listingBegins(),
                             phoneMemoryListed(false),
                             {"Error:3, Error during ListMessage, Store:1, ReceiveAll"}}));
}

TEST_F(ReceiveAll, QuitWhileListing_EndsFalseAtOnce) {
  answersListings = false;
  system.time.post(100, [&] { system.time.postQuit(); });
  EXPECT_FALSE(handler().ReceiveAll());
  EXPECT_EQ(system.time.elapsed(), 100);
  EXPECT_EQ(sms->calls(), Lines{"ListMessages(1, 4)"});
}

}  // namespace
}  // namespace sms_tests
