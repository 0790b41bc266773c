// The text-message form's work on items, and the windows' events.
#include "mailclient/view/text_message.h"

#include "mailclient/events.h"
#include "mailclient/state_file.h"
#include "unit/mailclient/fixture.h"

namespace mailclient {
namespace {

using testing::ElementsAre;

class TextMessageTest : public MailClientTest {
 protected:
  Store& store() { return client->store(); }
  MessagePtr received(StringView from, StringView body) {
    const MessagePtr m = client->createItem(*store().defaultFolder(DefaultFolder::Inbox), textMessageClass);
    (*m)[Text::SenderName] = from;
    (*m)[Text::Body] = body;
    setSubject(*m, u"Original");
    (*m)[Text::ConversationTopic] = u"Me [1]\u0001010203040506";
    m->unsent = false;
    store().save(m);
    return m;
  }
  void publish() { store().publishForm({u"IPM.Note.TxtMsg", u"TxtMsg", u"TxtMsg", 2}); }
};

TEST_F(TextMessageTest, Form_OpensOnceItIsPublished_ForItsClassOnly) {
  const MessagePtr text = client->createItem(*store().root(), u"IPM.Note.TxtMsg");
  const MessagePtr mail = client->createItem(*store().root(), u"IPM.Note");
  EXPECT_FALSE(opensAsTextMessage(store(), *text));
  publish();
  EXPECT_TRUE(opensAsTextMessage(store(), *text));
  EXPECT_FALSE(opensAsTextMessage(store(), *mail));
}

TEST_F(TextMessageTest, Subject_IsTheBeginningOfTheTextOnOneLine) {
  EXPECT_EQ(textSubject(u"Hello there"), u"Hello ther...");
  EXPECT_EQ(textSubject(u"Hi"), u"Hi...");
  EXPECT_EQ(textSubject(u"a\r\nb\nc"), u"a b c...");
  EXPECT_EQ(textSubject(u""), u"");
}

TEST_F(TextMessageTest, Written_TheAddressStandsInTopicAndTo) {
  const MessagePtr m = client->createItem(*store().root(), u"IPM.Note.TxtMsg");
  m->changed = false;
  writeTextMessage(*m, u"Anna [+46701]", u"Hello, how are you?");
  EXPECT_EQ((*m)[Text::To], u"Anna [+46701]");
  EXPECT_EQ((*m)[Text::ConversationTopic], u"Anna [+46701]");
  EXPECT_EQ((*m)[Text::Subject], u"Hello, how...");
  EXPECT_EQ((*m)[Text::Body], u"Hello, how are you?");
  EXPECT_TRUE(m->changed);
}

TEST_F(TextMessageTest, Recipient_OfAReceivedMessageIsItsSender_OfADraftTheAddress) {
  EXPECT_EQ(recipientOf(*received(u"Eva [2]", u"x")), u"Eva [2]");
  const MessagePtr draft = client->createItem(*store().root(), u"IPM.Note.TxtMsg");
  (*draft)[Text::ConversationTopic] = u"Anna [1]\u0001Eva [2]";
  EXPECT_EQ(recipientOf(*draft), u"Anna [1]");
}

TEST_F(TextMessageTest, Recipient_OfAMessageThatWasSentFromHere_IsWhomItWentTo) {
  const MessagePtr sent = received(u"User", u"x");
  (*sent)[Text::To] = u"Anna [1]";
  EXPECT_EQ(recipientOf(*sent), u"Anna [1]");
  const MessagePtr came = received(u"Eva [2]", u"x");
  (*came)[Text::To] = u"Me [1]";
  EXPECT_EQ(recipientOf(*came), u"Eva [2]");
  const MessagePtr odd = received(u"User", u"x");
  (*odd)[Text::To] = u"nobody";
  EXPECT_EQ(recipientOf(*odd), u"User") << "no address at all: the sender, as it stands";
}

class Marker final : public platform::Counted {
 public:
  void replied(Object response, bool&) { LateBound(response).let(u"BillingInformation", u"R;ID;"); }
  void forwarded(Object response, bool& cancel) {
    LateBound(response).let(u"BillingInformation", u"F;ID;");
    cancel = refuse;
  }
  platform::WithEvents<outlook::MailItem> item{this, platform::on<outlook::ItemEvents::Reply, &Marker::replied>,
                                               platform::on<outlook::ItemEvents::Forward, &Marker::forwarded>};
  bool refuse = false;
};

TEST_F(TextMessageTest, Reply_IsAnEmptyTextMessageToTheSender_AndKeepsTheMark) {
  publish();
  const MessagePtr original = received(u"Eva [+462]", u"Are you there?");
  const auto marker = make<Marker>();
  marker.get()->item = outlook::MailItem(client->itemObject(original).get()->object().automation());
  const MessagePtr answer = answerTo(*client, original, Answer::Reply);
  ASSERT_TRUE(answer);
  EXPECT_EQ((*answer)[Text::MessageClass], textMessageClass);
  EXPECT_EQ((*answer)[Text::To], u"Eva [+462]");
  EXPECT_EQ((*answer)[Text::ConversationTopic], u"Eva [+462]");
  EXPECT_EQ((*answer)[Text::Body], u"");
  EXPECT_EQ((*answer)[Text::BillingInformation], u"R;ID;");
}

TEST_F(TextMessageTest, Forward_HasTheTextAndNoRecipient_AndCanBeCancelled) {
  publish();
  const MessagePtr original = received(u"Eva [+462]", u"Are you there?");
  const auto marker = make<Marker>();
  marker.get()->item = outlook::MailItem(client->itemObject(original).get()->object().automation());
  const MessagePtr answer = answerTo(*client, original, Answer::Forward);
  ASSERT_TRUE(answer);
  EXPECT_EQ((*answer)[Text::To], u"");
  EXPECT_EQ((*answer)[Text::Body], u"Are you there?");
  EXPECT_EQ((*answer)[Text::BillingInformation], u"F;ID;");
  marker.get()->refuse = true;
  EXPECT_FALSE(answerTo(*client, original, Answer::Forward));
}

TEST_F(TextMessageTest, OrdinaryMail_IsAnsweredByAnOrdinaryMail) {
  publish();
  const MessagePtr mail = client->createItem(*store().defaultFolder(DefaultFolder::Inbox), u"IPM.Note");
  setSubject(*mail, u"Plans");
  store().save(mail);
  const MessagePtr answer = answerTo(*client, mail, Answer::Reply);
  ASSERT_TRUE(answer);
  EXPECT_EQ((*answer)[Text::MessageClass], u"IPM.Note");
  EXPECT_EQ((*answer)[Text::Subject], u"RE: Plans");
}

TEST_F(TextMessageTest, Contact_HasNoAnswer) {
  const MessagePtr contact = client->createItem(*store().defaultFolder(DefaultFolder::Contacts), u"IPM.Contact");
  EXPECT_FALSE(answerTo(*client, contact, Answer::Reply));
}

// ---- windows on a screen
// ------------------------------------------------------------------------------------------------

class ExplorerListener final : public platform::Counted {
 public:
  struct Events {
    static constexpr Guid iid = outlook::ExplorerEvents::iid;
  };
  class Facade : public Object {
   public:
    using Object::Object;
    using Events = ExplorerListener::Events;
  };
  void activated() { heard.push_back(u"activate"); }
  void deactivated() {
    heard.push_back(u"deactivate");
    if (onDeactivate) onDeactivate();
  }
  void switched() { heard.push_back(u"switched"); }
  void selected() { heard.push_back(u"selection"); }
  void switching(Object folder, bool& cancel) {
    heard.push_back(u"to " + LateBound(folder).get<String>(u"Name"));
    cancel = refuse;
    if (onSwitching) onSwitching();
  }
  platform::WithEvents<Facade> explorer{
      this,
      platform::on<ExplorerEvents::Activate, &ExplorerListener::activated>,
      platform::on<ExplorerEvents::Deactivate, &ExplorerListener::deactivated>,
      platform::on<ExplorerEvents::FolderSwitch, &ExplorerListener::switched>,
      platform::on<ExplorerEvents::BeforeFolderSwitch, &ExplorerListener::switching>,
      platform::on<outlook::ExplorerEvents::SelectionChange, &ExplorerListener::selected>};
  Heard heard;
  bool refuse = false;
  std::function<void()> onDeactivate;
  std::function<void()> onSwitching;
};

// Writes down what it would show.
class Screen final : public WindowsHost {
 public:
  void opened(const ExplorerPtr&) override { open(u"explorer"); }
  void opened(const InspectorPtr&) override { open(u"inspector"); }
  void toFront(const ExplorerPtr&) override { shown.push_back(u"explorer to front"); }
  void toFront(const InspectorPtr&) override { shown.push_back(u"inspector to front"); }
  void closed(const ExplorerPtr&) override { shown.push_back(u"explorer gone"); }
  void closed(const InspectorPtr&) override { shown.push_back(u"inspector gone"); }
  void folderShown(const ExplorerPtr& w) override {
    shown.push_back(w->folder->name());
    if (onFolderShown) onFolderShown();
  }
  void selectionChanged(const ExplorerPtr&) override { shown.push_back(u"selection"); }
  void stateChanged(const ExplorerPtr&) override { shown.push_back(u"state"); }
  Heard shown;
  std::function<void()> onFolderShown;
  bool fails = false;

