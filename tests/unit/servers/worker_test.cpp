#include "servers/dvmworker/worker.h"

#include <gtest/gtest.h>

#include "servers/dvmworker/handset_control.h"
#include "servers/sms_object/sms_object.h"
#include "support/errors.h"
#include "support/native_time.h"
#include "unit/servers/recording.h"

namespace {

using namespace platform;
using namespace servers::dvmworker;
using handset::SimulatedPhone;
using servers::sms_object::SmsObject;
using servers_testing::AnswerRecorder;
using servers_testing::NoticeRecorder;
using testing_support::errorNumberOf;

// Two phones, of which the second is plugged in.
class WorkerTest : public testing::Test {
 protected:
  WorkerTest() {
    first->unplug();
    time.runDue();
    notices->notices.clear();
  }
  ~WorkerTest() override {
    notices = nullptr;
    control = {};
    worker = {};
    phones = nullptr;
    first = second = nullptr;
    EXPECT_EQ(Counted::census, census);
    EXPECT_EQ(time.pendingWork(), 0u);
  }

  Ref<CellPhone> cellPhone(const Ref<SimulatedPhone>& phone) {
    const auto sms = make<SmsObject>(time, ids);
    sms->attach(phone);
    return make<CellPhone>(phone, sms->object());
  }

