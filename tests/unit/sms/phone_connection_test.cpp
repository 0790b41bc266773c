// Phones that come and go: m_objCAPI_OnNotifyCellPhoneConnected.
#include "unit/sms/engine_fixture.h"

namespace sms_tests {
namespace {

using testing_support::fake;
using testing_support::Recorder;

class PhoneNotice : public EngineFixture {
 protected:
  PhoneNotice() : otherSms(newSmsObject("OtherSMS")), other(newPhone("OtherPhone", true, otherSms->object())) {
    start();
    probe().receiveAllFlag() = false;
  }

  Ref<FakeObject> otherSms;
  Ref<FakeObject> other;
};

TEST_F(PhoneNotice, ConnectWhileOldPhoneIsConnected_KeepsTheOldOne) {
  probe().state() = STATE_SEND;
  probe().AddTransaction(17, u"ID-1", enTransactionType::Send);
  clear();
  Recorder recorder;
  notifyConnected(1, other->object());
  EXPECT_EQ(trace(), (Lines{"m_bPhoneConnected = 1", "New phone connected!", "Old phone still connected, use this"}));
  EXPECT_EQ(recorder.lines(), Lines{"Phone.IsConnected"});
  EXPECT_EQ(Object(probe().cellPhone()), phone->object());
  EXPECT_EQ(Object(probe().sms().get()), sms->object());
  EXPECT_EQ(owner->notices, std::vector<bool>{true});
  EXPECT_EQ(probe().state(), IDLE);
  EXPECT_TRUE(probe().receiveAllFlag());
  EXPECT_EQ(probe().transactions()->Count(), 1) << "what was in progress is forgotten, its transaction is not";
}

TEST_F(PhoneNotice, ConnectWhenOldPhoneIsGone_TakesTheNewOne) {
  phone->value(u"IsConnected", false);
  probe().state() = STATE_LIST;
  clear();
  Recorder recorder;
  notifyConnected(1, other->object());
  EXPECT_EQ(trace(), (Lines{"m_bPhoneConnected = 1", "New phone connected!", "Use new phone"}));
  EXPECT_EQ(recorder.lines(), (Lines{"Phone.IsConnected", "OtherPhone.SMS", "connect OtherSMS"}));
  EXPECT_EQ(Object(probe().cellPhone()), other->object());
  EXPECT_EQ(Object(probe().sms().get()), otherSms->object());
  EXPECT_EQ(sms->listeners(), 0u);
  EXPECT_EQ(owner->notices, std::vector<bool>{true});
  EXPECT_EQ(probe().state(), IDLE);
  EXPECT_TRUE(probe().receiveAllFlag());
}

TEST_F(PhoneNotice, FirstPhone_IsTaken) {
  notifyConnected(0, phone->object());
  clear();
  notifyConnected(1, other->object());
  EXPECT_EQ(trace(), (Lines{"m_bPhoneConnected = 1", "New phone connected!", "Use new phone"}));
  EXPECT_TRUE(handler().IsPhoneConnected());
}

// The owner asks back from inside the event, and finds the phone of after the change.
TEST_F(PhoneNotice, OwnerIsToldAfterTheChange) {
  std::vector<std::pair<bool, bool>> seen;
  owner->whenNoticed = [&](bool) {
    seen.emplace_back(handler().IsPhoneConnected(), Object(probe().cellPhone()) == phone->object());
  };
  notifyConnected(1, other->object());  // the old one is kept
  notifyConnected(0, phone->object());
  notifyConnected(1, phone->object());  // taken as a new one
  EXPECT_EQ(seen, (std::vector<std::pair<bool, bool>>{{true, true}, {false, false}, {true, true}}));
}

TEST_F(PhoneNotice, AnyNonZeroValue_IsAConnection) {
  notifyConnected(-1, other->object());
  EXPECT_EQ(trace(), (Lines{"m_bPhoneConnected = -1", "New phone connected!", "Old phone still connected, use this"}));
  EXPECT_EQ(owner->notices, std::vector<bool>{true});
  EXPECT_EQ(probe().phoneConnected(), -1);
}

TEST_F(PhoneNotice, Disconnect_LetsThePhoneGo) {
  notifyConnected(0, phone->object());
  EXPECT_EQ(trace(), (Lines{"m_bPhoneConnected = 0", "Phone disconnected!"}));
  EXPECT_EQ(owner->notices, std::vector<bool>{false});
  EXPECT_FALSE(handler().IsPhoneConnected());
  EXPECT_FALSE(probe().cellPhone());
  EXPECT_EQ(probe().phoneConnected(), 0);
  EXPECT_EQ(sms->listeners(), 0u);
  EXPECT_FALSE(probe().receiveAllFlag()) << "only a connection asks for everything";
}

TEST_F(PhoneNotice, DisconnectDuringASend_LeavesTheState) {
  probe().state() = STATE_SEND;
  notifyConnected(0, Object());
  EXPECT_EQ(probe().state(), STATE_SEND);
  notifyConnected(1, other->object());
  EXPECT_EQ(probe().state(), IDLE);
}

TEST_F(PhoneNotice, Connect_LeavesTheGuardRunning) {
  probe().SetupGuard(1);
  clear();
  notifyConnected(1, other->object());
  EXPECT_EQ(guardTimer().calls(), Lines{});
  EXPECT_EQ(guardTimer().valueOf(u"Enabled"), Variant(true));
}

TEST_F(PhoneNotice, NewPhoneWithoutSmsObject_IsNotConnected) {
  phone->value(u"IsConnected", false);
  other->value(u"SMS", Object());
  notifyConnected(1, other->object());
  EXPECT_EQ(trace(), (Lines{"m_bPhoneConnected = 1", "New phone connected!", "Use new phone"}));
  EXPECT_EQ(owner->notices, std::vector<bool>{true});
  EXPECT_FALSE(handler().IsPhoneConnected());
  EXPECT_EQ(probe().phoneConnected(), 1);
}

TEST_F(PhoneNotice, NewPhoneFails_IsLoggedAndTheOldOneIsGone) {
  phone->value(u"IsConnected", false);
  other->fails(u"SMS", RuntimeError(-2147023174, u"OtherPhone", u"The RPC server is unavailable."));
  notifyConnected(1, other->object());
  EXPECT_EQ(trace(), (Lines{"m_bPhoneConnected = 1", "New phone connected!", "Use new phone",
                            "Error:-2147023174, The RPC server is unavailable., OtherPhone"}));
  EXPECT_EQ(owner->notices, std::vector<bool>{});
  EXPECT_FALSE(handler().IsPhoneConnected());
}

TEST_F(PhoneNotice, OldPhoneThatCannotBeAsked_IsLoggedAndKept) {
  probe().state() = STATE_SEND;
  phone->fails(u"IsConnected", RuntimeError(-2147023174, u"Phone", u"The RPC server is unavailable."));
  notifyConnected(1, other->object());
  EXPECT_EQ(trace(), (Lines{"m_bPhoneConnected = 1", "New phone connected!",
                            "Error:-2147023174, The RPC server is unavailable., Phone"}));
  EXPECT_EQ(owner->notices, std::vector<bool>{});
  EXPECT_EQ(Object(probe().cellPhone()), phone->object());
  EXPECT_EQ(Object(probe().sms().get()), sms->object());
  EXPECT_EQ(probe().state(), IDLE);
  EXPECT_TRUE(probe().receiveAllFlag());
}

TEST_F(PhoneNotice, NewSmsObjectThatTakesNoListener_IsLoggedAndNobodyIsTold) {
  phone->value(u"IsConnected", false);
  otherSms->failsToSubscribe(-2147220992);
  notifyConnected(1, other->object());
  ASSERT_EQ(trace().size(), 4u);
  EXPECT_EQ(firstOf(trace(), 3), (Lines{"m_bPhoneConnected = 1", "New phone connected!", "Use new phone"}));
  EXPECT_TRUE(trace().back().starts_with("Error:-2147220992, ")) << trace().back();
  EXPECT_EQ(owner->notices, std::vector<bool>{});
  EXPECT_FALSE(handler().IsPhoneConnected());
}

// A phone and an SMS object that only the engine holds: the SMS object goes first.
class PhoneNoticeReleases : public PhoneNotice {
 protected:
  PhoneNoticeReleases() {
    notifyConnected(0, Object());
    auto ownSms = fake("OwnSMS");
    ownSms->whenTerminated = [this] { released.emplace_back("SMS object"); };
    const auto ownPhone = newPhone("OwnPhone", false, Object());
    ownPhone->whenTerminated = [this] { released.emplace_back("phone"); };
    ownPhone->script(u"SMS", [given = std::make_shared<Ref<FakeObject>>(std::move(ownSms))](Access, Args) -> Variant {
      return std::exchange(*given, nullptr)->object();
    });
    notifyConnected(1, ownPhone->object());
  }

