// The engine's properties, and what it is before InitCAPIObjects.
#include "unit/sms/engine_fixture.h"

namespace sms_tests {
namespace {

using testing_support::fake;
using testing_support::Recorder;

class Properties : public EngineFixture {};

TEST_F(Properties, FreshEngine_IsEmptyAndZero) {
  EXPECT_FALSE(handler().IsPhoneConnected());
  EXPECT_FALSE(handler().Inbox());
  EXPECT_FALSE(handler().Outbox());
  EXPECT_FALSE(handler().SentMail());
  EXPECT_FALSE(handler().OutlookApplication());
  EXPECT_EQ(probe().state(), IDLE);
  EXPECT_FALSE(probe().receiveAllFlag());
  EXPECT_EQ(probe().usedSimMemory(), 0);
  EXPECT_EQ(probe().maxSimCapacity(), 0);
  EXPECT_EQ(probe().phoneConnected(), 0);
  EXPECT_EQ(probe().guardParts(), 0);
  EXPECT_EQ(probe().deleteStatus(), 0);
  EXPECT_EQ(probe().entryId(), u"");
  EXPECT_FALSE(probe().transactions());
  EXPECT_FALSE(probe().timeOut());
  EXPECT_EQ(system.objects.asked, std::vector<String>{});
  EXPECT_EQ(trace(), Lines{});
}

TEST_F(Properties, NoticeTexts_HaveEnglishDefaults) {
  EXPECT_EQ(probe().assistantTitle(), u"Text Message Service");
  EXPECT_EQ(probe().assistantHeading(), u"No phone is available to send text messages.");
  EXPECT_EQ(probe().assistantLabel(), u"The text message has been put in your outbox.");
}

TEST_F(Properties, NoticeTexts_AreStored) {
  handler().SetAssistantTitle(u"Titel");
  handler().SetAssistantHeading(u"Rubrik");
  handler().SetAssistantLabel(u"Etikett");
  EXPECT_EQ(probe().assistantTitle(), u"Titel");
  EXPECT_EQ(probe().assistantHeading(), u"Rubrik");
  EXPECT_EQ(probe().assistantLabel(), u"Etikett");
}

TEST_F(Properties, PlainFolders_AreStoredAndNothingIsAskedOfThem) {
  Recorder recorder;
  handler().Inbox(inbox.facade());
  handler().SentMail(sentMail.facade());
  handler().Contacts(contacts.facade());
  EXPECT_EQ(Object(handler().Inbox()), inbox.folder->object());
  EXPECT_EQ(Object(handler().SentMail()), sentMail.folder->object());
  EXPECT_EQ(Object(probe().contacts()), contacts.folder->object());
  EXPECT_EQ(recorder.lines(), Lines{});
}

TEST_F(Properties, Outbox_BindsItsItems) {
  Recorder recorder;
  handler().Outbox(outbox.facade());
  EXPECT_EQ(recorder.lines(), (Lines{"Outbox.Items", "connect Outbox.Items"}));
  EXPECT_EQ(Object(handler().Outbox()), outbox.folder->object());
  EXPECT_EQ(Object(probe().outboxItems().get()), outbox.items->object());
  EXPECT_EQ(outbox.items->listeners(), 1u);
}

TEST_F(Properties, DeletedItems_BindsItsItems) {
  Recorder recorder;
  handler().DeletedItems(deletedItems.facade());
  EXPECT_EQ(recorder.lines(), (Lines{"Deleted Items.Items", "connect Deleted Items.Items"}));
  EXPECT_EQ(Object(probe().deletedItems()), deletedItems.folder->object());
  EXPECT_EQ(deletedItems.items->listeners(), 1u);
}

TEST_F(Properties, AnotherOutbox_ReplacesTheFirst) {
  handler().Outbox(outbox.facade());
  handler().Outbox(sentMail.facade());
  EXPECT_EQ(outbox.items->listeners(), 0u);
  EXPECT_EQ(sentMail.items->listeners(), 1u);
}

TEST_F(Properties, ReadingDeletedItems_GivesNothingAndTurnsTheInboxIntoIt) {
  giveFolders();
  Recorder recorder;
  EXPECT_FALSE(handler().DeletedItems());
  EXPECT_EQ(Object(handler().Inbox()), deletedItems.folder->object());
  EXPECT_EQ(Object(probe().deletedItems()), deletedItems.folder->object());
  EXPECT_EQ(recorder.lines(), Lines{});
  EXPECT_EQ(trace(), Lines{});
}

TEST_F(Properties, OutlookApplication_TakesNamespaceAndAssistantState) {
  assistant->value(u"On", true).value(u"Visible", true);
  Recorder recorder;
  handler().OutlookApplication(application->as<outlook::Application>());
  EXPECT_EQ(recorder.lines(), (Lines{"Application.GetNamespace(\"MAPI\")", "Application.Assistant", "Assistant.On",
                                     "Assistant.Visible"}));
  EXPECT_EQ(Object(handler().OutlookApplication()), application->object());
  EXPECT_EQ(Object(probe().nameSpace()), nameSpace->object());
  EXPECT_TRUE(probe().assistantOn());
  EXPECT_TRUE(probe().assistantVisible());
}

TEST_F(Properties, AssistantStates_AreKeptApart) {
  assistant->value(u"On", true).value(u"Visible", false);
  handler().OutlookApplication(application->as<outlook::Application>());
  EXPECT_TRUE(probe().assistantOn());
  EXPECT_FALSE(probe().assistantVisible());
}

TEST_F(Properties, MissingAssistant_CountsAsOff) {
  application->fails(u"Assistant", 438);
  handler().OutlookApplication(application->as<outlook::Application>());
  EXPECT_FALSE(probe().assistantOn());
  EXPECT_FALSE(probe().assistantVisible());
  EXPECT_EQ(trace(), Lines{});
  EXPECT_EQ(Object(probe().nameSpace()), nameSpace->object());
}

TEST_F(Properties, AssistantThatIsNothing_CountsAsOff) {
  application->value(u"Assistant", Object());
  handler().OutlookApplication(application->as<outlook::Application>());
  EXPECT_FALSE(probe().assistantOn());
  EXPECT_EQ(trace(), Lines{});
}

TEST_F(Properties, FailingSetters_NeverReportFailure) {
  outbox.folder->fails(u"Items", RuntimeError(-2147221233, u"Outlook", u"Gone"));
  EXPECT_NO_THROW(handler().Outbox(outbox.facade()));
  EXPECT_NO_THROW(handler().DeletedItems(outbox.facade()));
  application->fails(u"GetNamespace", 5);
  EXPECT_NO_THROW(handler().OutlookApplication(application->as<outlook::Application>()));
  EXPECT_EQ(trace(), (Lines{"Error:-2147221233, Gone, Outlook", "Error:-2147221233, Gone, Outlook",
                            "Error:5, Invalid procedure call or argument, mrktxtmsg"}));
  EXPECT_EQ(Object(handler().Outbox()), outbox.folder->object()) << "stored before its items were asked for";
  EXPECT_EQ(Object(handler().OutlookApplication()), application->object());
}

TEST_F(Properties, FolderThatIsNothing_IsStoredAndLogged) {
  giveFolders();
  clear();
  handler().Outbox({});
  EXPECT_FALSE(handler().Outbox());
  EXPECT_EQ(trace(), Lines{"Error:91, Object variable or With block variable not set, mrktxtmsg"});
}

TEST_F(Properties, IsPhoneConnected_FollowsTheSmsObjectAlone) {
  probe().phoneConnected() = 1;
  EXPECT_FALSE(handler().IsPhoneConnected());
  probe().sms() = sms->as<sms_objectlib::SMS>();
  probe().phoneConnected() = 0;
  EXPECT_TRUE(handler().IsPhoneConnected());
}

}  // namespace
}  // namespace sms_tests
