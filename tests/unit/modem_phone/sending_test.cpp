// What becomes of a message that is handed over to be sent.
#include <gtest/gtest.h>

#include "phone/modem/outcome.h"
#include "servers/modem/modem_phone.h"
#include "unit/modem_phone/modem_phone_fixture.h"

namespace {

using namespace modem_testing;
using phone::Milliseconds;
using servers::modem::SendRecord;

TEST_F(ModemPhoneTest, Sending_AnswersWhenTheNetworkDoes) {
  begin("like plain");
  const auto handed = hand(u"hellohello");
  rig.time.runDue();
  EXPECT_EQ(handed->result, "");
  rig.work();
  EXPECT_EQ(handed->result, "0");
  EXPECT_EQ(heardOf("message"), Lines{"message 0001000B916407214365F700000AE8329BFD4697D9EC37"});
  // The same once more is another message.
  EXPECT_EQ(sent(u"hellohello"), "0");
  EXPECT_EQ(heardOf("message").size(), 2u);
}

TEST_F(ModemPhoneTest, WhatCannotBeSent_FailsWithoutTheLine) {
  begin("like plain");
  const auto handed = hand(u"x", u"Anna");
  rig.time.runDue();
  EXPECT_EQ(handed->result, "888800CA");
  EXPECT_EQ(rig.letters.size(), 0u);
}

TEST_F(ModemPhoneTest, SameMessageWhileTheFirstIsOpen_WaitsForItsResult) {
  begin("like plain");
  const auto first = hand(u"hellohello");
  const auto second = hand(u"hellohello");
  const auto other = hand(u"Hej");
  rig.work();
  EXPECT_EQ(first->result, "0");
  EXPECT_EQ(second->result, "0");
  EXPECT_EQ(other->result, "0");
  EXPECT_EQ(heardOf("message").size(), 2u);
}

TEST_F(ModemPhoneTest, AnswerAfterTheAskersPatience_IsKeptForItsNextRequest) {
  begin("like plain\non message *\n  pause 40000\n  say +CMGS: 7\n  say OK");
  EXPECT_EQ(sent(u"hellohello"), "");
  EXPECT_EQ(sent(u"hellohello"), "0");
  EXPECT_EQ(heardOf("message").size(), 1u);
  // And now it is a new message.
  EXPECT_EQ(sent(u"hellohello"), "");
  EXPECT_EQ(heardOf("message").size(), 2u);
}

// It would be taken for the answer to the next request, which the asker makes when 25 seconds are over.
TEST_F(ModemPhoneTest, AnswerJustBeforeTheAskersPatienceIsOver_IsKeptToo) {
  begin(
      "like plain\non message *\n  pause 24300\n  say +CMGS: 7\n  say OK\non message *\n  pause 24700\n  say "
      "+CMGS: 8\n  say OK");
  EXPECT_EQ(sent(u"In time"), "0");
  EXPECT_EQ(sent(u"Nearly"), "");
  EXPECT_EQ(sent(u"Nearly"), "0");
  EXPECT_EQ(heardOf("message").size(), 2u);
}

TEST_F(ModemPhoneTest, LongMessages_HaveReferencesOfTheirOwn) {
  begin("like plain");
  EXPECT_EQ(sent(String(200, u'x')), "0");
  EXPECT_EQ(sent(String(200, u'y')), "0");
  // 05 00 03, the reference, the number of parts and which one this is.
  Lines headers;
  for (const std::string& part : heardOf("message")) headers.push_back(part.substr(part.find("050003"), 12));
  EXPECT_EQ(headers, (Lines{"050003070201", "050003070202", "050003080201", "050003080202"}));
}

// Whoever asks cannot ask while there is no phone.
TEST_F(ModemPhoneTest, HourAfterWhichAMessageIsForgotten_CountsOnlyWithAPhone) {
  const auto pass = [this](int minutes) {
    rig.clock.pass(std::chrono::minutes(minutes));
    rig.time.run(minutes * 60000);
  };
  begin("like plain\non message *\n  lose\n");
  EXPECT_EQ(sent(u"hellohello"), "888800D2");
  rig.step();
  pass(120);
  begin("like plain");
  pass(59);
  EXPECT_EQ(sent(u"hellohello"), "888800D2");
  pass(61);
  EXPECT_EQ(sent(u"hellohello"), "0");
}

TEST_F(ModemPhoneTest, LongerText_IsWaitedForLonger) {
  begin("like plain\non message *\n  pause 40000\n  say +CMGS: 7\n  say OK");
  EXPECT_EQ(sent(String(160, u'x')), "0");
}

TEST_F(ModemPhoneTest, UnknownOutcome_IsReportedAndNotRepeatedUntilTheAskerHasGivenUp) {
  begin("like plain\non message *\n  lose\n");
  EXPECT_EQ(sent(u"hellohello"), "888800D2");
  EXPECT_FALSE(rig.step());
  EXPECT_EQ(told, (std::vector{true, false}));

  begin("like plain");
  EXPECT_EQ(told, (std::vector{true, false, true}));
  EXPECT_EQ(sent(u"hellohello"), "888800D2");
  EXPECT_EQ(sent(u"hellohello"), "888800D2");
  EXPECT_EQ(heardOf("message"), Lines());
  // Three failures: there has been a report, and this is somebody who wants it sent again.
  EXPECT_EQ(sent(u"hellohello"), "0");
  EXPECT_EQ(heardOf("message").size(), 1u);
}

TEST_F(ModemPhoneTest, RefusedMessage_IsSentWhenItIsAskedForAgain) {
  begin("like plain\non message *\n  say +CMS ERROR: 38\non message *\n  say +CMGS: 7\n  say OK");
  EXPECT_EQ(sent(u"hellohello"), "88881026");
  EXPECT_EQ(sent(u"hellohello"), "0");
  EXPECT_EQ(heardOf("message").size(), 2u);
}

TEST_F(ModemPhoneTest, LongMessageRefusedInTheMiddle_GoesOnThere) {
  begin("like busy-network");
  EXPECT_EQ(sent(String(400, u'x')), "88881026");
  EXPECT_EQ(sent(String(400, u'x')), "0");
  const Lines parts = heardOf("message");
  ASSERT_EQ(parts.size(), 5u);
  EXPECT_EQ(parts[4], parts[3]);
}

TEST_F(ModemPhoneTest, PulledOutBeforeAMessageWasHandedIn_SendsItWhenItIsBack) {
  begin("like plain");
  const auto handed = hand(u"hellohello");
  rig.unplug();
  EXPECT_FALSE(rig.step());
  EXPECT_EQ(handed->result, "");
  EXPECT_FALSE(phone->isConnected());
  EXPECT_FALSE(rig.hasLine);

  begin("like plain");
  rig.work();
  EXPECT_EQ(heardOf("message"), Lines());
  EXPECT_EQ(sent(u"hellohello"), "0");
  EXPECT_EQ(heardOf("message").size(), 1u);
  EXPECT_EQ(handed->result, "");
}

TEST_F(ModemPhoneTest, MessageOnItsWay_IsNotedBeforeTheModemHasIt) {
  begin("like plain");
  EXPECT_FALSE(phone->isSending());
  const auto handed = hand(u"hellohello");
  EXPECT_TRUE(phone->isSending());
  EXPECT_EQ(rig.letters.size(), 1u);
  EXPECT_EQ(rig.modem->heard, Lines());
  EXPECT_NE(rig.notebook.text.find(" open 1 7 0 "), std::string::npos) << rig.notebook.text;
  rig.work();
  EXPECT_EQ(handed->result, "0");
  EXPECT_FALSE(phone->isSending());
  rig.time.run(SendRecord::settling);
  EXPECT_EQ(rig.notebook.text, "");
}

TEST_F(ModemPhoneTest, ServerThatWasKilledWhileSending_DoesNotRepeatTheMessage) {
  begin("like plain");
  hand(u"hellohello");
  restart();
  begin("like plain");
  for (int i = 0; i < SendRecord::attempts; ++i) EXPECT_EQ(sent(u"hellohello"), "888800D2");
  EXPECT_EQ(heardOf("message"), Lines());
  EXPECT_EQ(sent(u"hellohello"), "0");
  EXPECT_EQ(heardOf("message").size(), 1u);
  EXPECT_EQ(sent(u"Hej"), "0");
}

TEST_F(ModemPhoneTest, SentWhenNobodyWasThereAnyMore_IsSaidToWhoeverAsksNextAlsoAfterARestart) {
  begin("like plain");
  const auto first = hand(u"hellohello");
  rig.isHeard = false;
  rig.work();
  EXPECT_EQ(first->result, "");
  rig.isHeard = true;
  restart();
  begin("like plain");
  EXPECT_EQ(sent(u"hellohello"), "0");
  EXPECT_EQ(heardOf("message"), Lines());
  EXPECT_EQ(sent(u"hellohello"), "0");
  EXPECT_EQ(heardOf("message").size(), 1u);
}

TEST_F(ModemPhoneTest, AskersThatAreGoneWhenOthersCome_AreToldNothingAndDoNotCount) {
  begin("like plain\non message *\n  lose\n");
  const auto first = hand(u"hellohello");
  phone->abandoned();
  EXPECT_TRUE(phone->isSending());
  rig.work();
  EXPECT_EQ(first->result, "");
  EXPECT_NE(rig.notebook.text.find(" unknown 0 "), std::string::npos) << rig.notebook.text;
  // The line is lost, too; from here on it is as with any other.
  EXPECT_FALSE(rig.step());
  EXPECT_FALSE(phone->isSending());
  begin("like plain");
  for (int i = 0; i < SendRecord::attempts; ++i) EXPECT_EQ(sent(u"hellohello"), "888800D2");
  EXPECT_EQ(sent(u"hellohello"), "0");
}

TEST_F(ModemPhoneTest, PartsThatWereSent_AreNotSentAgainAfterARestart) {
  begin("like busy-network");
  EXPECT_EQ(sent(String(400, u'x')), "88881026");
  const Lines before = heardOf("message");
  ASSERT_EQ(before.size(), 4u);
  EXPECT_NE(rig.notebook.text.find(" unsent 1 7 2 "), std::string::npos) << rig.notebook.text;
  restart();
  begin("like plain");
  EXPECT_EQ(sent(String(400, u'x')), "0");
  EXPECT_EQ(heardOf("message"), Lines{before[3]});
}

TEST_F(ModemPhoneTest, LongMessageBrokenOffBetweenItsParts_GoesOnThere) {
  begin("like plain\non AT+CMGS=*\n  prompt <CR><LF>><SP>\non AT+CMGS=*\n  lose\n");
  const auto handed = hand(String(200, u'x'));
  rig.modem->heard.clear();
  while (rig.step()) {
  }
  const Lines before = heardOf("message");
  begin("like plain");
  EXPECT_EQ(sent(String(200, u'x')), "0");
  EXPECT_EQ(before.size(), 1u);
  EXPECT_EQ(heardOf("message").size(), 1u);
  EXPECT_NE(heardOf("message"), before);
}

TEST_F(ModemPhoneTest, ServiceCentreThatWasChangedAfterARefusal_IsUsed) {
  begin("like plain\non message *\n  say +CMS ERROR: 330\non message *\n  say +CMGS: 7\n  say OK");
  EXPECT_EQ(sent(u"hellohello"), "8888114A");
  const auto request = phone->send({u"+4512345678", u"+46701234567", u"hellohello"}, [](std::int32_t) {});
  rig.work();
  const Lines messages = heardOf("message");
  ASSERT_EQ(messages.size(), 2u);
  EXPECT_EQ(messages[0], "message 0001000B916407214365F700000AE8329BFD4697D9EC37");
  EXPECT_EQ(messages[1], "message 06915421436587" + messages[0].substr(messages[0].find(' ') + 3));
}

// Two phones of one server.
class TwoPhonesTest : public ModemPhoneTest {
 protected:
  ~TwoPhonesTest() override { second = nullptr; }

