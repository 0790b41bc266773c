#include "servers/sms_object/sms_object.h"

#include <gtest/gtest.h>

#include "servers/handset/simulated_phone.h"
#include "servers/sms_object/phone_port.h"
#include "support/errors.h"
#include "support/native_time.h"
#include "unit/servers/recording.h"

namespace {

using namespace platform;
using namespace servers::sms_object;
using handset::Operation;
using handset::SimulatedPhone;
using handset::Status;
using handset::Store;
using servers_testing::AnswerRecorder;
using testing_support::errorNumberOf;
using Lines = std::vector<std::string>;

constexpr const char* more = " 2290614316";   // 0x8888002C
constexpr const char* empty = " 2290614472";  // 0x888800C8

// The SMS object with the phone at hand, and with the phone behind its port, as in sms_object.dll.
enum class Road : std::uint8_t { Direct, ThroughPort };

class SmsObjectTest : public testing::TestWithParam<Road> {
 protected:
  SmsObjectTest() {
    sms = platform::as<sms_objectlib::SMS>(object->object());
    if (GetParam() == Road::Direct) {
      object->attach(phone);
    } else {
      LateBound(sms).call<void>(u"AttachPhone", make<PhonePort>(phone).get()->object());
    }
    answers = make<AnswerRecorder>(sms);
  }
  ~SmsObjectTest() override {
    answers = nullptr;
    sms = {};
    object = nullptr;
    phone = nullptr;
    EXPECT_EQ(Counted::census, census);
    EXPECT_EQ(time.pendingWork(), 0u);
  }

  void store(Store where, Status status, StringView text) {
    EXPECT_GT(phone->put({where, 0, status, u"+46701111111", String(text), u"010203040506"}), 0);
  }
  sms_objectlib::ShortMessage filled(StringView text = u"Hi") {
    const auto message = sms.CreateShortMessage();
    message.ServiceCentre(u"+46705008999");
    message.Destination(u"+46702222222");
    message.Text(text);
    return message;
  }
  static std::string line(std::int32_t transaction, const std::string& rest) {
    return std::to_string(transaction) + rest;
  }