  const std::int32_t census = Counted::census;
  testing_support::Journal journal;
  testing_support::NativeTime time{journal};
  servers::sms_object::TransactionIds ids{{[] { return 0; }, [](std::int32_t) {}}};
  Ref<SimulatedPhone> first = make<SimulatedPhone>(time, u"First");
  Ref<SimulatedPhone> second = make<SimulatedPhone>(time, u"Second");
  Ref<CellPhones> phones = make<CellPhones>(std::vector{cellPhone(first), cellPhone(second)});
  dvmworkerlib::Worker worker = as<dvmworkerlib::Worker>(make<Worker>(time, phones).get()->object());
  Ref<NoticeRecorder> notices = make<NoticeRecorder>(worker);
  LateBound control{make<HandsetControl>(second, 4711).get()->object()};
};

TEST_F(WorkerTest, Phones_AreCountedFromZero) {
  const auto list = worker.CellPhones();
  EXPECT_EQ(list.Count(), 2);
  EXPECT_EQ(list.Item(0).Name(), u"First");
  EXPECT_FALSE(list.Item(0).IsConnected());
  EXPECT_EQ(list.Item(1).Name(), u"Second");
  EXPECT_TRUE(list.Item(1).IsConnected());
  EXPECT_EQ(errorNumberOf([&] { list.Item(2); }), 9);
  EXPECT_EQ(errorNumberOf([&] { list.Item(-1); }), 9);
}

TEST_F(WorkerTest, Objects_AreTheSameEachTime) {
  EXPECT_EQ(worker.CellPhones(), worker.CellPhones());
  EXPECT_EQ(worker.CellPhones().Item(1), worker.CellPhones().Item(1));
  EXPECT_EQ(worker.CellPhones().Item(1).SMS(), worker.CellPhones().Item(1).SMS());
  EXPECT_FALSE(worker.CellPhones().Item(0).SMS() == worker.CellPhones().Item(1).SMS());
}

TEST_F(WorkerTest, IsConnected_WhileAnyPhoneIs) {
  EXPECT_TRUE(worker.IsConnected());
  first->plug();
  second->unplug();
  EXPECT_TRUE(worker.IsConnected());
  first->unplug();
  EXPECT_FALSE(worker.IsConnected());
}

TEST_F(WorkerTest, PlugAndUnplug_AreNoticedLaterAndInOrder) {
  second->unplug();
  first->plug();
  second->plug();
  EXPECT_EQ(notices->notices.size(), 0u);
  time.runDue();
  const auto list = worker.CellPhones();
  EXPECT_EQ(notices->notices,
            (std::vector<NoticeRecorder::Notice>{{0, list.Item(1)}, {1, list.Item(0)}, {1, list.Item(1)}}));
}

TEST_F(WorkerTest, PhoneThatIsAddedLater_IsNoticedByTheWorkersThatAreThere) {
  const auto third = make<SimulatedPhone>(time, u"Third");
  third->unplug();
  phones->add(cellPhone(third));
  const auto list = worker.CellPhones();
  EXPECT_EQ(list.Count(), 3);
  EXPECT_EQ(list.Item(2).Name(), u"Third");
  third->plug();
  third->unplug();
  time.runDue();
  EXPECT_EQ(notices->notices, (std::vector<NoticeRecorder::Notice>{{1, list.Item(2)}, {0, list.Item(2)}}));
}

TEST_F(WorkerTest, PhoneThatIsAdded_IsNothingToAWorkerThatHasEnded) {
  auto ended = make<Worker>(time, phones);
  ended = nullptr;
  const auto third = make<SimulatedPhone>(time, u"Third");
  phones->add(cellPhone(third));
  third->unplug();
  time.runDue();
  EXPECT_EQ(notices->notices, (std::vector<NoticeRecorder::Notice>{{0, worker.CellPhones().Item(2)}}));
}

TEST_F(WorkerTest, Notice_ReachesAListenerThatIsStillBusyWithTheOneBefore) {
  first->plug();
  notices->inside = [&] {
    if (notices->notices.size() > 1) return;
    first->unplug();
    time.run(100);  // it waits for something, serving messages
    EXPECT_EQ(notices->notices.size(), 2u);
  };
  time.runDue();
  EXPECT_EQ(notices->notices.size(), 2u);
}

TEST_F(WorkerTest, ReleasedBeforeItsNotice_StaysSilent) {
  first->plug();
  worker = {};
  const auto kept = notices;
  notices = nullptr;
  EXPECT_EQ(time.pendingWork(), 1u);  // the listener's field still holds the worker
  time.runDue();
  EXPECT_EQ(kept->notices.size(), 1u);
}

TEST_F(WorkerTest, ReleasedInsideItsNotice_EndsQuietly) {
  first->plug();
  first->unplug();
  worker = {};
  int heard = 0;
  notices->inside = [&] {
    ++heard;
    notices = nullptr;
  };
  time.runDue();
  EXPECT_EQ(heard, 1);
}

TEST_F(WorkerTest, ListingThroughThePhoneList_Works) {
  control.call<void>(u"Deliver", u"+46701", u"Hello", u"010203040506");
  const auto sms = worker.CellPhones().Item(1).SMS();
  const auto answers = make<AnswerRecorder>(sms);
  const std::int32_t id = sms.ListMessages(2, 4);
  time.run(1000);
  EXPECT_EQ(answers->lines, (std::vector<std::string>{std::to_string(id) + " 0 Hello"}));
}

TEST_F(WorkerTest, Control_FillsAndEmptiesTheMemories) {
  EXPECT_EQ(control.call<std::int32_t>(u"Deliver", u"+46701", u"One\r\nline", u"010203040506"), 1);
  EXPECT_EQ(control.call<std::int32_t>(u"Put", 2, 3, u"+46702", u"Two", u"010203040507"), 2);
  EXPECT_EQ(control.call<std::int32_t>(u"StoredCount", 2), 2);
  EXPECT_EQ(control.call<String>(u"Stored", 2),
            u"2\t1\t0\t+46701\t010203040506\tOne\\u000D\\u000Aline\r\n"
            u"2\t2\t3\t+46702\t010203040507\tTwo\r\n");
  EXPECT_TRUE(control.call<bool>(u"Remove", 2, 1));
  EXPECT_FALSE(control.call<bool>(u"Remove", 2, 1));
  control.call<void>(u"SetCapacity", 2, 4);
  EXPECT_EQ(control.call<std::int32_t>(u"Fill", 2), 3);
  EXPECT_EQ(control.call<std::int32_t>(u"Put", 2, 3, u"+46702", u"Two", u"010203040507"), 0);
  control.call<void>(u"Clear", 2);
  EXPECT_EQ(control.call<String>(u"Stored", 2), u"");
  EXPECT_EQ(control.call<String>(u"Stored", 1), u"");
  control.call<void>(u"SetSupported", 1, false);
  control.call<void>(u"FailCapacity", true);
  const auto sms = worker.CellPhones().Item(1).SMS();
  EXPECT_FALSE(sms.IsStorageSupported(1));
  EXPECT_EQ(errorNumberOf([&] { sms.StorageCapacity(2); }), handset::noCapacity);
}

TEST_F(WorkerTest, Control_ScriptsAnswersAndTellsWhatWasSent) {
  const auto sms = worker.CellPhones().Item(1).SMS();
  const auto answers = make<AnswerRecorder>(sms);
  control.call<void>(u"AnswerNext", u"Send", 21);
  control.call<void>(u"AnswerNext", u"send", 0, 500);
  control.call<void>(u"SilenceNext", u"SEND");
  std::vector<std::int32_t> sends;
  for (const StringView text : {u"a", u"b", u"c"}) {
    const auto message = sms.CreateShortMessage();
    message.Destination(u"+4670");
    message.Text(text);
    sends.push_back(message.Send());
  }
  time.run(10000);
  EXPECT_EQ(answers->lines,
            (std::vector<std::string>{std::to_string(sends[0]) + " 21", std::to_string(sends[1]) + " 0"}));
  EXPECT_EQ(control.call<std::int32_t>(u"SentCount"), 1);
  EXPECT_EQ(control.call<String>(u"SentText", 0), u"b");
  EXPECT_EQ(control.call<String>(u"SentDestination", 0), u"+4670");
  EXPECT_EQ(control.call<String>(u"SentServiceCentre", 0), u"");
  EXPECT_EQ(errorNumberOf([&] { control.call<String>(u"SentText", 1); }), 9);
  control.call<void>(u"ClearSent");
  EXPECT_EQ(control.call<std::int32_t>(u"SentCount"), 0);
}

TEST_F(WorkerTest, Control_ForgetOutcomes_LetsTheNextRequestsSucceed) {
  const auto sms = worker.CellPhones().Item(1).SMS();
  const auto answers = make<AnswerRecorder>(sms);
  control.call<void>(u"SilenceNext", u"send");
  control.call<void>(u"AnswerNext", u"list", 21);
  control.call<void>(u"ForgetOutcomes");
  const auto message = sms.CreateShortMessage();
  message.Destination(u"+4670");
  const std::int32_t sent = message.Send();
  time.run(10000);
  EXPECT_EQ(answers->lines, std::vector{std::to_string(sent) + " 0"});
}

TEST_F(WorkerTest, Control_PlugsInAndOut) {
  EXPECT_EQ(control.get<std::int32_t>(u"ProcessId"), 4711);
  EXPECT_EQ(control.get<String>(u"Name"), u"Second");
  control.call<void>(u"Unplug");
  EXPECT_FALSE(control.get<bool>(u"IsConnected"));
  control.call<void>(u"Plug");
  EXPECT_TRUE(control.get<bool>(u"IsConnected"));
  time.runDue();
  EXPECT_EQ(notices->notices.size(), 2u);
}

TEST_F(WorkerTest, Control_RefusesWhatMakesNoSense) {
  EXPECT_EQ(errorNumberOf([&] { control.call<void>(u"Clear", 3); }), 5);
  EXPECT_EQ(errorNumberOf([&] { control.call<void>(u"Put", 2, 4, u"1", u"x", u"010203040506"); }), 5);
  EXPECT_EQ(errorNumberOf([&] { control.call<void>(u"Deliver", u"1", u"x", u"0102030405"); }), 5);
  EXPECT_EQ(errorNumberOf([&] { control.call<void>(u"Deliver", u"1", u"x", u"01020304050x"); }), 5);
  EXPECT_EQ(errorNumberOf([&] { control.call<void>(u"SilenceNext", u"read"); }), 5);
  EXPECT_EQ(errorNumberOf([&] { control.call<void>(u"SentText", -1); }), 9);
}

}  // namespace
