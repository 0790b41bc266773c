// What the wizard shows when it opens and what it writes when it is finished.

#include <fstream>
#include <iterator>

#include "unit/settings/frmwizard_fixture.h"

namespace addin {
namespace {

constexpr const char* ntKey = "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion";
constexpr const char* otherKey = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion";

class WizardSettings : public WizardFixture {
 protected:
  bool ticked(const std::string& name) { return system.ui.view(u"frmwizard").control(name).Value(); }
  std::string shown(const std::string& name) { return system.ui.view(u"frmwizard").text(name); }
  std::int32_t selected() { return system.ui.view(u"frmwizard").control("cboSCAddress").ListIndex(); }
  // The values in the order in which they were written.
  Lines writes() {
    Lines names;
    for (const std::string& line : system.registry.log())
      if (line.starts_with("set ")) names.push_back(line.substr(line.find(" \"") + 1));
    return names;
  }
  // Opens the wizard and finishes it as it stands; name and number come from the settings.
  void finish() {
    ScriptedView& view = openPage(4);
    system.registry.clearLog();
    view.click("btnNext");
    EXPECT_FALSE(isOpen());
  }
  void setUser() {
    setOption("My_FullName", "Anna");
    setOption("My_PhoneNo", "+46701");
  }
};

// What it shows -------------------------------------------------------------------------------------------------------

TEST_F(WizardSettings, FirstRun_ShowsTheDefaults) {
  system.registry.setString(rootLocalMachine, ntKey, "RegisteredOwner", "Registered Owner");
  ScriptedView& view = open();
  EXPECT_TRUE(ticked("chkAutoPoll"));
  EXPECT_EQ(shown("txtPollIntervall"), "2");
  EXPECT_FALSE(ticked("chkOwnSCAddress"));
  EXPECT_FALSE(ticked("chkAutoRemove"));
  EXPECT_EQ(shown("txtName"), "Registered Owner");
  EXPECT_EQ(shown("txtPhoneNo"), "");
  EXPECT_EQ(shown("txtOwnSCAddress"), "");
  EXPECT_EQ(selected(), 1);
  EXPECT_TRUE(view.enabled("cboSCAddress"));
  EXPECT_FALSE(view.enabled("txtOwnSCAddress"));
  EXPECT_TRUE(view.enabled("txtPollIntervall"));
}

TEST_F(WizardSettings, StoredValues_AreShownAgain) {
  setOption("SCAddress", "South, East (+456)");
  setOption("SCAddress_Own", "(+46 70)");
  setOption("SCAddress_UseOwn", 1u);
  setOption("SendReceive_UseAuto", 0u);
  setOption("SendReceive_AutoIntervall", 15u);
  setOption("SendReceive_AutoRemove", 1u);
  setUser();
  system.registry.setString(rootLocalMachine, ntKey, "RegisteredOwner", "Registered Owner");
  ScriptedView& view = open();
  EXPECT_EQ(selected(), 3);
  EXPECT_EQ(shown("txtOwnSCAddress"), "+4670");  // as the number is used: without blanks
  EXPECT_TRUE(ticked("chkOwnSCAddress"));
  EXPECT_FALSE(ticked("chkAutoPoll"));
  EXPECT_EQ(shown("txtPollIntervall"), "15");
  EXPECT_TRUE(ticked("chkAutoRemove"));
  EXPECT_EQ(shown("txtName"), "Anna");
  EXPECT_EQ(shown("txtPhoneNo"), "+46701");
  EXPECT_TRUE(view.enabled("txtOwnSCAddress"));
  EXPECT_FALSE(view.enabled("cboSCAddress"));
  EXPECT_FALSE(view.enabled("txtPollIntervall"));
}

TEST_F(WizardSettings, Values_AreReadFromTheUsersRootOnly) {
  system.registry.setString(rootLocalMachine, optionsKey, "My_FullName", "Machine");
  system.registry.setDword(rootLocalMachine, optionsKey, "SendReceive_AutoIntervall", 77);
  open();
  EXPECT_EQ(shown("txtName"), "");
  EXPECT_EQ(shown("txtPollIntervall"), "2");
}

TEST_F(WizardSettings, NumbersStoredAsText_AreNumbersAllTheSame) {
  setOption("SCAddress_UseOwn", "1");
  setOption("SendReceive_UseAuto", "0");
  setOption("SendReceive_AutoIntervall", " 7 ");
  setOption("SendReceive_AutoRemove", "-1");
  open();
  EXPECT_TRUE(ticked("chkOwnSCAddress"));
  EXPECT_FALSE(ticked("chkAutoPoll"));
  EXPECT_EQ(shown("txtPollIntervall"), "7");
  EXPECT_TRUE(ticked("chkAutoRemove"));
}

TEST_F(WizardSettings, TextThatIsNoNumber_SkipsItsLineOnly) {
  for (const char* name :
       {"SCAddress_UseOwn", "SendReceive_UseAuto", "SendReceive_AutoIntervall", "SendReceive_AutoRemove"})
    setOption(name, "soon");
  setUser();
  ScriptedView& view = open();
  EXPECT_FALSE(ticked("chkOwnSCAddress"));
  EXPECT_FALSE(ticked("chkAutoPoll"));  // its design state, not its default
  EXPECT_EQ(shown("txtPollIntervall"), "");
  EXPECT_FALSE(ticked("chkAutoRemove"));
  EXPECT_EQ(shown("txtName"), "Anna");  // the later lines ran
  EXPECT_EQ(shown("txtPhoneNo"), "+46701");
  EXPECT_FALSE(view.enabled("txtPollIntervall"));
  EXPECT_FALSE(view.enabled("txtOwnSCAddress"));
}

TEST_F(WizardSettings, TextThatIsNoNumber_LeavesEveryOtherValueAsItIsStored) {
  const auto shownValues = [this] {
    Lines values{std::to_string(selected()), shown("txtOwnSCAddress"), shown("txtName"), shown("txtPhoneNo")};
    values.push_back("UseOwn " + std::to_string(ticked("chkOwnSCAddress")));
    values.push_back("Auto " + std::to_string(ticked("chkAutoPoll")));
    values.push_back("Interval " + shown("txtPollIntervall"));
    values.push_back("Remove " + std::to_string(ticked("chkAutoRemove")));
    return values;
  };
  struct Case {
    const char* name;
    std::size_t line;
    const char* design;
  };
  for (const Case& c :
       {Case{"SCAddress_UseOwn", 4, "UseOwn 0"}, Case{"SendReceive_UseAuto", 5, "Auto 0"},
        Case{"SendReceive_AutoIntervall", 6, "Interval "}, Case{"SendReceive_AutoRemove", 7, "Remove 0"}})
    for (const char* text : {"soon", "99999999999"}) {
      setOption("SCAddress", "North (+1 23)");
      setOption("SCAddress_Own", "(+46)");
      for (const char* name : {"SCAddress_UseOwn", "SendReceive_UseAuto", "SendReceive_AutoRemove"})
        setOption(name, 1u);
      setOption("SendReceive_AutoIntervall", 15u);
      setUser();
      setOption(c.name, text);
      Lines expected{"2", "+46", "Anna", "+46701", "UseOwn 1", "Auto 1", "Interval 15", "Remove 1"};
      expected[c.line] = c.design;
      ScriptedView& view = open();
      EXPECT_EQ(shownValues(), expected) << c.name << " = " << text;
      EXPECT_EQ(view.enabled("txtOwnSCAddress"), ticked("chkOwnSCAddress"));
      EXPECT_EQ(view.enabled("cboSCAddress"), !ticked("chkOwnSCAddress"));
      EXPECT_EQ(view.enabled("txtPollIntervall"), ticked("chkAutoPoll"));
    }
}

TEST_F(WizardSettings, Loading_AsksForTheTextsFirstAndThenForEachValueInTurn) {
  system.registry.setString(rootLocalMachine, ntKey, "RegisteredOwner", "Registered Owner");
  system.journal.clear();
  open();
  Lines asked;
  for (const std::string& line : system.journal.lines())
    if (line.starts_with("query size "))
      asked.push_back(line.substr(line.find('"'), line.rfind('"') + 1 - line.find('"')));
    else if (line.starts_with("create ") || line.starts_with("read ") || line.starts_with("form "))
      asked.push_back(line);
  EXPECT_EQ(asked, (Lines{"create object mrktxtmsgres.localizer", "\"SMSCPath\"", "read file \"C:\\Marrick\\smsc.txt\"",
                          "\"SCAddress\"", "\"SCAddress_Own\"", "\"SCAddress_UseOwn\"", "\"SendReceive_UseAuto\"",
                          "\"SendReceive_AutoIntervall\"", "\"SendReceive_AutoRemove\"", "\"My_FullName\"",
                          "\"RegisteredOwner\"", "\"My_PhoneNo\"", "form frmwizard"}));
}

TEST_F(WizardSettings, ValuesOfOtherTypes_AreMissing) {
  for (const char* name : {"SCAddress", "SCAddress_Own", "SCAddress_UseOwn", "SendReceive_UseAuto",
                           "SendReceive_AutoIntervall", "SendReceive_AutoRemove", "My_FullName", "My_PhoneNo"})
    system.registry.setBytes(rootCurrentUser, optionsKey, name, testing_support::regBinary, "1\0");
  open();
  EXPECT_TRUE(ticked("chkAutoPoll"));
  EXPECT_EQ(shown("txtPollIntervall"), "2");
  EXPECT_EQ(shown("txtName"), "");
  EXPECT_EQ(shown("txtPhoneNo"), "");
  EXPECT_EQ(selected(), 1);
}

TEST_F(WizardSettings, TextsStoredAsNumbers_AreTheirDigits) {
  setOption("My_PhoneNo", 112u);
  setOption("My_FullName", 7u);
  open();
  EXPECT_EQ(shown("txtPhoneNo"), "112");
  EXPECT_EQ(shown("txtName"), "7");
}

TEST_F(WizardSettings, LongValues_AreCutAtTheLimitOfTheirField) {
  setOption("My_PhoneNo", "+123456789012345678");
  setOption("SendReceive_AutoIntervall", 1440u);
  open();
  EXPECT_EQ(shown("txtPhoneNo"), "+12345678901234");
  EXPECT_EQ(shown("txtPollIntervall"), "144");
}

TEST_F(WizardSettings, RegisteredOwner_ComesFromTheKeyOfThisWindows) {
  system.registry.setString(rootLocalMachine, ntKey, "RegisteredOwner", "New");
  system.registry.setString(rootLocalMachine, otherKey, "RegisteredOwner", "Old");
  open();
  EXPECT_EQ(shown("txtName"), "New");
  system.shell.platform = 1;
  open();
  EXPECT_EQ(shown("txtName"), "Old");
  setOption("My_FullName", "Anna");
  open();
  EXPECT_EQ(shown("txtName"), "Anna");
}

TEST_F(WizardSettings, StoredOwnNumberWithoutParentheses_IsNone) {
  setOption("SCAddress_Own", "+4670");
  open();
  EXPECT_EQ(shown("txtOwnSCAddress"), "");
}

TEST_F(WizardSettings, RegistryThatCannotBeRead_StillOpens) {
  for (const char* call : {"open", "query size", "query data"}) {
    system.registry.fail(call, testing_support::errorAccessDenied);
    open();
    EXPECT_EQ(shown("txtPollIntervall"), "2") << call;
    system.registry.failNoMore();
  }
}

// The list of service centres -----------------------------------------------------------------------------------------

TEST_F(WizardSettings, List_IsFilledInFileOrder) {
  ScriptedView& view = open();
  EXPECT_EQ(view.entries("cboSCAddress"),
            (Lines{"Choose one", "As stored on the SIM card ()", "North (+1 23)", "South, East (+456)"}));
}

TEST_F(WizardSettings, List_ThatIsShipped_BeginsWithItsHeadingAndTheSimsOwnNumber) {
  const std::string here = __FILE__;
  std::ifstream file(here.substr(0, here.find_last_of("/\\")) + "/../../../packaging/smsc/smsc.txt", std::ios::binary);
  ASSERT_TRUE(file);
  setList({std::istreambuf_iterator<char>(file), {}});
  const Lines expected{"Choose your service centre",
                       "As stored on the SIM card ()",
                       "Austral Mobile, Australia (+61 491 570 006)",
                       "Boreal Tel, Sweden (+46 70 174 06 05)",
                       "Hexagone Mobile, France (+33 6 39 98 12 34)",
                       "Kestrel Wireless, United Kingdom (+44 7700 900 123)",
                       "Rheinfunk, Germany (+49 171 39 20 042)",
                       "Sundial PCS, United States (+1 202 555 0143)"};
  EXPECT_EQ(open().entries("cboSCAddress"), expected);
  EXPECT_EQ(selected(), 1);
  // What is stored of an entry is all of it, and is found again.
  for (std::size_t entry = 1; entry < expected.size(); ++entry) {
    setOption("SCAddress", expected[entry]);
    open();
    EXPECT_EQ(selected(), static_cast<std::int32_t>(entry));
  }
}

TEST_F(WizardSettings, List_ItemsOfOneLineAreEntriesOfTheirOwn) {
  setList("Head,A (+1),\"B, C (+2)\"\r\n\r\nD (+3)\x1A hidden");
  EXPECT_EQ(open().entries("cboSCAddress"), (Lines{"Head", "A (+1)", "B, C (+2)", "", "D (+3)"}));
}

TEST_F(WizardSettings, List_InTheAnsiCodePage) {
  setList(
      "Head\r\nS\xF6"
      "der (+1)\r\n");
  EXPECT_EQ(open().entries("cboSCAddress"), (Lines{"Head",
                                                   "S\xC3\xB6"
                                                   "der (+1)"}));
}

TEST_F(WizardSettings, List_PathIsReadFromTheMachinesRootOnly) {
  setNoList();
  system.registry.setString(rootCurrentUser, installationKey, "SMSCPath", utf8(listPath));
  EXPECT_EQ(open().entries("cboSCAddress"), Lines{});
}

TEST_F(WizardSettings, List_FileThatIsMissing_IsEmpty) {
  system.files.contents.clear();
  EXPECT_EQ(open().entries("cboSCAddress"), Lines{});
  EXPECT_EQ(selected(), -1);
  EXPECT_EQ(shown("txtPollIntervall"), "2");  // the later lines ran
}

TEST_F(WizardSettings, List_FileThatBreaksOff_KeepsTheEntriesSoFar) {
  setList("Head\r\nA (+1)\r\nB (+2)\r\n");
  system.files.pieceSize = 1;
  system.files.breaksAt = 18;  // in the middle of the last entry
  EXPECT_EQ(open().entries("cboSCAddress"), (Lines{"Head", "A (+1)"}));
}

TEST_F(WizardSettings, List_WithoutLineEnds_IsOneEntryAndNothingIsSelected) {
  setList(std::string(100'000, 'x'));
  ScriptedView& view = open();
  EXPECT_EQ(view.entries("cboSCAddress"), (Lines{std::string(100'000, 'x')}));
  EXPECT_EQ(selected(), -1);
  view.click("btnNext");
  EXPECT_TRUE(view.enabled("cboSCAddress"));  // one entry is a list
}

TEST_F(WizardSettings, List_LongerThanAListCanBe_IsCutThereAndTheRestIsNotRead) {
  std::string text;
  for (int i = 0; i < 33'000; ++i) text += "(+" + std::to_string(i) + ")\r\n";
  setList(text);
  system.files.pieceSize = 65536;
  ScriptedView& view = open();
  EXPECT_EQ(view.control("cboSCAddress").ListCount(), 32767);
  EXPECT_EQ(utf8(view.control("cboSCAddress").List(32766)), "(+32766)");
  EXPECT_EQ(selected(), 1);
}

TEST_F(WizardSettings, List_OfTenMegabytes_OfAnything) {
  std::string bytes(10u << 20, '\0');
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i * i >> 3);  // every value in turn
  std::replace(bytes.begin(), bytes.end(), '\x1A', ',');
  setList(bytes);
  system.files.pieceSize = 65536;
  ScriptedView& view = open();
  EXPECT_GT(view.control("cboSCAddress").ListCount(), 1000);
  EXPECT_EQ(shown("txtPollIntervall"), "2");
}

TEST_F(WizardSettings, SelectServiceCentre_ComparesExactlyAndFallsBackToTheSecondEntry) {
  const std::pair<const char*, std::int32_t> cases[]{{"North (+1 23)", 2},
                                                     {"south, east (+456)", 1},
                                                     {"South, East (+456)", 3},
                                                     {"North", 1},
                                                     {"", 1},
                                                     {"Choose one", 1},  // the heading is never chosen
                                                     {"As stored on the SIM card ()", 1}};
  for (const auto& [stored, index] : cases) {
    setOption("SCAddress", stored);
    open();
    EXPECT_EQ(selected(), index) << stored;
  }
}

TEST_F(WizardSettings, SelectServiceCentre_SameEntryTwice_TakesTheFirst) {
  setList("Head\nA\nB\nB\n");
  setOption("SCAddress", "B");
  open();
  EXPECT_EQ(selected(), 2);
}

TEST_F(WizardSettings, SelectServiceCentre_NothingStored_IsTheEmptyEntryWhenThereIsOne) {
  setList("H\nA\n\nB");
  ScriptedView& view = open();
  EXPECT_EQ(view.entries("cboSCAddress"), (Lines{"H", "A", "", "B"}));
  EXPECT_EQ(selected(), 2);
}

TEST_F(WizardSettings, SelectServiceCentre_HeadingAlone_LeavesNothingSelected) {
  setList("Head\r\n");
  setOption("SCAddress", "Head");
  open();
  EXPECT_EQ(selected(), -1);
}

// What it writes ------------------------------------------------------------------------------------------------------

TEST_F(WizardSettings, Finish_WritesEveryValueInOrder) {
  setUser();
  ScriptedView& view = openPage(2);
  view.choose("cboSCAddress", 3).click("btnNext").click("chkAutoRemove").click("btnNext");
  view.erase("txtName", 4).type("txtName", u"Bo \u00D6").type("txtPhoneNo", u"2");
  system.registry.clearLog();
  view.click("btnNext");
  EXPECT_FALSE(isOpen());
  EXPECT_EQ(writes(), (Lines{"\"SCAddress\" type 1, 18 bytes", "\"SCAddress_Own\" type 1, 2 bytes",
                             "\"SCAddress_UseOwn\" type 4, 4 bytes", "\"SendReceive_UseAuto\" type 4, 4 bytes",
                             "\"SendReceive_AutoIntervall\" type 4, 4 bytes",
                             "\"SendReceive_AutoRemove\" type 4, 4 bytes", "\"My_FullName\" type 1, 4 bytes",
                             "\"My_PhoneNo\" type 1, 7 bytes", "\"WizardDone\" type 4, 4 bytes"}));
  EXPECT_EQ(stored("SCAddress"), text("South, East (+456)"));
  EXPECT_EQ(stored("SCAddress_Own"), text("()"));
  EXPECT_EQ(stored("SCAddress_UseOwn"), number(0));
  EXPECT_EQ(stored("SendReceive_UseAuto"), number(1));
  EXPECT_EQ(stored("SendReceive_AutoIntervall"), number(2));
  EXPECT_EQ(stored("SendReceive_AutoRemove"), number(1));
  EXPECT_EQ(stored("My_FullName"), text("Bo \xD6"));
  EXPECT_EQ(stored("My_PhoneNo"), text("+467012"));
  EXPECT_EQ(stored("WizardDone"), number(1));
}

TEST_F(WizardSettings, Finish_WithoutAnyKey_CreatesIt) {
  system.registry.deleteKey(rootCurrentUser, optionsKey);
  ScriptedView& view = openPage(4);
  view.type("txtName", u"A").type("txtPhoneNo", u"12").click("btnNext");
  EXPECT_EQ(stored("WizardDone"), number(1));
}

TEST_F(WizardSettings, Finish_FirstEntrySelected_LeavesTheStoredOneAlone) {
  setUser();
  setOption("SCAddress", "North (+1 23)");
  const auto before = stored("SCAddress");
  ScriptedView& view = openPage(2);
  view.choose("cboSCAddress", 0).click("btnNext").click("btnNext").click("btnNext");
  EXPECT_EQ(stored("SCAddress"), before);
  EXPECT_EQ(stored("WizardDone"), number(1));
}

TEST_F(WizardSettings, Finish_FirstEntrySelectedAndNothingStored_WritesNone) {
  setUser();
  openPage(2).choose("cboSCAddress", 0).click("btnNext").click("btnNext").click("btnNext");
  EXPECT_FALSE(stored("SCAddress"));
  EXPECT_EQ(stored("WizardDone"), number(1));
}

TEST_F(WizardSettings, Finish_OwnNumber_IsWrappedAndShownWithoutParenthesesNextTime) {
  setUser();
  ScriptedView& view = openPage(2);
  view.click("chkOwnSCAddress").type("txtOwnSCAddress", u"+46 70").click("btnNext").click("btnNext").click("btnNext");
  EXPECT_EQ(stored("SCAddress_Own"), text("(+46 70)"));
  EXPECT_EQ(stored("SCAddress_UseOwn"), number(1));
  EXPECT_EQ(stored("SCAddress"), text("As stored on the SIM card ()"));  // the choice in the list is kept with it
  open();
  EXPECT_EQ(shown("txtOwnSCAddress"), "+4670");
}

// What is between the first "(" and the first ")" behind it, as for an entry of the list.
TEST_F(WizardSettings, Finish_OwnNumberWithParentheses_LosesItsEndNextTime) {
  setUser();
  ScriptedView& view = openPage(2);
  view.click("chkOwnSCAddress").type("txtOwnSCAddress", u"+46 (0)70").click("btnNext").click("btnNext");
  view.click("btnNext");
  EXPECT_EQ(stored("SCAddress_Own"), text("(+46 (0)70)"));
  open();
  EXPECT_EQ(shown("txtOwnSCAddress"), "+46(0");
}

TEST_F(WizardSettings, Finish_EmptyList_KeepsTheStoredEntry) {
  setUser();
  setNoList();
  setOption("SCAddress", "North (+1 23)");
  finish();
  EXPECT_EQ(writes().front(), "\"SCAddress_Own\" type 1, 4 bytes");
  EXPECT_EQ(stored("SCAddress_Own"), text("(+4)"));
  EXPECT_EQ(stored("SCAddress_UseOwn"), number(1));
}

TEST_F(WizardSettings, Finish_PollingOffAndIntervalEmpty_SavesTwo) {
  setUser();
  ScriptedView& view = openPage(3);
  view.click("chkAutoPoll").click("chkAutoPoll").erase("txtPollIntervall").click("chkAutoPoll");
  view.click("btnNext").click("btnNext");
  EXPECT_EQ(stored("SendReceive_UseAuto"), number(0));
  EXPECT_EQ(stored("SendReceive_AutoIntervall"), number(2));
}

TEST_F(WizardSettings, Finish_Interval_IsANumber) {
  setUser();
  ScriptedView& view = openPage(3);
  view.erase("txtPollIntervall").type("txtPollIntervall", u"045").click("btnNext").click("btnNext");
  EXPECT_EQ(stored("SendReceive_AutoIntervall"), number(45));
}

TEST_F(WizardSettings, Finish_WithoutTouchingAnything_WritesTheDefaults) {
  setUser();
  finish();
  EXPECT_EQ(stored("SCAddress"), text("As stored on the SIM card ()"));
  EXPECT_EQ(stored("SCAddress_Own"), text("()"));
  EXPECT_EQ(stored("SCAddress_UseOwn"), number(0));
  EXPECT_EQ(stored("SendReceive_UseAuto"), number(1));
  EXPECT_EQ(stored("SendReceive_AutoIntervall"), number(2));
  EXPECT_EQ(stored("SendReceive_AutoRemove"), number(0));
}

TEST_F(WizardSettings, Finish_RegistryThatCannotBeWritten_IsSkippedSilently) {
  for (const char* call : {"create", "set"}) {
    setUser();
    system.registry.fail(call, testing_support::errorAccessDenied);
    finish();
    EXPECT_FALSE(stored("WizardDone")) << call;
    system.registry.failNoMore();
  }
}

TEST_F(WizardSettings, Finish_OneValueThatCannotBeWritten_IsSkippedAlone) {
  setUser();
  ScriptedView& view = openPage(4);
  system.registry.clearLog();
  int saves = 0;
  system.registry.afterCall = [&saves](const std::string& line) {
    if (line.starts_with("create ") && ++saves == 3) raiseError(70);
  };
  view.click("btnNext");
  system.registry.afterCall = nullptr;
  EXPECT_EQ(saves, 9);
  EXPECT_EQ(writes(), (Lines{"\"SCAddress\" type 1, 28 bytes", "\"SCAddress_Own\" type 1, 2 bytes",
                             "\"SendReceive_UseAuto\" type 4, 4 bytes", "\"SendReceive_AutoIntervall\" type 4, 4 bytes",
                             "\"SendReceive_AutoRemove\" type 4, 4 bytes", "\"My_FullName\" type 1, 4 bytes",
                             "\"My_PhoneNo\" type 1, 6 bytes", "\"WizardDone\" type 4, 4 bytes"}));
  EXPECT_FALSE(stored("SCAddress_UseOwn"));
  EXPECT_EQ(stored("WizardDone"), number(1));
  EXPECT_FALSE(isOpen());
}

TEST_F(WizardSettings, Finish_IntervalOfNothing_IsWrittenAsItStands) {
  setUser();
  openPage(3).erase("txtPollIntervall").type("txtPollIntervall", u"0").click("btnNext").click("btnNext");
  EXPECT_EQ(stored("SendReceive_AutoIntervall"), number(0));
}

TEST_F(WizardSettings, Finish_StoredIntervalBelowNothing_IsShownAndWrittenBack) {
  setUser();
  setOption("SendReceive_AutoIntervall", 0xFFFFFFFFu);
  open();
  EXPECT_EQ(shown("txtPollIntervall"), "-1");
  finish();
  EXPECT_EQ(stored("SendReceive_AutoIntervall"), (RegistryValue{testing_support::regDword, "\xFF\xFF\xFF\xFF"}));
}

TEST_F(WizardSettings, Finish_PressedTwice_SavesOnce) {
  setUser();
  openPage(4);
  Control& next = *wizard->Find(u"btnNext");
  system.registry.clearLog();
  next.userClicks();
  next.userClicks();
  EXPECT_EQ(writes().size(), 9u);
}

TEST_F(WizardSettings, Finish_CancelledByASaveThatFails_NeverHappens) {
  setUser();
  ScriptedView& view = openPage(4);
  system.registry.afterCall = [](const std::string& line) {
    if (line.starts_with("create ")) raiseError(70);
  };
  view.click("btnNext");
  system.registry.afterCall = nullptr;
  EXPECT_FALSE(isOpen());
}

}  // namespace
}  // namespace addin
