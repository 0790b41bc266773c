// The store on disk: what is there after a restart, after a crash, and beside files of other programs.
#include "mailclient/maildir.h"

#include <fstream>
#include <random>

#include "mailclient/maildir_names.h"
#include "mailclient/text_coding.h"
#include "unit/mailclient/fixture.h"

namespace mailclient {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAre;

class MaildirTest : public testing::TestWithParam<char> {
 protected:
  void SetUp() override {
    std::random_device random;
    root_ = fs::path(testing::TempDir()) / ("mailclient_" + std::to_string(random()) + "_" + std::to_string(random()));
    restart();
  }
  void TearDown() override {
    store_.reset();
    fs::remove_all(root_);
  }

  // As if the process had ended at this point, whatever it was doing, and started again.
  void restart() {
    store_.reset();
    store_ = std::make_unique<Store>(std::make_unique<Maildir>(root_, environment_, GetParam()));
  }

  Folder& folder(DefaultFolder which) { return *store_->defaultFolder(which); }
  MessagePtr add(DefaultFolder which, StringView body, bool unread = false) {
    const MessagePtr message = Store::create(folder(which), textMessageClass);
    (*message)[Text::Body] = body;
    message->unread = unread;
    store_->save(message);
    return message;
  }
  std::vector<String> bodies(const Folder& in) {
    std::vector<String> all;
    for (const MessagePtr& m : in.messages()) all.push_back((*m)[Text::Body]);
    return all;
  }
  std::vector<String> bodies(DefaultFolder which) { return bodies(folder(which)); }
  void putFile(const fs::path& where, const std::string& content) {
    fs::create_directories((root_ / where).parent_path());
    std::ofstream(root_ / where, std::ios::binary) << content;
  }
  static std::string content(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }
  std::size_t filesIn(const fs::path& where) {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(root_ / where), fs::directory_iterator()));
  }

  fs::path root_;
  std::shared_ptr<Environment> environment_ = std::make_shared<Environment>();
  std::unique_ptr<Store> store_;
};

constexpr char usualSeparator = flagSeparator;
INSTANTIATE_TEST_SUITE_P(Separators, MaildirTest,
                         usualSeparator == ':' ? testing::Values(':', ';') : testing::Values(';', ';'),
                         [](const auto& p) {
                           return std::string(p.param == ':' ? "Colon" : "Semicolon") + std::to_string(p.index);
                         });

TEST_P(MaildirTest, SavedItems_AreThereAfterARestart) {
  const MessagePtr message = add(DefaultFolder::Outbox, u"\U0001F600\u0001\r\n", true);
  const MessagePtr unsaved = Store::create(folder(DefaultFolder::Outbox), textMessageClass);
  const String id = message->entryId;
  restart();
  ASSERT_THAT(folder(DefaultFolder::Outbox).messages(), SizeIs(1));
  const Message& back = *folder(DefaultFolder::Outbox).messages()[0];
  EXPECT_EQ(back[Text::Body], u"\U0001F600\u0001\r\n");
  EXPECT_EQ(back.entryId, id);
  EXPECT_TRUE(back.unread);
  EXPECT_FALSE(back.changed);
  EXPECT_EQ(back.folder, &folder(DefaultFolder::Outbox));
}

TEST_P(MaildirTest, ChangedItem_ReplacesItsFile) {
  const MessagePtr message = add(DefaultFolder::Inbox, u"one");
  (*message)[Text::Body] = u"two";
  store_->save(message);
  (*message)[Text::Body] = u"not saved";
  restart();
  EXPECT_THAT(bodies(DefaultFolder::Inbox), ElementsAre(u"two"));
  EXPECT_EQ(filesIn("cur"), 1u);
  EXPECT_EQ(filesIn("tmp"), 0u);
}

