// Command bars, the Assistant, option pages, forms and the list of add-ins.
#include "addin/platform/convert.h"
#include "addin/platform/extensibility.h"
#include "unit/mailclient/fixture.h"

namespace mailclient {
namespace {

using platform::missing;
using testing::ElementsAre;
using testing::IsEmpty;

class OfficeTest : public MailClientTest {
 protected:
  void SetUp() override { begin({}); }

  void begin(ClientOptions options) {
    start(std::move(options));
    client->windows().openExplorer(client->store().defaultFolder(DefaultFolder::Inbox));
  }
  office::CommandBar menuBar() { return application.ActiveExplorer().CommandBars().Item(u"Menu Bar"); }
  office::CommandBarControl popup(std::int32_t id) {
    return menuBar().FindControl(missing, id, missing, missing, true);
  }
  office::CommandBar popupBar(std::int32_t id) { return office::CommandBarPopup(popup(id).automation()).CommandBar(); }
  office::CommandBarButton add(std::int32_t id, StringView tag, const Variant& temporary = missing) {
    const auto button = popupBar(id).Controls().Add(office::msoControlButton, missing, tag, missing, temporary);
    button.Tag(tag);
    return office::CommandBarButton(button.automation());
  }
  office::CommandBarControl byTag(std::int32_t id, StringView tag) {
    return popupBar(id).FindControl(missing, missing, tag, missing, missing);
  }
};

TEST_F(OfficeTest, FindControl_Recursive_FindsPopupsInsidePopups) {
  EXPECT_TRUE(popup(menu::newItem));
  EXPECT_TRUE(popup(menu::tools));
  EXPECT_TRUE(popup(menu::help));
  EXPECT_FALSE(menuBar().FindControl(missing, menu::newItem, missing, missing, missing)) << "it lies inside File";
  EXPECT_FALSE(menuBar().FindControl(missing, 4711, missing, missing, true));
}

TEST_F(OfficeTest, MenuLeftOut_IsNotFound) {
  begin({.menusLeftOut = {menu::newItem, menu::help}});
  EXPECT_FALSE(popup(menu::newItem));
  EXPECT_FALSE(popup(menu::help));
  EXPECT_TRUE(popup(menu::tools));
}

TEST_F(OfficeTest, FindControl_ByTagTypeAndVisible) {
  const auto button = add(menu::tools, u"T");
  EXPECT_EQ(byTag(menu::tools, u"T"), button);
  EXPECT_FALSE(byTag(menu::tools, u"t")) << "tags have case";
  EXPECT_FALSE(byTag(menu::help, u"T"));
  LateBound(button).let(u"Visible", false);
  EXPECT_FALSE(popupBar(menu::tools).FindControl(missing, missing, u"T", true, missing));
  EXPECT_TRUE(popupBar(menu::tools).FindControl(1, missing, u"T", missing, missing));
  EXPECT_FALSE(popupBar(menu::tools).FindControl(10, missing, u"T", missing, missing));
}

class Clicked final : public platform::Counted {
 public:
  void click(Object control, bool&) { heard.push_back(LateBound(control).get<String>(u"Tag")); }
  Heard heard;
  platform::WithEvents<office::CommandBarButton> button{
      this, platform::on<office::CommandBarButtonEvents::Click, &Clicked::click>};
};

TEST_F(OfficeTest, Click_ReachesTheListenerOnlyWhileTheButtonCanBeClicked) {
  const auto clicked = make<Clicked>();
  clicked.get()->button = add(menu::tools, u"T");
  const ControlPtr control = client->explorerBars().find({.tag = String(u"T")});
  ASSERT_TRUE(control);
  EXPECT_TRUE(client->explorerBars().click(control));
  EXPECT_THAT(clicked.get()->heard, ElementsAre(u"T"));
  clicked.get()->button->Enabled(false);
  EXPECT_FALSE(client->explorerBars().click(control));
  clicked.get()->button->Enabled(true);
  clicked.get()->button->Delete();
  EXPECT_FALSE(client->explorerBars().click(control));
  EXPECT_THAT(clicked.get()->heard, ElementsAre(u"T"));
  EXPECT_FALSE(byTag(menu::tools, u"T"));
  expectError(failure::unspecified, [&] { clicked.get()->button->Caption(u"x"); });
}

TEST_F(OfficeTest, BuiltInControls_CannotBeDeletedOrCopied) {
  expectError(failure::unspecified, [&] { popup(menu::tools).Delete(); });
  expectError(5, [&] { popupBar(menu::tools).Controls().Add(10, missing, missing, missing, missing); });
}

TEST_F(OfficeTest, PermanentButtons_AreRememberedAndTemporaryOnesAreNot) {
  const auto kept = add(menu::newItem, u"Kept");
  kept.Caption(u"&Kept");
  kept.FaceId(1757);
  kept.Style(3);
  kept.OnAction(u"<!x>");
  kept.TooltipText(u"tip");
  kept.BeginGroup(true);
  add(menu::tools, u"Gone", true);
  client->saveSettings();
  EXPECT_THAT(client->store().state().buttons, ElementsAre(SavedButton{.menu = menu::newItem,
                                                                       .bar = u"Menu Bar",
                                                                       .caption = u"&Kept",
                                                                       .tag = u"Kept",
                                                                       .tooltip = u"tip",
                                                                       .parameter = u"Kept",
                                                                       .onAction = u"<!x>",
                                                                       .faceId = 1757,
                                                                       .style = 3,
                                                                       .beginGroup = true}));
}

TEST_F(OfficeTest, SavedButtons_ComeBackIntoTheirMenus) {
  const SavedButton here{.menu = menu::tools, .bar = u"Menu Bar", .caption = u"c", .tag = u"here", .faceId = 5};
  const SavedButton away{.menu = menu::help, .bar = u"Menu Bar", .tag = u"away"};
  const BarSet bars({menu::help}, {here, away});
  const ControlPtr control = bars.find({.tag = String(u"here")});
  ASSERT_TRUE(control);
  EXPECT_EQ(control->faceId, 5);
  EXPECT_FALSE(bars.find({.tag = String(u"away")}));
  EXPECT_THAT(bars.permanentButtons(), ElementsAre(here, away)) << "a button without its menu is not forgotten";
}

TEST_F(OfficeTest, Assistant_Off_IgnoresEverythingButOn) {
  const office::Assistant assistant = application.Assistant();
  EXPECT_FALSE(assistant.On());
  assistant.Visible(true);
  assistant.Animation(office::msoAnimationWorkingAtSomething);
  const office::Balloon balloon = assistant.NewBalloon();
  EXPECT_EQ(balloon.Show(), 0);
  EXPECT_FALSE(client->assistant().visible);
  EXPECT_EQ(client->assistant().animation, 1);
  EXPECT_THAT(client->assistant().shown, IsEmpty());
  assistant.On(true);
  EXPECT_TRUE(assistant.Visible());
}

TEST_F(OfficeTest, Balloon_Shown_IsKeptAndAnswered) {
  application.Assistant().On(true);
  const office::Balloon balloon = application.Assistant().NewBalloon();
  balloon.BalloonType(office::msoBalloonTypeBullets);
  balloon.Heading(u"h");
  balloon.Text(u"t");
  balloon.Labels().Item(1).Text(u"l");
  balloon.Button(office::msoButtonSetOK);
  balloon.Icon(office::msoIconAlertInfo);
  EXPECT_EQ(balloon.Show(), -1);
  ASSERT_EQ(client->assistant().shown.size(), 1u);
  const BalloonState& shown = client->assistant().shown[0];
  EXPECT_EQ(shown.type, 1);
  EXPECT_EQ(shown.heading, u"h");
  EXPECT_EQ(shown.text, u"t");
  EXPECT_EQ(shown.labels[0], u"l");
  EXPECT_EQ(shown.button, 1);
  EXPECT_EQ(shown.icon, 4);
  expectError(440, [&] { balloon.Labels().Item(0); });
  expectError(440, [&] { balloon.Labels().Item(6); });
}

TEST_F(OfficeTest, Balloons_TheLastHundredAreKept) {
  application.Assistant().On(true);
  const office::Balloon balloon = application.Assistant().NewBalloon();
  for (int i = 0; i <= 150; ++i) {
    balloon.Heading(platform::concat(std::int32_t{i}));
    balloon.Show();
  }
  ASSERT_EQ(client->assistant().shown.size(), 100u);
  EXPECT_EQ(client->assistant().shown.front().heading, u"51");
  EXPECT_EQ(client->assistant().shown.back().heading, u"150");
}

TEST_F(OfficeTest, LaterMailClient_HasNoAssistant) {
  begin({.assistant = AssistantPresence::Nothing});
  EXPECT_FALSE(application.Assistant());
  begin({.assistant = AssistantPresence::Fails});
  expectError(failure::unspecified, [&] { application.Assistant(); });
}

class OptionsListener final : public platform::Counted {
 public:
  void pagesAdded(Object pages) { outlook::PropertyPages(pages.automation()).Add(page, u"Text Messages"); }
  Object page;
  platform::WithEvents<outlook::Application> application{
      this, platform::on<outlook::ApplicationEvents::OptionsPagesAdd, &OptionsListener::pagesAdded>};
};

TEST_F(OfficeTest, OptionsDialog_CollectsTheListenersPages) {
  EXPECT_EQ(client->collectOptionsPages().size(), 0u);
  const auto listener = make<OptionsListener>();
  listener.get()->application = application;
  listener.get()->page = session;  // any object
  const auto pages = client->collectOptionsPages();
  ASSERT_EQ(pages.size(), 1u);
  EXPECT_EQ(pages[0].title, u"Text Messages");
  EXPECT_EQ(platform::CObj(pages[0].page), session);
  listener.get()->page = {};
  EXPECT_EQ(client->collectOptionsPages().size(), 0u) << "Nothing is no page";
}

TEST_F(OfficeTest, PublishForm_RemembersTheFormAndReplacesTheEarlierOne) {
  const outlook::MailItem item = folder(outlook::olFolderInbox).Items().Add(u"IPM.Note.Other");
  const outlook::FormDescription form = item.FormDescription();
  expectError(440, [&] { form.PublishForm(outlook::olPersonalRegistry); });
  form.DisplayName(u"TxtMsg");
  form.Name(u"TxtMsg");
  form.PublishForm(outlook::olPersonalRegistry);
  form.DisplayName(u"Second");
  form.PublishForm(outlook::olPersonalRegistry);
  EXPECT_THAT(client->store().state().forms, ElementsAre(PublishedForm{u"IPM.Note.TxtMsg", u"TxtMsg", u"Second", 2}));
}

TEST_F(OfficeTest, AddInEntry_IsWhatOnConnectionHandsOver) {
  const AddInPtr entry = client->addIns().add(u"mrktxtmsg.connect", u"text");
  std::vector<bool> asked;
  entry->wire = [&](bool connect) { asked.push_back(connect); };
  const auto all = LateBound(application).get<LateBound>(u"COMAddIns");
  const auto object = all.call<platform::extensibility::AddInInst>(u"Item", u"MRKTXTMSG.Connect");
  EXPECT_EQ(object.ProgId(), u"mrktxtmsg.connect");
  LateBound(object).let(u"Connect", true);
  LateBound(object).let(u"Connect", false);
  EXPECT_THAT(asked, ElementsAre(true)) << "it is not connected, so there is nothing to disconnect";
  expectError(9, [&] { all.call<Object>(u"Item", u"other"); });
}

}  // namespace
}  // namespace mailclient
