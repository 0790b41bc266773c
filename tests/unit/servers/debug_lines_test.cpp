#include <gtest/gtest.h>

#include "dbgview/lines.h"

namespace {

using namespace dbgview;
using Lines = std::vector<std::string>;

TEST(DebugRecord, EndsAtItsNul) { EXPECT_EQ(textOfRecord("mrktxtmsg (2) :Hi\r\n\0rest", 24), "mrktxtmsg (2) :Hi\r\n"); }

TEST(DebugRecord, WithoutNul_EndsWithItsSize) {
  const char data[] = {'a', 'b', 'c'};
  EXPECT_EQ(textOfRecord(data, 3), "abc");
  EXPECT_EQ(textOfRecord(data, 2), "ab");
  EXPECT_EQ(textOfRecord(data, 0), "");
}

TEST(DebugRecord, WithoutData_IsEmptyWhateverItsSize) { EXPECT_EQ(textOfRecord(nullptr, 1000), ""); }

TEST(DebugRecord, TooLong_IsCut) {
  const std::string huge(longestRecord + 100, 'x');
  EXPECT_EQ(textOfRecord(huge.data(), huge.size()), std::string(longestRecord, 'x'));
}

TEST(DebugLines, AreShownWithoutLineEnds) {
  EXPECT_EQ(linesOf("a (2) :Hi\r\n"), Lines{"a (2) :Hi"});
  EXPECT_EQ(linesOf("a\nb\r\n\r\nc"), (Lines{"a", "b", "", "c"}));
  EXPECT_EQ(linesOf(""), Lines{""});
  EXPECT_EQ(linesOf("\r\n"), Lines{""});
}

TEST(DebugLog, KeepsTheTextAndEndsItsLine) {
  EXPECT_EQ(loggedText("a\r\n"), "a\r\n");
  EXPECT_EQ(loggedText("a\n"), "a\n");
  EXPECT_EQ(loggedText("a"), "a\r\n");
  EXPECT_EQ(loggedText(""), "\r\n");
}

}  // namespace