TEST_P(MaildirTest, ReadState_IsAFlagOfTheFileName) {
  const MessagePtr message = add(DefaultFolder::Inbox, u"m", true);
  const String mark = String(1, static_cast<char16_t>(GetParam())) + u"2,";
  EXPECT_EQ(message->file.u16string().substr(message->file.u16string().size() - 3), mark);
  store_->setUnread(message, false);
  EXPECT_EQ(message->file.u16string().substr(message->file.u16string().size() - 4), mark + u"S");
  restart();
  EXPECT_FALSE(folder(DefaultFolder::Inbox).messages().at(0)->unread);
  EXPECT_EQ(filesIn("cur"), 1u);
}

TEST_P(MaildirTest, UnreadDraft_ThatIsSent_IsReadAfterARestart) {
  const ClientPtr client = MailClient::create(
      {.environment = environment_, .persistence = std::make_unique<Maildir>(root_ / "own", environment_, GetParam())});
  Store& store = client->store();
  const MessagePtr draft = Store::create(*store.defaultFolder(DefaultFolder::Drafts), textMessageClass);
  store.save(draft);
  store.setUnread(draft, true);
  const Ref<Item> item = client->itemObject(draft);
  dynamic_cast<MailItem&>(*item.get()).send();
  const Store again(std::make_unique<Maildir>(root_ / "own", environment_, GetParam()));
  ASSERT_THAT(again.defaultFolder(DefaultFolder::Outbox)->messages(), SizeIs(1));
  EXPECT_FALSE(again.defaultFolder(DefaultFolder::Outbox)->messages()[0]->unread);
}

TEST_P(MaildirTest, Move_KeepsEntryIdAndLeavesOneFile) {
  const MessagePtr message = add(DefaultFolder::Outbox, u"m");
  const String id = message->entryId;
  store_->move(message, folder(DefaultFolder::SentItems));
  restart();
  EXPECT_THAT(bodies(DefaultFolder::Outbox), IsEmpty());
  ASSERT_THAT(bodies(DefaultFolder::SentItems), ElementsAre(u"m"));
  EXPECT_EQ(folder(DefaultFolder::SentItems).messages()[0]->entryId, id);
  EXPECT_EQ(filesIn(".Sent Items/cur"), 1u);
}

TEST_P(MaildirTest, Delete_ThenDeleteAgain_RemovesTheFile) {
  const MessagePtr message = add(DefaultFolder::Inbox, u"m");
  store_->remove(message);
  restart();
  ASSERT_THAT(bodies(DefaultFolder::DeletedItems), ElementsAre(u"m"));
  store_->remove(folder(DefaultFolder::DeletedItems).messages()[0]);
  EXPECT_EQ(filesIn(".Deleted Items/cur"), 0u);
}

TEST_P(MaildirTest, OrderOfArrival_SurvivesRestartsAndMoves) {
  const MessagePtr a = add(DefaultFolder::Inbox, u"a");
  add(DefaultFolder::Inbox, u"b");
  restart();
  add(DefaultFolder::Inbox, u"c");
  environment_->now.days -= 1;  // the clock was set back
  add(DefaultFolder::Inbox, u"d");
  restart();
  store_->move(folder(DefaultFolder::Inbox).messages()[0], folder(DefaultFolder::Outbox));
  store_->move(folder(DefaultFolder::Outbox).messages()[0], folder(DefaultFolder::Inbox));
  EXPECT_THAT(bodies(DefaultFolder::Inbox), ElementsAre(u"b", u"c", u"d", u"a"));
  restart();
  EXPECT_THAT(bodies(DefaultFolder::Inbox), ElementsAre(u"b", u"c", u"d", u"a"));
}