  const std::int32_t census = Counted::census;
  testing_support::Journal journal;
  testing_support::NativeTime time{journal};
  std::int32_t remembered = 0;
  TransactionIds ids{{[this] { return remembered; }, [this](std::int32_t next) { remembered = next; }}};
  Ref<SimulatedPhone> phone = make<SimulatedPhone>(time);
  Ref<SmsObject> object = make<SmsObject>(time, ids);
  sms_objectlib::SMS sms;
  Ref<AnswerRecorder> answers;
};

INSTANTIATE_TEST_SUITE_P(, SmsObjectTest, testing::Values(Road::Direct, Road::ThroughPort),
                         [](const auto& test) { return test.param == Road::Direct ? "Direct" : "ThroughPort"; });

TEST_P(SmsObjectTest, List_OfSeveral_AnswersEachAndMarksTheLast) {
  store(Store::Sim, Status::ReceivedUnread, u"one");
  store(Store::Sim, Status::StoredSent, u"two");
  store(Store::Phone, Status::ReceivedRead, u"elsewhere");
  store(Store::Sim, Status::ReceivedRead, u"three");
  const std::int32_t id = sms.ListMessages(2, 4);
  time.run(1000);
  EXPECT_EQ(answers->lines,
            (Lines{line(id, more + std::string(" one")), line(id, more + std::string(" two")), line(id, " 0 three")}));

  const auto& second = answers->messages.at(1);
  EXPECT_EQ(second.Status(), sms_objectlib::storedSent);
  EXPECT_EQ(second.Store(), 2);
  EXPECT_EQ(second.Index(), 2);
  EXPECT_EQ(second.Originator(), u"+46701111111");
  EXPECT_EQ(second.TimeStamp(), u"010203040506");
}

TEST_P(SmsObjectTest, List_OfOne_AnswersOnceWithSuccess) {
  store(Store::Phone, Status::ReceivedRead, u"only");
  const std::int32_t id = sms.ListMessages(1, 4);
  time.run(1000);
  EXPECT_EQ(answers->lines, (Lines{line(id, " 0 only")}));
}

TEST_P(SmsObjectTest, List_OfNothing_AnswersOnceWithoutMessage) {
  const std::int32_t id = sms.ListMessages(1, 4);
  time.run(1000);
  EXPECT_EQ(answers->lines, (Lines{line(id, " 0")}));
}

TEST_P(SmsObjectTest, List_OfUnread_BringsEachOnce) {
  store(Store::Sim, Status::ReceivedUnread, u"new");
  store(Store::Sim, Status::ReceivedRead, u"old");
  const std::int32_t first = sms.ListMessages(2, 0);
  time.run(1000);
  const std::int32_t second = sms.ListMessages(2, 0);
  time.run(1000);
  EXPECT_EQ(answers->lines, (Lines{line(first, " 0 new"), line(second, " 0")}));
  EXPECT_EQ(answers->messages.at(0).Status(), sms_objectlib::receivedUnread);  // as it was when it was listed
}

TEST_P(SmsObjectTest, List_OfAnUnsupportedStore_AnswersWithAFailure) {
  phone->setSupported(Store::Phone, false);
  const std::int32_t id = sms.ListMessages(1, 4);
  time.run(1000);
  EXPECT_EQ(answers->lines, (Lines{line(id, " 2290614473")}));
  EXPECT_FALSE(sms.IsStorageSupported(1));
  EXPECT_TRUE(sms.IsStorageSupported(2));
  EXPECT_FALSE(sms.IsStorageSupported(7));
}

TEST_P(SmsObjectTest, Delete_AnswersSuccessAndThenEmptySlot) {
  store(Store::Sim, Status::ReceivedRead, u"gone");
  store(Store::Sim, Status::ReceivedRead, u"stays");
  const std::int32_t first = sms.DeleteMessage(2, 1);
  time.run(1000);
  const std::int32_t second = sms.DeleteMessage(2, 1);
  time.run(1000);
  EXPECT_EQ(answers->lines, (Lines{line(first, " 0"), line(second, empty)}));
  ASSERT_EQ(phone->stored(Store::Sim).size(), 1u);
  EXPECT_EQ(phone->stored(Store::Sim)[0].text, u"stays");
}

TEST_P(SmsObjectTest, Storage_TellsCapacityAndUse) {
  phone->setCapacity(Store::Sim, 3);
  store(Store::Sim, Status::ReceivedRead, u"a");
  EXPECT_EQ(sms.StorageCapacity(2), 3);
  EXPECT_EQ(sms.StorageUsed(2), 1);
  EXPECT_EQ(phone->fill(Store::Sim), 2);
  EXPECT_EQ(sms.StorageUsed(2), 3);
  phone->setCapacity(Store::Sim, -1);
  EXPECT_EQ(sms.StorageCapacity(2), -1);
  phone->failCapacity(true);
  EXPECT_EQ(errorNumberOf([&] { sms.StorageCapacity(2); }), handset::noCapacity);
}

TEST_P(SmsObjectTest, Send_HandsTheMessageToThePhone) {
  const std::int32_t id = filled(u"Hej på dig \U0001F600").Send();
  EXPECT_EQ(answers->lines, Lines{});
  time.run(1000);
  EXPECT_EQ(answers->lines, (Lines{line(id, " 0")}));
  EXPECT_EQ(phone->sent(),
            (std::vector<handset::OutgoingMessage>{{u"+46705008999", u"+46702222222", u"Hej på dig \U0001F600"}}));
}

TEST_P(SmsObjectTest, Send_WithTheProductsPlaceholder_UsesTheServiceCentreOfTheSim) {
  for (const StringView centre : {u"+46701740699", u"", u"46701740699"}) {
    const auto message = filled();
    message.ServiceCentre(centre);
    message.Send();
  }
  time.run(1000);
  ASSERT_EQ(phone->sent().size(), 3u);
  EXPECT_EQ(phone->sent()[0].serviceCentre, u"");
  EXPECT_EQ(phone->sent()[1].serviceCentre, u"");
  EXPECT_EQ(phone->sent()[2].serviceCentre, u"46701740699");
}

TEST_P(SmsObjectTest, Send_WithoutDestination_IsRefused) {
  EXPECT_EQ(errorNumberOf([&] { sms.CreateShortMessage().Send(); }), 5);
  time.run(1000);
  EXPECT_EQ(answers->lines, Lines{});
}

TEST_P(SmsObjectTest, Send_EndsAsScripted) {
  phone->script(Operation::Send, {.result = 21, .delay = 3000});
  phone->script(Operation::Send, {.silent = true});
  const std::int32_t failing = filled(u"fails").Send();
  time.run(2999);
  EXPECT_EQ(answers->lines, Lines{});
  time.run(1);
  EXPECT_EQ(answers->lines, (Lines{line(failing, " 21")}));
  filled(u"silent").Send();
  time.run(100000);
  EXPECT_EQ(answers->lines.size(), 1u);
  const std::int32_t good = filled(u"good").Send();
  time.run(1000);
  EXPECT_EQ(answers->lines, (Lines{line(failing, " 21"), line(good, " 0")}));
  ASSERT_EQ(phone->sent().size(), 1u);
  EXPECT_EQ(phone->sent()[0].text, u"good");
}

TEST_P(SmsObjectTest, Unplugging_DropsPendingRequestsSilently) {
  store(Store::Sim, Status::ReceivedRead, u"one");
  store(Store::Sim, Status::ReceivedRead, u"two");
  phone->script(Operation::Send, {.delay = 51});
  phone->script(Operation::Remove, {.delay = 51});
  sms.ListMessages(2, 4);
  filled().Send();
  sms.DeleteMessage(2, 1);
  time.run(50);  // the phone has answered the listing, its answers are held back
  phone->unplug();
  phone->plug();
  time.run(100000);
  EXPECT_EQ(answers->lines, Lines{});
  const std::int32_t id = sms.ListMessages(1, 4);
  time.run(1000);
  EXPECT_EQ(answers->lines, (Lines{line(id, " 0")}));
}

TEST_P(SmsObjectTest, Unplugging_TellsTheOutcomesThatThePhoneHasGivenBeforeTheLossIsKnown) {
  Lines inOrder;
  answers->inside = [&] { inOrder.push_back(answers->lines.back()); };
  const auto watching = phone->watch([&](bool connected) { inOrder.push_back(connected ? "plugged" : "unplugged"); });
  phone->script(Operation::Send, {.result = 21});
  const std::int32_t send = filled().Send();
  const std::int32_t remove = sms.DeleteMessage(2, 1);
  time.run(50);  // the phone has answered, the answers are held back
  EXPECT_EQ(inOrder, Lines{});
  phone->unplug();
  EXPECT_EQ(inOrder, (Lines{line(send, " 21"), line(remove, empty), "unplugged"}));
  time.run(100000);
  EXPECT_EQ(inOrder.size(), 3u);
}

TEST_P(SmsObjectTest, Unplugging_InsideAnAnswer_TellsTheOutcomesAllTheSame) {
  const std::int32_t remove = sms.DeleteMessage(2, 1);
  const std::int32_t send = filled().Send();
  answers->inside = [&] {
    if (answers->lines.size() == 1) phone->unplug();
  };
  time.run(1000);
  EXPECT_EQ(answers->lines, (Lines{line(remove, empty), line(send, " 0")}));
}

TEST_P(SmsObjectTest, Unplugging_BetweenTwoAnswers_DropsTheSecond) {
  store(Store::Sim, Status::ReceivedRead, u"one");
  store(Store::Sim, Status::ReceivedRead, u"two");
  const std::int32_t id = sms.ListMessages(2, 4);
  answers->inside = [&] { phone->unplug(); };
  time.run(100000);
  EXPECT_EQ(answers->lines, (Lines{line(id, more + std::string(" one"))}));
}

TEST_P(SmsObjectTest, Unplugging_GivesBackWhatWasListedAsUnreadAndNotDelivered) {
  store(Store::Sim, Status::ReceivedUnread, u"delivered");
  store(Store::Sim, Status::ReceivedRead, u"read before");
  store(Store::Sim, Status::ReceivedUnread, u"waits");
  store(Store::Sim, Status::ReceivedUnread, u"last");
  const std::int32_t first = sms.ListMessages(2, 4);
  answers->inside = [&] { phone->unplug(); };
  time.run(1000);
  EXPECT_EQ(answers->lines, (Lines{line(first, more + std::string(" delivered"))}));
  answers->inside = nullptr;
  phone->plug();
  const std::int32_t second = sms.ListMessages(2, 0);
  time.run(1000);
  EXPECT_EQ(answers->lines, (Lines{line(first, more + std::string(" delivered")),
                                   line(second, more + std::string(" waits")), line(second, " 0 last")}));
}

TEST_P(SmsObjectTest, Requests_OnAnUnpluggedPhone_Fail) {
  phone->unplug();
  const auto message = filled();
  EXPECT_EQ(errorNumberOf([&] { sms.ListMessages(1, 4); }), handset::notConnected);
  EXPECT_EQ(errorNumberOf([&] { sms.DeleteMessage(2, 1); }), handset::notConnected);
  EXPECT_EQ(errorNumberOf([&] { message.Send(); }), handset::notConnected);
  EXPECT_EQ(errorNumberOf([&] { sms.IsStorageSupported(2); }), handset::notConnected);
  EXPECT_EQ(errorNumberOf([&] { sms.StorageCapacity(2); }), handset::notConnected);
  EXPECT_EQ(errorNumberOf([&] { sms.StorageUsed(2); }), handset::notConnected);
  EXPECT_EQ(time.pendingWork(), 0u);
}

TEST_P(SmsObjectTest, Answer_IsHeldBackUntilWellAfterTheReturn) {
  const std::int32_t id = sms.ListMessages(1, 4);
  time.run(answerHoldBack - 1);
  EXPECT_EQ(answers->lines, Lines{});
  time.run(1);
  EXPECT_EQ(answers->lines, (Lines{line(id, " 0")}));
}

TEST_P(SmsObjectTest, Answer_OnAMachineThatIsLate_IsHeldBackLonger) {
  const std::int32_t id = sms.ListMessages(1, 4);
  time.advance(10 * answerHoldBack);
  time.runDue();
  EXPECT_EQ(answers->lines, Lines{}) << "the return may be as late as this thread's timer";
  time.run((holdBackTurns - 1) * holdBackTurn - 1);
  EXPECT_EQ(answers->lines, Lines{});
  time.run(1);
  EXPECT_EQ(answers->lines, (Lines{line(id, " 0")}));
}

TEST_P(SmsObjectTest, Answer_OfALatePhone_IsNotHeldBackAgain) {
  phone->script(Operation::Remove, {.delay = 2000});
  const std::int32_t id = sms.DeleteMessage(2, 1);
  time.run(2000);
  EXPECT_EQ(answers->lines, (Lines{line(id, empty)}));
}

TEST_P(SmsObjectTest, ThreeHundredRequests_AreAnsweredAfterTheirReturnAndInOrder) {
  Lines expected;
  std::int32_t returned = 0;
  bool early = false;
  answers->inside = [&] { early |= returned < static_cast<std::int32_t>(answers->lines.size()); };
  for (int i = 0; i < 300; ++i) {
    const std::int32_t id = i % 3 == 0   ? sms.ListMessages(1, 4)
                            : i % 3 == 1 ? sms.DeleteMessage(2, 9)
                                         : filled().Send();
    ++returned;
    expected.push_back(line(id, i % 3 == 1 ? empty : " 0"));
    time.run(i % 7 * 40);  // some come in a burst, some wait
  }
  time.run(1000);
  EXPECT_EQ(answers->lines, expected);
  EXPECT_FALSE(early);
}

TEST_P(SmsObjectTest, NextAnswer_WaitsUntilTheListenerHasDealtWithTheOneBefore) {
  store(Store::Sim, Status::ReceivedRead, u"one");
  store(Store::Sim, Status::ReceivedRead, u"two");
  const std::int32_t id = sms.ListMessages(2, 4);
  std::size_t insideAtOnce = 0;
  std::size_t most = 0;
  answers->inside = [&] {
    most = std::max(most, ++insideAtOnce);
    time.run(5000);  // the listener serves messages
    --insideAtOnce;
  };
  time.run(20000);
  EXPECT_EQ(answers->lines, (Lines{line(id, more + std::string(" one")), line(id, " 0 two")}));
  EXPECT_EQ(most, 1u);
}

TEST_P(SmsObjectTest, Request_InsideAnAnswer_IsAnsweredAfterIt) {
  store(Store::Sim, Status::ReceivedRead, u"one");
  const std::int32_t listing = sms.ListMessages(2, 4);
  std::int32_t deletion = 0;
  answers->inside = [&] {
    if (deletion == 0) deletion = sms.DeleteMessage(2, 1);
  };
  time.run(1000);
  EXPECT_EQ(answers->lines, (Lines{line(listing, " 0 one"), line(deletion, " 0")}));
}

TEST_P(SmsObjectTest, FailingListener_DoesNotLoseTheNextAnswer) {
  store(Store::Sim, Status::ReceivedRead, u"one");
  store(Store::Sim, Status::ReceivedRead, u"two");
  sms.ListMessages(2, 4);
  answers->inside = [] { raiseError(5); };
  time.run(1000);
  EXPECT_EQ(answers->lines.size(), 2u);
}

TEST_P(SmsObjectTest, ReleasedWhilePending_TellsNobodyAndLeavesNothing) {
  store(Store::Sim, Status::ReceivedRead, u"one");
  sms.ListMessages(2, 4);
  filled(u"goes out all the same").Send();
  const auto kept = answers;
  answers = nullptr;
  sms = {};
  object = nullptr;
  time.run(1000);
  EXPECT_EQ(kept->lines.size(), 2u);  // the listener's own field still holds the SMS object
}

TEST_P(SmsObjectTest, ReleasedInsideItsAnswer_EndsQuietly) {
  store(Store::Sim, Status::ReceivedRead, u"one");
  store(Store::Sim, Status::ReceivedRead, u"two");
  sms.ListMessages(2, 4);
  sms = {};
  object = nullptr;
  answers->inside = [&] {
    answers->messages.clear();
    answers = nullptr;
  };
  time.run(1000);
  EXPECT_FALSE(answers);
}

TEST_P(SmsObjectTest, SecondPhone_IsRefused) {
  EXPECT_EQ(errorNumberOf([&] { object->attach(make<SimulatedPhone>(time)); }), 5);
}

TEST_P(SmsObjectTest, ListedMessage_LetsItsStoreBeChangedAndNothingElseOfWhereItCameFrom) {
  store(Store::Phone, Status::ReceivedRead, u"one");
  sms.ListMessages(1, 4);
  time.run(1000);
  const auto message = answers->messages.at(0);
  message.Store(2);
  EXPECT_EQ(message.Store(), 2);
  EXPECT_EQ(errorNumberOf([&] { LateBound(message).let(u"Index", 3); }), 438);
  EXPECT_EQ(errorNumberOf([&] { LateBound(message).get<String>(u"Destination"); }), 438);
  answers->messages.clear();
}

TEST(SmsObjectWithoutPhone, Requests_Fail) {
  testing_support::Journal journal;
  testing_support::NativeTime time{journal};
  TransactionIds ids{{[] { return 0; }, [](std::int32_t) {}}};
  const auto object = make<SmsObject>(time, ids);
  EXPECT_EQ(errorNumberOf([&] { object->ListMessages(Store::Sim, 4); }), handset::notConnected);
  EXPECT_EQ(errorNumberOf([&] { object->StorageUsed(Store::Sim); }), handset::notConnected);
}

TEST(TransactionIdsTest, AfterARestart_DoNotRepeat) {
  std::int32_t remembered = 0;
  const IdentifierMemory memory{[&] { return remembered; }, [&](std::int32_t next) { remembered = next; }};
  std::vector<std::int32_t> given;
  for (int restart = 0; restart < 3; ++restart) {
    TransactionIds ids(memory);
    for (int i = 0; i < 1500; ++i) given.push_back(ids.next());
  }
  EXPECT_EQ(given.front(), 1);
  for (std::size_t i = 1; i < given.size(); ++i) ASSERT_GT(given[i], given[i - 1]);
}

TEST(TransactionIdsTest, AreUnusedUntilTheFirstIsWanted) {
  std::int32_t remembered = 77;
  TransactionIds ids({[&] { return remembered; }, [&](std::int32_t next) { remembered = next; }});
  EXPECT_EQ(remembered, 77);
  EXPECT_EQ(ids.next(), 77);
  EXPECT_EQ(remembered, 77 + TransactionIds::block);
}

TEST(TransactionIdsTest, AtTheEndOfTheNumbers_BeginAgainAtOne) {
  for (const std::int32_t nonsense : {INT32_MAX, INT32_MAX - TransactionIds::block + 1, -5, INT32_MIN}) {
    std::int32_t remembered = nonsense;
    TransactionIds ids({[&] { return remembered; }, [&](std::int32_t next) { remembered = next; }});
    EXPECT_EQ(ids.next(), 1);
    EXPECT_EQ(remembered, 1 + TransactionIds::block);
  }
  std::int32_t remembered = INT32_MAX - TransactionIds::block;
  TransactionIds ids({[&] { return remembered; }, [&](std::int32_t next) { remembered = next; }});
  EXPECT_EQ(ids.next(), INT32_MAX - TransactionIds::block);
  EXPECT_EQ(remembered, INT32_MAX);
}

// A phone whose events come before its calls return, as they may across processes.
class HastyPhone final : public handset::Phone {
 public:
  HastyPhone(Ref<SimulatedPhone> phone, testing_support::NativeTime& time) : phone_(std::move(phone)), time_(time) {}

