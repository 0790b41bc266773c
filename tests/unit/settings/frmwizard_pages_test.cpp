// The wizard's texts, its pages and the way through them.

#include <map>

#include "unit/settings/frmwizard_fixture.h"

namespace addin {
namespace {

class WizardTexts : public WizardFixture {
 protected:
  Lines captions() {
    Lines result;
    for (const char* name : {"lblTitle", "lblWelcome", "lblServiceCentre", "chkOwnSCAddress", "lblSendAndReceive",
                             "chkAutoPoll", "lblMinutes", "chkAutoRemove", "lblPersonalize", "lblName", "lblPhoneNo",
                             "btnBack", "btnNext", "btnCancel", "btnHelp"})
      result.push_back(system.ui.view(u"frmwizard").caption(name));
    return result;
  }
};

class WizardPages : public WizardFixture {
 protected:
  // The pages and pictures that can be seen.
  static Lines seen(const ScriptedView& view) {
    Lines result;
    for (const char* name : {"pageWelcome", "pageServiceCentre", "pageSendReceive", "pageUserInformation", "imgWizard1",
                             "imgWizard2", "imgWizard3", "imgWizard4"})
      if (view.seen(name)) result.push_back(name);
    return result;
  }
};

const Lines englishCaptions{
    "Marrick Text Message Add-In for Outlook 2000",
    "Welcome to Marrick Text Message Setup Wizard\r\n\r\nThis Wizard will collect some information needed to send "
    "Text Messages in Microsoft Outlook 2000.",
    "Service Centre Number",
    "I want to use a different number.",
    "Send and Receive",
    "I want to send and receive text messages every",
    "minutes.",
    "Remove text messages from the SIM card when retrieved in the Inbox.",
    "User Information",
    "Full Name:",
    "Mobile Phone Number:",
    "< Back",
    "Next >",
    "Cancel",
    "Help"};

// Texts ---------------------------------------------------------------------------------------------------------------

TEST_F(WizardTexts, WithoutLocalizer_AreTheEnglishOnes) {
  open();
  EXPECT_EQ(captions(), englishCaptions);
  EXPECT_EQ(system.ui.view(u"frmwizard").caption(), "Marrick Text Message Add-In for Outlook 2000");
  EXPECT_EQ(system.objects.asked, (std::vector<String>{u"mrktxtmsgres.localizer"}));  // once for all of them
}

TEST_F(WizardTexts, WithLocalizer_AreItsTexts) {
  provideLocalizer();
  ScriptedView& view = open();
  EXPECT_EQ(captions(), (Lines{"L101", "L417", "L402", "L403", "L404", "L405", "L407", "L428", "L409", "L410", "L411",
                               "L414", "L413", "L415", "L313"}));
  EXPECT_EQ(view.caption(), "L101");
}

TEST_F(WizardTexts, WithLocalizer_AreAskedForWithNumberAndDefault) {
  provideLocalizer();
  ScriptedView& view = open();
  view.click("btnNext").click("btnNext").click("btnNext");
  const auto asked = [](const std::string& id, const std::string& text) {
    return "getlocalizedresstring(" + id + ", \"" + text + "\")";
  };
  EXPECT_EQ(localizer->calls(),
            (Lines{asked("101", "Marrick Text Message Add-In for Outlook 2000"),
                   asked("417",
                         "Welcome to Marrick Text Message Setup Wizard\\r\\n\\r\\nThis Wizard will collect some "
                         "information needed to send Text Messages in Microsoft Outlook 2000."),
                   asked("402", "Service Centre Number"), asked("403", "I want to use a different number."),
                   asked("404", "Send and Receive"), asked("405", "I want to send and receive text messages every"),
                   asked("407", "minutes."),
                   asked("428", "Remove text messages from the SIM card when retrieved in the Inbox."),
                   asked("409", "User Information"), asked("410", "Full Name:"), asked("411", "Mobile Phone Number:"),
                   asked("414", "< Back"), asked("413", "Next >"), asked("415", "Cancel"), asked("313", "Help"),
                   asked("413", "Next >"), asked("412", "Finish")}));
  EXPECT_EQ(system.objects.asked.size(), 1u);  // created once and kept
}

TEST_F(WizardTexts, LocalizerFailingOnAnyOneText_LeavesTheOthersLocalized) {
  const std::vector<std::int32_t> numbers{101, 417, 402, 403, 404, 405, 407, 428, 409, 410, 411, 414, 413, 415, 313};
  for (std::size_t failing = 0; failing < numbers.size(); ++failing) {
    provideLocalizer().method(u"getlocalizedresstring", [&](Args a) {
      if (CLng(a[0]) == numbers[failing]) raiseError(70);
      return Variant(concat(u"L", CLng(a[0])));
    });
    ScriptedView& view = open();
    Lines expected;
    for (std::size_t i = 0; i < numbers.size(); ++i)
      expected.push_back(i == failing ? englishCaptions[i] : "L" + std::to_string(numbers[i]));
    EXPECT_EQ(captions(), expected);
    EXPECT_EQ(view.caption(), expected.front());  // the form's own is that of its title
    view.close();
  }
}

TEST_F(WizardTexts, LocalizerFailingOnFinish_NamesTheButtonInEnglish) {
  provideLocalizer().method(u"getlocalizedresstring", [](Args a) {
    if (CLng(a[0]) == 412) raiseError(70);
    return Variant(concat(u"L", CLng(a[0])));
  });
  ScriptedView& view = openPage(4);
  EXPECT_EQ(view.caption("btnNext"), "Finish");
  view.click("btnBack");
  EXPECT_EQ(view.caption("btnNext"), "L413");
}

TEST_F(WizardTexts, LocalizerFailingOnEveryText_StillOpensAndFinishes) {
  provideLocalizer().fails(u"getlocalizedresstring", 70);
  ScriptedView& view = openPage(4);
  EXPECT_EQ(view.caption("btnNext"), "Finish");
  view.type("txtName", u"A").type("txtPhoneNo", u"12").click("btnNext");
  EXPECT_EQ(stored("WizardDone"), number(1));
}

TEST_F(WizardTexts, LocalizerThatComesLater_IsUsedFromThenOn) {
  ScriptedView& view = open();
  provideLocalizer();
  view.click("btnNext").click("btnNext");
  EXPECT_EQ(view.caption("btnNext"), "L413");
  EXPECT_EQ(view.caption("btnBack"), "< Back");
}

TEST_F(WizardTexts, Localizer_IsReleasedWithTheForm) {
  bool released = false;
  system.objects.provide(u"mrktxtmsgres.localizer", [&released] {
    const auto own = fake("Localizer");
    own->method(u"getlocalizedresstring", [](Args a) { return a[1]; });
    own->whenTerminated = [&released] { released = true; };
    return own->object();
  });
  ScriptedView& view = open();
  EXPECT_FALSE(released);
  view.close();
  EXPECT_TRUE(released);  // although the form itself is still held
}

TEST_F(WizardTexts, FieldsWithoutALabel_AreNamedForScreenReaders) {
  provideLocalizer();
  ScriptedView& view = open();
  EXPECT_EQ(utf8(view.control("txtOwnSCAddress").accessibleName), "L403");
  EXPECT_EQ(utf8(view.control("txtPollIntervall").accessibleName), "L405 L407");
}

// Controls ------------------------------------------------------------------------------------------------------------

// Each with what it lies in, in the order of the Tab key.
TEST_F(WizardPages, Controls_AreThoseOfTheirPages) {
  open();
  std::map<std::string, Lines> found;
  for (const Control* control : wizard->Controls()) {
    const Control* const page = control->Container();
    found[page ? utf8(page->Name()) : ""].push_back(utf8(control->Name()));
  }
  const std::map<std::string, Lines> expected{
      {"",
       {"frameTop", "lineTop", "imgWizard1", "imgWizard2", "imgWizard3", "imgWizard4", "pageWelcome",
        "pageServiceCentre", "pageSendReceive", "pageUserInformation", "linePicture", "btnBack", "btnNext", "btnCancel",
        "btnHelp"}},
      {"frameTop", {"lblTitle"}},
      {"pageWelcome", {"lblWelcome"}},
      {"pageServiceCentre", {"lblServiceCentre", "cboSCAddress", "chkOwnSCAddress", "txtOwnSCAddress"}},
      {"pageSendReceive", {"lblSendAndReceive", "chkAutoPoll", "txtPollIntervall", "lblMinutes", "chkAutoRemove"}},
      {"pageUserInformation", {"lblPersonalize", "lblName", "txtName", "lblPhoneNo", "txtPhoneNo"}}};
  EXPECT_EQ(found, expected);
}

// Layout --------------------------------------------------------------------------------------------------------------

TEST_F(WizardPages, PagesAndPictures_LieAtTheSameSpot) {
  ScriptedView& view = open();
  for (const char* name : {"pageServiceCentre", "pageSendReceive", "pageUserInformation"})
    EXPECT_EQ(view.control(name).place, view.control("pageWelcome").place) << name;
  for (const char* name : {"imgWizard2", "imgWizard3", "imgWizard4"})
    EXPECT_EQ(view.control(name).place, view.control("imgWizard1").place) << name;
}

TEST_F(WizardPages, Lines_RunUnderBannerAndPictureOverTheWholeWidth) {
  ScriptedView& view = open();
  const Place& banner = view.control("frameTop").place;
  const Place& picture = view.control("imgWizard1").place;
  EXPECT_EQ(view.control("lineTop").place, (Place{0, banner.height, wizard->width, 1}));
  EXPECT_EQ(view.control("linePicture").place, (Place{0, picture.top + picture.height, wizard->width, 1}));
  EXPECT_TRUE(view.seen("lineTop"));
  EXPECT_TRUE(view.seen("linePicture"));
}

TEST_F(WizardPages, Controls_LieInsideTheFormAndOnEveryPageApartFromEachOther) {
  ScriptedView& view = open();
  const auto placed = [](const Control& control) {
    Place place = control.place;
    if (const Control* const frame = control.Container()) {
      EXPECT_LE(place.left + place.width, frame->place.width) << utf8(control.Name());
      EXPECT_LE(place.top + place.height, frame->place.height) << utf8(control.Name());
      place.left += frame->place.left;
      place.top += frame->place.top;
    }
    return place;
  };
  const auto overlap = [](const Place& a, const Place& b) {
    return a.left < b.left + b.width && b.left < a.left + a.width && a.top < b.top + b.height &&
           b.top < a.top + a.height;
  };
  for (int page = 1; page <= 4; ++page) {
    for (const Control* a : wizard->Controls()) {
      if (!a->IsShown() || a->Kind() == ControlKind::Frame) continue;
      const Place place = placed(*a);
      EXPECT_TRUE(place.left >= 0 && place.top >= 0 && place.width > 0 && place.height > 0 &&
                  place.left + place.width <= wizard->width && place.top + place.height <= wizard->height)
          << utf8(a->Name());
      for (const Control* b : wizard->Controls()) {
        if (a == b || !b->IsShown() || b->Kind() == ControlKind::Frame) continue;
        EXPECT_FALSE(overlap(place, placed(*b))) << utf8(a->Name()) << " and " << utf8(b->Name());
      }
    }
    if (page == 4) break;
    view.click("btnNext");
  }
}

TEST_F(WizardPages, EnterIsNextAndEscIsCancel) {
  ScriptedView& view = open();
  for (const Control* control : wizard->Controls()) {
    EXPECT_EQ(control->isDefault, control->Name() == u"btnNext");
    EXPECT_EQ(control->isCancel, control->Name() == u"btnCancel");
  }
  view.close();
}

// The way through -----------------------------------------------------------------------------------------------------

TEST_F(WizardPages, FirstPage_BackIsDisabledAndTheFocusIsPutNowhere) {
  ScriptedView& view = open();
  EXPECT_EQ(seen(view), (Lines{"pageWelcome", "imgWizard1"}));
  EXPECT_FALSE(view.enabled("btnBack"));
  EXPECT_TRUE(view.enabled("btnNext"));
  EXPECT_TRUE(view.enabled("btnHelp"));
  EXPECT_TRUE(view.enabled("btnCancel"));
  EXPECT_EQ(view.focus(), "");
}

TEST_F(WizardPages, ForwardsAndBackwards_ShowsOnePageAtATime) {
  ScriptedView& view = openPage(4);
  EXPECT_EQ(seen(view), (Lines{"pageUserInformation", "imgWizard4"}));
  view.click("btnBack");
  EXPECT_EQ(seen(view), (Lines{"pageSendReceive", "imgWizard3"}));
  view.click("btnBack");
  EXPECT_EQ(seen(view), (Lines{"pageServiceCentre", "imgWizard2"}));
  view.click("btnBack");
  EXPECT_EQ(seen(view), (Lines{"pageWelcome", "imgWizard1"}));
  EXPECT_FALSE(view.enabled("btnBack"));
}

TEST_F(WizardPages, NextClick_HidesBeforeItShows) {
  ScriptedView& view = open();
  view.clearTold();
  view.click("btnNext");
  EXPECT_EQ(view.told(),
            (Lines{"pageWelcome.Visible = False", "imgWizard1.Visible = False", "pageServiceCentre.Visible = True",
                   "imgWizard2.Visible = True", "btnBack.Enabled = True", "focus cboSCAddress"}));
}

TEST_F(WizardPages, PageThatDoesNotExist_IsNeitherHiddenNorShown) {
  ScriptedView& view = open();
  view.control("btnBack").Click();  // although it is disabled: as somebody would whom the form did not expect
  view.clearTold();
  view.control("btnBack").Click();
  EXPECT_EQ(view.told(), Lines{});
  view.control("btnNext").Click();
  EXPECT_EQ(view.told(), Lines{});
  view.control("btnNext").Click();  // and back on the first one
  EXPECT_EQ(seen(view), (Lines{"pageWelcome", "imgWizard1"}));
}

TEST_F(WizardPages, EveryStep_HidesThenShowsThenNamesAllowsAndFocuses) {
  setOption("My_FullName", "Anna");
  ScriptedView& view = openPage(2);
  const auto toldBy = [&](const std::string& button) {
    view.clearTold();
    view.click(button);
    return view.told();
  };
  EXPECT_EQ(toldBy("btnNext"),
            (Lines{"pageServiceCentre.Visible = False", "imgWizard2.Visible = False", "pageSendReceive.Visible = True",
                   "imgWizard3.Visible = True", "focus chkAutoPoll"}));
  EXPECT_EQ(toldBy("btnNext"), (Lines{"pageSendReceive.Visible = False", "imgWizard3.Visible = False",
                                      "pageUserInformation.Visible = True", "imgWizard4.Visible = True",
                                      "btnNext.Caption = Finish", "btnNext.Enabled = False", "focus txtName"}));
  EXPECT_EQ(toldBy("btnBack"), (Lines{"pageUserInformation.Visible = False", "imgWizard4.Visible = False",
                                      "pageSendReceive.Visible = True", "imgWizard3.Visible = True",
                                      "btnNext.Caption = Next >", "btnNext.Enabled = True", "focus chkAutoPoll"}));
}

TEST_F(WizardPages, NextCaption_IsFinishOnTheLastPageAndNextAgainBeforeIt) {
  ScriptedView& view = open();
  Lines captions;
  for (const char* button : {"btnNext", "btnNext", "btnNext", "btnBack", "btnBack", "btnBack"}) {
    view.click(button);
    captions.push_back(view.caption("btnNext"));
  }
  EXPECT_EQ(captions, (Lines{"Next >", "Next >", "Finish", "Next >", "Next >", "Next >"}));
}

TEST_F(WizardPages, SecondPage_FocusGoesToTheListThenTheBoxThenTheField) {
  EXPECT_EQ(openPage(2).focus(), "cboSCAddress");
  setOption("SCAddress_UseOwn", 1u);
  EXPECT_EQ(openPage(2).focus(), "chkOwnSCAddress");
  setNoList();
  EXPECT_EQ(openPage(2).focus(), "txtOwnSCAddress");
}

TEST_F(WizardPages, ThirdAndFourthPage_FocusGoesToPollingAndToTheName) {
  ScriptedView& view = openPage(3);
  EXPECT_EQ(view.focus(), "chkAutoPoll");
  view.click("btnNext");
  EXPECT_EQ(view.focus(), "txtName");
}

TEST_F(WizardPages, SecondPage_WithoutOwnNumber_LeavesNextAsItWas) {
  ScriptedView& view = openPage(3);
  view.erase("txtPollIntervall");
  EXPECT_FALSE(view.enabled("btnNext"));
  view.click("btnBack");
  EXPECT_FALSE(view.enabled("btnNext"));  // although there is nothing to fill in here
  view.click("btnBack");
  EXPECT_TRUE(view.enabled("btnNext"));
}

TEST_F(WizardPages, SecondPage_WithOwnNumber_WantsIt) {
  setOption("SCAddress_UseOwn", 1u);
  ScriptedView& view = openPage(2);
  EXPECT_FALSE(view.enabled("btnNext"));
  view.type("txtOwnSCAddress", u"+1");
  EXPECT_TRUE(view.enabled("btnNext"));
  view.click("btnNext").click("btnBack");
  EXPECT_TRUE(view.enabled("btnNext"));
}

TEST_F(WizardPages, SecondPage_EmptyList_WantsAnOwnNumber) {
  for (const bool fileIsThere : {false, true}) {
    if (fileIsThere)
      setList("");
    else
      setNoList();
    ScriptedView& view = openPage(2);
    EXPECT_FALSE(view.enabled("cboSCAddress"));
    EXPECT_EQ(view.control("cboSCAddress").BackColor(), colorButtonFace);
    EXPECT_TRUE(view.control("chkOwnSCAddress").Value());
    EXPECT_FALSE(view.enabled("chkOwnSCAddress"));
    EXPECT_TRUE(view.enabled("txtOwnSCAddress"));
    EXPECT_EQ(view.control("txtOwnSCAddress").BackColor(), colorWhite);
    EXPECT_FALSE(view.enabled("btnNext"));
    view.type("txtOwnSCAddress", u"+");
    EXPECT_TRUE(view.enabled("btnNext"));
    view.erase("txtOwnSCAddress");
    EXPECT_FALSE(view.enabled("btnNext"));
    view.close();
  }
}

TEST_F(WizardPages, SecondPage_EmptyListAndAStoredOwnNumber_GoesOnAtOnce) {
  setNoList();
  setOption("SCAddress_Own", "(+9)");
  EXPECT_TRUE(openPage(2).enabled("btnNext"));
}

TEST_F(WizardPages, OwnNumberBox_SwitchesBetweenListAndField) {
  ScriptedView& view = openPage(2);
  EXPECT_FALSE(view.enabled("txtOwnSCAddress"));
  EXPECT_EQ(view.control("txtOwnSCAddress").BackColor(), colorButtonFace);
  view.click("chkOwnSCAddress");
  EXPECT_TRUE(view.enabled("txtOwnSCAddress"));
  EXPECT_EQ(view.control("txtOwnSCAddress").BackColor(), colorWhite);
  EXPECT_FALSE(view.enabled("cboSCAddress"));
  EXPECT_EQ(view.control("cboSCAddress").BackColor(), colorButtonFace);
  EXPECT_FALSE(view.enabled("btnNext"));
  view.click("chkOwnSCAddress");
  EXPECT_TRUE(view.enabled("cboSCAddress"));
  EXPECT_EQ(view.control("cboSCAddress").BackColor(), colorWhite);
  EXPECT_FALSE(view.enabled("txtOwnSCAddress"));
  EXPECT_TRUE(view.enabled("btnNext"));
  view.click("chkOwnSCAddress").type("txtOwnSCAddress", u"+1").click("chkOwnSCAddress").click("chkOwnSCAddress");
  EXPECT_TRUE(view.enabled("btnNext"));  // there is a number this time
}

TEST_F(WizardPages, PollingBox_SwitchesTheInterval) {
  ScriptedView& view = openPage(3);
  EXPECT_TRUE(view.enabled("txtPollIntervall"));
  view.erase("txtPollIntervall");
  EXPECT_FALSE(view.enabled("btnNext"));
  view.click("chkAutoPoll");
  EXPECT_FALSE(view.enabled("txtPollIntervall"));
  EXPECT_EQ(view.control("txtPollIntervall").BackColor(), colorButtonFace);
  EXPECT_TRUE(view.enabled("btnNext"));
  view.click("chkAutoPoll");
  EXPECT_EQ(view.control("txtPollIntervall").BackColor(), colorWhite);
  EXPECT_FALSE(view.enabled("btnNext"));  // ticked and empty again
  view.type("txtPollIntervall", u"9");
  EXPECT_TRUE(view.enabled("btnNext"));
}

TEST_F(WizardPages, ThirdPage_PollingOffAndIntervalEmpty_LetsGoOn) {
  ScriptedView& view = openPage(3);
  view.erase("txtPollIntervall").click("chkAutoPoll").click("btnNext").click("btnBack");
  EXPECT_TRUE(view.enabled("btnNext"));
}

TEST_F(WizardPages, ThirdPage_PollingOnAndIntervalEmpty_WantsIt) {
  setOption("SendReceive_AutoIntervall", "soon");
  ScriptedView& view = openPage(2);
  EXPECT_TRUE(view.enabled("btnNext"));
  view.click("btnNext");
  EXPECT_FALSE(view.enabled("btnNext"));
  view.type("txtPollIntervall", u"5");
  EXPECT_TRUE(view.enabled("btnNext"));
}

TEST_F(WizardPages, FourthPage_WantsNameAndNumber) {
  ScriptedView& view = openPage(4);
  EXPECT_FALSE(view.enabled("btnNext"));
  view.type("txtName", u"Anna");
  EXPECT_FALSE(view.enabled("btnNext"));
  view.type("txtPhoneNo", u"+46");
  EXPECT_TRUE(view.enabled("btnNext"));
  view.erase("txtName", 4);
  EXPECT_FALSE(view.enabled("btnNext"));
  view.type("txtName", u"B");
  EXPECT_TRUE(view.enabled("btnNext"));
}

// Leaving -------------------------------------------------------------------------------------------------------------

TEST_F(WizardPages, CancelOnAnyPage_WritesNothing) {
  for (int page = 1; page <= 4; ++page) {
    for (const bool byItsMenu : {false, true}) {
      ScriptedView& view = openPage(page);
      const std::size_t asked = system.registry.log().size();
      if (byItsMenu)
        view.close();
      else
        view.click("btnCancel");
      EXPECT_FALSE(isOpen());
      EXPECT_EQ(system.registry.log().size(), asked);
    }
  }
  for (const std::string& line : system.registry.log())  // the way to the page included
    EXPECT_FALSE(line.starts_with("create ") || line.starts_with("set ")) << line;
}

TEST_F(WizardPages, Help_OpensTheHelpFileAndLeavesThePage) {
  system.registry.setString(rootLocalMachine, installationKey, "RESPATH", "C:\\help");
  system.registry.setDword(rootLocalMachine, installationKey, "LANGID", 1031);
  for (int page = 1; page <= 4; ++page) openPage(page).click("btnHelp");
  EXPECT_EQ(system.shell.helps,
            (std::vector<testing_support::NativeShell::Help>(4, {0, "C:\\help\\smsx_de.chm", 0, 0})));
  EXPECT_TRUE(system.ui.view(u"frmwizard").seen("pageUserInformation"));
}

TEST_F(WizardPages, Help_LanguageThatIsNoNumber_IsTheReadersLineAndTheEnglishFile) {
  system.registry.setString(rootLocalMachine, installationKey, "RESPATH", "C:\\help");
  system.registry.setString(rootLocalMachine, installationKey, "LANGID", "Swedish");
  open().click("btnHelp");
  EXPECT_EQ(system.shell.helps,
            (std::vector<testing_support::NativeShell::Help>{{0, "C:\\help\\smsx_en-us.chm", 0, 0}}));
  EXPECT_EQ(system.trace(), Lines{"Error in GetRegDword"});  // the reader's, not the wizard's
  system.windows.clearTrace();
}

TEST_F(WizardPages, Help_WithoutViewer_IsSkippedSilently) {
  system.shell.helpViewerIsMissing = true;
  open().click("btnHelp");
  EXPECT_TRUE(isOpen());
}

TEST_F(WizardPages, UnloadedWhileALocalizerCallServesMessages_EndsQuietly) {
  provideLocalizer().method(u"getlocalizedresstring", [this](Args a) {
    if (CLng(a[0]) == 412) wizard->Unload();
    return a[1];
  });
  ScriptedView& view = openPage(3);
  view.click("btnNext");
  EXPECT_FALSE(isOpen());
}

}  // namespace
}  // namespace addin
