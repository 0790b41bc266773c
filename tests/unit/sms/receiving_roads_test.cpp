// Whole runs: from the phone's memories into the Inbox, and away from the SIM again.
#include <random>
#include <set>

#include "unit/sms/receiving_fixture.h"

namespace sms_tests {
namespace {

class Receiving : public ReceivingFixture {
 protected:
  static Lines firstCreation(const std::string& entryId) {
    return joined({creationBegins(), searched(builtInbox(), {}, false), notInInbox(),
                   searched(builtDeletedItems(), {}, false), dupe(false), itemMade(entryId)});
  }
};

TEST_F(Receiving, FourMessagesInTwoMemories_ArriveInOrderWithTheWholeTrace) {
  store({.text = u"one", .timeStamp = u"010101010101", .store = phoneMemory, .index = 1});
  store({.text = u"two", .timeStamp = u"010101010102", .store = phoneMemory, .index = 2});
  store({.text = u"three", .timeStamp = u"010101010103", .index = 1});
  store({.text = u"four", .timeStamp = u"010101010104", .index = 2});
  EXPECT_TRUE(handler().ReceiveAll());
  EXPECT_EQ(
      trace(),
      run(true,
          listed(17, joined({listedOne(17, firstCreation("ID-1"), "ID-1"), listedOne(17, createdNew("ID-2"), "ID-2")})),
          listed(18, joined({listedOne(18, createdNew("ID-3"), "ID-3"), listedOne(18, createdNew("ID-4"), "ID-4")}))));
  EXPECT_EQ(inbox.bodies(), (Lines{"one", "two", "three", "four"}));
  EXPECT_EQ(outbox.bodies(), Lines{});
  EXPECT_EQ(stored[phoneMemory].size() + stored[sim].size(), 4u);  // nothing is removed unasked
}

TEST_F(Receiving, StoredOutgoingMessages_AreSkipped) {
  store({.text = u"draft", .status = sms_objectlib::storedUnsent});
  store({.text = u"sent", .status = sms_objectlib::storedSent});
  store({.text = u"read", .status = sms_objectlib::receivedRead});
  handler().ReceiveAll();
  EXPECT_EQ(inbox.bodies(), Lines{"read"});
}

TEST_F(Receiving, SameMessageInBothMemories_IsCreatedOnceAndFoundInTheInboxTheSecondTime) {
  store({.store = phoneMemory});
  store({});
  EXPECT_TRUE(handler().ReceiveAll());
  const Lines again = joined({creationBegins(), searched({}, sameMessage(), true), dupe(true)});
  EXPECT_EQ(trace(),
            run(true, listed(17, listedOne(17, firstCreation("ID-1"), "ID-1")), listed(18, listedOne(18, again, ""))));
  EXPECT_EQ(inbox.bodies(), Lines{"Hello"});
}

// The records of the run's own items come behind those of the Inbox, with the same lines.
TEST_F(Receiving, RecordsOfTheRunItself_AreLookedThroughAfterTheInboxCache) {
  addItem(inbox, concat(u"Other", u"\x01", sentAt), u"Hello");
  store({.store = phoneMemory});
  store({});
  handler().ReceiveAll();
  const Lines all = trace();
  const auto second = std::find(all.rbegin(), all.rend(), "Inside Function CreateMessage").base() - 1;
  const Lines expected =
      joined({creationBegins(), searched({}, joined({{"YES,SAME DATE"}, sameMessage()}), true), dupe(true)});
  EXPECT_EQ(Lines(second, second + static_cast<std::ptrdiff_t>(expected.size())), expected);
}

TEST_F(Receiving, CacheIsNotAddedToByARun) {
  store({});
  handler().ReceiveAll();
  ASSERT_TRUE(probe().colInbox());
  EXPECT_EQ(probe().colInbox()->Count(), 0);
}

// What a run created is forgotten at its end; the phone's unread listing does not offer it twice, so this one is
// forced.
TEST_F(Receiving, NextUnreadRunWithTheOldCache_DoesNotKnowTheItemsOfTheLast) {
  store({});
  handler().ReceiveAll();
  handler().ReceiveAll();
  EXPECT_EQ(inbox.bodies(), (Lines{"Hello", "Hello"}));
}

TEST_F(Receiving, SecondFullListing_CreatesNothing) {
  store({.text = u"one", .timeStamp = u"010101010101", .store = phoneMemory});
  store({.text = u"two", .timeStamp = u"010101010102"});
  handler().ReceiveAll();
  clear();
  probe().receiveAllFlag() = true;
  EXPECT_TRUE(handler().ReceiveAll());
  const Lines built = joined({creationBegins(), searched(builtInbox(2), sameMessage(), true), dupe(true)});
  const Lines cached = joined({creationBegins(), searched({}, sameMessage(), true), dupe(true)});
  EXPECT_EQ(trace(), run(true, listed(19, listedOne(19, built, "")), listed(20, listedOne(20, cached, ""))));
  EXPECT_EQ(inbox.bodies(), (Lines{"one", "two"}));
  EXPECT_EQ(helper->calls(), Lines{});
}

TEST_F(Receiving, DeletedInTheMailClient_IsRemovedFromTheSimWithAutoRemoveOff) {
  store({.text = u"one", .timeStamp = u"010101010101", .index = 3});
  store({.text = u"two", .timeStamp = u"010101010102", .index = 4});
  handler().ReceiveAll();
  clear();
  const Ref<FakeObject> item = inbox.contents[0];
  item->invoke(u"Delete", Access::Call, {});
  const Lines deleted = joined({creationBegins(), searched(builtInbox(1), {}, false), notInInbox(),
                                searched(builtDeletedItems(1), sameMessage(), true), queuedAsDeleted(), dupe(true)});
  const Lines kept = joined({creationBegins(), searched({}, sameMessage(), true), dupe(true)});
  EXPECT_EQ(trace(),
            joined({{"Item added to Deleted Items folder", "YES, the item is our mail item - check if phone connected",
                     "m_bPhoneConnected = -1", "YES, the phone is connected"},
                    run(true, listed(19), listed(20, joined({listedOne(20, deleted, ""), listedOne(20, kept, "")})), 1,
                        deletedInRun(21, 3, 2)),
                    {"ReceiveAll function called."}}));
  ASSERT_EQ(stored[sim].size(), 1u);
  EXPECT_EQ(stored[sim][0]->valueOf(u"Text"), Variant(u"two"));
  EXPECT_EQ(inbox.bodies(), Lines{"two"});
  EXPECT_EQ(deletedItems.bodies(), Lines{"one"});
}

TEST_F(Receiving, WithAutoRemove_FreshMessagesLeaveThePhone) {
  autoRemove();
  store({.text = u"one", .store = phoneMemory, .index = 1});
  store({.text = u"two", .index = 2});
  EXPECT_TRUE(handler().ReceiveAll());
  EXPECT_EQ(inbox.bodies(), (Lines{"one", "two"}));
  EXPECT_EQ(stored[phoneMemory].size() + stored[sim].size(), 0u);
}

TEST_F(Receiving, FullInbox_StillCreatesOnlyWhatIsNew) {
  for (int i = 0; i < 500; ++i) addItem(inbox, concat(me, u"\x01", 100000 + i, u"000000"), u"Old");
  store({.text = u"Old", .timeStamp = u"100250000000"});
  store({.text = u"New", .timeStamp = u"100250000000"});
  store({.text = u"New", .timeStamp = u"100999000000"});
  handler().ReceiveAll();
  EXPECT_EQ(inbox.contents.size(), 502u);
  EXPECT_EQ(inbox.bodies()[500], "New");
  EXPECT_EQ(inbox.bodies()[501], "New");
}

// Runs inside runs
// -------------------------------------------------------------------------------------------------------

// A connect notice makes the engine idle in the middle of a listing, so that a deletion in the mail client can start a
// full run inside it. What that one creates, the outer one must not create again.
TEST_F(Receiving, RunInsideARun_NothingIsCreatedTwice) {
  store({.text = u"one", .store = phoneMemory});
  store({.text = u"two"});
  system.time.post([&] {
    notifyConnected(1, phone->object());
    arrive(deletedItems, newItem(u"", u"something else"));
  });
  EXPECT_TRUE(handler().ReceiveAll()) << "the listings had ended";
  // The inner run has cleared the collection away.
  EXPECT_EQ(lastOf(trace(), 2), (Lines{"Go through collection and delete SMSs from the SIM card",
                                       "Error:91, Object variable or With block variable not set, mrktxtmsg"}));
  EXPECT_EQ(inbox.bodies(), (Lines{"one", "two"}));
  EXPECT_EQ(outbox.bodies(), Lines{});
}

TEST_F(Receiving, UnreadRunInsideAFullOne_KnowsWhatTheOuterOneCreated) {
  store({.text = u"one", .store = phoneMemory});
  store({.text = u"one"});
  answersListings = false;
  sms->method(u"ListMessages", [&](Args args) -> Variant {
    const std::int32_t id = nextTransaction++;
    const auto messages = stored[CLng(args[0])];
    for (const auto& m : messages) system.time.post([this, id, m] { answer(id, moreData, m->object()); });
    if (id == 17)
      system.time.post([&] {
        notifyConnected(1, phone->object());
        probe().receiveAllFlag() = false;
        EXPECT_TRUE(handler().ReceiveAll());
      });
    else
      system.time.post([this, id] { answer(id, 0); });
    return id;
  });
  handler().ReceiveAll();
  EXPECT_EQ(inbox.bodies(), Lines{"one"});
}

// What the user deleted while the run lasted is looked for in the folders as they are, not among the run's records.
TEST_F(Receiving, CreatedAndDeletedDuringARun_IsRemovedFromTheSimByTheFullRunInside) {
  store({.text = u"one", .index = 5});
  sms->method(u"ListMessages", [&](Args args) -> Variant {
    const std::int32_t id = nextTransaction++;
    const auto messages = stored[CLng(args[0])];
    for (const auto& m : messages) system.time.post([this, id, m] { answer(id, moreData, m->object()); });
    if (id == 18)
      system.time.post([&] {
        notifyConnected(1, phone->object());
        const Ref<FakeObject> item = inbox.contents.at(0);
        item->invoke(u"Delete", Access::Call, {});
      });
    else
      system.time.post([this, id] { answer(id, 0); });
    return id;
  });
  handler().ReceiveAll();
  EXPECT_EQ(stored[sim].size(), 0u);
  EXPECT_EQ(inbox.bodies(), Lines{});
  EXPECT_EQ(deletedItems.bodies(), Lines{"one"});
}

// Over random memories -----------------------------------------------------------------------------------------------

TEST_F(Receiving, RandomMemories_EveryDistinctMessageArrivesExactlyOnce) {
  std::mt19937 random(7);
  const auto below = [&](std::int32_t n) { return std::uniform_int_distribution<std::int32_t>(0, n - 1)(random); };
  const std::vector<StringView> texts{u"a", u"b", u"a b", u"ab", u"A", u"a\r\n", u""};
  const std::vector<StringView> stamps{u"010101010101", u"010101010102", u"", u"no time"};
  std::set<std::pair<String, String>> distinct;
  for (std::int16_t i = 1; i <= 60; ++i) {
    const StringView text = texts[static_cast<std::size_t>(below(7))];
    const StringView stamp = stamps[static_cast<std::size_t>(below(4))];
    store({.text = text, .timeStamp = stamp, .store = 1 + below(2), .index = i, .status = below(2)});
    String bare;
    for (const char16_t c : text)
      if (c != u' ' && c != u'\r' && c != u'\n') bare += c;
    distinct.emplace(String(stamp), bare);
  }
  EXPECT_TRUE(handler().ReceiveAll());
  EXPECT_EQ(inbox.contents.size(), distinct.size());
  EXPECT_EQ(outbox.contents.size(), 0u);
}

}  // namespace
}  // namespace sms_tests