TEST_P(MaildirTest, EntryIds_AreNotUsedAgainAfterARestart) {
  std::set<String> seen;
  for (int run = 0; run < 3; ++run) {
    for (int i = 0; i < 3; ++i) {
      const MessagePtr message = add(DefaultFolder::DeletedItems, u"m");
      EXPECT_TRUE(seen.insert(message->entryId).second);
      store_->remove(message);
    }
    restart();
  }
  add(DefaultFolder::Inbox, u"kept");
  fs::remove(root_ / "mailclient.state");
  restart();
  EXPECT_TRUE(seen.insert(add(DefaultFolder::Inbox, u"m")->entryId).second) << "even when the state was lost";
}

TEST_P(MaildirTest, StateFileBehindTheItems_CountsFromTheItems) {
  const MessagePtr message = add(DefaultFolder::Inbox, u"m");
  std::string state = content(root_ / "mailclient.state");
  state.replace(state.find("next ="), 9, "next =1\n");
  putFile("mailclient.state", state);
  restart();
  EXPECT_NE(add(DefaultFolder::Inbox, u"n")->entryId, message->entryId);
}

TEST_P(MaildirTest, EqualEntryIds_KeepBothItems) {
  const MessagePtr message = add(DefaultFolder::Inbox, u"one");
  fs::copy_file(root_ / message->file, root_ / "cur" / "1700000000.copy.elsewhere");
  restart();
  ASSERT_THAT(bodies(DefaultFolder::Inbox), ElementsAre(u"one", u"one"));
  const auto both = folder(DefaultFolder::Inbox).messages();
  EXPECT_EQ(both[0]->entryId, both[1]->entryId);
  (*both[1])[Text::Body] = u"two";
  store_->save(both[1]);
  store_->move(both[0], folder(DefaultFolder::SentItems));
  store_->move(both[1], folder(DefaultFolder::SentItems));
  restart();
  EXPECT_THAT(bodies(DefaultFolder::SentItems), ElementsAre(u"one", u"two"));
}

TEST_P(MaildirTest, FilesOfOtherPrograms_AreReadAndLeftAlone) {
  const std::string mail = "Subject: hi\nX-Other: kept\n\nbody\n";
  putFile("new/1700000001.M1.host", mail);
  putFile("cur/1700000002.M2.host;2,RS", "");
  putFile("cur/1700000003.M3.host", std::string(1000, '\0'));
  putFile("tmp/half-written", "x");
  putFile("cur/.hidden", "x");
  putFile(".no.folder", "x");
  restart();
  ASSERT_THAT(bodies(DefaultFolder::Inbox), SizeIs(3));
  const auto messages = folder(DefaultFolder::Inbox).messages();
  EXPECT_EQ((*messages[0])[Text::Body], u"body\r\n");
  EXPECT_TRUE(messages[0]->unread);
  EXPECT_FALSE(messages[1]->unread);
  EXPECT_EQ(content(root_ / "new/1700000001.M1.host"), mail);
  const String id = messages[0]->entryId;
  EXPECT_NE(id, messages[1]->entryId);

  store_->setUnread(messages[0], false);
  restart();
  const auto again = folder(DefaultFolder::Inbox).messages();
  EXPECT_EQ(again[0]->entryId, id) << "the same in each run";
  EXPECT_EQ(content(root_ / again[0]->file), mail) << "the read state is in the name";
  store_->move(again[0], folder(DefaultFolder::SentItems));
  restart();
  ASSERT_THAT(folder(DefaultFolder::SentItems).messages(), SizeIs(1));
  EXPECT_EQ(folder(DefaultFolder::SentItems).messages()[0]->entryId, id);
  EXPECT_TRUE(fs::exists(root_ / "tmp/half-written"));
}

TEST_P(MaildirTest, FlagsChangedByAnotherProgram_ItsFileIsFoundAgain) {
  const MessagePtr message = add(DefaultFolder::Inbox, u"m", true);
  const fs::path old = root_ / message->file;
  fs::rename(old, fs::path(old).concat("FRS"));
  (*message)[Text::Body] = u"n";
  store_->save(message);
  store_->move(message, folder(DefaultFolder::SentItems));
  restart();
  EXPECT_THAT(bodies(DefaultFolder::Inbox), IsEmpty());
  EXPECT_THAT(bodies(DefaultFolder::SentItems), ElementsAre(u"n"));
}

