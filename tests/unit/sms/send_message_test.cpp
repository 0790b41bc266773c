// Handing one message to the phone: SendMessage.
#include "unit/sms/engine_fixture.h"

namespace sms_tests {
namespace {

using testing_support::Recorder;

class SendMessage : public EngineFixture {
 protected:
  SendMessage() { start(); }

  bool send(StringView text = u"Hello", StringView to = u"Anna [+46 70]") {
    return probe().SendMessage(u"ID-9", to, text);
  }
  Lines beginning(const std::string& number, const std::string& text) {
    return {"Inside Function SendMessage", "[SendMessage]EntryID:ID-9", "[SendMessage]To:" + number,
            "[SendMessage]MessageText:" + text};
  }
  // The number of parts that the guard was set to, by the trace and by the field.
  std::int32_t partsOf(const String& text) {
    clear();
    probe().state() = IDLE;
    EXPECT_TRUE(send(text));
    const std::string parts = std::to_string(probe().guardParts());
    EXPECT_EQ(trace().at(4), "Guard timmer set to [" + parts + "] parts");
    EXPECT_EQ(trace().at(5), "SetupGuard [" + std::to_string(probe().guardParts() * 25000) + "]ms");
    return probe().guardParts();
  }
};

TEST_F(SendMessage, Success_KeepsTheTransaction) {
  EXPECT_TRUE(send());
  Lines expected = beginning("+4670", "Hello");
  for (const char* line : {"Guard timmer set to [1] parts", "SetupGuard [25000]ms", "SetupGuard 2/3/2001",
                           "Add transaction, tranid: 17 type: 1", "Transaction ID = 17", "strEntryID = ID-9",
                           "Transaction type = 1", "Inside SendMessage Function - AddTransaction called"})
    expected.emplace_back(line);
  EXPECT_EQ(trace(), expected);
  const Ref<clsTransaction> transaction = probe().transactions()->Item(u"Key:17");
  EXPECT_EQ(transaction->EntryID, u"ID-9");
  EXPECT_EQ(transaction->TransactionType, enTransactionType::Send);
  EXPECT_EQ(probe().state(), STATE_SEND);
}

TEST_F(SendMessage, NotIdle_RefusesWithAnOrdinaryLine) {
  probe().state() = STATE_DELETE;
  EXPECT_FALSE(send());
  EXPECT_EQ(system.windows.traceLines(),
            (std::vector<testing_support::TraceLine>{{"mrktxtmsg", 2, "Inside Function SendMessage"},
                                                     {"mrktxtmsg", 2, "Error:5, Not in a IDLE state, SendMessage"}}));
  EXPECT_EQ(phone->calls(), Lines{});
}

TEST_F(SendMessage, NoPhone_IsFalseWithoutALine) {
  probe().cellPhone() = nullptr;
  EXPECT_FALSE(send());
  EXPECT_EQ(trace(), Lines{"Inside Function SendMessage"});
  EXPECT_EQ(probe().state(), IDLE);
}

TEST_F(SendMessage, PhoneNotAttached_IsFalseWithoutALine) {
  phone->value(u"IsConnected", false);
  EXPECT_FALSE(send());
  EXPECT_EQ(trace(), Lines{"Inside Function SendMessage"});
  EXPECT_EQ(created.size(), 0u);
}

TEST_F(SendMessage, NoNumber_IsFalseAfterTheThreeLines) {
  EXPECT_FALSE(send(u"Hello", u"Anna +46 70"));
  EXPECT_EQ(trace(), beginning("", "Hello"));
  EXPECT_EQ(created.size(), 0u);
}

TEST_F(SendMessage, NoSmsObject_IsFalseAfterTheThreeLines) {
  probe().sms() = nullptr;
  EXPECT_FALSE(send());
  EXPECT_EQ(trace(), beginning("+4670", "Hello"));
}

TEST_F(SendMessage, NoMessageObject_IsFalseAfterTheThreeLines) {
  sms->method(u"CreateShortMessage", [](Args) -> Variant { return Object(); });
  EXPECT_FALSE(send());
  EXPECT_EQ(trace(), beginning("+4670", "Hello"));
  EXPECT_EQ(probe().state(), IDLE);
  EXPECT_EQ(guardTimer().calls(), Lines{});
}

TEST_F(SendMessage, FailingMessageObject_IsLoggedAndIdle) {
  sms->fails(u"CreateShortMessage", RuntimeError(-2147023174, u"SMS", u"The RPC server is unavailable."));
  EXPECT_FALSE(send());
  Lines expected = beginning("+4670", "Hello");
  expected.emplace_back("Error:-2147023174, The RPC server is unavailable., SMS");
  EXPECT_EQ(trace(), expected);
  EXPECT_EQ(probe().state(), IDLE);
}

// Between the change of state and the end of the send an error leaves the state: only an answer, a connect notice or
// the guard brings the engine back.
TEST_F(SendMessage, ErrorAfterTheStateWasSet_LeavesItSet) {
  sms->method(u"CreateShortMessage", [this](Args) -> Variant {
    const auto message = testing_support::fake("ShortMessage");
    message->value(u"ServiceCentre", u"").value(u"Destination", u"").fails(u"Text", 5);
    created.push_back(message);
    return message->object();
  });
  EXPECT_FALSE(send());
  Lines expected = beginning("+4670", "Hello");
  for (const char* line : {"Guard timmer set to [1] parts", "SetupGuard [25000]ms", "SetupGuard 2/3/2001",
                           "Error:5, Invalid procedure call or argument, mrktxtmsg"})
    expected.emplace_back(line);
  EXPECT_EQ(trace(), expected);
  EXPECT_EQ(probe().state(), STATE_SEND);
  EXPECT_EQ(guardTimer().valueOf(u"Enabled"), Variant(true));
  EXPECT_EQ(probe().transactions()->Count(), 0);
}

TEST_F(SendMessage, NoGuardTimer_IsLoggedAndNothingIsSent) {
  probe().guardTimer() = nullptr;
  EXPECT_FALSE(send());
  Lines expected = beginning("+4670", "Hello");
  for (const char* line : {"Guard timmer set to [1] parts", "SetupGuard [25000]ms", "SetupGuard 2/3/2001",
                           "Error:6, No guard timer object, SetupGuard"})
    expected.emplace_back(line);
  EXPECT_EQ(trace(), expected);
  EXPECT_EQ(probe().state(), STATE_SEND);
  ASSERT_EQ(created.size(), 1u);
  EXPECT_EQ(created[0]->calls(), Lines{});
}

TEST_F(SendMessage, TransactionThatIsThereAlready_IsLoggedAndFalse) {
  probe().AddTransaction(17, u"ID-1", enTransactionType::Send);
  EXPECT_FALSE(send());
  EXPECT_EQ(trace().back(), "Error:457, This key is already associated with an element of this collection, mrktxtmsg");
  EXPECT_EQ(created[0]->calls().back(), "Send()");
  EXPECT_EQ(probe().state(), STATE_SEND);
}

TEST_F(SendMessage, WithoutTransactionCollection_IsSentAllTheSame) {
  probe().transactions() = nullptr;
  EXPECT_TRUE(send());
  EXPECT_EQ(lastOf(trace(), 2),
            (Lines{"Add transaction, tranid: 17 type: 1", "Inside SendMessage Function - AddTransaction called"}));
}

TEST_F(SendMessage, Parts_CountUtf16UnitsInSteps) {
  EXPECT_EQ(partsOf(u""), 1);
  EXPECT_EQ(partsOf(String(159, u'x')), 1);
  EXPECT_EQ(partsOf(String(160, u'x')), 2);
  EXPECT_EQ(partsOf(String(319, u'x')), 2);
  EXPECT_EQ(partsOf(String(320, u'x')), 3);
  String emoji;
  for (int i = 0; i < 80; ++i) emoji += u"\U0001F600";
  EXPECT_EQ(partsOf(emoji), 2) << "80 emoji are 160 units";
}

TEST_F(SendMessage, EmptyText_IsSent) {
  EXPECT_TRUE(send(u""));
  EXPECT_EQ(trace().at(3), "[SendMessage]MessageText:");
  EXPECT_EQ(created[0]->calls(),
            (Lines{"ServiceCentre = \"+46701740699\"", "Destination = \"+4670\"", "Text = \"\"", "Send()"}));
}

TEST_F(SendMessage, Text_GoesUnchanged) {
  const StringView text = u" Hej \r\n\x01 \xD800 \U0001F600 ";
  EXPECT_TRUE(send(text));
  EXPECT_EQ(created[0]->valueOf(u"Text"), Variant(text));
}

TEST_F(SendMessage, ServiceCentre_IsTheChosenOne) {
  system.registry.setString(rootCurrentUser, "Software\\Microsoft\\Office\\9.0\\Outlook\\Options\\TextMessage",
                            "SCAddress", "Operator (+46 705 008 999)");
  system.registry.setDword(rootCurrentUser, "Software\\Microsoft\\Office\\9.0\\Outlook\\Options\\TextMessage",
                           "SCAddress_UseOwn", 0);
  EXPECT_TRUE(send());
  EXPECT_EQ(created[0]->calls(),
            (Lines{"ServiceCentre = \"+46705008999\"", "Destination = \"+4670\"", "Text = \"Hello\"", "Send()"}));
}

TEST_F(SendMessage, AssistantOn_IsAnimatedBeforeTheStateIsSet) {
  assistant->value(u"On", true);
  std::int32_t stateThen = -1;
  assistant->script(u"Animation", [&](Access, Args) {
    stateThen = probe().state();
    return Variant();
  });
  Recorder recorder;
  EXPECT_TRUE(send());
  EXPECT_EQ(stateThen, IDLE);
  const Lines& lines = recorder.lines();
  EXPECT_EQ(firstOf(lines, 12), (Lines{"Phone.IsConnected", "SMS.CreateShortMessage()", "Application.Assistant",
                                       "Assistant.On", "Application.Assistant", "Assistant.On", "Assistant.Visible",
                                       "Application.Assistant", "Assistant.On = True", "Assistant.Visible = True",
                                       "Assistant.MoveWhenInTheWay = True", "Assistant.Animation = 23"}));
}

TEST_F(SendMessage, AssistantOff_IsLeftAlone) {
  EXPECT_TRUE(send());
  EXPECT_EQ(assistant->calls(), Lines{"On"});
}

TEST_F(SendMessage, MissingAssistant_CountsAsOff) {
  application->fails(u"Assistant", 438);
  EXPECT_TRUE(send());
}

// A call into another process may serve a message of this one; the engine's fields may be others afterwards.
TEST_F(SendMessage, TickInsideACall_DoesNotChangeTheMessageOnItsWay) {
  const auto first = addItem(outbox, u"Anna [11]", u"First");
  bool nested = false;
  guardTimer().script(u"Resolution", [&](Access, Args) {
    if (!std::exchange(nested, true)) {
      outbox.contents.insert(outbox.contents.begin(), newItem(u"Bo [22]", String(3000, u'x')));
      outbox.contents.front()->value(u"EntryID", String(500, u'e'));
      tick(sendTimer(), 500);
    }
    return Variant();
  });
  tick(sendTimer(), 500);
  EXPECT_TRUE(nested);
  ASSERT_EQ(created.size(), 1u) << "the nested tick found the engine busy";
  EXPECT_EQ(created[0]->valueOf(u"Text"), Variant(u"First"));
  EXPECT_EQ(probe().transactions()->Item(u"Key:17")->EntryID, u"ID-1");
  EXPECT_EQ(outbox.contents[0]->valueOf(u"Mileage"), Variant(u"1"));
  EXPECT_EQ(first->valueOf(u"Mileage"), Variant(u""));
}

}  // namespace
}  // namespace sms_tests