  Lines released;
};

TEST_F(PhoneNoticeReleases, Disconnect_SmsObjectThenPhone) {
  ASSERT_EQ(released, Lines{});
  notifyConnected(0, Object());
  EXPECT_EQ(released, (Lines{"SMS object", "phone"}));
}

TEST_F(PhoneNoticeReleases, NewPhone_SmsObjectThenPhone) {
  ASSERT_EQ(released, Lines{});
  notifyConnected(1, other->object());
  EXPECT_EQ(released, (Lines{"SMS object", "phone"}));
}

TEST_F(PhoneNotice, NoticeWithoutAPhone_IsError91) {
  phone->value(u"IsConnected", false);
  notifyConnected(1, Object());
  EXPECT_EQ(trace(), (Lines{"m_bPhoneConnected = 1", "New phone connected!", "Use new phone",
                            "Error:91, Object variable or With block variable not set, mrktxtmsg"}));
}

TEST_F(PhoneNotice, OwnerFails_IsTheRaisersErrorAndGoesNoFurther) {
  owner->whenNoticed = [](bool) { raiseError(91); };
  notifyConnected(0, Object());
  EXPECT_EQ(trace(), (Lines{"m_bPhoneConnected = 0", "Phone disconnected!",
                            "Error:91, Object variable or With block variable not set, mrktxtmsg"}));
}

// The worker's phones answer, though the SMS object that the engine holds is the old one's.
TEST_F(PhoneNotice, AnswersOfTheOldPhone_AreNotHeardAnyMore) {
  phone->value(u"IsConnected", false);
  notifyConnected(1, other->object());
  clear();
  answer(17, 0);
  EXPECT_EQ(trace(), Lines{});
  otherSms->fire(sms_objectlib::SMSEvents::OnNotifyResponse, 5, 0, Object());
  EXPECT_EQ(trace(), (Lines{"m_objSMS_OnNotifyResponse - TransID:5, Status:0, State:0", "disablar guard timer"}));
}

}  // namespace
}  // namespace sms_tests
