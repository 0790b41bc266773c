#include "support/errors.h"

#include <limits>
#include <map>

#include <gtest/gtest.h>

#include "addin/platform/arithmetic.h"
#include "addin/platform/on_error.h"
#include "addin/platform/runtime_error.h"

namespace platform {
namespace {

using testing_support::errorNumberOf;
using testing_support::errorOf;

TEST(RuntimeError, StandardTexts) {
  const std::map<std::int32_t, StringView> texts{
      {5, u"Invalid procedure call or argument"},
      {6, u"Overflow"},
      {7, u"Out of memory"},
      {9, u"Subscript out of range"},
      {13, u"Type mismatch"},
      {53, u"File not found"},
      {91, u"Object variable or With block variable not set"},
      {94, u"Invalid use of Null"},
      {400, u"Form already displayed; can't show modally"},
      {401, u"Can't show non-modal form when modal form is displayed"},
      {424, u"Object required"},
      {429, u"ActiveX component can't create object"},
      {438, u"Object doesn't support this property or method"},
      {449, u"Argument not optional"},
      {450, u"Wrong number of arguments or invalid property assignment"},
      {457, u"This key is already associated with an element of this collection"},
      {459, u"Object or class does not support the set of events"},
      {462, u"The remote server machine does not exist or is unavailable"},
  };
  for (const auto& [number, text] : texts) EXPECT_EQ(standardText(number), text) << number;
  for (const std::int32_t number : {0, -1, 1, 1000, 65536, std::numeric_limits<std::int32_t>::min()})
    EXPECT_EQ(standardText(number), u"Application-defined or object-defined error") << number;
}

TEST(RuntimeError, RaisedByNumber_HasStandardTextAndTheProgramAsSource) {
  const auto error = errorOf([] { raiseError(13); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number, 13);
  EXPECT_EQ(error->source, u"mrktxtmsg");
  EXPECT_EQ(error->description, u"Type mismatch");
}

TEST(RuntimeError, RaisedWithWords_KeepsThem) {
  const auto error = errorOf([] { raiseError(-1, u"me", u"Not idle!"); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number, -1);
  EXPECT_EQ(error->source, u"me");
  EXPECT_EQ(error->description, u"Not idle!");
}

TEST(RuntimeError, WhoCatchesAnyException_ReadsNumberAndDescription) {
  const auto what = [](std::int32_t number, StringView description) {
    const RuntimeError error(number, u"me", description);
    return std::string(static_cast<const std::exception&>(error).what());
  };
  EXPECT_EQ(what(13, standardText(13)), "13 Type mismatch");
  EXPECT_EQ(what(-1, u"gr\u00F6\u00DFer"), "-1 gr??er");
}

TEST(OnErrorTell, WithoutAnError_TellsNothingAndGivesTheResult) {
  int told = 0;
  EXPECT_EQ(onErrorTell<int>([](int& result) { result = 5; }, [&](const RuntimeError&) { ++told; }), 5);
  EXPECT_EQ(told, 0);
}

TEST(OnErrorTell, AfterAnError_TellsItOnceAndGivesTheResultSoFar) {
  std::vector<std::int32_t> told;
  const int result = onErrorTell<int>(
      [](int& r) {
        r = 3;
        raiseError(91);
        r = 4;  // NOLINT: never reached
      },
      [&](const RuntimeError& error) { told.push_back(error.number); });
  EXPECT_EQ(result, 3);
  EXPECT_EQ(told, (std::vector<std::int32_t>{91}));
}

TEST(OnErrorTell, BeforeAnyResult_GivesTheEmptyOne) {
  EXPECT_EQ(onErrorTell<bool>([](bool&) { raiseError(5); }, [](const RuntimeError&) {}), false);
  EXPECT_EQ(onErrorTell<String>([](String&) { raiseError(5); }, [](const RuntimeError&) {}), u"");
}

TEST(OnErrorTell, FailuresOfTheLibrary_AreToldAsRunTimeErrors) {
  std::vector<RuntimeError> told;
  const auto tell = [&](const RuntimeError& error) { told.push_back(error); };
  onErrorTell<int>([](int&) { throw std::bad_alloc(); }, tell);
  onErrorTell<int>([](int&) { throw std::exception(); }, tell);
  ASSERT_EQ(told.size(), 2u);
  EXPECT_EQ(told[0].number, 7);
  EXPECT_EQ(told[0].description, u"Out of memory");
  EXPECT_EQ(told[1].number, 51);
  EXPECT_EQ(told[1].source, u"mrktxtmsg");
}

TEST(OnErrorResumeNext, AFailingStatement_IsGivenUpAndTheNextOneRuns) {
  std::vector<int> ran;
  onErrorResumeNext([&] { ran.push_back(1); },
                    [&] {
                      raiseError(91);
                      ran.push_back(2);  // NOLINT: never reached
                    },
                    [&] { throw std::bad_alloc(); }, [&] { ran.push_back(3); });
  EXPECT_EQ(ran, (std::vector{1, 3}));
}

TEST(Arithmetic, Overflow_IsError6AndNotAWrap) {
  constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();
  constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();
  EXPECT_EQ(checkedAdd(most - 1, 1), most);
  EXPECT_EQ(checkedAdd(least + 1, -1), least);
  EXPECT_EQ(errorNumberOf([] { checkedAdd(most, 1); }), 6);
  EXPECT_EQ(errorNumberOf([] { checkedAdd(least, -1); }), 6);
  EXPECT_EQ(checkedMultiply(60000, 35791), 2147460000);
  EXPECT_EQ(errorNumberOf([] { checkedMultiply(60000, 35792); }), 6);
  EXPECT_EQ(errorNumberOf([] { checkedMultiply(least, -1); }), 6);
}

TEST(Text, SameName_IgnoresTheCaseOfAsciiLettersOnly) {
  EXPECT_TRUE(sameName(u"ItemAdd", u"ITEMADD"));
  EXPECT_TRUE(sameName(u"", u""));
  EXPECT_FALSE(sameName(u"Item", u"Items"));
  EXPECT_FALSE(sameName(u"\u00E4", u"\u00C4"));
  EXPECT_FALSE(sameName(u"[", u"{"));  // 32 apart, like a letter's two cases
}

}  // namespace
}  // namespace platform
