#include "addin/settings/clsReg.h"

#include <gtest/gtest.h>

#include "addin/diag/basDbgOut.h"
#include "support/native_system.h"

namespace addin {
namespace {

using namespace testing_support;
using Lines = std::vector<std::string>;

constexpr const char* installationKey = "Software\\Marrick\\TextMessageAddIn";

class RegTest : public testing::Test {
 protected:
  RegTest() {
    dbgChannel = {};
    dbgChannel.Level = 2;
    native.windows.openViewer();
  }
  ~RegTest() override {
    dbgChannel = {};
    EXPECT_EQ(registry.openHandles(), 0u);
  }

  String text(const String& name) { return reg.GetRegString(String(KEY_INSTALLATION), name, u"default"); }
  std::int16_t number(const String& name) { return reg.GetRegDword(String(KEY_INSTALLATION), name, 1033); }
  std::vector<std::string> opened() {
    std::vector<std::string> result;
    for (const auto& line : registry.log())
      if (line.starts_with("open ")) result.push_back(line.substr(5, 4));
    return result;
  }

  NativeSystem native;
  NativeRegistry& registry = native.registry;
  clsReg reg;
};

TEST_F(RegTest, String_OfTheUser_ComesFirst) {
  registry.setString(rootCurrentUser, installationKey, "RESPATH", "user");
  registry.setString(rootLocalMachine, installationKey, "RESPATH", "machine");
  EXPECT_EQ(text(u"RESPATH"), u"user");
  EXPECT_EQ(opened(), (Lines{"HKCU"}));
}

TEST_F(RegTest, String_MissingOrEmptyForTheUser_IsTheMachines) {
  registry.setString(rootLocalMachine, installationKey, "RESPATH", "machine");
  EXPECT_EQ(text(u"RESPATH"), u"machine");
  EXPECT_EQ(opened(), (Lines{"HKCU", "HKLM"}));
  registry.setString(rootCurrentUser, installationKey, "RESPATH", "");
  EXPECT_EQ(text(u"RESPATH"), u"machine");
}

TEST_F(RegTest, String_MissingOrEmptyEverywhere_IsTheDefault) {
  EXPECT_EQ(text(u"RESPATH"), u"default");
  registry.setString(rootCurrentUser, installationKey, "RESPATH", "");
  registry.setString(rootLocalMachine, installationKey, "RESPATH", "");
  EXPECT_EQ(text(u"RESPATH"), u"default");
  EXPECT_TRUE(native.trace().empty());
}

TEST_F(RegTest, String_OfANumber_IsItsText) {
  registry.setDword(rootCurrentUser, installationKey, "RESPATH", 0xFFFFFFFF);
  EXPECT_EQ(text(u"RESPATH"), u"-1");
  registry.setDword(rootCurrentUser, installationKey, "RESPATH", 0);
  EXPECT_EQ(text(u"RESPATH"), u"0");  // a text, not empty
}

TEST_F(RegTest, String_OfAnotherType_IsPassedOver) {
  registry.setBytes(rootCurrentUser, installationKey, "RESPATH", regExpandSz, "%windir%");
  registry.setString(rootLocalMachine, installationKey, "RESPATH", "machine");
  EXPECT_EQ(text(u"RESPATH"), u"machine");
}

TEST_F(RegTest, String_FailureOfTheFirstRead_IsTracedAndTheSecondIsTried) {
  registry.setString(rootLocalMachine, installationKey, "RESPATH", "machine");
  registry.afterCall = [](const std::string& line) {
    if (line.starts_with("open HKCU")) raiseError(7);
  };
  EXPECT_EQ(text(u"RESPATH"), u"machine");
  EXPECT_EQ(native.windows.traceLines(), (std::vector<TraceLine>{{"", 2, "Error in GetRegString"}}));
}

TEST_F(RegTest, String_FailureOfBothReads_IsTracedTwiceAndTheDefault) {
  registry.setString(rootCurrentUser, installationKey, "RESPATH", "user");
  registry.setString(rootLocalMachine, installationKey, "RESPATH", "machine");
  registry.afterCall = [](const std::string& line) {
    if (line.starts_with("open ")) raiseError(7);
  };
  EXPECT_EQ(text(u"RESPATH"), u"default");
  EXPECT_EQ(native.windows.traceLines(),
            (std::vector<TraceLine>{{"", 2, "Error in GetRegString"}, {"", 2, "Error in GetRegString"}}));
}

TEST_F(RegTest, Dword_OfTheUser_ComesFirst) {
  registry.setDword(rootCurrentUser, installationKey, "LANGID", 1053);
  registry.setDword(rootLocalMachine, installationKey, "LANGID", 1031);
  EXPECT_EQ(number(u"LANGID"), 1053);
  EXPECT_EQ(opened(), (Lines{"HKCU"}));
}

TEST_F(RegTest, Dword_MissingOrEmptyForTheUser_IsTheMachines) {
  registry.setDword(rootLocalMachine, installationKey, "LANGID", 1031);
  EXPECT_EQ(number(u"LANGID"), 1031);
  EXPECT_EQ(opened(), (Lines{"HKCU", "HKLM"}));
  registry.setString(rootCurrentUser, installationKey, "LANGID", "");
  EXPECT_EQ(number(u"LANGID"), 1031);
}

TEST_F(RegTest, Dword_MissingEverywhere_IsTheDefault) {
  EXPECT_EQ(number(u"LANGID"), 1033);
  EXPECT_TRUE(native.trace().empty());
}

TEST_F(RegTest, Dword_ZeroOfTheUser_IsAValue) {
  registry.setDword(rootCurrentUser, installationKey, "LANGID", 0);
  registry.setDword(rootLocalMachine, installationKey, "LANGID", 1031);
  EXPECT_EQ(number(u"LANGID"), 0);
}

TEST_F(RegTest, Dword_TextOfDigits_IsTheSameNumber) {
  registry.setString(rootCurrentUser, installationKey, "LANGID", "1053");
  EXPECT_EQ(number(u"LANGID"), 1053);
  registry.setString(rootCurrentUser, installationKey, "LANGID", " &H41D ");
  EXPECT_EQ(number(u"LANGID"), 1053);
}

TEST_F(RegTest, Dword_TextThatIsNoNumber_IsZeroAndTraced_NotTheDefault) {
  registry.setString(rootCurrentUser, installationKey, "LANGID", "Swedish");
  registry.setDword(rootLocalMachine, installationKey, "LANGID", 1031);
  EXPECT_EQ(number(u"LANGID"), 0);
  EXPECT_EQ(native.windows.traceLines(), (std::vector<TraceLine>{{"", 2, "Error in GetRegDword"}}));
  EXPECT_EQ(opened(), (Lines{"HKCU"}));
}

TEST_F(RegTest, Dword_FailureOfTheReads_IsTracedAndTheDefault) {
  registry.setDword(rootLocalMachine, installationKey, "LANGID", 1031);
  registry.afterCall = [](const std::string& line) {
    if (line.starts_with("open HKCU")) raiseError(7);
  };
  EXPECT_EQ(number(u"LANGID"), 1031);
  registry.afterCall = [](const std::string& line) {
    if (line.starts_with("open ")) raiseError(7);
  };
  EXPECT_EQ(number(u"LANGID"), 1033);
  EXPECT_EQ(native.trace(), Lines(3, "Error in GetRegDword"));
}

TEST_F(RegTest, Dword_BeyondSixteenBits_IsZeroAndTraced) {
  registry.setDword(rootCurrentUser, installationKey, "LANGID", 32768);
  EXPECT_EQ(number(u"LANGID"), 0);
  registry.setDword(rootCurrentUser, installationKey, "LANGID", 32767);
  EXPECT_EQ(number(u"LANGID"), 32767);
  registry.deleteValue(rootCurrentUser, installationKey, "LANGID");
  registry.setDword(rootLocalMachine, installationKey, "LANGID", 0xFFFF0000);
  EXPECT_EQ(number(u"LANGID"), 0);
  EXPECT_EQ(native.trace(), (Lines{"Error in GetRegDword", "Error in GetRegDword"}));
}

}  // namespace
}  // namespace addin