  String name() override { return phone_->name(); }
  bool isConnected() override { return phone_->isConnected(); }
  bool isStorageSupported(Store store) override { return phone_->isStorageSupported(store); }
  std::int16_t storageCapacity(Store store) override { return phone_->storageCapacity(store); }
  std::int16_t storageUsed(Store store) override { return phone_->storageUsed(store); }
  Request list(Store store, std::int32_t filter, OnMessage onMessage, OnEnd onEnd) override {
    return early(phone_->list(store, filter, std::move(onMessage), std::move(onEnd)));
  }
  void giveBack(const handset::StoredMessage& message) override { phone_->giveBack(message); }
  Request remove(Store store, std::int16_t index, OnEnd onEnd) override {
    return early(phone_->remove(store, index, std::move(onEnd)));
  }
  Request send(const handset::OutgoingMessage& message, OnEnd onEnd) override {
    return early(phone_->send(message, std::move(onEnd)));
  }
  Ref<Counted> watch(OnConnection changed) override { return phone_->watch(std::move(changed)); }

 private:
  Request early(Request request) {
    time_.runDue();
    return request;
  }
  Ref<SimulatedPhone> phone_;
  testing_support::NativeTime& time_;
};

class HastyPhoneTest : public SmsObjectTest {
 protected:
  HastyPhoneTest() {
    const auto hasty = make<HastyPhone>(phone, time);
    object = make<SmsObject>(time, ids);
    sms = platform::as<sms_objectlib::SMS>(object->object());
    LateBound(sms).call<void>(u"AttachPhone", make<PhonePort>(hasty).get()->object());
    answers = make<AnswerRecorder>(sms);
  }
};

INSTANTIATE_TEST_SUITE_P(, HastyPhoneTest, testing::Values(Road::ThroughPort),
                         [](const auto&) { return "ThroughPort"; });

TEST_P(HastyPhoneTest, Send_EndedBeforeItsCallReturns_IsAnsweredAfterwards) {
  const std::int32_t id = filled().Send();
  EXPECT_EQ(answers->lines, Lines{});
  time.run(1000);
  EXPECT_EQ(answers->lines, (Lines{line(id, " 0")}));
}

TEST_P(HastyPhoneTest, List_EndedBeforeItsCallReturns_BringsItsMessagesInOrder) {
  store(Store::Sim, Status::ReceivedRead, u"one");
  store(Store::Sim, Status::ReceivedRead, u"two");
  const std::int32_t id = sms.ListMessages(2, 4);
  EXPECT_EQ(answers->lines, Lines{});
  time.run(1000);
  EXPECT_EQ(answers->lines, (Lines{line(id, more + std::string(" one")), line(id, " 0 two")}));
}

TEST_P(HastyPhoneTest, SecondRequest_DoesNotGetWhatCameForTheFirst) {
  const std::int32_t first = filled().Send();
  phone->script(Operation::Send, {.result = 17});
  const std::int32_t second = filled().Send();
  time.run(1000);
  EXPECT_EQ(answers->lines, (Lines{line(first, " 0"), line(second, " 17")}));
}

}  // namespace
