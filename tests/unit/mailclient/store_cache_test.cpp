// The copy of a large store: it is used, and nothing that happened to the files beside it is missed.
#include "mailclient/store_cache.h"

#include <fstream>
#include <random>

#include "mailclient/maildir.h"
#include "mailclient/maildir_names.h"
#include "unit/mailclient/fixture.h"

namespace mailclient {
namespace {

namespace fs = std::filesystem;

// ---- the file -------------------------------------------------------------------------------------------------------

std::string smallCache() {
  StoreCache::Writer writer;
  writer.add("./1.a", {12, 345}, "first\nmessage\n");
  writer.add(".Sent Items/2.b", {0, -7}, "");
  return writer.content();
}

TEST(StoreCacheTest, WhatWasAdded_IsFound_UnderItsKeyAndStampOnly) {
  StoreCache cache;
  cache.read(smallCache());
  EXPECT_EQ(cache.size(), 2u);
  EXPECT_EQ(cache.find("./1.a", {12, 345}), "first\nmessage\n");
  EXPECT_EQ(cache.find(".Sent Items/2.b", {0, -7}), "");
  EXPECT_EQ(cache.find("./1.a", {13, 345}), std::nullopt) << "another size";
  EXPECT_EQ(cache.find("./1.a", {12, 346}), std::nullopt) << "another time";
  EXPECT_EQ(cache.find("./2.b", {0, -7}), std::nullopt) << "another folder";
  EXPECT_EQ(cache.find(".Sent Items/1.a", {12, 345}), std::nullopt) << "another folder";
}

TEST(StoreCacheTest, CutAnywhere_CountsAsLost) {
  const std::string whole = smallCache();
  StoreCache cache;
  for (std::size_t length = 0; length < whole.size(); ++length) {
    cache.read(whole);
    ASSERT_FALSE(cache.isEmpty());
    cache.read(whole.substr(0, length));
    EXPECT_TRUE(cache.isEmpty()) << length;
  }
}

TEST(StoreCacheTest, AnyChangedByte_CountsAsLost) {
  const std::string whole = smallCache();
  StoreCache cache;
  for (std::size_t i = 0; i < whole.size(); ++i) {
    std::string damaged = whole;
    damaged[i] = static_cast<char>(damaged[i] ^ 1);
    cache.read(damaged);
    EXPECT_TRUE(cache.isEmpty()) << i;
  }
  cache.read(whole + "x");
  EXPECT_TRUE(cache.isEmpty());
}

// As if somebody had written it by hand: the fingerprint is right, the rest is not.
class ForgedCacheTest : public testing::Test {
 protected:
  static std::string head(const std::string& entries) {
    std::uint64_t hash = 14695981039346656037u;
    for (const char c : entries) hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211u;
    std::string digits;
    for (int shift = 60; shift >= 0; shift -= 4) digits += "0123456789abcdef"[hash >> shift & 15];
    return "mailclient-cache 2 " + digits + "\n";
  }
  static std::size_t entriesIn(const std::string& entries) {
    StoreCache cache;
    cache.read(head(entries) + entries);
    return cache.size();
  }
};

TEST_F(ForgedCacheTest, RightFingerprint_AndRightEntries_AreRead) {
  EXPECT_EQ(entriesIn("3 3 9 ./a\nabc\n"), 1u);
  EXPECT_EQ(entriesIn("3 3 9 ./a\nabc\n0 0 9 ./b\n\n"), 2u);
}

TEST_F(ForgedCacheTest, WrongLengthsAndLines_LoseTheWhole) {
  const std::string good = "3 3 9 ./a\nabc\n";
  for (const char* const bad :
       {"4 3 9 ./b\nabc\n", "2 3 9 ./b\nabc\n", "3 3 9 ./b\nabc", "18446744073709551615 3 9 ./b\nabc\n",
        "18446744073709551616 3 9 ./b\nabc\n", "-1 3 9 ./b\nabc\n", "3 -3 9 ./b\nabc\n", "3 3 ./b\nabc\n",
        "3 3 9\nabc\n", "3  3 9 ./b\nabc\n", "\n", " ", "3", "x y z ./b\nabc\n", "3 3 99999999999999999999 ./b\nabc\n",
        "3 3 9 ./a\nxyz\n"})
    EXPECT_EQ(entriesIn(good + bad), 0u) << bad;
}

// ---- the store that uses it -----------------------------------------------------------------------------------------

class CachedStoreTest : public testing::Test {
 protected:
  static constexpr int many = 20;  // as few as are worth a cache here

