// The connection events: what the mail client calls, and the lines that come of it.

#include "unit/host/host_fixture.h"

namespace addin {
namespace {

class Connect : public HostFixture {
 protected:
  void onConnection(std::int32_t mode = 1) {
    entry->OnConnection(application->object(), mode, addInInst->object(), {});
  }
  Ref<connect> entry = make<connect>();
};

const Lines localizerMissing{"Error:429, ActiveX component can't create object, mrktxtmsg"};

TEST_F(Connect, OnConnection_WithWindowAndExplorer_StartsEverythingInOrder) {
  system.module.versionNumber = {1, 2, 34};
  onConnection(1);
  EXPECT_EQ(newTrace(), (Lines{
                            "<==== MRKTXTMSG Version 1.2.34",
                            "Connectmode:1",
                            "ActiveWindow is something",
                            localizerMissing[0],
                            "Added textmessage to new menu",
                            "Added send&receive to tools menu",
                            "Added about to help menu",
                            "Added Help button to Help menu",
                            "Inside Function InitCAPIObjects",
                            "Create timer",
                            "Create timeout object",
                            "Create transaction collection",
                            "Create MAPI helper object",
                            "Create CAPI objects",
                            localizerMissing[0],
                        }));
  ASSERT_EQ(timers.size(), 3u);  // send, guard, polling
  EXPECT_EQ(timers[2]->valueOf(u"Enabled"), Variant(true));
  entry->OnDisconnection(0, {});
}

TEST_F(Connect, OnConnection_OpensTheChannelUnderTheComponentsName) {
  system.registry.setDword(rootLocalMachine, "SOFTWARE\\Marrick\\DbgOut", "Enabled", 1);
  system.registry.setDword(rootLocalMachine, "SOFTWARE\\Marrick\\DbgOut\\mrktxtmsg", "Level", 2);
  system.registry.setString(rootLocalMachine, "SOFTWARE\\Marrick\\DbgOut", "Path", "dbgview.exe");
  application->value(u"ActiveWindow", Object());
  onConnection(0);
  const auto lines = system.windows.traceLines();
  ASSERT_EQ(lines.size(), 4u);
  EXPECT_EQ(lines[0].level, 255);
  for (const auto& line : lines) EXPECT_EQ(line.process, "mrktxtmsg");
  EXPECT_EQ(lines[1].text, "<==== MRKTXTMSG Version 1.0.0");
  EXPECT_EQ(lines[1].level, 2);
  EXPECT_EQ(lines[2].text, "Connectmode:0");
}

TEST_F(Connect, OnConnection_WithoutActiveWindow_SaysSoAndDoesNotStart) {
  application->value(u"ActiveWindow", Object());
  onConnection(3);
  EXPECT_EQ(newTrace(), (Lines{"<==== MRKTXTMSG Version 1.0.0", "Connectmode:3", "ActiveWindow is nothing"}));
  EXPECT_TRUE(buttons.empty());
  EXPECT_TRUE(timers.empty());
  EXPECT_TRUE(system.objects.asked.empty());
  EXPECT_EQ(application->calls(), (Lines{"ActiveWindow()"}));

  entry->OnDisconnection(0, {});
  EXPECT_EQ(newTrace(), (Lines{"OnDisconnection"}));
}

TEST_F(Connect, OnConnection_WithoutActiveExplorer_SaysNothingAndDoesNotStart) {
  application->value(u"ActiveExplorer", Object());
  onConnection();
  EXPECT_EQ(newTrace(), (Lines{"<==== MRKTXTMSG Version 1.0.0", "Connectmode:1"}));
  EXPECT_TRUE(buttons.empty());
  EXPECT_TRUE(timers.empty());
  EXPECT_EQ(addInInst->calls(), Lines{});
}

TEST_F(Connect, OnConnection_FailedStartUp_IsLoggedAndNothingIsUndone) {
  application->fails(u"CreateItemFromTemplate", RuntimeError(53, u"Outlook", u"File not found"));
  onConnection();
  const Lines lines = newTrace();
  ASSERT_GE(lines.size(), 3u);
  EXPECT_EQ(Lines(lines.end() - 3, lines.end()),
            (Lines{"Error:53, File not found, Outlook", "Error:-1, Failed to publish form, StartUpCompleted",
                   "Error:-1, Failed in baseclass.StartUpCompleted, IDTExtensibility2_OnConnection"}));
  EXPECT_EQ(buttons.size(), 4u);
  EXPECT_EQ(timers[2]->valueOf(u"Enabled"), Variant(true));
  EXPECT_EQ(application->listeners(), 1u);
  for (const auto& [tag, made] : buttons)
    EXPECT_EQ(made->valueOf(u"OnAction"), Variant(u"<!mrktxtmsg.connect>")) << tag;

  entry->OnDisconnection(0, {});
  EXPECT_EQ(application->listeners(), 0u);
}

const Lines tornDownLines{"OnDisconnection", "Removed new button", "Removed send&receive button",
                          "Removed delete button", "Removed Help button"};
const std::string startUpFailed = "Error:-1, Failed in baseclass.StartUpCompleted, IDTExtensibility2_OnConnection";

TEST_F(Connect, OnConnection_DisconnectedWhileTheWizardIsOpen_EndsThere) {
  setOption("WizardDone", 0u);
  system.ui.whenShown = [this](ScriptedView&) {
    newTrace();
    entry->OnDisconnection(0, {});
    EXPECT_EQ(application->listeners(), 0u);  // at once, not when the wizard has been closed
    EXPECT_FALSE(ModuleApplication());
    EXPECT_FALSE(system.ui.isOpen(u"frmwizard"));
  };
  onConnection();
  Lines expected = tornDownLines;
  expected.push_back(startUpFailed);
  EXPECT_EQ(newTrace(), expected);
  EXPECT_TRUE(timers.empty());
  for (const auto& [tag, made] : buttons) EXPECT_EQ(made->listeners(), 0u) << tag;
}

TEST_F(Connect, OnConnection_DisconnectedWhileThePhoneServerStarts_GetsNoTimerAndNoForm) {
  phones->value(u"Count", std::int32_t{0});
  worker->value(u"CellPhones", phones->object());
  system.objects.provide(dvmworkerlib::progIdWorker, [this] {
    newTrace();
    entry->OnDisconnection(0, {});
    return worker->object();
  });
  onConnection();
  Lines expected = tornDownLines;
  expected.insert(expected.end(), {localizerMissing[0], startUpFailed});
  EXPECT_EQ(newTrace(), expected);
  ASSERT_EQ(timers.size(), 2u);  // the engine's; no polling timer
  for (const auto& timer : timers) EXPECT_EQ(timer->listeners(), 0u);
  EXPECT_EQ(worker->listeners(), 0u);
  EXPECT_EQ(application->listeners(), 0u);
  EXPECT_EQ(form->calls(), Lines{});
}

TEST_F(Connect, OnConnection_DisconnectedWhileReferencesAreTaken_StartsNoSecondAddIn) {
  application->method(u"GetNamespace", [this](Args) {
    entry->OnDisconnection(0, {});
    return Variant(nameSpace->object());
  });
  onConnection();
  EXPECT_EQ(newTrace(),
            (Lines{"<==== MRKTXTMSG Version 1.0.0", "Connectmode:1", "ActiveWindow is something", "OnDisconnection",
                   "InitHandler Error:91, Object variable or With block variable not set, mrktxtmsg", startUpFailed}));
  EXPECT_TRUE(timers.empty());
  EXPECT_EQ(application->listeners(), 0u);
}

TEST_F(Connect, OnConnection_WindowThatCannotBeRead_IsLoggedOnce) {
  application->fails(u"ActiveWindow", RuntimeError(70, u"Outlook", u"Permission denied"));
  onConnection();
  EXPECT_EQ(newTrace(),
            (Lines{"<==== MRKTXTMSG Version 1.0.0", "Connectmode:1", "Error:70, Permission denied, Outlook"}));
}

TEST_F(Connect, OnConnection_NullApplication_IsError91) {
  entry->OnConnection(Object(), 1, Object(), {});
  EXPECT_EQ(newTrace().back(), "Error:91, Object variable or With block variable not set, mrktxtmsg");
}

TEST_F(Connect, OnDisconnection_UserClosed_SaysSoWithTwentyExclamationMarks) {
  entry->OnDisconnection(1, {});
  EXPECT_EQ(newTrace(),
            (Lines{"OnDisconnection", "OnDisconnection - RemoveMode = ext_dm_UserClosed" + std::string(20, '!')}));
}

TEST_F(Connect, OnDisconnection_OtherModes_SayNothingMore) {
  for (const std::int32_t mode : {0, 2, 3, -1}) {
    entry->OnDisconnection(mode, {});
    EXPECT_EQ(newTrace(), (Lines{"OnDisconnection"})) << mode;
  }
}

TEST_F(Connect, OnDisconnection_AfterAStart_TearsDownBeforeItSpeaksOfTheMode) {
  onConnection();
  newTrace();
  entry->OnDisconnection(1, {});
  EXPECT_EQ(newTrace(),
            (Lines{"OnDisconnection", "Removed new button", "Removed send&receive button", "Removed delete button",
                   "Removed Help button", "OnDisconnection - RemoveMode = ext_dm_UserClosed" + std::string(20, '!')}));
}

TEST_F(Connect, OnDisconnection_AfterAStart_LeavesNoReference) {
  const std::int32_t before = census.more();
  onConnection();
  entry->OnDisconnection(0, {});
  buttons.clear();
  timers.clear();
  EXPECT_EQ(census.more(), before);
  EXPECT_FALSE(ModuleApplication());
}

TEST_F(Connect, OtherEvents_LogTheirNamesOnly) {
  entry->OnStartupComplete({});
  entry->OnAddInsUpdate({});
  entry->OnBeginShutdown({});
  EXPECT_EQ(newTrace(), (Lines{"OnStartupComplete", "OnAddInsUpdate", "OnBeginShutdown"}));
  EXPECT_TRUE(system.objects.asked.empty());
}

TEST_F(Connect, Members_AnswerByNameWithTheInterfacesIdentifiers) {
  const std::pair<StringView, std::int32_t> expected[] = {{u"OnConnection", 1},
                                                          {u"OnDisconnection", 2},
                                                          {u"OnAddInsUpdate", 3},
                                                          {u"OnStartupComplete", 4},
                                                          {u"OnBeginShutdown", 5}};
  for (const auto& [name, dispid] : expected) {
    ASSERT_NE(entry->find(name), nullptr);
    EXPECT_EQ(entry->find(name)->dispid, dispid);
  }
  LateBound(entry->object()).call(u"onbeginshutdown", Variant());
  EXPECT_EQ(newTrace(), (Lines{"OnBeginShutdown"}));
}

TEST_F(Connect, SecondConnection_ReusesTheButtonsByTheirTags) {
  onConnection();
  const auto first = buttons;
  buttons.at("New Text Message")->value(u"Caption", u"changed");
  const auto again = make<connect>();  // the first run ended without disconnecting
  again->OnConnection(application->object(), 1, addInInst->object(), {});
  EXPECT_EQ(buttons.size(), 4u);
  for (const auto& [tag, made] : first) EXPECT_TRUE(buttons.at(tag) == made) << tag;
  EXPECT_EQ(buttons.at("New Text Message")->valueOf(u"Caption"), Variant(u"Text Message"));
  again->OnDisconnection(0, {});
  entry->OnDisconnection(0, {});
}

}  // namespace
}  // namespace addin
