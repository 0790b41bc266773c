// When the disk refuses, or a listener acts inside the event that it hears: what the user wrote and wanted stays.
#include "mailclient/addins.h"
#include "mailclient/events.h"
#include "unit/mailclient/fixture.h"

namespace mailclient {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// A disk that refuses what the test tells it to, and writes down what the store asked for.
class Disk final : public Persistence {
 public:
  struct State {
    std::set<std::string> refused;
    std::vector<std::string> asked;
  };
  explicit Disk(std::shared_ptr<State> state) : state_(std::move(state)) {}

  LoadedStore load() override {
    LoadedStore store;
    store.state.storeId.assign(32, u'A');
    return store;
  }
  void createFolder(const Folder&) override {}
  void renameFolder(const Folder&, StringView) override {}
  void removeFolder(const Folder&) override {}
  void write(const Folder&, Message& message) override {
    ask(message.unsent ? "write draft" : "write");
    message.file = "file";
  }
  void writeReadState(const Folder&, Message&) override { ask("read state"); }
  void move(Message&, const Folder&, const Folder&) override { ask("move"); }
  void erase(const Folder&, const Message&) override { ask("erase"); }
  void writeState(const StoreState&) override { ask("state"); }
  void finish(const Folder&) override { ask("finish"); }

 private:
  void ask(const std::string& what) {
    state_->asked.push_back(what);
    if (state_->refused.contains(what)) fail(failure::notOnDisk, u"full");
  }

  std::shared_ptr<State> state_;
};

class FailuresTest : public MailClientTest {
 protected:
  void SetUp() override {
    ClientOptions options;
    options.persistence = std::make_unique<Disk>(disk);
    start(std::move(options));
  }
  Store& store() { return client->store(); }
  MessagePtr draft() {
    const MessagePtr m = client->createItem(*store().defaultFolder(DefaultFolder::Drafts), textMessageClass);
    (*m)[Text::Body] = u"Hello";
    return m;
  }
  Ref<Item> itemOf(const MessagePtr& message) { return client->itemObject(message); }
  void send(const MessagePtr& message) { dynamic_cast<MailItem&>(*itemOf(message).get()).send(); }
  std::size_t countIn(DefaultFolder which) { return store().defaultFolder(which)->messages().size(); }
  static void expectUnsent(const Message& m) {
    EXPECT_TRUE(m.unsent);
    EXPECT_EQ(m.sentOn, Date{});
    EXPECT_EQ(m[Text::SenderName], u"");
    EXPECT_TRUE(m.changed);
    EXPECT_EQ(m[Text::Body], u"Hello");
  }

  std::shared_ptr<Disk::State> disk = std::make_shared<Disk::State>();
};

// ---- sending --------------------------------------------------------------------------------------------------------

TEST_F(FailuresTest, Send_NewItem_DiskRefuses_TheFormStaysOpenAndTheItemADraft) {
  const MessagePtr m = draft();
  client->windows().openInspector(m);
  disk->refused = {"write"};
  expectError(failure::notOnDisk, [&] { send(m); });
  EXPECT_EQ(application.Inspectors().Count(), 1);
  expectUnsent(*m);
  EXPECT_FALSE(m->saved());
  EXPECT_EQ(m->folder, store().defaultFolder(DefaultFolder::Drafts).get());
  disk->refused.clear();
  send(m);
  EXPECT_EQ(application.Inspectors().Count(), 0);
  EXPECT_EQ(countIn(DefaultFolder::Outbox), 1u);
  EXPECT_FALSE(m->unsent);
}

TEST_F(FailuresTest, Send_SavedDraft_DiskRefusesToWrite_NothingHasHappened) {
  const MessagePtr m = draft();
  store().save(m);
  client->windows().openInspector(m);
  disk->refused = {"write"};
  expectError(failure::notOnDisk, [&] { send(m); });
  EXPECT_EQ(application.Inspectors().Count(), 1);
  expectUnsent(*m);
  EXPECT_EQ(countIn(DefaultFolder::Drafts), 1u);
}

TEST_F(FailuresTest, Send_SavedDraft_DiskRefusesToMove_TheDraftIsWrittenBack) {
  const MessagePtr m = draft();
  store().save(m);
  client->windows().openInspector(m);
  disk->refused = {"move"};
  disk->asked.clear();
  expectError(failure::notOnDisk, [&] { send(m); });
  EXPECT_THAT(disk->asked, ElementsAre("write", "move", "write draft"));
  EXPECT_EQ(application.Inspectors().Count(), 1);
  EXPECT_TRUE(m->unsent);
  EXPECT_EQ(m->sentOn, Date{});
  EXPECT_EQ(countIn(DefaultFolder::Drafts), 1u);
  EXPECT_EQ(countIn(DefaultFolder::Outbox), 0u);
}

class CloseListener final : public platform::Counted {
 public:
  void closed() { heard(); }
  std::function<void()> heard;
  platform::WithEvents<outlook::Inspector> inspector{
      this, platform::on<outlook::InspectorEvents::Close, &CloseListener::closed>};
};

TEST_F(FailuresTest, Send_ItsWindowCloses_OnceTheItemIsStored_BeforeTheTransportHears) {
  for (const bool saved : {false, true}) {
    const MessagePtr m = draft();
    if (saved) store().save(m);
    const auto window = client->windows().inspectorObject(client->windows().openInspector(m));
    Heard heard;
    const auto transport = make<ItemsListener>(heard);
    transport.get()->items = folder(outlook::olFolderOutbox).Items();
    const auto listener = make<CloseListener>();
    listener.get()->inspector = outlook::Inspector(window.get()->object().automation());
    listener.get()->heard = [&] {
      heard.push_back(m->folder == store().defaultFolder(DefaultFolder::Outbox).get() ? u"closed, stored" : u"closed");
      EXPECT_TRUE(m->saved());
    };
    send(m);
    EXPECT_THAT(heard, ElementsAre(u"closed, stored", u"added Hello")) << saved;
  }
}

// ---- deleting -------------------------------------------------------------------------------------------------------

// Does something as soon as an item has come into a folder.
class OnArrival final : public FolderObserver {
 public:
  OnArrival(std::shared_ptr<Folder> folder, std::function<void()> act) : folder_(std::move(folder)), act_(act) {
    folder_->addObserver(*this);
  }
  OnArrival(const OnArrival&) = delete;
  OnArrival& operator=(const OnArrival&) = delete;
  ~OnArrival() { folder_->removeObserver(*this); }