TEST_P(MaildirTest, FileRemovedByAnotherProgram_TheItemIsStoredAgain) {
  const MessagePtr message = add(DefaultFolder::Inbox, u"m");
  fs::remove(root_ / message->file);
  store_->setUnread(message, true);
  store_->move(message, folder(DefaultFolder::SentItems));
  restart();
  EXPECT_THAT(bodies(DefaultFolder::SentItems), ElementsAre(u"m"));
  fs::remove(root_ / ".Sent Items" / folder(DefaultFolder::SentItems).messages()[0]->file);
  store_->remove(folder(DefaultFolder::SentItems).messages()[0]);
  EXPECT_THAT(bodies(DefaultFolder::DeletedItems), ElementsAre(u"m"));
}

TEST_P(MaildirTest, Folders_KeepTheirNamesTypesAndItems) {
  const std::vector<String> names{u"Work",
                                  u"a.b/c\\d:e",
                                  u"R\u00E4ksm\u00F6rg\u00E5s & co",
                                  u"ends with a blank ",
                                  String(u"surrogate ") + char16_t{0xD800},
                                  u"CON",
                                  u"..."};
  for (const String& name : names) {
    Folder& made = *store_->addFolder(folder(DefaultFolder::Contacts), name, ItemType::Contact);
    Folder& below = *store_->addFolder(made, u"below", ItemType::Mail);
    const MessagePtr message = Store::create(below, u"IPM.Contact");
    (*message)[Text::Body] = name;
    store_->save(message);
  }
  restart();
  for (const String& name : names) {
    const auto made = folder(DefaultFolder::Contacts).child(name);
    ASSERT_TRUE(made) << toUtf8(name);
    EXPECT_EQ(made->type(), ItemType::Contact);
    ASSERT_TRUE(made->child(u"below"));
    EXPECT_THAT(bodies(*made->child(u"below")), ElementsAre(name));
  }
}

TEST_P(MaildirTest, FolderRenamedAndDeleted) {
  Folder& work = *store_->addFolder(folder(DefaultFolder::Contacts), u"Work", ItemType::Contact);
  Folder& below = *store_->addFolder(work, u"Deep", ItemType::Contact);
  store_->save(Store::create(below, u"IPM.Contact"));
  store_->renameFolder(work, u"Office");
  restart();
  const auto office = folder(DefaultFolder::Contacts).child(u"Office");
  ASSERT_TRUE(office);
  EXPECT_FALSE(folder(DefaultFolder::Contacts).child(u"Work"));
  EXPECT_THAT(office->child(u"Deep")->messages(), SizeIs(1));
  store_->removeFolder(*office);
  restart();
  EXPECT_THAT(folder(DefaultFolder::Contacts).children(), IsEmpty());
}

TEST_P(MaildirTest, State_IsRememberedExactly) {
  const PublishedForm form{u"IPM.Note.TxtMsg", u"Txt =Msg", u"", 2};
  const SavedButton button{.menu = 30007, .bar = u"Menu Bar", .caption = u"a =b &\u00E5\n", .tag = u"", .style = 3};
  store_->publishForm(form);
  store_->saveButtons({button});
  const String id = store_->state().storeId;
  restart();
  EXPECT_THAT(store_->state().forms, ElementsAre(form));
  EXPECT_THAT(store_->state().buttons, ElementsAre(button));
  EXPECT_EQ(store_->state().storeId, id);
}

