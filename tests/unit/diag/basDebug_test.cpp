#include "addin/diag/basDebug.h"

#include <new>

#include <gtest/gtest.h>

#include "addin/diag/basDbgOut.h"
#include "support/native_system.h"

namespace addin {
namespace {

using testing_support::TraceLine;
using Lines = std::vector<std::string>;

class DebugTest : public testing::Test {
 protected:
  DebugTest() {
    dbgChannel = {};
    dbgChannel.Level = 2;
    native.windows.openViewer();
  }
  ~DebugTest() override { dbgChannel = {}; }

  testing_support::NativeSystem native;
};

TEST_F(DebugTest, LogError_WritesNumberDescriptionAndSourceAtLevel2) {
  LogError(RuntimeError(91, u"mrktxtmsg", u"Object variable or With block variable not set"));
  LogError(RuntimeError(-1, u"ReceiveAll", u"Not idle!"));
  EXPECT_EQ(native.windows.traceLines(),
            (std::vector<TraceLine>{{"", 2, "Error:91, Object variable or With block variable not set, mrktxtmsg"},
                                    {"", 2, "Error:-1, Not idle!, ReceiveAll"}}));
}

TEST_F(DebugTest, LogError_WithAPrefixOfItsOwn) {
  LogError(RuntimeError(5, u"s", u"d"), u"InitHandler Error:");
  EXPECT_EQ(native.trace(), (Lines{"InitHandler Error:5, d, s"}));
}

TEST_F(DebugTest, OnErrorLog_LogsOneLineAndGivesTheResultSoFar) {
  const auto result = onErrorLog<std::int32_t>([](std::int32_t& r) {
    r = 4;
    raiseError(13);
  });
  EXPECT_EQ(result, 4);
  EXPECT_EQ(native.trace(), (Lines{"Error:13, Type mismatch, mrktxtmsg"}));
}

TEST_F(DebugTest, OnErrorLog_WithoutAnError_LogsNothing) {
  EXPECT_TRUE(onErrorLog<bool>([](bool& r) { r = true; }));
  onErrorLog([] {});
  EXPECT_TRUE(native.trace().empty());
}

TEST_F(DebugTest, OnErrorLog_OfAProcedureWithoutResult) {
  onErrorLog([] { raiseError(6); }, u"X Error:");
  EXPECT_EQ(native.trace(), (Lines{"X Error:6, Overflow, mrktxtmsg"}));
}

TEST_F(DebugTest, OnErrorLog_Nested_TheInnerOneKeepsItsError) {
  onErrorLog([] {
    onErrorLog([] { raiseError(6); });
    raiseError(9);
  });
  EXPECT_EQ(native.trace(), (Lines{"Error:6, Overflow, mrktxtmsg", "Error:9, Subscript out of range, mrktxtmsg"}));
}

TEST_F(DebugTest, OnErrorLog_OutOfMemory_IsError7) {
  onErrorLog([] { throw std::bad_alloc(); });
  EXPECT_EQ(native.trace(), (Lines{"Error:7, Out of memory, mrktxtmsg"}));
}

}  // namespace
}  // namespace addin