  void SetUp() override {
    std::random_device random;
    root_ = fs::path(testing::TempDir()) / ("mailclient_" + std::to_string(random()) + "_" + std::to_string(random()));
    open();
    for (int i = 0; i < many; ++i) add(u"original");
  }
  void TearDown() override {
    store_.reset();
    fs::remove_all(root_);
  }

  void open() { store_ = std::make_unique<Store>(std::make_unique<Maildir>(root_, environment_, flagSeparator, many)); }
  // Ends in good order and starts again.
  void restart() {
    store_->finish();
    open();
  }
  Folder& inbox() { return *store_->defaultFolder(DefaultFolder::Inbox); }
  MessagePtr add(StringView body) {
    const MessagePtr message = Store::create(inbox(), textMessageClass);
    (*message)[Text::Body] = body;
    store_->save(message);
    return message;
  }
  MessagePtr message(int i) { return inbox().messages().at(static_cast<std::size_t>(i)); }
  String body(int i) { return (*message(i))[Text::Body]; }
  fs::path fileOf(int i) { return root_ / message(i)->file; }
  fs::path cacheFile() const { return root_ / "mailclient.cache"; }

  static std::string content(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }
  static void put(const fs::path& file, const std::string& content) {
    std::ofstream(file, std::ios::binary | std::ios::trunc) << content;
  }
  // What another program makes of the text of a file; the length stays when the words' lengths agree.
  static std::string edited(std::string content, const std::string& word) {
    for (std::size_t at; (at = content.find("original")) != std::string::npos;) content.replace(at, 8, word);
    return content;
  }
  // A change that leaves no trace in size and time, so that only somebody who reads the file itself can see it.
  static void editUnseen(const fs::path& file) {
    const auto time = fs::last_write_time(file);
    put(file, edited(content(file), "CHANGED!"));
    fs::last_write_time(file, time);
  }
  static void editSeen(const fs::path& file) {
    const auto time = fs::last_write_time(file);
    put(file, edited(content(file), "CHANGED!"));
    fs::last_write_time(file, time + std::chrono::seconds(2));  // some run times know whole seconds only
  }