TEST_P(MaildirTest, DamagedState_LosesNoItem) {
  add(DefaultFolder::Inbox, u"m");
  const std::vector<std::string> damages{
      "", "store =short\nnext =x\nform =a\nbutton =1 =2\n\n =", std::string(500, static_cast<char>(0xFF))};
  for (const std::string& damaged : damages) {
    putFile("mailclient.state", damaged);
    restart();
    EXPECT_THAT(bodies(DefaultFolder::Inbox), ElementsAre(u"m"));
    EXPECT_THAT(store_->state().storeId, SizeIs(32));
    EXPECT_THAT(store_->state().forms, IsEmpty());
  }
}

// A disk that fails at the moment when a file should be made safe.
class FailingDisk final : public Environment {
 public:
  void flushToDisk(const fs::path&) override {
    if (failing) fail(failure::notOnDisk, u"The disk is full.");
  }
  bool failing = false;
};

TEST_P(MaildirTest, FailedSave_LeavesMemoryAndDiskAsTheyWere) {
  const auto disk = std::make_shared<FailingDisk>();
  environment_ = disk;
  restart();
  const MessagePtr old = add(DefaultFolder::Inbox, u"old");
  disk->failing = true;
  (*old)[Text::Body] = u"new";
  expectError(failure::notOnDisk, [&] { store_->save(old); });
  const MessagePtr fresh = Store::create(folder(DefaultFolder::Inbox), textMessageClass);
  expectError(failure::notOnDisk, [&] { store_->move(fresh, folder(DefaultFolder::Outbox)); });
  EXPECT_FALSE(fresh->saved());
  EXPECT_EQ(fresh->folder, &folder(DefaultFolder::Inbox));
  EXPECT_THAT(bodies(DefaultFolder::Outbox), IsEmpty());
  disk->failing = false;
  restart();
  EXPECT_THAT(bodies(DefaultFolder::Inbox), ElementsAre(u"old"));
  EXPECT_THAT(bodies(DefaultFolder::Outbox), IsEmpty());
}

// Locks as a system with several processes keeps them.
class SharedMachine final : public Environment {
 public:
  std::shared_ptr<void> lockFile(const fs::path& file) override {
    if (!held_->insert(file).second) return nullptr;
    return {this, [held = held_, file](void*) { held->erase(file); }};
  }

 private:
  std::shared_ptr<std::set<fs::path>> held_ = std::make_shared<std::set<fs::path>>();
};

TEST_P(MaildirTest, StoreInUse_IsRefused_UntilTheOtherOneEnds) {
  environment_ = std::make_shared<SharedMachine>();
  restart();
  const auto open = [&](const fs::path& root) { Store(std::make_unique<Maildir>(root, environment_, GetParam())); };
  expectError(failure::busy, [&] { open(root_); });
  open(root_ / "another");
  store_.reset();
  open(root_);
  restart();
}

TEST(MaildirNamesTest, FolderDirectories_AreThoseOfImapServers) {
  EXPECT_EQ(folderDirectory({u"Contacts", u"Work"}), ".Contacts.Work");
  EXPECT_EQ(folderDirectory({u"~peter", u"mail", u"\u53F0\u5317"}), ".~peter.mail.&U,BTFw-");  // RFC 3501, 5.1.3
  EXPECT_EQ(folderDirectory({u"A & B"}), ".A &- B");
  EXPECT_THAT(folderNames(".A &- B.&U,BTFw-"), testing::Optional(ElementsAre(u"A & B", u"\u53F0\u5317")));
  for (const char* const bad : {".", "..", "...", ".a..b", "a", ".&x", ".&!-"}) EXPECT_FALSE(folderNames(bad)) << bad;
}

TEST(MaildirNamesTest, Flags_AreKeptInOrder) {
  const FlaggedName name = parseName("1.x:2,FT");
  EXPECT_EQ(joinName(withFlag(name, 'S', true), ';'), "1.x;2,FST");
  EXPECT_EQ(joinName(withFlag(withFlag(name, 'S', true), 'F', false), ':'), "1.x:2,ST");
  EXPECT_EQ(joinName(parseName("plain"), ':'), "plain:2,");
}

}  // namespace
}  // namespace mailclient
