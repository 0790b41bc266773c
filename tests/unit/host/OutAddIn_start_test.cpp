// Start-up steps, what survives a failure in each, and tear-down.

#include "unit/host/host_fixture.h"

namespace addin {
namespace {

class StartUp : public HostFixture {
 protected:
  void init() {
    addIn->InitHandler(application->as<outlook::Application>(), u"mrktxtmsg.connect");
    system.windows.clearTrace();
  }
};

TEST_F(StartUp, InitHandler_TakesItsReferencesInOrder) {
  addIn->InitHandler(application->as<outlook::Application>(), u"x");
  EXPECT_EQ(application->calls(), (Lines{"connect", "GetNamespace(\"MAPI\")", "Explorers", "Inspectors",
                                         "ActiveExplorer()", "ActiveExplorer()"}));
  EXPECT_EQ(explorers->listeners(), 1u);
  EXPECT_EQ(inspectors->listeners(), 1u);
  EXPECT_EQ(explorer->listeners(), 1u);
  EXPECT_TRUE(ModuleApplication() == application->object());
  addIn->UnInitHandler();
}

TEST_F(StartUp, InitHandler_FailingStep_StopsThereUnderItsOwnPrefix) {
  application->fails(u"Explorers", RuntimeError(-2147467259, u"Outlook", u"Unspecified error"));
  init();
  addIn->InitHandler(application->as<outlook::Application>(), u"x");
  EXPECT_EQ(newTrace(), (Lines{"InitHandler Error:-2147467259, Unspecified error, Outlook"}));
  EXPECT_EQ(inspectors->listeners(), 0u);
  EXPECT_TRUE(buttons.empty());
  EXPECT_EQ(application->listeners(), 1u);  // what came before the failing step stays
  addIn->UnInitHandler();
}

TEST_F(StartUp, StartUpCompleted_RunsAfterAFailedInitHandlerToo) {
  application->fails(u"GetNamespace", 70);
  init();
  EXPECT_TRUE(addIn->StartUpCompleted());
  EXPECT_EQ(nameSpace->calls(), Lines{});  // no namespace: the engine gets no folders
  EXPECT_EQ(timers.size(), 3u);
  addIn->UnInitHandler();
}

TEST_F(StartUp, StartUpCompleted_EngineBeforeFoldersBeforeTimerBeforeForm) {
  init();
  system.objects.asked.clear();
  Recorder recorder;
  EXPECT_TRUE(addIn->StartUpCompleted());
  const Lines folderCalls = recorder.linesWith("GetDefaultFolder");
  EXPECT_EQ(folderCalls,
            (Lines{"NameSpace.GetDefaultFolder(6)", "NameSpace.GetDefaultFolder(3)", "NameSpace.GetDefaultFolder(4)",
                   "NameSpace.GetDefaultFolder(5)", "NameSpace.GetDefaultFolder(10)"}));
  // The engine takes its namespace and the Assistant from the Application, after the folders.
  EXPECT_EQ(recorder.linesWith("Application."),
            (Lines{"Application.GetNamespace(\"MAPI\")", "Application.Assistant -> error 438",
                   "Application.CreateItemFromTemplate(\"C:\\Program Files\\Marrick\\mrktxtmsg.oft\")"}));
  EXPECT_EQ(system.objects.asked,
            (std::vector<String>{u"timermm.Timer", u"timermm.Timer", u"Mrktxtmsghelper.TxtMsg", u"DVMWorker.Worker",
                                 u"mrktxtmsgres.localizer", u"timermm.Timer"}));
  addIn->UnInitHandler();
}

TEST_F(StartUp, InitHandler_AfterATearDown_CanStartAgain) {
  start();
  addIn->UnInitHandler();
  init();
  EXPECT_TRUE(addIn->StartUpCompleted());
  EXPECT_EQ(timers.back()->valueOf(u"Enabled"), Variant(true));
  addIn->UnInitHandler();
}

TEST_F(StartUp, StartUpCompleted_FailedEngineStep_SkipsTimerAndForm) {
  nameSpace->fails(u"GetDefaultFolder", RuntimeError(-2147221233, u"Outlook", u"Not found"));
  init();
  EXPECT_FALSE(addIn->StartUpCompleted());
  const Lines lines = newTrace();
  EXPECT_EQ(Lines(lines.end() - 2, lines.end()), (Lines{"Error:-2147221233, Not found, Outlook",
                                                        "Error:-1, Failed to setup sms handler, StartUpCompleted"}));
  EXPECT_EQ(timers.size(), 2u);
  EXPECT_EQ(form->calls(), Lines{});
  addIn->UnInitHandler();
}

TEST_F(StartUp, StartUpCompleted_FailedTimerStep_GivesItsLineAndItsCallersLine) {
  setOption("SendReceive_UseAuto", "yes");
  init();
  EXPECT_FALSE(addIn->StartUpCompleted());
  const Lines lines = newTrace();
  EXPECT_EQ(Lines(lines.end() - 2, lines.end()),
            (Lines{"Error:13, Type mismatch, mrktxtmsg", "Error:-1, Failed to setup timer, StartUpCompleted"}));
  EXPECT_EQ(form->calls(), Lines{});
  addIn->UnInitHandler();
}

TEST_F(StartUp, FailedTimerStep_GivesThreeLinesInAll) {
  setOption("SendReceive_AutoIntervall", "soon");
  const auto entry = make<connect>();
  entry->OnConnection(application->object(), 1, addInInst->object(), {});
  const Lines lines = newTrace();
  EXPECT_EQ(Lines(lines.end() - 3, lines.end()),
            (Lines{"Error:13, Type mismatch, mrktxtmsg", "Error:-1, Failed to setup timer, StartUpCompleted",
                   "Error:-1, Failed in baseclass.StartUpCompleted, IDTExtensibility2_OnConnection"}));
  entry->OnDisconnection(0, {});
}

TEST_F(StartUp, WizardDone_ReadsItsRootOnly) {
  system.registry.deleteValue(rootCurrentUser, optionsKey, "WizardDone");
  system.registry.setDword(rootLocalMachine, optionsKey, "WizardDone", 1);
  EXPECT_EQ(addIn->WizardDone(), 0);
  setOption("WizardDone", "1");
  EXPECT_EQ(addIn->WizardDone(), 1);
  setOption("WizardDone", "");
  EXPECT_EQ(addIn->WizardDone(), 0);
  setOption("WizardDone", "done");
  EXPECT_EQ(addIn->WizardDone(), 0);
  EXPECT_EQ(newTrace(), (Lines{"Error:13, Type mismatch, mrktxtmsg"}));
}

TEST_F(StartUp, Localizer_Missing_LogsPerReadingAndTriesAgain) {
  EXPECT_FALSE(addIn->Localizer());
  EXPECT_FALSE(addIn->Localizer());
  EXPECT_EQ(newTrace(), (Lines{noLocalizer, noLocalizer}));
  system.objects.provide(u"mrktxtmsgres.localizer", [] { return fake("Localizer")->object(); });
  const auto made = addIn->Localizer();
  EXPECT_TRUE(made);
  EXPECT_TRUE(addIn->Localizer() == made);
  EXPECT_EQ(system.objects.asked.size(), 3u);  // created once and kept
  EXPECT_EQ(newTrace(), Lines{});
}

TEST_F(StartUp, SetupSMSHandler_WithLocalizer_AsksForTheThreeNoticeTexts) {
  const auto localizer = fake("Localizer");
  localizer->method(u"getlocalizedresstring", [](Args a) { return a[1]; });
  system.objects.provide(u"mrktxtmsgres.localizer", [&] { return localizer->object(); });
  EXPECT_TRUE(addIn->SetupSMSHandler());
  EXPECT_EQ(localizer->calls(),
            (Lines{"getlocalizedresstring(421, \"Text Message Service\")",
                   "getlocalizedresstring(422, \"No phone is available to send text messages.\")",
                   "getlocalizedresstring(423, \"The text message has been put in your outbox.\")"}));
}

TEST_F(StartUp, SetupSMSHandler_WithLocalizer_GivesTheEngineEachTextInItsPlace) {
  const auto localizer = fake("Localizer");
  localizer->method(u"getlocalizedresstring", [](Args a) { return Variant(concat(u"L", CLng(a[0]))); });
  system.objects.provide(u"mrktxtmsgres.localizer", [&] { return localizer->object(); });
  const auto label = fake("Label");
  const auto labels = fake("Labels");
  const auto balloon = fake("Balloon");
  const auto assistant = fake("Assistant");
  label->value(u"Text", u"");
  labels->method(u"Item", [&](Args) { return Variant(label->object()); });
  balloon->value(u"Heading", u"").value(u"Text", u"").value(u"Labels", labels->object());
  assistant->value(u"On", true).value(u"NewBalloon", balloon->object());
  application->value(u"Assistant", assistant->object());
  const auto outbox = fake("Outbox items");
  folder(4).value(u"Items", outbox->object());
  start();

  const auto message = fake("Message");
  message->value(u"MessageClass", u"IPM.Note.TxtMsg");
  outbox->fire(outlook::ItemsEvents::ItemAdd, message->object());  // without a phone, the user is told
  EXPECT_EQ(balloon->valueOf(u"Heading"), Variant(u"L421"));
  EXPECT_EQ(balloon->valueOf(u"Text"), Variant(u"L422"));
  EXPECT_EQ(label->valueOf(u"Text"), Variant(u"L423"));
  addIn->UnInitHandler();
}

TEST_F(StartUp, SetupSMSHandler_Again_ReplacesTheEngine) {
  init();
  EXPECT_TRUE(addIn->SetupSMSHandler());
  EXPECT_TRUE(addIn->SetupSMSHandler());
  ASSERT_EQ(timers.size(), 4u);
  EXPECT_EQ(timers[0]->listeners(), 0u);
  EXPECT_EQ(timers[1]->listeners(), 0u);
  EXPECT_EQ(timers[2]->listeners(), 1u);
  EXPECT_EQ(timers[3]->listeners(), 1u);
  addIn->UnInitHandler();
}

TEST_F(StartUp, SetupSMSHandler_WithPhone_EnablesTheButtonBeforeFoldersAreHandedOver) {
  providePhone();
  init();
  Recorder recorder;
  EXPECT_TRUE(addIn->SetupSMSHandler());
  const Lines order = recorder.lines();
  const auto enabled = std::find(order.begin(), order.end(), "Button Send & Receive Text Message.Enabled = True");
  const auto folders6 = std::find(order.begin(), order.end(), "NameSpace.GetDefaultFolder(6)");
  ASSERT_NE(enabled, order.end());
  ASSERT_NE(folders6, order.end());
  EXPECT_LT(enabled - order.begin(), folders6 - order.begin());
  addIn->UnInitHandler();
}

TEST_F(StartUp, SetupTimer_SetsItsPropertiesInOrder) {
  EXPECT_TRUE(addIn->SetupTimer());
  ASSERT_EQ(timers.size(), 1u);
  EXPECT_EQ(timers[0]->calls(),
            (Lines{"connect", "Resolution = 1000", "Interval = 60000", "Periodic = 1", "Enabled = True"}));
}

TEST_F(StartUp, SetupTimer_Again_DisablesTheOldTimerFirst) {
  EXPECT_TRUE(addIn->SetupTimer());
  timers[0]->clearCalls();
  EXPECT_TRUE(addIn->SetupTimer());
  EXPECT_EQ(timers[0]->calls(), (Lines{"Enabled = False"}));
  EXPECT_EQ(timers[0]->listeners(), 0u);
  EXPECT_EQ(timers[1]->valueOf(u"Enabled"), Variant(true));
}

TEST_F(StartUp, SetupTimer_Off_CreatesNoneAndLeavesAnEarlierOne) {
  EXPECT_TRUE(addIn->SetupTimer());
  for (const std::string off : {"False", "FALSE", "0", "#FALSE#"}) {
    setOption("SendReceive_UseAuto", off);
    EXPECT_TRUE(addIn->SetupTimer()) << off;
  }
  setOption("SendReceive_UseAuto", 0u);
  EXPECT_TRUE(addIn->SetupTimer());
  EXPECT_EQ(timers.size(), 1u);
  EXPECT_EQ(timers[0]->valueOf(u"Enabled"), Variant(true));
  EXPECT_EQ(timers[0]->listeners(), 1u);
}

TEST_F(StartUp, SetupTimer_Off_ReadsTheIntervalAllTheSame) {
  setOption("SendReceive_UseAuto", 0u);
  setOption("SendReceive_AutoIntervall", "soon");
  EXPECT_FALSE(addIn->SetupTimer());
  setOption("SendReceive_AutoIntervall", "2147483648");
  EXPECT_FALSE(addIn->SetupTimer());
  EXPECT_EQ(newTrace(), (Lines{"Error:13, Type mismatch, mrktxtmsg", "Error:6, Overflow, mrktxtmsg"}));
}

TEST_F(StartUp, SetupTimer_OldTimerThatCannotBeDisabled_IsAFailedStep) {
  EXPECT_TRUE(addIn->SetupTimer());
  timers[0]->fails(u"Enabled", RuntimeError(70, u"timermm", u"Permission denied"));
  EXPECT_FALSE(addIn->SetupTimer());
  EXPECT_EQ(newTrace(), (Lines{"Error:70, Permission denied, timermm"}));
  EXPECT_EQ(timers.size(), 1u);
  EXPECT_EQ(timers[0]->listeners(), 1u);
}

TEST_F(StartUp, SetupTimer_On_InEveryForm) {
  std::size_t made = 0;
  for (const std::string on : {"True", "tRUE", "1", "-1", "0.4", ""}) {
    setOption("SendReceive_UseAuto", on);
    EXPECT_TRUE(addIn->SetupTimer()) << on;
    EXPECT_EQ(timers.size(), ++made) << on;
  }
  system.registry.deleteValue(rootCurrentUser, optionsKey, "SendReceive_UseAuto");
  EXPECT_TRUE(addIn->SetupTimer());
  EXPECT_EQ(timers.size(), ++made);
}

TEST_F(StartUp, SetupTimer_TimerThatCannotBeCreated_IsAFailedStep) {
  system.objects.withdraw(timermm::progIdTimer);
  EXPECT_FALSE(addIn->SetupTimer());
  EXPECT_EQ(newTrace(), (Lines{noLocalizer}));  // the same words: error 429
}

TEST_F(StartUp, PublishForm_NamesAndPublishesToThePersonalRegistry) {
  init();
  application->clearCalls();
  EXPECT_TRUE(addIn->PublishForm());
  EXPECT_EQ(application->calls(), (Lines{"CreateItemFromTemplate(\"C:\\Program Files\\Marrick\\mrktxtmsg.oft\")"}));
  EXPECT_EQ(form->calls(), (Lines{"DisplayName = \"TxtMsg\"", "Name = \"TxtMsg\"", "PublishForm(2)"}));
  addIn->UnInitHandler();
}

TEST_F(StartUp, PublishForm_BeforeInitHandler_IsError91) {
  EXPECT_FALSE(addIn->PublishForm());
  EXPECT_EQ(newTrace(), (Lines{"Error:91, Object variable or With block variable not set, mrktxtmsg"}));
}

TEST_F(StartUp, UnInitHandler_ReleasesInOrder) {
  providePhone();
  init();
  ASSERT_TRUE(addIn->StartUpCompleted());
  newTrace();
  Recorder recorder;
  addIn->UnInitHandler();
  EXPECT_EQ(newTrace(), (Lines{"Removed new button", "Removed send&receive button", "Removed delete button",
                               "Removed Help button"}));
  EXPECT_EQ(recorder.lines(),
            (Lines{"Button New Text Message.Delete()", "Button Send & Receive Text Message.Delete()",
                   "Button About Text Message Add-In.Delete()", "Button Text Message Add-In Help.Delete()",
                   "Timer 3.Enabled = False",     // the polling timer
                   "Timer 2.Enabled = False",     // then the engine: its guard timer
                   "Timer 1.Enabled = False"}));  // and its send timer
  for (const auto& object : {application, explorers, inspectors, explorer, worker, sms})
    EXPECT_EQ(object->listeners(), 0u) << object->label();
  EXPECT_FALSE(ModuleApplication());
  EXPECT_EQ(button("New Text Message").listeners(), 1u);  // the button fields go with the object
  addIn = nullptr;
  EXPECT_EQ(button("New Text Message").listeners(), 0u);
}

// The mail client's objects are held by the add-in alone here, so that the end of each shows when it was let go.
TEST_F(StartUp, UnInitHandler_EmptiesItsReferencesInOrder) {
  Lines gone;
  std::map<std::string, Ref<FakeObject>> own;
  for (const std::string label : {"Item", "Inspector", "Explorer", "Inspectors", "Explorers", "NameSpace"}) {
    own[label] = fake(label);
    own[label]->whenTerminated = [&gone, label] { gone.push_back(label); };
  }
  own["NameSpace"]->whenTerminated = [&gone] {
    gone.push_back("NameSpace");
    EXPECT_TRUE(ModuleApplication());  // the module's reference goes after it
  };
  const auto handOver = [&own](const std::string& label) { return own.extract(label).mapped()->object(); };
  FakeObject& ownExplorer = *own.at("Explorer");
  FakeObject& ownInspectors = *own.at("Inspectors");
  const auto selection = fake("Selection");
  selection->value(u"Count", std::int32_t{1}).method(u"Item", [&](Args) { return Variant(handOver("Item")); });
  own.at("Item")->value(u"MessageClass", u"IPM.Note.TxtMsg");
  ownExplorer.value(u"Selection", selection->object());
  application->method(u"Explorers", [&](Args) { return Variant(handOver("Explorers")); })
      .method(u"Inspectors", [&](Args) { return Variant(handOver("Inspectors")); })
      .method(u"GetNamespace", [&](Args) { return Variant(handOver("NameSpace")); })
      .method(u"ActiveExplorer", [&](Args) {  // the first for the field, the second for its menu bar
        return Variant(own.contains("Explorer") ? handOver("Explorer") : explorer->object());
      });
  init();
  ownExplorer.fire(outlook::ExplorerEvents::SelectionChange);
  ownInspectors.fire(outlook::InspectorsEvents::NewInspector, handOver("Inspector"));
  ASSERT_TRUE(own.empty());

  const auto noteSwitchOff = [&](FakeObject& timer, const std::string& label) {
    timer.script(u"Enabled", [&gone, label](Access, Args) {
      gone.push_back(label);
      return Variant();
    });
  };
  EXPECT_FALSE(addIn->SetupSMSHandler());  // this namespace has no folders; the engine is there
  EXPECT_TRUE(addIn->SetupTimer());
  noteSwitchOff(*timers.at(0), "engine");
  noteSwitchOff(*timers.at(2), "polling timer");
  application->whenTerminated = [&gone] { gone.push_back("Application"); };
  application = nullptr;
  addIn->UnInitHandler();
  EXPECT_EQ(gone, (Lines{"polling timer", "engine", "Item", "Inspector", "Explorer", "Inspectors", "Explorers",
                         "NameSpace", "Application"}));
}

TEST_F(StartUp, UnInitHandler_Twice_WritesItsFourLinesTwice) {
  start();
  addIn->UnInitHandler();
  const Lines once = newTrace();
  EXPECT_EQ(once.size(), 4u);
  for (const auto& [tag, made] : buttons) made->fails(u"Delete", -2147467259);
  addIn->UnInitHandler();
  EXPECT_EQ(newTrace(), once);
}

TEST_F(StartUp, UnInitHandler_EveryStepFails_IsSilentAndReleasesAll) {
  start();
  for (const auto& [tag, made] : buttons) made->fails(u"Delete", -2147467259);
  for (const auto& timer : timers) timer->fails(u"Enabled", 70);
  addIn->UnInitHandler();
  EXPECT_EQ(newTrace().size(), 4u);
  for (const auto& timer : timers) EXPECT_EQ(timer->listeners(), 0u);
  EXPECT_EQ(application->listeners(), 0u);
}

TEST_F(StartUp, UnInitHandler_NeverStarted_DoesNothing) {
  addIn->UnInitHandler();
  EXPECT_EQ(newTrace(), Lines{});
}

TEST_F(StartUp, End_TimerStillSet_IsDisabledAndEmptied) {
  EXPECT_TRUE(addIn->SetupTimer());
  timers[0]->clearCalls();
  addIn = nullptr;
  EXPECT_EQ(timers[0]->calls(), (Lines{"Enabled = False"}));
  EXPECT_EQ(timers[0]->listeners(), 0u);
}

TEST_F(StartUp, End_TimerThatCannotBeDisabled_IsLetGoWhileTheMemoryIsStillHeld) {
  EXPECT_TRUE(addIn->SetupTimer());
  timers[0]->fails(u"Enabled", 70);
  const Hold<OutAddIn> somebodyInside(addIn.get());
  addIn = nullptr;
  EXPECT_EQ(timers[0]->listeners(), 0u);
}

}  // namespace
}  // namespace addin
