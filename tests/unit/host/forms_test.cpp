// When the wizard and the About box are shown, what waits for them, and what becomes of them at the end.

#include "unit/host/host_fixture.h"

namespace addin {
namespace {

class Forms : public HostFixture {
 protected:
  void init() {
    addIn->InitHandler(application->as<outlook::Application>(), u"mrktxtmsg.connect");
    newTrace();
  }
  void click(const std::string& tag) {
    bool cancel = false;
    button(tag).fire(office::CommandBarButtonEvents::Click, button(tag).object(), cancel);
    EXPECT_FALSE(cancel);
  }
  ScriptedView& wizard() { return system.ui.view(u"frmwizard"); }
  // Finish, from wherever the wizard stands.
  static void finish(ScriptedView& view) {
    view.click("btnNext").type("txtOwnSCAddress", u"+1").click("btnNext").click("btnNext");
    view.type("txtName", u"A").type("txtPhoneNo", u"12").click("btnNext");
  }
  void TearDown() override {
    if (addIn) addIn->UnInitHandler();
    SetModuleApplication({});  // only UnInitHandler empties it
  }
};

const std::string error401 = "Error:401, Can't show non-modal form when modal form is displayed, mrktxtmsg";

// The wizard at start-up ----------------------------------------------------------------------------------------------

TEST_F(Forms, StartUp_WizardNotDone_ShowsItModallyAndGoesOnWhateverTheUserDid) {
  for (const std::uint32_t value : {0u, 2u, 0xFFFFFFFFu}) {
    setOption("WizardDone", value);
    system.ui.shown.clear();
    system.ui.whenShown = [&](ScriptedView& view) {
      EXPECT_EQ(newTrace(), Lines{});  // the engine waits for it
      view.click("btnCancel");
    };
    init();
    EXPECT_TRUE(addIn->StartUpCompleted());
    EXPECT_EQ(system.ui.shown, (std::vector<Shown>{{u"frmwizard", FormModality::Modal}}));
    EXPECT_EQ(system.registry.value(rootCurrentUser, optionsKey, "WizardDone")->bytes[0], static_cast<char>(value));
    EXPECT_EQ(form->calls().back(), "PublishForm(2)");  // the last step
    addIn->UnInitHandler();
    addIn = make<OutAddIn>();
  }
}

TEST_F(Forms, StartUp_WizardValueMissing_ShowsIt) {
  system.registry.deleteValue(rootCurrentUser, optionsKey, "WizardDone");
  system.ui.whenShown = [](ScriptedView& view) { view.close(); };
  init();
  EXPECT_TRUE(addIn->StartUpCompleted());
  EXPECT_EQ(system.ui.shown.size(), 1u);
}

TEST_F(Forms, StartUp_WizardValueThatIsNoNumber_IsLoggedAndShowsIt) {
  setOption("WizardDone", "done");
  system.ui.whenShown = [this](ScriptedView& view) {
    EXPECT_EQ(newTrace(), (Lines{"Error:13, Type mismatch, mrktxtmsg"}));
    view.close();
  };
  init();
  EXPECT_TRUE(addIn->StartUpCompleted());
  EXPECT_EQ(system.ui.shown, (std::vector<Shown>{{u"frmwizard", FormModality::Modal}}));
  EXPECT_EQ(form->calls().back(), "PublishForm(2)");  // the last step
}

TEST_F(Forms, StartUp_WizardDone_ShowsNone) {
  init();
  EXPECT_TRUE(addIn->StartUpCompleted());
  EXPECT_TRUE(system.ui.shown.empty());
}

TEST_F(Forms, StartUp_WizardFinished_UsesWhatItWrote) {
  setOption("WizardDone", 0u);
  system.ui.whenShown = [](ScriptedView& view) {
    view.click("btnNext").type("txtOwnSCAddress", u"+1").click("btnNext").click("chkAutoPoll").click("btnNext");
    view.type("txtName", u"A").type("txtPhoneNo", u"12").click("btnNext");
  };
  init();
  EXPECT_TRUE(addIn->StartUpCompleted());
  EXPECT_EQ(addIn->WizardDone(), 1);
  EXPECT_EQ(timers.size(), 2u);  // the engine's: polling was switched off
}

TEST_F(Forms, StartUp_WizardThatCannotBeShown_IsAFailedStep) {
  setOption("WizardDone", 0u);
  system.ui.windowsCannotBeMade = true;
  init();
  EXPECT_FALSE(addIn->StartUpCompleted());
  EXPECT_EQ(newTrace(), (Lines{"Error:7, Out of memory, mrktxtmsg"}));
  EXPECT_TRUE(timers.empty());
}

TEST_F(Forms, StartUp_TornDownWhileTheWizardIsOpen_ClosesItAndStartsNothing) {
  setOption("WizardDone", 0u);
  system.ui.whenShown = [this](ScriptedView&) {
    addIn->UnInitHandler();
    EXPECT_FALSE(system.ui.isOpen(u"frmwizard"));
  };
  init();
  EXPECT_FALSE(addIn->StartUpCompleted());
  EXPECT_TRUE(timers.empty());
  EXPECT_EQ(system.objects.asked, (std::vector<String>{u"mrktxtmsgres.localizer", u"mrktxtmsgres.localizer"}));
}

TEST_F(Forms, StartUp_TornDownWhileTheWizardLoads_ShowsNothing) {
  setOption("WizardDone", 0u);
  init();
  system.objects.provide(u"mrktxtmsgres.localizer", [this]() -> Object {
    addIn->UnInitHandler();  // from inside a call that serves messages
    raiseError(429);
  });
  EXPECT_FALSE(addIn->StartUpCompleted());
  EXPECT_TRUE(system.ui.shown.empty());
  EXPECT_TRUE(timers.empty());
}

TEST_F(Forms, StartUp_ProgramEndsWhileTheWizardIsOpen_StartsNothing) {
  setOption("WizardDone", 0u);
  system.ui.whenShown = [this](ScriptedView&) { system.time.postQuit(); };
  init();
  EXPECT_FALSE(addIn->StartUpCompleted());
  EXPECT_FALSE(system.ui.isOpen(u"frmwizard"));
  EXPECT_EQ(newTrace(), Lines{});
  EXPECT_TRUE(timers.empty());
}

TEST_F(Forms, StartUp_ReleasedWhileTheWizardIsOpen_LeavesNoReferenceAndStartsNothing) {
  int alive = 0;
  system.objects.provide(u"mrktxtmsgres.localizer", [&alive] {
    const auto localizer = fake("Localizer");
    localizer->method(u"getlocalizedresstring", [](Args a) { return a[1]; });
    localizer->whenTerminated = [&alive] { --alive; };
    ++alive;
    return localizer->object();
  });
  setOption("WizardDone", 0u);
  init();
  system.ui.whenShown = [&](ScriptedView&) {
    EXPECT_EQ(alive, 2);  // the add-in's and the wizard's
    addIn = nullptr;      // the last reference, without a UnInitHandler
    EXPECT_FALSE(system.ui.isOpen(u"frmwizard"));
    EXPECT_EQ(application->listeners(), 0u);
    EXPECT_EQ(alive, 0);
  };
  const Hold<OutAddIn> running(addIn.get());
  EXPECT_FALSE(running->StartUpCompleted());
  EXPECT_TRUE(timers.empty());
}

// A second Show -------------------------------------------------------------------------------------------------------

TEST_F(Forms, NewClick_WhileTheModalWizardIsOpen_IsError401) {
  setOption("WizardDone", 0u);
  init();
  system.ui.whenShown = [this](ScriptedView& view) {
    click("New Text Message");
    EXPECT_EQ(newTrace(), Lines{error401});
    click("About Text Message Add-In");
    EXPECT_EQ(newTrace(), Lines{error401});
    addIn->SendAndReceive();
    EXPECT_EQ(newTrace(), Lines{error401});
    EXPECT_TRUE(view.isOpen());
    view.close();
  };
  EXPECT_TRUE(addIn->StartUpCompleted());
  EXPECT_EQ(system.ui.shown.size(), 1u);
  system.ui.whenShown = nullptr;
  click("About Text Message Add-In");  // now it can be
  EXPECT_TRUE(system.ui.isOpen(u"frmabout"));
}

// Creating the localizer is a call into another program, and such a call serves messages.
TEST_F(Forms, NewClick_WhileTheModalWizardLoads_IsError401) {
  setOption("WizardDone", 0u);
  init();
  system.objects.provide(u"mrktxtmsgres.localizer", [this]() -> Object {
    if (system.ui.shown.empty()) click("New Text Message");  // later ones are not for the wizard
    raiseError(429);
  });
  system.ui.whenShown = [this](ScriptedView& view) {
    EXPECT_EQ(newTrace(), Lines{error401});
    view.close();
  };
  EXPECT_TRUE(addIn->StartUpCompleted());
  EXPECT_EQ(system.ui.shown, (std::vector<Shown>{{u"frmwizard", FormModality::Modal}}));
}

TEST_F(Forms, NewClick_WhileTheModelessWizardLoads_IsLeftToTheFirstOne) {
  start();
  setOption("WizardDone", 0u);
  int clicks = 0;
  system.objects.provide(u"mrktxtmsgres.localizer", [&]() -> Object {
    if (++clicks == 1) click("New Text Message");
    raiseError(429);
  });
  click("New Text Message");
  EXPECT_GE(clicks, 1);
  EXPECT_EQ(newTrace(), Lines{});
  EXPECT_EQ(system.ui.shown, (std::vector<Shown>{{u"frmwizard", FormModality::Modeless}}));
  EXPECT_TRUE(wizard().seen("pageWelcome"));
  for (const char* page : {"pageServiceCentre", "pageSendReceive", "pageUserInformation"})
    EXPECT_FALSE(wizard().seen(page)) << page;
}

TEST_F(Forms, NewClick_Twice_IsOneWizardBroughtToTheFront) {
  start();
  setOption("WizardDone", 0u);
  click("New Text Message");
  wizard().click("btnNext");
  click("New Text Message");
  EXPECT_EQ(system.ui.shown.size(), 2u);
  EXPECT_TRUE(wizard().seen("pageServiceCentre"));
}

TEST_F(Forms, NewClick_AfterTheWizardWasClosed_OpensANewOne) {
  start();
  setOption("WizardDone", 0u);
  click("New Text Message");
  wizard().click("btnNext").click("btnCancel");
  click("New Text Message");
  EXPECT_TRUE(wizard().seen("pageWelcome"));
}

TEST_F(Forms, NewClick_OnceTheModelessWizardIsFinished_CreatesAMessage) {
  start();
  setOption("WizardDone", 0u);
  click("New Text Message");
  finish(wizard());
  explorer->fails(u"CurrentFolder", RuntimeError(70, u"Outlook", u"Permission denied"));
  click("New Text Message");
  EXPECT_EQ(newTrace(), (Lines{"Error:70, Permission denied, Outlook"}));
}

// The About box -------------------------------------------------------------------------------------------------------

TEST_F(Forms, AboutClick_ShowsTheAboutBoxModeless) {
  start();
  click("About Text Message Add-In");
  EXPECT_EQ(system.ui.shown, (std::vector<Shown>{{u"frmabout", FormModality::Modeless}}));
  EXPECT_TRUE(system.ui.isOpen(u"frmabout"));
  EXPECT_EQ(newTrace(), Lines{});
  click("About Text Message Add-In");
  EXPECT_EQ(system.ui.shown.size(), 2u);
  system.ui.view(u"frmabout").click("cmdOK");
  EXPECT_FALSE(system.ui.isOpen(u"frmabout"));
}

TEST_F(Forms, AboutClick_WithTheModelessWizardOpen_ShowsBoth) {
  start();
  setOption("WizardDone", 0u);
  click("New Text Message");
  click("About Text Message Add-In");
  EXPECT_TRUE(system.ui.isOpen(u"frmwizard"));
  EXPECT_TRUE(system.ui.isOpen(u"frmabout"));
}

TEST_F(Forms, AboutClick_Failing_IsLoggedOnce) {
  start();
  system.ui.windowsCannotBeMade = true;
  click("About Text Message Add-In");
  EXPECT_EQ(newTrace(), (Lines{"Error:7, Out of memory, mrktxtmsg"}));
}

// Clicks --------------------------------------------------------------------------------------------------------------

TEST_F(Forms, EveryClick_LeavesItsDefaultAsItWas) {
  start();
  for (const bool fails : {false, true}) {
    if (fails) {
      explorer->fails(u"CurrentFolder", RuntimeError(70, u"Outlook", u"Permission denied"));
      system.ui.windowsCannotBeMade = system.shell.helpViewerIsMissing = true;
    }
    for (const char* tag :
         {"New Text Message", "Send & Receive Text Message", "About Text Message Add-In", "Text Message Add-In Help"})
      for (const bool before : {false, true}) {
        bool cancel = before;
        button(tag).fire(office::CommandBarButtonEvents::Click, button(tag).object(), cancel);
        EXPECT_EQ(cancel, before) << tag;
      }
    system.ui.closeAll();
  }
}

// The end -------------------------------------------------------------------------------------------------------------

TEST_F(Forms, UnInitHandler_ClosesWhatIsOpenLast) {
  start();
  setOption("WizardDone", 0u);
  click("New Text Message");
  click("About Text Message Add-In");
  newTrace();
  addIn->UnInitHandler();
  EXPECT_EQ(newTrace(), (Lines{"Removed new button", "Removed send&receive button", "Removed delete button",
                               "Removed Help button"}));
  EXPECT_FALSE(system.ui.isOpen(u"frmwizard"));
  EXPECT_FALSE(system.ui.isOpen(u"frmabout"));
}

TEST_F(Forms, End_WithoutUnInitHandler_ClosesWhatIsOpen) {
  start();
  setOption("WizardDone", 0u);
  click("New Text Message");
  click("About Text Message Add-In");
  addIn = nullptr;
  EXPECT_FALSE(system.ui.isOpen(u"frmwizard"));
  EXPECT_FALSE(system.ui.isOpen(u"frmabout"));
}

// Help ----------------------------------------------------------------------------------------------------------------

class Help : public Forms {
 protected:
  static constexpr const char* installationKey = "Software\\Marrick\\TextMessageAddIn";
  Help() { start(); }
  std::string opened() {
    click("Text Message Add-In Help");
    return system.shell.helps.empty() ? "" : system.shell.helps.back().path;
  }
};

TEST_F(Help, Click_CallsTheViewerWithoutOwnerForTheDefaultTopic) {
  EXPECT_EQ(opened(), "smsx_en-us.chm");
  EXPECT_EQ(system.shell.helps, (std::vector<testing_support::NativeShell::Help>{{0, "smsx_en-us.chm", 0, 0}}));
  EXPECT_EQ(newTrace(), Lines{});
}

TEST_F(Help, Click_InTheUsersLanguage) {
  system.registry.setString(rootLocalMachine, installationKey, "RESPATH", "D:\\help");
  system.registry.setDword(rootLocalMachine, installationKey, "LANGID", 1053);
  EXPECT_EQ(opened(), "D:\\help\\smsx_sv.chm");
}

TEST_F(Help, Click_WithoutViewer_LogsOneLine) {
  system.shell.helpViewerIsMissing = true;
  EXPECT_EQ(opened(), "");
  EXPECT_EQ(newTrace(), (Lines{"Error:53, File not found, mrktxtmsg"}));
}

TEST_F(Help, Click_LanguageThatIsNoNumber_IsTheReadersLineAndTheEnglishFile) {
  system.registry.setString(rootLocalMachine, installationKey, "RESPATH", "D:\\help");
  system.registry.setString(rootLocalMachine, installationKey, "LANGID", "Swedish");
  EXPECT_EQ(opened(), "D:\\help\\smsx_en-us.chm");
  EXPECT_EQ(newTrace(), (Lines{"Error in GetRegDword"}));
}

}  // namespace
}  // namespace addin
