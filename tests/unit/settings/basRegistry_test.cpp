#include "addin/settings/basRegistry.h"

#include <gtest/gtest.h>

#include "support/errors.h"
#include "support/native_system.h"

namespace addin {
namespace {

using namespace std::string_literals;
using namespace testing_support;
using Lines = std::vector<std::string>;
using Value = NativeRegistry::Value;

constexpr const char* path = "Software\\Marrick\\Test";
constexpr StringView keyPath = u"Software\\Marrick\\Test";
const std::string key = "HKCU\\Software\\Marrick\\Test";

class RegistryTest : public testing::Test {
 protected:
  ~RegistryTest() override { EXPECT_EQ(registry.openHandles(), 0u) << "a key was left open"; }

  Variant read(StringView name) { return GetRegValue(rootCurrentUser, keyPath, name); }
  bool write(String where, StringView name, const Variant& value, std::int32_t type) {
    RootKey root = rootCurrentUser;
    return SetRegValue(root, where, name, value, type);
  }
  std::optional<Value> stored(const std::string& name) { return registry.value(rootCurrentUser, path, name); }

  NativeSystem native;
  NativeRegistry& registry = native.registry;
};

// GetRegValue --------------------------------------------------------------------------------------------------------

TEST_F(RegistryTest, Get_OpensAsksReadsAndCloses) {
  registry.setString(rootCurrentUser, path, "V", "abc");
  EXPECT_EQ(read(u"V"), Variant(u"abc"));
  EXPECT_EQ(registry.log(),
            (Lines{"open " + key, "query size " + key + " \"V\"", "query data " + key + " \"V\"", "close " + key}));
}

TEST_F(RegistryTest, Get_TextWithAndWithoutNul_ReadTheSame) {
  registry.setString(rootCurrentUser, path, "with", "abc");
  registry.setStringWithoutNul(rootCurrentUser, path, "without", "abc");
  EXPECT_EQ(read(u"with"), Variant(u"abc"));
  EXPECT_EQ(read(u"without"), Variant(u"abc"));
}

TEST_F(RegistryTest, Get_TextEndingInTwoNuls_LosesOne) {
  registry.setBytes(rootCurrentUser, path, "V", regSz, "abc\0\0"s);
  EXPECT_EQ(read(u"V"), Variant(String(u"abc\0", 4)));
}

TEST_F(RegistryTest, Get_NulInside_Stays) {
  registry.setBytes(rootCurrentUser, path, "V", regSz, "a\0b"s);
  EXPECT_EQ(read(u"V"), Variant(String(u"a\0b", 3)));
}

TEST_F(RegistryTest, Get_EmptyTexts_AreTextAndNotEmpty) {
  registry.setStringWithoutNul(rootCurrentUser, path, "none", "");
  registry.setString(rootCurrentUser, path, "nul", "");
  EXPECT_EQ(read(u"none"), Variant(u""));
  EXPECT_EQ(read(u"nul"), Variant(u""));
}

TEST_F(RegistryTest, Get_Text_IsInTheAnsiCodePage) {
  registry.setString(rootCurrentUser, path, "V", "\xE5\x80");
  EXPECT_EQ(read(u"V"), Variant(u"\u00E5\u20AC"));
}

TEST_F(RegistryTest, Get_Number_IsSigned) {
  registry.setDword(rootCurrentUser, path, "V", 0xFFFFFFFE);
  EXPECT_EQ(read(u"V"), Variant(-2));
  registry.setDword(rootCurrentUser, path, "V", 0x7FFFFFFF);
  EXPECT_EQ(read(u"V"), Variant(2147483647));
}

TEST_F(RegistryTest, Get_NumberOfAnotherSize) {
  registry.setBytes(rootCurrentUser, path, "long", regDword, "\1\0\0\0\0\0\0\0"s);
  EXPECT_TRUE(read(u"long").isEmpty());  // does not fit into four bytes
  registry.setBytes(rootCurrentUser, path, "short", regDword, "\1\2"s);
  EXPECT_EQ(read(u"short"), Variant(0x0201));
}

TEST_F(RegistryTest, Get_OtherTypes_AreEmptyAndNotRead) {
  for (const std::uint32_t type : {regExpandSz, regBinary, regMultiSz, 0u, 11u}) {
    registry.setBytes(rootCurrentUser, path, "V", type, "1\0\0\0"s);
    registry.clearLog();
    EXPECT_TRUE(read(u"V").isEmpty()) << type;
    EXPECT_EQ(registry.log(), (Lines{"open " + key, "query size " + key + " \"V\"", "close " + key}));
  }
}

TEST_F(RegistryTest, Get_MissingValue_IsEmpty) {
  registry.setKey(rootCurrentUser, path);
  EXPECT_TRUE(read(u"V").isEmpty());
  EXPECT_EQ(CStr(read(u"V")), u"");
  EXPECT_EQ(CLng(read(u"V")), 0);
}

TEST_F(RegistryTest, Get_MissingKey_IsEmpty_AndTheReadIsTriedAllTheSame) {
  EXPECT_TRUE(read(u"V").isEmpty());
  EXPECT_EQ(registry.log(), (Lines{"open " + key + " -> 2", "query size (no key) \"V\" -> 6", "close (no key) -> 6"}));
}

TEST_F(RegistryTest, Get_AnyFailureOfACall_IsEmpty) {
  registry.setString(rootCurrentUser, path, "V", "abc");
  registry.setDword(rootCurrentUser, path, "N", 1);
  for (const char* const call : {"open", "query size", "query data"}) {
    registry.fail(call, errorAccessDenied);
    EXPECT_TRUE(read(u"V").isEmpty()) << call;
    EXPECT_TRUE(read(u"N").isEmpty()) << call;
    registry.failNoMore();
  }
}

TEST_F(RegistryTest, Get_LooksUnderTheGivenRootOnly) {
  registry.setString(rootLocalMachine, path, "V", "abc");
  EXPECT_TRUE(read(u"V").isEmpty());
  EXPECT_EQ(GetRegValue(rootLocalMachine, keyPath, u"V"), Variant(u"abc"));
}

TEST_F(RegistryTest, Get_IgnoresCase) {
  registry.setDword(rootCurrentUser, path, "WizardDone", 1);
  EXPECT_EQ(GetRegValue(rootCurrentUser, u"SOFTWARE\\MARRICK\\TEST", u"WIZARDDONE"), Variant(1));
}

// Another program may write between the two questions.
TEST_F(RegistryTest, Get_TextThatShrinksMeanwhile_HasItsNewLength) {
  registry.setString(rootCurrentUser, path, "V", "abcdef");
  registry.afterCall = [&](const std::string& line) {
    if (line.starts_with("query size")) registry.setStringWithoutNul(rootCurrentUser, path, "V", "xy");
  };
  EXPECT_EQ(read(u"V"), Variant(u"xy"));
}

TEST_F(RegistryTest, Get_TextThatGrowsMeanwhile_IsEmpty) {
  registry.setString(rootCurrentUser, path, "V", "ab");
  registry.afterCall = [&](const std::string& line) {
    if (line.starts_with("query size")) registry.setString(rootCurrentUser, path, "V", "abcdef");
  };
  EXPECT_TRUE(read(u"V").isEmpty());
}

// ReadValueFromKey ---------------------------------------------------------------------------------------------------

class OpenKeyTest : public RegistryTest {
 protected:
  OpenKeyTest() { registry.createKey(rootCurrentUser, path, handle); }
  ~OpenKeyTest() override { registry.closeKey(handle); }
  std::int32_t readFrom(StringView name) {
    result = Variant(u"before");
    return ReadValueFromKey(handle, name, result);
  }
  std::int32_t writeTo(StringView name, std::int32_t type, const Variant& value) {
    return WriteValueToKey(handle, name, type, value);
  }

