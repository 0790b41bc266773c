#include "addin/platform/collection.h"

#include <functional>

#include <gtest/gtest.h>

#include "support/errors.h"
#include "support/fake_object.h"

namespace platform {
namespace {

using testing_support::errorNumberOf;

std::vector<int> contentOf(const Collection<int>& collection) {
  std::vector<int> result;
  for (std::int32_t i = 1; i <= collection.Count(); ++i) result.push_back(collection.Item(i));
  return result;
}

TEST(Collection, Item_CountsFromOneInTheOrderOfAdding) {
  Collection<int> collection;
  EXPECT_EQ(collection.Count(), 0);
  for (const int n : {30, 10, 20}) collection.Add(n);
  EXPECT_EQ(collection.Count(), 3);
  EXPECT_EQ(contentOf(collection), (std::vector{30, 10, 20}));
}

TEST(Collection, Item_ByKey_IgnoresCase) {
  Collection<int> collection;
  collection.Add(1, u"Abc");
  collection.Add(2, u"x");
  EXPECT_EQ(collection.Item(u"aBC"), 1);
  EXPECT_EQ(collection.Item(u"X"), 2);
}

TEST(Collection, Item_ByText_IsAKeyEvenWhenItIsANumber) {
  Collection<int> collection;
  collection.Add(1, u"2");
  collection.Add(2, u"1");
  EXPECT_EQ(collection.Item(u"2"), 1);
  EXPECT_EQ(collection.Item(2), 2);
}

TEST(Collection, Item_ByABadPosition_Is9) {
  Collection<int> collection;
  EXPECT_EQ(errorNumberOf([&] { collection.Item(1); }), 9);
  collection.Add(5);
  for (const std::int32_t position : {0, -1, 2, 2147483647, -2147483647 - 1})
    EXPECT_EQ(errorNumberOf([&] { collection.Item(position); }), 9) << position;
}

TEST(Collection, Item_ByAMissingKey_Is5) {
  Collection<int> collection;
  collection.Add(5);  // has no key, and is not found by an empty one either
  EXPECT_EQ(errorNumberOf([&] { collection.Item(u"a"); }), 5);
  EXPECT_EQ(errorNumberOf([&] { collection.Item(u""); }), 5);
}

TEST(Collection, Item_ByANumberOfAnyKind_IsRoundedLikeALong) {
  Collection<int> collection;
  for (const int n : {10, 20, 30}) collection.Add(n);
  EXPECT_EQ(collection.Item(std::int16_t{2}), 20);
  EXPECT_EQ(collection.Item(1.5), 20);
  EXPECT_EQ(collection.Item(2.5), 20);
}

TEST(Collection, Add_WithAKeyThatIsThere_Is457AndAddsNothing) {
  Collection<int> collection;
  collection.Add(1, u"key");
  EXPECT_EQ(errorNumberOf([&] { collection.Add(2, u"KEY"); }), 457);
  EXPECT_EQ(contentOf(collection), (std::vector{1}));
}

TEST(Collection, Remove_ByPositionAndByKey_ClosesTheGap) {
  Collection<int> collection;
  for (const int n : {1, 2, 3, 4}) collection.Add(n, concat(u"k", n));
  collection.Remove(2);
  collection.Remove(u"K3");
  EXPECT_EQ(contentOf(collection), (std::vector{1, 4}));
  EXPECT_EQ(collection.Item(u"k4"), 4);
}

TEST(Collection, Remove_OfWhatIsNotThere_FailsAndRemovesNothing) {
  Collection<int> collection;
  collection.Add(1, u"a");
  EXPECT_EQ(errorNumberOf([&] { collection.Remove(2); }), 9);
  EXPECT_EQ(errorNumberOf([&] { collection.Remove(0); }), 9);
  EXPECT_EQ(errorNumberOf([&] { collection.Remove(u"b"); }), 5);
  EXPECT_EQ(contentOf(collection), (std::vector{1}));
}

TEST(Collection, Remove_MakesTheKeyFreeAgain) {
  Collection<int> collection;
  collection.Add(1, u"a");
  collection.Remove(u"A");
  collection.Add(2, u"a");
  EXPECT_EQ(collection.Item(u"a"), 2);
}

// The element's end may look at the collection, and must find it whole and without the element.
TEST(Collection, Remove_TheElementGoesWhenTheCollectionIsWholeAgain) {
  std::vector<std::string> seen;
  Collection<Object> collection;
  for (const char* const name : {"A", "B", "C"}) {
    const auto element = testing_support::fake(name);
    if (collection.Count() == 0)
      element->whenTerminated = [&] {
        for (std::int32_t i = 1; i <= collection.Count(); ++i)
          seen.push_back(collection.Item(i) ? testing_support::Labels().of(*collection.Item(i).automation())
                                            : "Nothing");
      };
    collection.Add(element->object(), String(name, name + 1));
  }
  collection.Remove(u"A");
  EXPECT_EQ(seen, (std::vector<std::string>{"B", "C"}));
}

}  // namespace
}  // namespace platform
