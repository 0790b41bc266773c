#include "addin/sms/coltextmessage.h"

#include <random>

#include <gtest/gtest.h>

#include "support/errors.h"
#include "support/seam_recorder.h"

namespace addin {
namespace {

using testing_support::Census;
using testing_support::errorOf;

struct Content {
  String recipient;
  String sentOn;
  String body;
  friend bool operator==(const Content&, const Content&) = default;
};

Content contentOf(const clstextmessage& record) { return {record.Recipient(), record.SentOn(), record.MessageBody()}; }

std::vector<String> bodiesByEnumeration(const coltextmessage& collection) {
  std::vector<String> bodies;
  for (const Ref<clstextmessage>& record : collection) bodies.push_back(record->MessageBody());
  return bodies;
}

std::vector<String> bodiesByPosition(const coltextmessage& collection) {
  std::vector<String> bodies;
  for (std::int32_t i = 1; i <= collection.Count(); ++i) bodies.push_back(collection.Item(i)->MessageBody());
  return bodies;
}

std::vector<String> bodiesSentAt(const coltextmessage& collection, const String& sentOn) {
  std::vector<String> bodies;
  for (const clstextmessage* const record : collection.SentAt(sentOn)) bodies.push_back(record->MessageBody());
  return bodies;
}

// What the index must be indistinguishable from.
std::vector<String> bodiesByPlainWalk(const coltextmessage& collection, const String& sentOn) {
  std::vector<String> bodies;
  for (std::int32_t i = 1; i <= collection.Count(); ++i)
    if (collection.Item(i)->SentOn() == sentOn) bodies.push_back(collection.Item(i)->MessageBody());
  return bodies;
}

void expectError(std::int32_t number, StringView description, const std::function<void()>& call) {
  const auto error = errorOf(call);
  ASSERT_TRUE(error.has_value());
  EXPECT_EQ(error->number, number);
  EXPECT_EQ(error->description, description);
  EXPECT_EQ(error->source, u"mrktxtmsg");
}

using Texts = std::vector<String>;

TEST(clstextmessage, Created_EveryPropertyIsEmpty) {
  const auto record = make<clstextmessage>();
  EXPECT_EQ(contentOf(*record), (Content{}));
}

TEST(clstextmessage, EachProperty_ReadsWhatWasWritten) {
  const auto record = make<clstextmessage>();
  record->Recipient(u"Name [+1]");
  record->SentOn(u"010203040506");
  record->MessageBody(u"Hello");
  EXPECT_EQ(contentOf(*record), (Content{u"Name [+1]", u"010203040506", u"Hello"}));
}

TEST(coltextmessage, Created_IsEmpty) {
  const auto collection = make<coltextmessage>();
  EXPECT_EQ(collection->Count(), 0);
  EXPECT_EQ(bodiesByEnumeration(*collection), Texts{});
}

TEST(coltextmessage, Add_GivesTheNewRecordWithItsThreeTexts) {
  const auto collection = make<coltextmessage>();
  const Ref<clstextmessage> record = collection->Add(u"Name [+1]", u"010203040506", u"Hello", u"key");
  EXPECT_EQ(contentOf(*record), (Content{u"Name [+1]", u"010203040506", u"Hello"}));
  EXPECT_EQ(collection->Count(), 1);
  EXPECT_EQ(collection->Item(1), record);
  EXPECT_EQ(collection->Item(u"key"), record);
}

TEST(coltextmessage, Add_WithAnEmptyKey_HasNoneAndMayHaveEqualContents) {
  const auto collection = make<coltextmessage>();
  const auto first = collection->Add(u"R", u"S", u"B");
  const auto second = collection->Add(u"R", u"S", u"B", u"");
  EXPECT_EQ(collection->Count(), 2);
  EXPECT_NE(first, second);
  EXPECT_EQ(contentOf(*first), contentOf(*second));
  expectError(5, u"Invalid procedure call or argument", [&] { collection->Item(u""); });
}

TEST(coltextmessage, Add_WithAKeyThatIsThereInAnyCase_Is457AndAddsNothing) {
  const auto collection = make<coltextmessage>();
  collection->Add(u"R", u"S", u"first", u"Key");
  expectError(457, u"This key is already associated with an element of this collection",
              [&] { collection->Add(u"R", u"S", u"second", u"kEY"); });
  EXPECT_EQ(bodiesByEnumeration(*collection), Texts{u"first"});
  EXPECT_EQ(bodiesSentAt(*collection, u"S"), Texts{u"first"});
}

TEST(coltextmessage, Item_ByPositionAndByKeyInAnyCase) {
  const auto collection = make<coltextmessage>();
  collection->Add(u"", u"", u"one", u"A");
  collection->Add(u"", u"", u"two");
  collection->Add(u"", u"", u"three", u"b");
  EXPECT_EQ(collection->Item(1)->MessageBody(), u"one");
  EXPECT_EQ(collection->Item(2)->MessageBody(), u"two");
  EXPECT_EQ(collection->Item(u"a")->MessageBody(), u"one");
  EXPECT_EQ(collection->Item(u"B")->MessageBody(), u"three");
}

TEST(coltextmessage, Item_OfAPositionThatIsNotThere_Is9) {
  const auto collection = make<coltextmessage>();
  collection->Add(u"", u"", u"one");
  for (const std::int32_t position : {0, 2, -1}) {
    SCOPED_TRACE(position);
    expectError(9, u"Subscript out of range", [&] { collection->Item(position); });
    expectError(9, u"Subscript out of range", [&] { collection->Remove(position); });
  }
  EXPECT_EQ(bodiesByEnumeration(*collection), Texts{u"one"});
}

TEST(coltextmessage, Item_OfAKeyThatIsNotThere_Is5) {
  const auto collection = make<coltextmessage>();
  collection->Add(u"", u"", u"one", u"key");
  expectError(5, u"Invalid procedure call or argument", [&] { collection->Item(u"other"); });
  expectError(5, u"Invalid procedure call or argument", [&] { collection->Remove(u"other"); });
  EXPECT_EQ(bodiesByEnumeration(*collection), Texts{u"one"});
}

TEST(coltextmessage, NewEnum_WalksInTheOrderOfAdding) {
  const auto collection = make<coltextmessage>();
  for (const char16_t* const body : {u"c", u"a", u"b"}) collection->Add(u"", u"010203040506", body, body);
  EXPECT_EQ(bodiesByEnumeration(*collection), (Texts{u"c", u"a", u"b"}));
  EXPECT_EQ((*collection->NewEnum())->MessageBody(), u"c");
}

TEST(coltextmessage, Remove_ByPositionAndByKey_ClosesTheGapAndFreesTheKey) {
  const auto collection = make<coltextmessage>();
  for (const char16_t* const body : {u"a", u"b", u"c", u"d"}) collection->Add(u"", u"S", body, body);
  collection->Remove(2);
  collection->Remove(u"C");
  EXPECT_EQ(bodiesByEnumeration(*collection), (Texts{u"a", u"d"}));
  EXPECT_EQ(bodiesByPosition(*collection), (Texts{u"a", u"d"}));
  EXPECT_EQ(bodiesSentAt(*collection, u"S"), (Texts{u"a", u"d"}));
  collection->Add(u"", u"S", u"new", u"c");
  EXPECT_EQ(collection->Item(u"c")->MessageBody(), u"new");
}

TEST(coltextmessage, Destroyed_LetsItsRecordsGo) {
  const Census census;
  const auto record = [] {
    const auto collection = make<coltextmessage>();
    collection->Add(u"", u"S", u"a");
    return collection->Add(u"", u"S", u"b");
  }();
  EXPECT_EQ(census.more(), 1);  // the one that somebody holds
  EXPECT_EQ(record->MessageBody(), u"b");
}

TEST(coltextmessage, DestroyedBeforeItsRecord_TheRecordCanStillBeWritten) {
  Ref<clstextmessage> record;
  {
    const auto collection = make<coltextmessage>();
    record = collection->Add(u"R", u"S", u"B");
  }
  record->SentOn(u"T");
  EXPECT_EQ(contentOf(*record), (Content{u"R", u"T", u"B"}));
}

// SentAt: what the duplicate check looks up
// ------------------------------------------------------------------------------

TEST(coltextmessage, SentAt_GivesTheRecordsOfExactlyThatTextInTheOrderOfAdding) {
  const auto collection = make<coltextmessage>();
  collection->Add(u"", u"x", u"1");
  collection->Add(u"", u"y", u"2");
  collection->Add(u"", u"x", u"3");
  collection->Add(u"", u"X", u"4");
  collection->Add(u"", u"x ", u"5");
  collection->Add(u"", u"", u"6");
  EXPECT_EQ(bodiesSentAt(*collection, u"x"), (Texts{u"1", u"3"}));
  EXPECT_EQ(bodiesSentAt(*collection, u"y"), Texts{u"2"});
  EXPECT_EQ(bodiesSentAt(*collection, u"X"), Texts{u"4"});
  EXPECT_EQ(bodiesSentAt(*collection, u""), Texts{u"6"});
  EXPECT_EQ(bodiesSentAt(*collection, u"z"), Texts{});
}

TEST(coltextmessage, SentAt_FollowsALaterWriteAndKeepsTheOrderOfAdding) {
  const auto collection = make<coltextmessage>();
  const auto first = collection->Add(u"", u"x", u"1");
  collection->Add(u"", u"y", u"2");
  collection->Add(u"", u"x", u"3");
  first->SentOn(u"y");
  EXPECT_EQ(bodiesSentAt(*collection, u"x"), Texts{u"3"});
  EXPECT_EQ(bodiesSentAt(*collection, u"y"), (Texts{u"1", u"2"}));  // it comes first: it was added first
  first->SentOn(u"x");
  EXPECT_EQ(bodiesSentAt(*collection, u"x"), (Texts{u"1", u"3"}));
  EXPECT_EQ(bodiesSentAt(*collection, u"y"), Texts{u"2"});
}

TEST(coltextmessage, SentAt_AfterARecordIsWrittenWithItsOwnText_IsUnchanged) {
  const auto collection = make<coltextmessage>();
  const auto record = collection->Add(u"", u"a rather long text, so that it lies on the heap", u"1");
  record->SentOn(record->SentOn());
  record->SentOn(StringView(record->SentOn()).substr(2, 6));
  EXPECT_EQ(record->SentOn(), u"rather");
  EXPECT_EQ(bodiesSentAt(*collection, u"rather"), Texts{u"1"});
}

TEST(coltextmessage, SentAt_ForgetsARemovedRecordWhateverIsWrittenToItLater) {
  const auto collection = make<coltextmessage>();
  const auto removed = collection->Add(u"", u"x", u"1");
  collection->Add(u"", u"x", u"2");
  collection->Remove(1);
  removed->SentOn(u"y");
  removed->SentOn(u"x");
  EXPECT_EQ(bodiesSentAt(*collection, u"x"), Texts{u"2"});
  EXPECT_EQ(bodiesSentAt(*collection, u"y"), Texts{});
}

TEST(coltextmessage, SentAt_SeesOtherPropertiesAsTheyAreNow) {
  const auto collection = make<coltextmessage>();
  const auto record = collection->Add(u"", u"x", u"1");
  record->MessageBody(u"2");
  record->Recipient(u"R");
  EXPECT_EQ(bodiesSentAt(*collection, u"x"), Texts{u"2"});
  EXPECT_EQ((*collection->SentAt(u"x"))->Recipient(), u"R");
}

// Whatever happens to the collection, the index and a walk over all records agree: with many records to a time stamp,
// and with so many time stamps that the index grows and its searches collide.
TEST(coltextmessage, SentAt_AfterRandomAddsWritesAndRemovals_IsWhatAPlainWalkFinds) {
  std::mt19937 random(20010203);
  const auto below = [&](std::size_t n) { return std::uniform_int_distribution<std::size_t>(0, n - 1)(random); };
  for (const std::size_t times : {12u, 400u}) {
    SCOPED_TRACE(times);
    const auto someTime = [&] { return concat(u"t", static_cast<std::int32_t>(below(times))); };
    const auto collection = make<coltextmessage>();
    std::vector<Ref<clstextmessage>> everything;  // removed ones too
    for (std::int32_t step = 0; step < 2000; ++step) {
      const std::size_t action = below(10);
      if (everything.empty() || action < 4) {
        everything.push_back(collection->Add(u"R", someTime(), concat(step)));
      } else if (action < 7) {
        everything[below(everything.size())]->SentOn(someTime());
      } else if (collection->Count() > 0) {
        collection->Remove(static_cast<std::int32_t>(below(static_cast<std::size_t>(collection->Count()))) + 1);
      }
      const String time = someTime();
      ASSERT_EQ(bodiesSentAt(*collection, time), bodiesByPlainWalk(*collection, time)) << "step " << step;
    }
    for (std::int32_t t = 0; t < static_cast<std::int32_t>(times); ++t) {
      const String time = concat(u"t", t);
      EXPECT_EQ(bodiesSentAt(*collection, time), bodiesByPlainWalk(*collection, time));
    }
    while (collection->Count() > 0) collection->Remove(1);
    for (std::int32_t t = 0; t < static_cast<std::int32_t>(times); ++t)
      EXPECT_EQ(bodiesSentAt(*collection, concat(u"t", t)), Texts{});
  }
}

}  // namespace
}  // namespace addin
