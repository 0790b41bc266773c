// An item that comes into the Outbox, and the Office Assistant.
#include "unit/sms/engine_fixture.h"

namespace sms_tests {
namespace {

using testing_support::Recorder;

const std::string triggered = "m_objOutboxItems_ItemAdd, trigger a sendall";

class OutboxItemAdded : public EngineFixture {
 protected:
  OutboxItemAdded() { start(); }
  void withoutPhone() {
    notifyConnected(0, Object());
    clear();
  }
  bool balloonShown() { return !balloon->calls().empty(); }
};

TEST_F(OutboxItemAdded, WithPhone_SendsAll) {
  Recorder recorder;
  arrive(outbox, newItem(u"Anna [1]", u"Hello"));
  EXPECT_EQ(trace(), (Lines{triggered, "Inside Function SendAll", "SetupSendMessage: 1000000", "SendAll = True",
                            "SetupSendMessage: 1000000"}));
  EXPECT_EQ(recorder.lines().at(0), "Item ID-1.MessageClass");
  EXPECT_EQ(recorder.linesWith("SendTimer.").size(), 10u);
}

TEST_F(OutboxItemAdded, OfAnotherClass_SendsAllToo) {
  arrive(outbox, newItem(u"Anna [1]", u"Hello", u"IPM.Note"));
  EXPECT_EQ(trace().size(), 5u);
  EXPECT_EQ(trace().at(0), triggered);
  EXPECT_EQ(sendTimer().calls().size(), 10u);
}

class OutboxItemAddedWhileBusy : public OutboxItemAdded, public ::testing::WithParamInterface<std::int32_t> {};

TEST_P(OutboxItemAddedWhileBusy, IsIgnored) {
  probe().state() = GetParam();
  const auto item = newItem(u"Anna [1]", u"Hello");
  arrive(outbox, item);
  EXPECT_EQ(trace(), Lines{});
  EXPECT_EQ(item->calls(), Lines{});
  EXPECT_EQ(sendTimer().calls(), Lines{});
}
INSTANTIATE_TEST_SUITE_P(States, OutboxItemAddedWhileBusy, ::testing::Values(STATE_LIST, STATE_SEND, STATE_DELETE));

TEST_F(OutboxItemAdded, NoItem_IsIgnored) {
  outbox.items->fire(outlook::ItemsEvents::ItemAdd, Object());
  EXPECT_EQ(trace(), Lines{});
}

TEST_F(OutboxItemAdded, WithoutPhoneAndAssistantOff_OnlyTraces) {
  withoutPhone();
  arrive(outbox, newItem(u"Anna [1]", u"Hello"));
  EXPECT_EQ(trace(), Lines{triggered});
  EXPECT_FALSE(balloonShown());
}

TEST_F(OutboxItemAdded, WithoutPhoneAndAssistantOn_ShowsTheBalloon) {
  withoutPhone();
  handler().SetAssistantTitle(u"Title");
  handler().SetAssistantHeading(u"Heading");
  handler().SetAssistantLabel(u"Label");
  assistant->value(u"On", true);
  Recorder recorder;
  arrive(outbox, newItem(u"Anna [1]", u"Hello"));
  EXPECT_EQ(trace(), Lines{triggered});
  EXPECT_EQ(recorder.lines(), (Lines{"Item ID-1.MessageClass",
                                     "Application.Assistant",
                                     "Assistant.On",
                                     "Application.Assistant",
                                     "Assistant.On",
                                     "Assistant.Visible",
                                     "Application.Assistant",
                                     "Assistant.On = True",
                                     "Assistant.Visible = True",
                                     "Assistant.MoveWhenInTheWay = True",
                                     "Assistant.NewBalloon",
                                     "Balloon.BalloonType = 1",
                                     "Balloon.Heading = \"Title\"",
                                     "Balloon.Text = \"Heading\"",
                                     "Balloon.Labels",
                                     "BalloonLabels.Item(1)",
                                     "BalloonLabel.Text = \"Label\"",
                                     "Balloon.Button = 1",
                                     "Balloon.Icon = 4",
                                     "Balloon.Show()",
                                     "Assistant.Visible = False",
                                     "Assistant.On = True"}));
}

TEST_F(OutboxItemAdded, OfAnotherClassWithoutPhone_ShowsNoBalloon) {
  withoutPhone();
  assistant->value(u"On", true);
  arrive(outbox, newItem(u"Anna [1]", u"Hello", u"IPM.Note"));
  EXPECT_FALSE(balloonShown());
}

TEST_F(OutboxItemAdded, ClassInOtherCase_ShowsNoBalloon) {
  withoutPhone();
  assistant->value(u"On", true);
  arrive(outbox, newItem(u"Anna [1]", u"Hello", u"ipm.note.txtmsg"));
  EXPECT_FALSE(balloonShown());
}

TEST_F(OutboxItemAdded, WithPhoneAndAssistantOn_ShowsNoBalloon) {
  assistant->value(u"On", true);
  arrive(outbox, newItem(u"Anna [1]", u"Hello"));
  EXPECT_FALSE(balloonShown());
  EXPECT_EQ(trace().at(1), "Inside Function SendAll");
}

// The balloon is closed by the user, who may have plugged in a phone meanwhile: it is asked for again.
TEST_F(OutboxItemAdded, PhoneComesWhileTheBalloonIsOpen_SendsAll) {
  withoutPhone();
  assistant->value(u"On", true);
  balloon->method(u"Show", [this](Args) -> Variant {
    notifyConnected(1, phone->object());
    return -1;
  });
  arrive(outbox, newItem(u"Anna [1]", u"Hello"));
  EXPECT_EQ(trace(), (Lines{triggered, "m_bPhoneConnected = 1", "New phone connected!", "Use new phone",
                            "Inside Function SendAll", "SetupSendMessage: 1000000", "SendAll = True",
                            "SetupSendMessage: 1000000"}));
}

TEST_F(OutboxItemAdded, ItemWithoutAClass_IsLoggedAndNothingIsSent) {
  const auto item = newItem(u"Anna [1]", u"Hello");
  item->removed(u"MessageClass");
  outbox.items->fire(outlook::ItemsEvents::ItemAdd, item->object());
  EXPECT_EQ(trace(), (Lines{triggered, "Error:438, Object doesn't support this property or method, mrktxtmsg"}));
  EXPECT_EQ(sendTimer().calls(), Lines{});
}

// ---- the Assistant --------------------------------------------------------------------------------------------------

class AssistantFeedback : public EngineFixture {
 protected:
  AssistantFeedback() { start(); }
};

TEST_F(AssistantFeedback, Start_SavesAndAnimates) {
  assistant->value(u"On", false).value(u"Visible", true);
  probe().StartAssistantAnimation();
  EXPECT_EQ(assistant->calls(),
            (Lines{"On", "Visible", "On = True", "Visible = True", "MoveWhenInTheWay = True", "Animation = 23"}));
  EXPECT_FALSE(probe().assistantOn());
  EXPECT_TRUE(probe().assistantVisible());
}

TEST_F(AssistantFeedback, Stop_RestoresWhatWasSaved) {
  probe().assistantOn() = true;
  probe().assistantVisible() = false;
  probe().StopAssistantAnimation();
  EXPECT_EQ(assistant->calls(), (Lines{"Animation = 1", "Visible = False", "On = True"}));
}

TEST_F(AssistantFeedback, WithoutApplication_NothingIsDone) {
  probe().application() = nullptr;
  probe().assistantOn() = true;
  probe().StartAssistantAnimation();
  EXPECT_EQ(assistant->calls(), Lines{});
  EXPECT_TRUE(probe().assistantOn()) << "nothing was saved";
  EXPECT_NO_THROW(probe().StopAssistantAnimation());
  EXPECT_NO_THROW(probe().ShowAssistantBalloon(u"a", u"b", u"c"));
  EXPECT_EQ(trace(), Lines{});
}

TEST_F(AssistantFeedback, FailingSteps_AreIgnoredAndTheNextOneRuns) {
  assistant->fails(u"MoveWhenInTheWay", 5).fails(u"On", 5);
  probe().StartAssistantAnimation();
  EXPECT_EQ(lastOf(assistant->calls(), 4),
            (Lines{"On = True", "Visible = True", "MoveWhenInTheWay = True", "Animation = 23"}));
  assistant->fails(u"Animation", 5).fails(u"Visible", 5);
  assistant->clearCalls();
  probe().StopAssistantAnimation();
  EXPECT_EQ(assistant->calls(), (Lines{"Animation = 1", "Visible = False", "On = False"}));
  EXPECT_EQ(trace(), Lines{});
}

// Whether it is visible is asked for though the question whether it is on has failed.
TEST_F(AssistantFeedback, OnThatFails_CountsAsOffAndVisibleIsSavedAllTheSame) {
  assistant->value(u"Visible", true).fails(u"On", 5);
  probe().assistantOn() = true;
  probe().StartAssistantAnimation();
  EXPECT_EQ(assistant->calls(),
            (Lines{"On", "Visible", "On = True", "Visible = True", "MoveWhenInTheWay = True", "Animation = 23"}));
  EXPECT_FALSE(probe().assistantOn());
  EXPECT_TRUE(probe().assistantVisible());
  EXPECT_EQ(trace(), Lines{});
}

TEST_F(AssistantFeedback, BalloonThatFails_IsIgnoredAndTheStateRestored) {
  assistant->value(u"On", true).value(u"Visible", true);
  balloon->fails(u"Labels", 438).fails(u"Show", 5).fails(u"Heading", 5);
  probe().ShowAssistantBalloon(u"a", u"b", u"c");
  EXPECT_EQ(balloon->calls(), (Lines{"BalloonType = 1", "Heading = \"a\"", "Text = \"b\"", "Labels", "Button = 1",
                                     "Icon = 4", "Show()"}));
  EXPECT_EQ(lastOf(assistant->calls(), 2), (Lines{"Visible = True", "On = True"}));
  EXPECT_EQ(trace(), Lines{});
}

}  // namespace
}  // namespace sms_tests
