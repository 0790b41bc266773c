// The menu buttons: where they go, what is set on them, and what their clicks do.

#include "addin/host/basCommandBars.h"
#include "unit/host/host_fixture.h"

namespace addin {
namespace {

class Buttons : public HostFixture {
 protected:
  void init() { addIn->InitHandler(application->as<outlook::Application>(), u"mrktxtmsg.connect"); }
  void click(const std::string& tag) {
    bool cancel = false;
    button(tag).fire(office::CommandBarButtonEvents::Click, button(tag).object(), cancel);
    EXPECT_FALSE(cancel);
  }
  void TearDown() override { addIn->UnInitHandler(); }
};

TEST_F(Buttons, Installation_SetsEveryPropertyInOrder) {
  init();
  EXPECT_EQ(button("New Text Message").calls(),
            (Lines{"Caption = \"Text Message\"", "Tag = \"New Text Message\"", "FaceId = 1757", "Style = 3",
                   "TooltipText = \"Create a new Text Message\"", "BeginGroup = False",
                   "OnAction = \"<!mrktxtmsg.connect>\"", "connect"}));
  EXPECT_EQ(button("Send & Receive Text Message").calls(),
            (Lines{"Caption = \"Send && Receive Text Messages\"", "Tag = \"Send & Receive Text Message\"",
                   "FaceId = 1757", "Style = 3", "TooltipText = \"Send & Receive Text Messages\"", "BeginGroup = False",
                   "OnAction = \"<!mrktxtmsg.connect>\"", "connect", "Enabled = False"}));
  EXPECT_EQ(button("About Text Message Add-In").calls(),
            (Lines{"Caption = \"About Text Message Add-In\"", "Tag = \"About Text Message Add-In\"", "FaceId = 1757",
                   "Style = 3", "TooltipText = \"About Text Message Add-In\"", "BeginGroup = False",
                   "OnAction = \"<!mrktxtmsg.connect>\"", "connect"}));
  // Caption only: its face is not set.
  EXPECT_EQ(button("Text Message Add-In Help").calls(),
            (Lines{"Caption = \"Text Message Add-In Help\"", "Tag = \"Text Message Add-In Help\"", "Style = 2",
                   "TooltipText = \"Text Message Add-In Help\"", "BeginGroup = False",
                   "OnAction = \"<!mrktxtmsg.connect>\"", "connect"}));
}

TEST_F(Buttons, Installation_LooksUpMenusAndControlsInOrder) {
  Recorder recorder;
  init();
  EXPECT_EQ(recorder.linesWith("FindControl"),
            (Lines{"MenuBar.FindControl(Missing, 30037, Missing, Missing, True)",
                   "Menu 30037.FindControl(Missing, Missing, \"New Text Message\", Missing, Missing)",
                   "MenuBar.FindControl(Missing, 30007, Missing, Missing, True)",
                   "Menu 30007.FindControl(Missing, Missing, \"Send & Receive Text Message\", Missing, Missing)",
                   "MenuBar.FindControl(Missing, 30010, Missing, Missing, True)",
                   "Menu 30010.FindControl(Missing, Missing, \"About Text Message Add-In\", Missing, Missing)",
                   "MenuBar.FindControl(Missing, 30010, Missing, Missing, True)",
                   "Menu 30010.FindControl(Missing, Missing, \"Text Message Add-In Help\", Missing, Missing)"}));
  EXPECT_EQ(recorder.linesWith(".Add("),
            (Lines{"Controls 30037.Add(1, Missing, \"New Text Message\", Missing, Missing)",
                   "Controls 30007.Add(1, Missing, \"Send & Receive Text Message\", Missing, Missing)",
                   "Controls 30010.Add(1, Missing, \"About Text Message Add-In\", Missing, Missing)",
                   "Controls 30010.Add(1, Missing, \"Text Message Add-In Help\", Missing, Missing)"}));
}

TEST_F(Buttons, Installation_WithoutNewMenu_PutsTheNewButtonUnderTools) {
  popups.erase(30037);
  Recorder recorder;
  init();
  const Lines added = recorder.linesWith("Controls 30007.Add(");
  EXPECT_EQ(added, (Lines{"Controls 30007.Add(1, Missing, \"Send & Receive Text Message\", Missing, Missing)",
                          "Controls 30007.Add(1, Missing, \"New Text Message\", Missing, Missing)"}));
  EXPECT_EQ(newTrace(), (Lines{noLocalizer, "Added send&receive to tools menu", "Added textmessage to tools menu",
                               "Added about to help menu", "Added Help button to Help menu"}));
  EXPECT_EQ(button("New Text Message").valueOf(u"Caption"), Variant(u"Text Message"));
  EXPECT_EQ(button("Send & Receive Text Message").valueOf(u"Enabled"), Variant(false));
}

TEST_F(Buttons, Installation_WithoutNewMenu_DisablesSendReceiveLast) {
  popups.erase(30037);
  Recorder recorder;
  init();
  const Lines lines = recorder.lines();
  const auto at = [&](const std::string& line) { return std::find(lines.begin(), lines.end(), line) - lines.begin(); };
  EXPECT_LT(at("Button New Text Message.OnAction = \"<!mrktxtmsg.connect>\""),
            at("Button Send & Receive Text Message.Enabled = False"));
}

TEST_F(Buttons, Installation_WithoutToolsMenu_HasNoSendReceiveButton) {
  popups.erase(30007);
  init();
  EXPECT_EQ(newTrace(), (Lines{noLocalizer, "Added textmessage to new menu", "Added about to help menu",
                               "Added Help button to Help menu"}));
  EXPECT_EQ(buttons.size(), 3u);
}

TEST_F(Buttons, Installation_WithoutNewAndToolsMenu_PlacesNeither) {
  popups.erase(30007);
  popups.erase(30037);
  init();
  EXPECT_EQ(newTrace(), (Lines{noLocalizer, "Added about to help menu", "Added Help button to Help menu"}));
  EXPECT_EQ(buttons.size(), 2u);
}

TEST_F(Buttons, Installation_WithoutHelpMenu_IsSilentAboutIt) {
  popups.erase(30010);
  init();
  EXPECT_EQ(newTrace(), (Lines{noLocalizer, "Added textmessage to new menu", "Added send&receive to tools menu"}));
}

TEST_F(Buttons, Installation_Localized_AsksInOrderAndKeepsEnglishTags) {
  const auto localizer = fake("Localizer");
  localizer->method(u"getlocalizedresstring", [](Args a) { return Variant(concat(u"L", CLng(a[0]))); });
  system.objects.provide(u"mrktxtmsgres.localizer", [&] { return localizer->object(); });
  init();
  EXPECT_EQ(localizer->calls(), (Lines{"getlocalizedresstring(301, \"Text Message\")",
                                       "getlocalizedresstring(302, \"Create a new Text Message\")",
                                       "getlocalizedresstring(303, \"Send && Receive Text Messages\")",
                                       "getlocalizedresstring(304, \"Send & Receive Text Messages\")",
                                       "getlocalizedresstring(305, \"About Text Message Add-In\")",
                                       "getlocalizedresstring(306, \"About Text Message Add-In\")",
                                       "getlocalizedresstring(311, \"Text Message Add-In Help\")",
                                       "getlocalizedresstring(312, \"Text Message Add-In Help\")"}));
  EXPECT_EQ(button("Send & Receive Text Message").valueOf(u"Caption"), Variant(u"L303"));
  EXPECT_EQ(button("Send & Receive Text Message").valueOf(u"TooltipText"), Variant(u"L304"));
  EXPECT_EQ(button("Text Message Add-In Help").valueOf(u"TooltipText"), Variant(u"L312"));
  EXPECT_EQ(button("Text Message Add-In Help").valueOf(u"Tag"), Variant(u"Text Message Add-In Help"));
}

TEST_F(Buttons, Installation_FailingMenuLookUp_EndsInitHandlerAndKeepsWhatWasAdded) {
  const auto lookUp = [this](Args a) -> Variant {
    if (CLng(a[1]) == 30007) raiseError(-2147467259, u"Office", u"Unspecified error");
    return Variant(popups.at(CLng(a[1]))->object());
  };
  menuBar->method(u"FindControl", lookUp);
  init();
  EXPECT_EQ(newTrace(), (Lines{noLocalizer, "Added textmessage to new menu",
                               "InitHandler Error:-2147467259, Unspecified error, Office"}));
  EXPECT_EQ(buttons.size(), 1u);
}

TEST_F(Buttons, Installation_MenusThatTakeNoButton_EndsWhereTheMissingButtonIsUsed) {
  const auto bar = fake("Bar");  // finds nothing and has no controls
  for (const auto& [id, popup] : popups) popup->value(u"CommandBar", bar->object());
  init();
  EXPECT_EQ(newTrace(), (Lines{noLocalizer, "Added textmessage to new menu", "Added send&receive to tools menu",
                               "InitHandler Error:91, Object variable or With block variable not set, mrktxtmsg"}));
  EXPECT_TRUE(buttons.empty());
}

TEST_F(Buttons, AddCommandBarButton_PropertyThatCannotBeSet_IsSkipped) {
  const auto bar = fake("Bar");
  const auto control = fake("Control");
  control->value(u"Caption", Variant()).value(u"Tag", Variant()).value(u"OnAction", Variant());  // the others: 438
  bar->method(u"FindControl", [&](Args) { return Variant(control->object()); });
  const auto made = AddCommandBarButton(u"P", bar->as<office::CommandBar>(), u"C", u"T", u"Tip", 17, 1, 3);
  EXPECT_TRUE(made == control->object());
  EXPECT_EQ(control->valueOf(u"Caption"), Variant(u"C"));
  EXPECT_EQ(control->valueOf(u"OnAction"), Variant(u"<!P>"));
  EXPECT_EQ(newTrace(), Lines{});
}

TEST_F(Buttons, AddCommandBarButton_FailingSearch_AddsOne) {
  const auto bar = fake("Bar");
  const auto controls = fake("Controls");
  const auto control = fake("Control");
  control->value(u"BeginGroup", Variant());
  controls->method(u"Add", [&](Args) { return Variant(control->object()); });
  bar->fails(u"FindControl", -2147467259).value(u"Controls", controls->object());
  const auto made = AddCommandBarButton(u"P", bar->as<office::CommandBar>(), u"C", u"T", u"Tip", 17, 1, 2);
  EXPECT_TRUE(made == control->object());
  EXPECT_EQ(control->valueOf(u"BeginGroup"), Variant(true));  // a 16-bit integer used as a Boolean
}

TEST_F(Buttons, AddCommandBarButton_NoWayToAddOne_IsNothing) {
  EXPECT_FALSE(AddCommandBarButton(u"P", fake("Bar")->as<office::CommandBar>(), u"C", u"T", u"Tip", 17, 0, 3));
  EXPECT_EQ(newTrace(), Lines{});
}

TEST_F(Buttons, NewClick_CreatesAndDisplaysInTheShownFolder) {
  start();
  const auto shown = fake("Shown folder");
  const auto items = fake("Items");
  const auto item = fake("Item");
  item->method(u"Display", [](Args) { return Variant(); });
  items->method(u"Add", [&](Args) { return Variant(item->object()); });
  shown->value(u"Items", items->object());
  explorer->value(u"CurrentFolder", shown->object());
  click("New Text Message");
  EXPECT_EQ(items->calls(), (Lines{"Add(\"IPM.Note.TxtMsg\")"}));
  EXPECT_EQ(item->calls(), (Lines{"Display()"}));
  EXPECT_EQ(newTrace(), Lines{});
}

TEST_F(Buttons, NewClick_BeforeTheWizardIsDone_ShowsItModelessAndCreatesNothing) {
  start();
  setOption("WizardDone", 0u);
  explorer->clearCalls();
  click("New Text Message");
  EXPECT_EQ(system.ui.shown, (std::vector<Shown>{{u"frmwizard", FormModality::Modeless}}));
  EXPECT_TRUE(system.ui.isOpen(u"frmwizard"));  // not waited for
  EXPECT_EQ(explorer->calls(), Lines{});
  EXPECT_EQ(newTrace(), Lines{});
}

TEST_F(Buttons, NewClick_Failing_IsLoggedOnce) {
  start();
  explorer->fails(u"CurrentFolder", RuntimeError(70, u"Outlook", u"Permission denied"));
  click("New Text Message");
  EXPECT_EQ(newTrace(), (Lines{"Error:70, Permission denied, Outlook"}));
}

}  // namespace
}  // namespace addin