  fs::path root_;
  std::shared_ptr<Environment> environment_ = std::make_shared<Environment>();
  std::unique_ptr<Store> store_;
};

TEST_F(CachedStoreTest, UnchangedFiles_AreNotReadAgain) {
  const fs::path file = fileOf(7);
  const String id = message(7)->entryId;
  restart();
  editUnseen(file);
  restart();
  EXPECT_EQ(inbox().messages().size(), std::size_t{many});
  EXPECT_EQ(body(7), u"original");
  EXPECT_EQ(message(7)->entryId, id);
  EXPECT_FALSE(message(7)->changed);
}

TEST_F(CachedStoreTest, SmallStore_HasNone) {
  store_->remove(message(0));
  restart();
  ASSERT_TRUE(fs::exists(cacheFile())) << "still as many, one among the deleted ones";
  store_->remove(store_->defaultFolder(DefaultFolder::DeletedItems)->messages().at(0));
  restart();
  EXPECT_FALSE(fs::exists(cacheFile()));
  EXPECT_EQ(inbox().messages().size(), std::size_t{many - 1});
}

TEST_F(CachedStoreTest, FileChangedByOthers_WithTheSameSize_IsReadAgain) {
  restart();
  editSeen(fileOf(7));
  restart();
  EXPECT_EQ(body(7), u"CHANGED!");
  EXPECT_EQ(body(8), u"original");
}

TEST_F(CachedStoreTest, FileChangedByOthers_WithTheSameTime_IsReadAgain) {
  restart();
  const fs::path file = fileOf(7);
  const auto time = fs::last_write_time(file);
  put(file, edited(content(file), "longer than it was"));
  fs::last_write_time(file, time);
  restart();
  EXPECT_EQ(body(7), u"longer than it was");
}

// What is in memory then is older than the file: it must not become the file's copy.
TEST_F(CachedStoreTest, FileChangedByOthers_WhileTheClientRuns_IsReadAgain) {
  editSeen(fileOf(7));
  restart();
  EXPECT_EQ(body(7), u"CHANGED!");
  editSeen(fileOf(9));
  restart();
  EXPECT_EQ(body(7), u"CHANGED!");
  EXPECT_EQ(body(9), u"CHANGED!");
}

TEST_F(CachedStoreTest, ChangedFile_ComesIntoTheCacheInItsNewForm) {
  restart();
  editSeen(fileOf(7));
  restart();
  restart();
  EXPECT_NE(content(cacheFile()).find("CHANGED!"), std::string::npos);
  editUnseen(fileOf(8));
  open();
  EXPECT_EQ(body(7), u"CHANGED!");
  EXPECT_EQ(body(8), u"original") << "the rest still comes from the cache";
}

TEST_F(CachedStoreTest, OwnChanges_AreThereAfterAnyEnd) {
  restart();
  (*message(7))[Text::Body] = u"replaced";
  store_->save(message(7));
  open();  // as after a crash
  EXPECT_EQ(body(7), u"replaced");
  restart();
  EXPECT_EQ(body(7), u"replaced");
}

TEST_F(CachedStoreTest, AddedFile_IsThere) {
  restart();
  const fs::path file = fileOf(0);
  const FlaggedName name = parseName(file.filename().string());
  put(root_ / "cur" / joinName({"9999999999.000000_X.mailclient", name.flags}, flagSeparator),
      edited(content(file), "added one"));
  open();
  ASSERT_EQ(inbox().messages().size(), std::size_t{many + 1});
  EXPECT_EQ(body(many), u"added one");
  restart();
  EXPECT_EQ(body(many), u"added one");
}

TEST_F(CachedStoreTest, RemovedFile_IsGone_FromTheNextCacheToo) {
  (*message(7))[Text::Body] = u"secret";
  store_->save(message(7));
  add(u"one more, so that there are still enough");
  restart();
  ASSERT_NE(content(cacheFile()).find("secret"), std::string::npos);
  fs::remove(fileOf(7));
  open();
  ASSERT_EQ(inbox().messages().size(), std::size_t{many});
  EXPECT_EQ(body(7), u"original");
  restart();
  EXPECT_EQ(content(cacheFile()).find("secret"), std::string::npos);
}

TEST_F(CachedStoreTest, DeletedForGood_ItsTextIsNotKept) {
  (*message(7))[Text::Body] = u"secret";
  store_->save(message(7));
  add(u"one more");
  restart();
  store_->remove(message(7));
  store_->remove(store_->defaultFolder(DefaultFolder::DeletedItems)->messages().at(0));
  store_->finish();
  ASSERT_TRUE(fs::exists(cacheFile()));
  EXPECT_EQ(content(cacheFile()).find("secret"), std::string::npos);
}

TEST_F(CachedStoreTest, ReadStateAndMoves_DoNotComeFromIt) {
  restart();
  store_->setUnread(message(7), true);
  store_->move(message(8), *store_->defaultFolder(DefaultFolder::Outbox));
  open();
  EXPECT_TRUE(message(7)->unread);
  EXPECT_FALSE(message(6)->unread);
  EXPECT_EQ(inbox().messages().size(), std::size_t{many - 1});
  EXPECT_EQ(store_->defaultFolder(DefaultFolder::Outbox)->messages().size(), 1u);
}

TEST_F(CachedStoreTest, DamagedCache_IsIgnored_AndWrittenAnew) {
  restart();
  const std::string good = content(cacheFile());
  std::string flipped = good;
  flipped[good.size() / 2] = static_cast<char>(flipped[good.size() / 2] ^ 4);
  for (const std::string& damaged : {std::string(), good.substr(0, good.size() / 2), flipped, std::string(5000, '\0'),
                                     std::string("mailclient-cache 2 0000000000000000\n")}) {
    put(cacheFile(), damaged);
    open();
    ASSERT_EQ(inbox().messages().size(), std::size_t{many});
    for (int i = 0; i < many; ++i) ASSERT_EQ(body(i), u"original");
    restart();
    EXPECT_EQ(content(cacheFile()), good);
  }
}

// No file can be made of it; the end of the program is not the place to say so.
TEST_F(CachedStoreTest, MessageThatCannotBeWritten_DoesNotDisturbTheEnd) {
  message(3)->sentOn = Date{-700000};
  EXPECT_NO_THROW(store_->finish());
  open();
  EXPECT_EQ(inbox().messages().size(), std::size_t{many});
}

TEST_F(CachedStoreTest, DirectoryInItsPlace_HurtsNobody) {
  restart();
  fs::remove(cacheFile());
  fs::create_directories(cacheFile() / "full");
  restart();
  restart();
  EXPECT_EQ(inbox().messages().size(), std::size_t{many});
}

}  // namespace
}  // namespace mailclient