  void beginBoth(const std::string& script, const std::string& scriptOfTheOther) {
    begin(script);
    other.plug(scriptOfTheOther);
    second = platform::make<ModemPhone>(
        rig.time, other.clock, rig.record, [this] { return rig.isHeard; }, std::make_unique<RigWire>(other),
        std::uint8_t{9});
    ASSERT_TRUE(other.step());
    other.modem->heard.clear();
  }
  // To the other one.
  std::shared_ptr<Sent> handToOther(StringView text) {
    auto sent = std::make_shared<Sent>();
    sent->request = second->send({u"", u"+46701234567", String(text)},
                                 [raw = sent.get()](std::int32_t code) { raw->result = hex(code); });
    return sent;
  }
  void workBoth() {
    rig.time.runDue();
    rig.work();
    other.work();
  }

  Rig other;
  Ref<ModemPhone> second;
};

TEST_F(TwoPhonesTest, MessageOnItsWayThroughTheOther_IsSentOnceAndBothAreToldItsResult) {
  beginBoth("like plain", "like plain");
  const auto first = hand(u"hellohello");
  const auto again = handToOther(u"hellohello");
  const auto different = handToOther(u"Hej");
  rig.time.runDue();
  other.work();
  EXPECT_EQ(first->result, "");
  EXPECT_EQ(again->result, "");
  EXPECT_EQ(different->result, "0");
  EXPECT_EQ(other.modem->heardOf("message").size(), 1u);
  rig.work();
  EXPECT_EQ(first->result, "0");
  EXPECT_EQ(again->result, "0");
  EXPECT_EQ(heardOf("message").size(), 1u);
  // And now it is a new message.
  const auto next = handToOther(u"hellohello");
  workBoth();
  EXPECT_EQ(next->result, "0");
  EXPECT_EQ(other.modem->heardOf("message").size(), 2u);
}

TEST_F(TwoPhonesTest, UnknownOutcomeOfTheOther_IsToldBothAndNotRepeatedByEither) {
  beginBoth("like plain\non message *\n  lose\n", "like plain");
  const auto first = hand(u"hellohello");
  const auto again = handToOther(u"hellohello");
  workBoth();
  EXPECT_EQ(first->result, "888800D2");
  EXPECT_EQ(again->result, "888800D2");
  const auto third = handToOther(u"hellohello");
  workBoth();
  EXPECT_EQ(third->result, "888800D2");
  EXPECT_EQ(other.modem->heardOf("message"), Lines());
}

TEST_F(TwoPhonesTest, OtherPulledOutBeforeItWasHandedIn_IsToldAndTheNextRequestSendsIt) {
  beginBoth("like plain", "like plain");
  const auto first = hand(u"hellohello");
  const auto again = handToOther(u"hellohello");
  rig.unplug();
  EXPECT_FALSE(rig.step());
  EXPECT_EQ(told, (std::vector{true, false}));
  EXPECT_EQ(first->result, "");
  EXPECT_EQ(again->result, "888800D1");
  const auto next = handToOther(u"hellohello");
  workBoth();
  EXPECT_EQ(next->result, "0");
  EXPECT_EQ(other.modem->heardOf("message").size(), 1u);
}

TEST_F(TwoPhonesTest, WaitingPhoneThatIsPulledOut_IsToldNothingAndTheOtherGoesOn) {
  beginBoth("like plain", "like plain");
  const auto first = hand(u"hellohello");
  const auto again = handToOther(u"hellohello");
  other.unplug();
  EXPECT_FALSE(other.step());
  rig.work();
  EXPECT_EQ(first->result, "0");
  EXPECT_EQ(again->result, "");
}

TEST_F(TwoPhonesTest, WaitingPhoneThatIsReleased_IsForgotten) {
  beginBoth("like plain", "like plain");
  const auto first = hand(u"hellohello");
  const auto again = handToOther(u"hellohello");
  second = nullptr;
  rig.work();
  EXPECT_EQ(first->result, "0");
  EXPECT_EQ(again->result, "");
}

// Whoever asked first has gone, but somebody was told: the same text is a new message.
TEST_F(TwoPhonesTest, ResultThatOnlyTheOthersAskerHears_IsToldAllTheSame) {
  beginBoth("like plain", "like plain");
  auto first = hand(u"hellohello");
  const auto again = handToOther(u"hellohello");
  first->request = nullptr;
  rig.work();
  EXPECT_EQ(first->result, "");
  EXPECT_EQ(again->result, "0");
  EXPECT_EQ(sent(u"hellohello"), "0");
  EXPECT_EQ(heardOf("message").size(), 2u);
}

TEST_F(TwoPhonesTest, ResultAfterThePatienceOfBoth_IsKeptForTheNextRequest) {
  beginBoth("like plain\non message *\n  pause 40000\n  say +CMGS: 7\n  say OK", "like plain");
  const auto first = hand(u"hellohello");
  const auto again = handToOther(u"hellohello");
  other.clock.pass(Milliseconds(40000));
  rig.work();
  EXPECT_EQ(first->result, "");
  EXPECT_EQ(again->result, "");
  const auto next = handToOther(u"hellohello");
  rig.time.runDue();
  EXPECT_EQ(next->result, "0");
  EXPECT_EQ(other.modem->heardOf("message"), Lines());
}

TEST_F(TwoPhonesTest, WithNobodyThereAnyMore_NeitherIsToldAndNoFailureIsCounted) {
  beginBoth("like plain\non message *\n  lose\n", "like plain");
  const auto first = hand(u"hellohello");
  const auto again = handToOther(u"hellohello");
  rig.isHeard = false;
  rig.work();
  EXPECT_EQ(first->result, "");
  EXPECT_EQ(again->result, "");
  EXPECT_NE(rig.notebook.text.find(" unknown 0 "), std::string::npos) << rig.notebook.text;
}

}  // namespace