  KeyHandle handle = 0;
  Variant result;
};

TEST_F(OpenKeyTest, Read_Success_IsStatus0_AndKeepsTheNul) {
  registry.setString(rootCurrentUser, path, "V", "abc");
  EXPECT_EQ(readFrom(u"V"), 0);
  EXPECT_EQ(result, Variant(String(u"abc\0", 4)));
  registry.setDword(rootCurrentUser, path, "V", 5);
  EXPECT_EQ(readFrom(u"V"), 0);
  EXPECT_EQ(result, Variant(5));
}

TEST_F(OpenKeyTest, Read_MissingOrOfAnotherType_IsMinus1AndEmpty) {
  EXPECT_EQ(readFrom(u"V"), -1);
  EXPECT_TRUE(result.isEmpty());
  registry.setBytes(rootCurrentUser, path, "V", regExpandSz, "abc");
  EXPECT_EQ(readFrom(u"V"), -1);
  EXPECT_TRUE(result.isEmpty());
  EXPECT_EQ(ReadValueFromKey(0, u"V", result), -1);
}

TEST_F(OpenKeyTest, Read_FailureOfTheDataRead_IsItsStatusAndEmpty) {
  registry.setString(rootCurrentUser, path, "V", "abc");
  registry.setDword(rootCurrentUser, path, "N", 5);
  registry.fail("query data", errorAccessDenied);
  EXPECT_EQ(readFrom(u"V"), errorAccessDenied);
  EXPECT_TRUE(result.isEmpty());
  EXPECT_EQ(readFrom(u"N"), errorAccessDenied);
  EXPECT_TRUE(result.isEmpty());
}

TEST_F(OpenKeyTest, Write_GivesTheStatus_OrZeroForOtherTypes) {
  EXPECT_EQ(writeTo(u"V", 1, u"abc"), 0);
  registry.fail("set", errorAccessDenied);
  EXPECT_EQ(writeTo(u"V", 1, u"xyz"), errorAccessDenied);
  EXPECT_EQ(writeTo(u"V", 4, 1), errorAccessDenied);
  registry.clearLog();
  EXPECT_EQ(writeTo(u"V", 3, u"xyz"), 0);
  EXPECT_EQ(writeTo(u"V", 2, u"xyz"), 0);
  EXPECT_EQ(writeTo(u"V", 0, u"xyz"), 0);
  EXPECT_TRUE(registry.log().empty());
  EXPECT_EQ(stored("V"), (Value{regSz, "abc"}));
}

// SetRegValue --------------------------------------------------------------------------------------------------------

TEST_F(RegistryTest, Set_CreatesWritesAndCloses) {
  EXPECT_TRUE(write(String(keyPath), u"V", u"abc", 1));
  EXPECT_EQ(registry.log(), (Lines{"create " + key, "set " + key + " \"V\" type 1, 3 bytes", "close " + key}));
}

TEST_F(RegistryTest, Set_Text_StoresExactlyItsCharacters) {
  write(String(keyPath), u"V", u"abc", 1);
  EXPECT_EQ(stored("V"), (Value{regSz, "abc"}));
  EXPECT_EQ(read(u"V"), Variant(u"abc"));
  write(String(keyPath), u"V", u"", 1);
  EXPECT_EQ(stored("V"), (Value{regSz, ""}));
  write(String(keyPath), u"V", u"(+46 70\u00E5\u0416)", 1);
  EXPECT_EQ(stored("V"), (Value{regSz, "(+46 70\xE5?)"}));
}

TEST_F(RegistryTest, Set_AsText_ConvertsTheValue) {
  write(String(keyPath), u"V", 12, 1);
  EXPECT_EQ(stored("V"), (Value{regSz, "12"}));
  write(String(keyPath), u"V", true, 1);
  EXPECT_EQ(stored("V"), (Value{regSz, "True"}));
  write(String(keyPath), u"V", Variant(), 1);
  EXPECT_EQ(stored("V"), (Value{regSz, ""}));
}

TEST_F(RegistryTest, Set_AsNumber_StoresFourBytes) {
  write(String(keyPath), u"V", 0x01020304, 4);
  EXPECT_EQ(stored("V"), (Value{regDword, "\4\3\2\1"s}));
  write(String(keyPath), u"V", -1, 4);
  EXPECT_EQ(stored("V"), (Value{regDword, "\xFF\xFF\xFF\xFF"s}));
  write(String(keyPath), u"V", u"2.5", 4);
  EXPECT_EQ(stored("V"), (Value{regDword, "\2\0\0\0"s}));
  write(String(keyPath), u"V", true, 4);
  EXPECT_EQ(stored("V"), (Value{regDword, "\xFF\xFF\xFF\xFF"s}));
  write(String(keyPath), u"V", Variant(), 4);
  EXPECT_EQ(stored("V"), (Value{regDword, "\0\0\0\0"s}));
}

TEST_F(RegistryTest, Set_AsNumber_WhatIsNone_IsTheCallersErrorAndTheKeyIsClosed) {
  EXPECT_EQ(errorNumberOf([&] { write(String(keyPath), u"V", u"12abc", 4); }), 13);
  EXPECT_EQ(errorNumberOf([&] { write(String(keyPath), u"V", u"", 4); }), 13);
  EXPECT_EQ(errorNumberOf([&] { write(String(keyPath), u"V", u"2147483648", 4); }), 6);
  EXPECT_FALSE(stored("V"));
  EXPECT_EQ(registry.log().back(), "close " + key);
}

TEST_F(RegistryTest, Set_LeadingBackslash_IsDroppedFromTheCallersText) {
  RootKey root = rootCurrentUser;
  String where = u"\\Software\\Marrick\\Test";
  std::int32_t type = 1;
  EXPECT_TRUE(SetRegValue(root, where, u"V", u"abc", type));
  EXPECT_EQ(where, keyPath);
  EXPECT_EQ(root, rootCurrentUser);
  EXPECT_EQ(type, 1);
  EXPECT_EQ(stored("V"), (Value{regSz, "abc"}));
}

TEST_F(RegistryTest, Set_OnlyOneBackslash_IsDropped) {
  EXPECT_TRUE(write(u"\\\\Software", u"V", u"abc", 1));  // the registry refuses it; that is not reported
  EXPECT_EQ(registry.log()[0], "create HKCU\\\\Software -> 161");
  EXPECT_EQ(registry.keyCount(), 0u);
}

TEST_F(RegistryTest, Set_BackslashAlone_IsTheRootItself) {
  EXPECT_TRUE(write(u"\\", u"V", u"abc", 1));
  EXPECT_EQ(registry.log(), (Lines{"create HKCU", "set HKCU \"V\" type 1, 3 bytes", "close HKCU"}));
}

TEST_F(RegistryTest, Set_EmptyPath_IsFalseAndTouchesNothing) {
  EXPECT_FALSE(write(u"", u"V", u"abc", 1));
  EXPECT_TRUE(registry.log().empty());
}

TEST_F(RegistryTest, Set_OtherTypes_CreateTheKeyAndWriteNothing) {
  EXPECT_TRUE(write(String(keyPath), u"V", u"abc", 3));
  EXPECT_EQ(registry.log(), (Lines{"create " + key, "close " + key}));
  EXPECT_TRUE(registry.hasKey(rootCurrentUser, path));
}

TEST_F(RegistryTest, Set_FailuresOfTheCalls_AreNotReported) {
  registry.fail("create", errorAccessDenied);
  EXPECT_TRUE(write(String(keyPath), u"V", u"abc", 1));
  EXPECT_EQ(registry.log(),
            (Lines{"create " + key + " -> 5", "set (no key) \"V\" type 1, 3 bytes -> 6", "close (no key) -> 6"}));
  registry.failNoMore();
  registry.fail("set", errorAccessDenied);
  EXPECT_TRUE(write(String(keyPath), u"V", 1, 4));
}

}  // namespace
}  // namespace addin
