// Explorers, inspectors and what is selected in them.
#include "unit/mailclient/fixture.h"

namespace mailclient {
namespace {

using testing::ElementsAre;

class WindowListener final : public platform::Counted {
 public:
  WindowListener(Heard& heard, outlook::Application application) : heard_(heard), application_(application) {}

  void explorerOpened(Object) { say(u"new explorer"); }
  void inspectorOpened(Object window) {
    inspector = outlook::Inspector(window.automation());
    say(u"new inspector");
  }
  void explorerClosed() { say(u"explorer closed"); }
  void inspectorClosed() { say(u"inspector closed"); }
  void selectionChanged() { say(u"selection"); }

  platform::WithEvents<outlook::Explorers> explorers{
      this, platform::on<outlook::ExplorersEvents::NewExplorer, &WindowListener::explorerOpened>};
  platform::WithEvents<outlook::Inspectors> inspectors{
      this, platform::on<outlook::InspectorsEvents::NewInspector, &WindowListener::inspectorOpened>};
  platform::WithEvents<outlook::Explorer> explorer{
      this, platform::on<outlook::ExplorerEvents::Close, &WindowListener::explorerClosed>,
      platform::on<outlook::ExplorerEvents::SelectionChange, &WindowListener::selectionChanged>};
  platform::WithEvents<outlook::Inspector> inspector{
      this, platform::on<outlook::InspectorEvents::Close, &WindowListener::inspectorClosed>};

 private:
  void say(StringView what) {
    heard_.push_back(platform::concat(what, StringView(u", open: "), application_.Explorers().Count(), StringView(u"+"),
                                      application_.Inspectors().Count()));
  }

  Heard& heard_;
  outlook::Application application_;
};

class WindowsTest : public MailClientTest {
 protected:
  ExplorerPtr open() { return client->windows().openExplorer(client->store().defaultFolder(DefaultFolder::Inbox)); }
};

TEST_F(WindowsTest, NoWindow_ActiveOnesAreNothing) {
  EXPECT_FALSE(application.ActiveWindow());
  EXPECT_FALSE(application.ActiveExplorer());
}

TEST_F(WindowsTest, ActiveWindow_IsTheFrontmost) {
  const ExplorerPtr window = open();
  const outlook::MailItem item = textMessage(folder(outlook::olFolderInbox));
  item.Display();
  EXPECT_EQ(LateBound(application.ActiveWindow()).get<std::int32_t>(u"Class"), 35);
  EXPECT_EQ(LateBound(application.ActiveExplorer()).get<std::int32_t>(u"Class"), 34);
  client->windows().activate(window);
  EXPECT_EQ(application.ActiveWindow(), application.ActiveExplorer());
}

TEST_F(WindowsTest, ClosingWindow_IsCountedWhileItsCloseEventRuns) {
  Heard heard;
  const ExplorerPtr window = open();
  const auto listener = make<WindowListener>(heard, application);
  listener.get()->explorers = application.Explorers();
  listener.get()->inspectors = application.Inspectors();
  listener.get()->explorer = application.ActiveExplorer();
  const outlook::MailItem item = folder(outlook::olFolderInbox).Items().Add(u"IPM.Note.TxtMsg");

  item.Display();
  item.Display();  // its window is open: brought to the front
  const ExplorerPtr second = open();
  client->windows().close(window);
  client->windows().close(second);
  client->windows().closeInspectorsOf(client->windows().inspectors().at(0)->message);

  EXPECT_THAT(heard, ElementsAre(u"new inspector, open: 1+1", u"new explorer, open: 2+1", u"explorer closed, open: 2+1",
                                 u"inspector closed, open: 0+1"));
  EXPECT_EQ(application.Inspectors().Count(), 0);
}

TEST_F(WindowsTest, Selection_IsWhatWasSelectedAndIsStillThere) {
  Heard heard;
  const ExplorerPtr window = open();
  const outlook::MailItem one = textMessage(folder(outlook::olFolderInbox), u"one");
  const outlook::MailItem two = textMessage(folder(outlook::olFolderInbox), u"two");
  const auto listener = make<WindowListener>(heard, application);
  listener.get()->explorer = application.ActiveExplorer();

  client->windows().select(window, {Item::of(one), Item::of(two)});
  EXPECT_THAT(heard, ElementsAre(u"selection, open: 1+0"));
  const outlook::Selection selection = application.ActiveExplorer().Selection();
  ASSERT_EQ(selection.Count(), 2);
  EXPECT_EQ(selection.Item(2), two);

  two.Delete();
  EXPECT_EQ(application.ActiveExplorer().Selection().Count(), 1);
}

TEST_F(WindowsTest, CurrentFolder_Set_ShowsTheFolder) {
  open();
  const outlook::Explorer explorer = application.ActiveExplorer();
  EXPECT_EQ(explorer.CurrentFolder(), folder(outlook::olFolderInbox));
  LateBound(explorer).set(u"CurrentFolder", folder(outlook::olFolderOutbox));
  EXPECT_EQ(explorer.CurrentFolder(), folder(outlook::olFolderOutbox));
}

class AnswerListener final : public platform::Counted {
 public:
  void answered(Object response, bool& cancel) {
    LateBound(response).let(u"BillingInformation", u"R;" + item.get().EntryID() + u";");
    cancel = cancelling;
  }
  bool cancelling = false;
  platform::WithEvents<outlook::MailItem> item{this,
                                               platform::on<outlook::ItemEvents::Reply, &AnswerListener::answered>};
};

TEST_F(WindowsTest, Reply_ListenersMarkTheAnswerOrCancelIt) {
  const outlook::MailItem item = textMessage(folder(outlook::olFolderInbox), u"hi");
  LateBound(item).let(u"Subject", u"Lunch");
  const auto listener = make<AnswerListener>();
  listener.get()->item = item;

  const auto answer = LateBound(item).call<outlook::MailItem>(u"Reply");
  ASSERT_TRUE(answer);
  EXPECT_EQ(answer.BillingInformation(), u"R;" + item.EntryID() + u";");
  EXPECT_EQ(LateBound(answer).get<String>(u"Subject"), u"RE: Lunch");
  EXPECT_EQ(answer.ConversationTopic(), u"Lunch");
  EXPECT_EQ(answer.EntryID(), u"");

  listener.get()->cancelling = true;
  EXPECT_FALSE(LateBound(item).call<Object>(u"Reply"));
  EXPECT_TRUE(LateBound(item).call<Object>(u"Forward"));
}

TEST_F(WindowsTest, Send_PutsTheItemIntoTheOutbox) {
  const LateBound item(folder(outlook::olFolderInbox).Items().Add(u"IPM.Note.TxtMsg"));
  item.call(u"Display");
  item.let(u"To", u"Anna [+46]");
  item.call(u"Send");
  const outlook::Items outbox = folder(outlook::olFolderOutbox).Items();
  ASSERT_EQ(outbox.Count(), 1);
  EXPECT_EQ(outbox.Item(1), item);
  EXPECT_EQ(outbox.Item(1).SentOn(), client->environment().utcNow());
  EXPECT_EQ(outbox.Item(1).SenderName(), u"User");
  EXPECT_EQ(application.Inspectors().Count(), 0);
}

}  // namespace
}  // namespace mailclient