 private:
  void open(StringView what) {
    if (fails) raiseError(7);
    shown.emplace_back(what);
  }
};

class ScreenTest : public TextMessageTest {
 protected:
  void SetUp() override {
    TextMessageTest::SetUp();
    client->windows().host = &screen_;
    window_ = client->windows().openExplorer(store().defaultFolder(DefaultFolder::Inbox));
    listener_.get()->explorer = ExplorerListener::Facade(application.ActiveExplorer().automation());
    screen_.shown.clear();
  }
  void TearDown() override { client->windows().host = nullptr; }

  Screen screen_;
  ExplorerPtr window_;
  Ref<ExplorerListener> listener_ = make<ExplorerListener>();
};

TEST_F(ScreenTest, FolderSwitch_AsksFirst_ThenShows_ThenTells) {
  const MessagePtr m = received(u"Eva [2]", u"x");
  client->windows().select(window_, {m});
  EXPECT_TRUE(client->windows().showFolder(window_, store().defaultFolder(DefaultFolder::Drafts)));
  EXPECT_THAT(listener_.get()->heard, ElementsAre(u"selection", u"to Drafts", u"switched", u"selection"));
  EXPECT_THAT(screen_.shown, ElementsAre(u"selection", u"Drafts"));
}

TEST_F(ScreenTest, RefusedFolderSwitch_LeavesFolderAndSelection) {
  const MessagePtr m = received(u"Eva [2]", u"x");
  client->windows().select(window_, {m});
  listener_.get()->refuse = true;
  EXPECT_FALSE(client->windows().showFolder(window_, store().defaultFolder(DefaultFolder::Drafts)));
  EXPECT_EQ(window_->folder->name(), u"Inbox");
  EXPECT_THAT(window_->selection, ElementsAre(m));
  EXPECT_THAT(listener_.get()->heard, ElementsAre(u"selection", u"to Drafts"));
}

TEST_F(ScreenTest, ActivateAndDeactivate_AreRaisedWhenTheScreenSaysSo_OnceEach) {
  LateBound(application.ActiveExplorer()).call<void>(u"Activate");
  EXPECT_THAT(screen_.shown, ElementsAre(u"explorer to front"));
  EXPECT_TRUE(listener_.get()->heard.empty()) << "the system has not made it active yet";
  client->windows().activated(window_);
  client->windows().activated(window_);
  const InspectorPtr inspector = client->windows().openInspector(received(u"Eva [2]", u"x"));
  client->windows().activated(inspector);
  client->windows().deactivated(window_);
  client->windows().activated(window_);
  client->windows().deactivated(window_);
  EXPECT_THAT(listener_.get()->heard, ElementsAre(u"activate", u"deactivate", u"activate", u"deactivate"));
}

TEST_F(ScreenTest, ClosedWindow_IsTakenFromTheScreenAfterItsEvent) {
  client->windows().close(window_);
  EXPECT_THAT(screen_.shown, ElementsAre(u"explorer gone"));
  client->windows().activated(window_);
  EXPECT_TRUE(listener_.get()->heard.empty()) << "a window that is gone cannot become active";
}

// A listener of the window that is left closes the one that is coming.
TEST_F(ScreenTest, WindowClosedWhileItBecomesActive_IsNotTheActiveOne) {
  client->windows().activated(window_);
  const InspectorPtr inspector = client->windows().openInspector(received(u"Eva [2]", u"x"));
  listener_.get()->onDeactivate = [&] { client->windows().close(inspector); };
  client->windows().activated(inspector);
  EXPECT_FALSE(LateBound(application).get<Object>(u"ActiveInspector"));
  EXPECT_EQ(application.ActiveWindow(), application.ActiveExplorer());
  EXPECT_THAT(listener_.get()->heard, ElementsAre(u"activate", u"deactivate"));
  listener_.get()->onDeactivate = nullptr;
  client->windows().activated(window_);
  EXPECT_THAT(listener_.get()->heard, ElementsAre(u"activate", u"deactivate", u"activate"));
}

TEST_F(ScreenTest, FolderDeletedWhileItIsSwitchedTo_IsNotShown) {
  const auto doomed = store().addFolder(*store().root(), u"Doomed", ItemType::Mail);
  listener_.get()->onSwitching = [&] { store().removeFolder(*doomed); };
  EXPECT_FALSE(client->windows().showFolder(window_, doomed));
  EXPECT_EQ(window_->folder->name(), u"Inbox");
  EXPECT_TRUE(screen_.shown.empty());
}

TEST_F(ScreenTest, WindowClosedWhileItsFolderIsShown_HearsNothingAfterwards) {
  client->windows().select(window_, {received(u"Eva [2]", u"x")});
  listener_.get()->heard.clear();
  screen_.onFolderShown = [&] { client->windows().close(window_); };
  client->windows().showFolder(window_, store().defaultFolder(DefaultFolder::Drafts));
  EXPECT_THAT(listener_.get()->heard, ElementsAre(u"to Drafts"));
}

TEST_F(ScreenTest, WindowThatCannotBeShown_IsClosedAgain) {
  screen_.fails = true;
  const std::size_t before = client->windows().explorers().size();
  expectError(7, [&] { client->windows().openInspector(received(u"Eva [2]", u"x")); });
  expectError(7, [&] { client->windows().openExplorer(store().defaultFolder(DefaultFolder::Inbox)); });
  EXPECT_EQ(client->windows().inspectors().size(), 0u);
  EXPECT_EQ(client->windows().explorers().size(), before);
  EXPECT_THAT(screen_.shown, ElementsAre(u"inspector gone", u"explorer gone"));
}

TEST_F(ScreenTest, Balloon_IsShownAndAnsweredThere) {
  BalloonState shown;
  client->assistant().on = true;
  client->assistant().present = [&](const BalloonState& b) {
    shown = b;
    return -2;
  };
  const LateBound balloon(LateBound(LateBound(application).get<Object>(u"Assistant")).call<Object>(u"NewBalloon"));
  balloon.let(u"Heading", u"No phone");
  EXPECT_EQ(balloon.call<std::int32_t>(u"Show"), -2);
  EXPECT_EQ(shown.heading, u"No phone");
}

TEST(SettingsTest, SurviveInTheStateFile) {
  StoreState state;
  state.settings[u"explorer.place"] = u"1 2 3 4 0";
  state.settings[u"odd =name"] = u"a\nb";
  EXPECT_EQ(readStateFile(stateFile(state)).settings, state.settings);
}

}  // namespace
}  // namespace mailclient
