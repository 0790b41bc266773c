// How the engine starts: InitCAPIObjects.
#include "unit/sms/engine_fixture.h"

namespace sms_tests {
namespace {

using testing_support::fake;
using testing_support::FaultInjector;
using testing_support::Recorder;

const Lines upToCapi{"Inside Function InitCAPIObjects", "Create timer",
                     "Create timeout object",           "Create transaction collection",
                     "Create MAPI helper object",       "Create CAPI objects"};
const Lines phoneFound{"If phone connected - Get reference to CellPhone object",
                       "If phone connected - Get reference to SMS object",
                       "If phone connected - Notify add in that cell phone is connected"};

Lines operator+(Lines a, const Lines& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

class InitCAPIObjects : public EngineFixture {
 protected:
  void expectNoPhone() {
    EXPECT_EQ(owner->notices, std::vector<bool>{});
    EXPECT_FALSE(handler().IsPhoneConnected());
    EXPECT_EQ(probe().phoneConnected(), 0);
    EXPECT_FALSE(probe().cellPhone());
  }
};

TEST_F(InitCAPIObjects, WithConnectedPhone_TracesEveryStepAndTellsTheOwner) {
  EXPECT_TRUE(handler().InitCAPIObjects());
  EXPECT_EQ(trace(), upToCapi + phoneFound);
  EXPECT_EQ(owner->notices, std::vector<bool>{true});
  EXPECT_TRUE(handler().IsPhoneConnected());
  EXPECT_EQ(probe().phoneConnected(), 1);
  EXPECT_EQ(Object(probe().cellPhone()), phone->object());
  EXPECT_EQ(Object(probe().sms().get()), sms->object());
}

TEST_F(InitCAPIObjects, EveryLine_IsAnOrdinaryOne) {
  handler().InitCAPIObjects();
  for (const auto& line : system.windows.traceLines()) EXPECT_EQ(line.level, 2) << line.text;
}

TEST_F(InitCAPIObjects, SetsTheStartValues) {
  probe().state() = STATE_SEND;
  handler().InitCAPIObjects();
  EXPECT_TRUE(probe().receiveAllFlag());
  EXPECT_EQ(probe().usedSimMemory(), -1);
  EXPECT_EQ(probe().maxSimCapacity(), -1);
  EXPECT_EQ(probe().state(), IDLE);
  EXPECT_TRUE(probe().timeOut());
  ASSERT_TRUE(probe().transactions());
  EXPECT_EQ(probe().transactions()->Count(), 0);
  EXPECT_EQ(Object(probe().mapiHelper()), helper->object());
}

TEST_F(InitCAPIObjects, CreatesObjectsInOrder) {
  handler().InitCAPIObjects();
  EXPECT_EQ(system.objects.asked,
            (std::vector<String>{u"timermm.Timer", u"timermm.Timer", u"Mrktxtmsghelper.TxtMsg", u"DVMWorker.Worker"}));
  ASSERT_EQ(timers.size(), 2u);
  EXPECT_EQ(Object(probe().timer().get()), timers[0]->object());
  EXPECT_EQ(Object(probe().guardTimer().get()), timers[1]->object());
}

// Each line comes before what it announces.
TEST_F(InitCAPIObjects, LinesAndCreations_Alternate) {
  attached.clear();
  handler().InitCAPIObjects();
  Lines order;
  for (const auto& line : system.journal.lines()) {
    if (line.starts_with("send ")) order.emplace_back("line");
    if (line.starts_with("create object ")) order.push_back(line.substr(14));
  }
  EXPECT_EQ(order, (Lines{"line", "line", "timermm.Timer", "timermm.Timer", "line", "line", "line",
                          "Mrktxtmsghelper.TxtMsg", "line", "DVMWorker.Worker"}));
}

TEST_F(InitCAPIObjects, SecondTimerFails_StateIsNotSetYet) {
  probe().state() = STATE_SEND;
  system.objects.provide(timermm::progIdTimer, [this] {
    if (!timers.empty()) raiseError(429);
    return timers.emplace_back(fake("SendTimer"))->object();
  });
  EXPECT_FALSE(handler().InitCAPIObjects());
  EXPECT_EQ(trace(), (Lines{"Inside Function InitCAPIObjects", "Create timer",
                            "Error:429, ActiveX component can't create object, mrktxtmsg"}));
  EXPECT_EQ(probe().state(), STATE_SEND);
  ASSERT_EQ(timers.size(), 1u);
  EXPECT_EQ(Object(probe().timer().get()), timers[0]->object());
  EXPECT_FALSE(probe().guardTimer());
}

TEST_F(InitCAPIObjects, OwnerIsToldAfterThePhoneIsThere) {
  bool connected = false;
  bool hasPhone = false;
  owner->whenNoticed = [&](bool) {
    connected = handler().IsPhoneConnected();
    hasPhone = bool(probe().cellPhone());
  };
  handler().InitCAPIObjects();
  EXPECT_EQ(owner->notices, std::vector<bool>{true});
  EXPECT_TRUE(connected);
  EXPECT_TRUE(hasPhone);
}

TEST(InitCAPIObjectsFaults, EachCall_IsLoggedOnceAndEndsItFalse) {
  const RuntimeError gone(-2147023174, u"Server", u"The RPC server is unavailable.");
  const auto calls = testing_support::failEachCall(gone, [](FaultInjector& injector) {
    EngineWorld world;
    const bool result = world.handler().InitCAPIObjects();
    const bool failed = !injector.failed().empty();
    EXPECT_EQ(result, !failed);
    const Lines lines = world.trace();
    EXPECT_EQ(std::count_if(lines.begin(), lines.end(), [](const auto& l) { return l.starts_with("Error:"); }),
              failed ? 1 : 0);
    EXPECT_EQ(lines.back(), failed ? "Error:-2147023174, The RPC server is unavailable., Server" : phoneFound.back());
    EXPECT_EQ(world.owner->notices, failed ? std::vector<bool>{} : std::vector<bool>{true});
  });
  EXPECT_EQ(calls, 10 + 2);  // the end switches the two timers off
}

TEST_F(InitCAPIObjects, OnlySecondPhoneConnected_BindsTheSecondAskingForItAgain) {
  const auto off = newPhone("Off", false, newSmsObject("Other")->object());
  const auto third = newPhone("Third", true, Object());
  attached = {off, phone, third};
  Recorder recorder;
  EXPECT_TRUE(handler().InitCAPIObjects());
  EXPECT_EQ(recorder.lines(), (Lines{"connect SendTimer", "connect GuardTimer", "connect Worker", "Worker.CellPhones",
                                     "Phones.Count", "Phones.Item(0)", "Off.IsConnected", "Phones.Item(1)",
                                     "Phone.IsConnected", "Phones.Item(1)", "Phone.SMS", "connect SMS"}));
  EXPECT_EQ(Object(probe().cellPhone()), phone->object());
  EXPECT_EQ(Object(probe().sms().get()), sms->object());
}

TEST_F(InitCAPIObjects, NoWorker_IsNoError) {
  system.objects.withdraw(dvmworkerlib::progIdWorker);
  EXPECT_TRUE(handler().InitCAPIObjects());
  EXPECT_EQ(trace(), upToCapi);
  expectNoPhone();
}

TEST_F(InitCAPIObjects, WorkerComesBackUnset_IsNoError) {
  system.objects.provide(dvmworkerlib::progIdWorker, [] { return Object(); });
  EXPECT_TRUE(handler().InitCAPIObjects());
  EXPECT_EQ(trace(), upToCapi);
  expectNoPhone();
}

TEST_F(InitCAPIObjects, EmptyPhoneList_IsNoErrorAndNothingIsAskedOfIt) {
  attached.clear();
  EXPECT_TRUE(handler().InitCAPIObjects());
  EXPECT_EQ(trace(), upToCapi);
  EXPECT_EQ(phones->calls(), Lines{"Count"});
  expectNoPhone();
}

TEST_F(InitCAPIObjects, NegativeCount_CountsAsEmpty) {
  phones->value(u"Count", -1);
  EXPECT_TRUE(handler().InitCAPIObjects());
  EXPECT_EQ(trace(), upToCapi);
  expectNoPhone();
}

TEST_F(InitCAPIObjects, NoPhoneConnected_IsNoError) {
  phone->value(u"IsConnected", false);
  EXPECT_TRUE(handler().InitCAPIObjects());
  EXPECT_EQ(trace(), upToCapi);
  expectNoPhone();
}

TEST_F(InitCAPIObjects, PhoneWithoutSmsObject_TellsTheOwnerButIsNotConnected) {
  phone->value(u"SMS", Object());
  EXPECT_TRUE(handler().InitCAPIObjects());
  EXPECT_EQ(trace(), upToCapi + phoneFound);
  EXPECT_EQ(owner->notices, std::vector<bool>{true});
  EXPECT_FALSE(handler().IsPhoneConnected());
  EXPECT_EQ(probe().phoneConnected(), 1);
}

TEST_F(InitCAPIObjects, NoTimerServer_LogsAndSkipsTheRest) {
  system.objects.withdraw(timermm::progIdTimer);
  EXPECT_FALSE(handler().InitCAPIObjects());
  EXPECT_EQ(trace(), (Lines{"Inside Function InitCAPIObjects", "Create timer",
                            "Error:429, ActiveX component can't create object, mrktxtmsg"}));
  EXPECT_FALSE(probe().timeOut());
  EXPECT_FALSE(probe().transactions());
  EXPECT_FALSE(probe().mapiHelper());
  EXPECT_FALSE(probe().capi());
  EXPECT_TRUE(probe().receiveAllFlag()) << "set before";
  expectNoPhone();
}

TEST_F(InitCAPIObjects, NoHelper_LogsAndSkipsTheRest) {
  system.objects.withdraw(txtmsghelper::progIdTxtMsg);
  EXPECT_FALSE(handler().InitCAPIObjects());
  EXPECT_EQ(trace(), (Lines{"Inside Function InitCAPIObjects", "Create timer", "Create timeout object",
                            "Create transaction collection", "Create MAPI helper object",
                            "Error:429, ActiveX component can't create object, mrktxtmsg"}));
  EXPECT_TRUE(probe().transactions());
  EXPECT_FALSE(probe().capi());
  expectNoPhone();
}

TEST_F(InitCAPIObjects, FailingPhoneList_GoesToTheHandler) {
  worker->fails(u"CellPhones", RuntimeError(-2147417848, u"Worker", u"The object has left"));
  EXPECT_FALSE(handler().InitCAPIObjects());
  EXPECT_EQ(trace(), upToCapi + Lines{"Error:-2147417848, The object has left, Worker"});
  expectNoPhone();
}

TEST_F(InitCAPIObjects, FailingSmsObject_GoesToTheHandlerAndTellsNobody) {
  phone->fails(u"SMS", 438);
  EXPECT_FALSE(handler().InitCAPIObjects());
  EXPECT_EQ(trace(), (upToCapi + Lines{phoneFound[0], phoneFound[1],
                                       "Error:438, Object doesn't support this property or method, mrktxtmsg"}));
  EXPECT_EQ(owner->notices, std::vector<bool>{});
  EXPECT_EQ(probe().phoneConnected(), 1);
  EXPECT_FALSE(handler().IsPhoneConnected());
}

// The event is a call between two classes of one program: a failing listener is the raiser's error.
TEST_F(InitCAPIObjects, OwnerFails_IsTheRaisersError) {
  owner->whenNoticed = [](bool) { raiseError(91); };
  EXPECT_FALSE(handler().InitCAPIObjects());
  EXPECT_EQ(trace(),
            upToCapi + phoneFound + Lines{"Error:91, Object variable or With block variable not set, mrktxtmsg"});
  EXPECT_TRUE(handler().IsPhoneConnected());
}

TEST_F(InitCAPIObjects, SecondTime_ForgetsPhoneAndTransactions) {
  handler().InitCAPIObjects();
  probe().AddTransaction(17, u"ID-1", enTransactionType::Send);
  attached.clear();
  handler().InitCAPIObjects();
  EXPECT_FALSE(handler().IsPhoneConnected());
  EXPECT_FALSE(probe().cellPhone());
  EXPECT_EQ(probe().transactions()->Count(), 0);
  EXPECT_EQ(sms->listeners(), 0u);
  EXPECT_EQ(worker->listeners(), 1u);
  ASSERT_EQ(timers.size(), 4u);
  EXPECT_EQ(timers[0]->listeners() + timers[1]->listeners(), 0u);
  EXPECT_EQ(timers[2]->listeners() + timers[3]->listeners(), 2u);
}

}  // namespace
}  // namespace sms_tests