  void itemAdded(const MessagePtr&) override {
    if (const auto act = std::exchange(act_, nullptr)) act();
  }
  void itemChanged(const MessagePtr&) override {}
  void itemRemoved() override {}

 private:
  std::shared_ptr<Folder> folder_;
  std::function<void()> act_;
};

TEST_F(FailuresTest, RemoveAll_PressedAgainInsideItsOwnEvents_DeletesNothingForGood) {
  const auto inbox = store().defaultFolder(DefaultFolder::Inbox);
  for (int i = 0; i < 3; ++i) store().save(client->createItem(*inbox, textMessageClass));
  const std::vector<MessagePtr> chosen = inbox->messages();
  const OnArrival again(store().defaultFolder(DefaultFolder::DeletedItems), [&] {
    store().removeAll({chosen[1], chosen[2]});
  });
  store().removeAll(chosen);
  EXPECT_EQ(countIn(DefaultFolder::DeletedItems), 3u);
  for (const MessagePtr& m : chosen) EXPECT_FALSE(m->gone);
}

TEST_F(FailuresTest, RemoveAll_FromDeletedItems_IsForGood_AndOfSeveralFoldersToo) {
  const auto deleted = store().defaultFolder(DefaultFolder::DeletedItems);
  const auto inbox = store().defaultFolder(DefaultFolder::Inbox);
  store().save(client->createItem(*deleted, textMessageClass));
  store().save(client->createItem(*inbox, textMessageClass));
  const MessagePtr old = deleted->messages().front();
  const MessagePtr fresh = inbox->messages().front();
  store().removeAll({old, fresh});
  EXPECT_TRUE(old->gone);
  EXPECT_THAT(deleted->messages(), ElementsAre(fresh));
  EXPECT_THAT(inbox->messages(), IsEmpty());
}

// ---- the end --------------------------------------------------------------------------------------------------------

class QuitListener final : public platform::Counted {
 public:
  void quit() {
    ++heard;
    if (act) act();
  }
  int heard = 0;
  std::function<void()> act;
  platform::WithEvents<outlook::Application> application{this,
                                                         platform::on<ApplicationEvents::Quit, &QuitListener::quit>};
};

TEST_F(FailuresTest, Quit_ButtonsCannotBeSaved_TheRestOfTheEndStillRuns) {
  client->windows().openExplorer(store().defaultFolder(DefaultFolder::Inbox));
  const ControlPtr tools = client->explorerBars().find({.id = menu::tools});
  BarSet::addButton(*tools->popup, std::nullopt, false);
  const auto listener = make<QuitListener>();
  listener.get()->application = application;
  disk->refused = {"state"};
  disk->asked.clear();
  expectError(failure::notOnDisk, [&] { client->quit(); });
  EXPECT_EQ(listener.get()->heard, 1);
  EXPECT_THAT(disk->asked, ElementsAre("state", "finish"));
  EXPECT_EQ(application.Explorers().Count(), 0);
}

TEST_F(FailuresTest, Quit_AskedForInsideItsOwnEvents_HappensOnce) {
  client->windows().openExplorer(store().defaultFolder(DefaultFolder::Inbox));
  const auto listener = make<QuitListener>();
  listener.get()->application = application;
  listener.get()->act = [&] { client->quit(); };
  disk->asked.clear();
  client->quit();
  EXPECT_EQ(listener.get()->heard, 1);
  EXPECT_THAT(disk->asked, ElementsAre("finish"));
}

TEST_F(FailuresTest, ApplicationQuit_IsTheHostsEnd_WhereThereIsAHost) {
  std::vector<std::string> ended;
  client->endProgram = [&] {
    ended.push_back("host");
    client->quit();
  };
  disk->asked.clear();
  LateBound(application).call<void>(u"Quit");
  EXPECT_THAT(ended, ElementsAre("host"));
  EXPECT_THAT(disk->asked, ElementsAre("finish"));
}

// ---- add-ins --------------------------------------------------------------------------------------------------------

TEST_F(FailuresTest, AddIn_ConnectedByAProgram_TheWireMayBeReplacedWhileItRuns) {
  const AddInPtr entry = client->addIns().add(u"a.b", u"text");
  Heard heard;
  const String progId = u"a.program.identifier.that.is.long";
  entry->wire = [&heard, entry = entry.get(), progId](bool connect) {
    entry->wire = nullptr;
    heard.push_back(progId + (connect ? u" on" : u" off"));
  };
  LateBound(LateBound(application).get<LateBound>(u"COMAddIns").call<Object>(u"Item", u"a.b")).let(u"Connect", true);
  EXPECT_THAT(heard, ElementsAre(progId + u" on"));
}

}  // namespace
}  // namespace mailclient
