#include "win32/accelerators.h"

#include <gtest/gtest.h>

#include "support/text.h"

namespace win32_tests {
namespace {

using win32::AcceleratorText;
using Lines = std::vector<std::string>;

Lines marked(std::vector<AcceleratorText> texts) {
  win32::addAccelerators(texts);
  Lines result;
  for (const AcceleratorText& entry : texts) result.push_back(testing_support::utf8(entry.text));
  return result;
}

TEST(Accelerators, FirstLetterOfAWord_ThatNobodyHas) {
  EXPECT_EQ(marked({{u"< Back"}, {u"Next >"}, {u"Cancel"}, {u"Help"}}),
            (Lines{"< &Back", "&Next >", "&Cancel", "&Help"}));
  EXPECT_EQ(marked({{u"Next >"}, {u"New Name"}, {u"Nil"}}), (Lines{"&Next >", "N&ew Name", "N&il"}));
  EXPECT_EQ(marked({{u"Send"}, {u"Some More"}}), (Lines{"&Send", "Some &More"}));
}

TEST(Accelerators, NoPage_ComesFirstWhereverItStands) {
  EXPECT_EQ(marked({{u"Full Name:", 1}, {u"Finish", 0}}), (Lines{"Full &Name:", "&Finish"}));
}

TEST(Accelerators, TwoPages_MayShareOne) {
  EXPECT_EQ(marked({{u"Also", 1}, {u"Also", 2}, {u"All", 2}}), (Lines{"&Also", "&Also", "A&ll"}));
}

TEST(Accelerators, OwnMark_StaysAndIsTaken) {
  EXPECT_EQ(marked({{u"Next", 0}, {u"Mo&re n", 0}, {u"Rest", 1}}), (Lines{"&Next", "Mo&re n", "R&est"}));
  EXPECT_EQ(marked({{u"Send && Receive", 0}}), (Lines{"&Send && Receive"}));
}

TEST(Accelerators, WithoutLatinLetters_OneInParentheses) {
  EXPECT_EQ(marked({{u"\u8FD4\u56DE"}, {u"A"}}), (Lines{"\u8FD4\u56DE(&A)", "A"}));
}

TEST(Accelerators, NothingLeft_StaysAsItIs) {
  EXPECT_EQ(marked({{u"aa"}, {u"Aa"}, {u""}, {u" "}}), (Lines{"&aa", "Aa", "", " (&B)"}));
}

}  // namespace
}  // namespace win32_tests
