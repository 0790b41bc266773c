#include <vector>

#include <gtest/gtest.h>

#include "com/windows.h"
#include "win32/system.h"

namespace win32_tests {
namespace {

using platform::KeyHandle;
using platform::rootCurrentUser;
using platform::rootLocalMachine;

constexpr const char* testKey = "Software\\Marrick\\Test\\Registry";

std::span<const std::byte> bytesOf(std::string_view text) { return std::as_bytes(std::span(text)); }

// What is stored, asked for without any conversion.
struct Stored {
  DWORD type = 0;
  std::vector<int> bytes;
  friend bool operator==(const Stored&, const Stored&) = default;
};
void PrintTo(const Stored& stored, std::ostream* to) {
  *to << "type " << stored.type << ":";
  for (const int b : stored.bytes) *to << ' ' << b;
}

class Registry : public testing::Test {
 protected:
  void SetUp() override {
    removeKeys();
    ASSERT_EQ(registry_.createKey(rootCurrentUser, testKey, key_), ERROR_SUCCESS);
  }
  void TearDown() override {
    registry_.closeKey(key_);
    removeKeys();
  }

  static void removeKeys() {
    RegDeleteKeyA(HKEY_CURRENT_USER, "Software\\Marrick\\Test\\Registry\\Deep\\Deeper");
    RegDeleteKeyA(HKEY_CURRENT_USER, "Software\\Marrick\\Test\\Registry\\Deep");
    RegDeleteKeyA(HKEY_CURRENT_USER, testKey);
    RegDeleteKeyA(HKEY_CURRENT_USER, "Software\\Marrick\\Test");
  }

  Stored stored(const wchar_t* name) const {
    Stored result;
    BYTE buffer[64];
    DWORD size = sizeof buffer;
    const LSTATUS status = RegQueryValueExW(reinterpret_cast<HKEY>(key_), name, nullptr, &result.type, buffer, &size);
    EXPECT_EQ(status, ERROR_SUCCESS);
    if (status == ERROR_SUCCESS) result.bytes.assign(buffer, buffer + size);
    return result;
  }

  std::int32_t write(const std::string& name, std::uint32_t type, std::string_view bytes) {
    return registry_.setValue(key_, name, type, bytesOf(bytes));
  }

  platform::Registry& registry_ = win32::system().registry;
  KeyHandle key_ = 0;
};

TEST_F(Registry, SetValue_Text_StoresExactlyItsCharacters) {
  EXPECT_EQ(write("Text", REG_SZ, "ab"), ERROR_SUCCESS);
  EXPECT_EQ(stored(L"Text"), (Stored{REG_SZ, {'a', 0, 'b', 0}}));
}

// The trap: the system adds a NUL when the byte behind the text is one.
TEST_F(Registry, SetValue_TextWithAZeroBehindIt_StoresNoNul) {
  const std::string_view text("ab\0\0", 4);
  EXPECT_EQ(write("Text", REG_SZ, text.substr(0, 2)), ERROR_SUCCESS);
  EXPECT_EQ(stored(L"Text"), (Stored{REG_SZ, {'a', 0, 'b', 0}}));
  EXPECT_EQ(write("Empty", REG_SZ, text.substr(2, 0)), ERROR_SUCCESS);
  EXPECT_EQ(stored(L"Empty"), (Stored{REG_SZ, {}}));
}

TEST_F(Registry, SetValue_TextWithItsOwnNuls_KeepsThem) {
  EXPECT_EQ(write("Text", REG_SZ, {"a\0\0", 3}), ERROR_SUCCESS);
  EXPECT_EQ(stored(L"Text"), (Stored{REG_SZ, {'a', 0, 0, 0, 0, 0}}));
}

TEST_F(Registry, SetValue_TextIsInTheAnsiCodePage) {
  EXPECT_EQ(write("\xC5", REG_SZ, "\x80"), ERROR_SUCCESS);
  EXPECT_EQ(stored(L"\u00C5"), (Stored{REG_SZ, {0xAC, 0x20}}));
}

TEST_F(Registry, SetValue_Number_StoresItsFourBytes) {
  EXPECT_EQ(write("Number", REG_DWORD, "\x01\x02\x03\xFF"), ERROR_SUCCESS);
  EXPECT_EQ(stored(L"Number"), (Stored{REG_DWORD, {1, 2, 3, 255}}));
}

TEST_F(Registry, QueryValue_WithoutData_TellsTypeAndSize) {
  write("Text", REG_SZ, "abc");
  std::uint32_t type = 99;
  std::uint32_t size = 99;
  EXPECT_EQ(registry_.queryValue(key_, "Text", type, nullptr, size), ERROR_SUCCESS);
  EXPECT_EQ(type, static_cast<std::uint32_t>(REG_SZ));
  EXPECT_EQ(size, 3u);
}

TEST_F(Registry, QueryValue_WithData_GivesTheBytesAndLeavesTheRestAlone) {
  write("Text", REG_SZ, "abc");
  std::byte buffer[4];
  std::fill(std::begin(buffer), std::end(buffer), std::byte{77});
  std::uint32_t type = 0;
  std::uint32_t size = 3;
  EXPECT_EQ(registry_.queryValue(key_, "Text", type, buffer, size), ERROR_SUCCESS);
  EXPECT_EQ(size, 3u);
  EXPECT_EQ(std::string(reinterpret_cast<char*>(buffer), 4), "abcM");
}

TEST_F(Registry, QueryValue_TooLittleRoom_IsMoreDataAndTellsTheSize) {
  write("Number", REG_DWORD, "\x01\x02\x03\x04");
  std::byte buffer[2];
  std::uint32_t type = 0;
  std::uint32_t size = sizeof buffer;
  EXPECT_EQ(registry_.queryValue(key_, "Number", type, buffer, size), ERROR_MORE_DATA);
  EXPECT_EQ(size, 4u);
}

TEST_F(Registry, QueryValue_MissingValueOrKey_TellsWhichByItsStatus) {
  std::uint32_t type = 0;
  std::uint32_t size = 0;
  EXPECT_EQ(registry_.queryValue(key_, "None", type, nullptr, size), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(registry_.queryValue(0, "None", type, nullptr, size), ERROR_INVALID_HANDLE);
}

TEST_F(Registry, OpenKey_MissingKey_GivesNoHandle) {
  KeyHandle key = 99;
  EXPECT_EQ(registry_.openKey(rootCurrentUser, std::string(testKey) + "\\None", key), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(key, 0u);
  EXPECT_EQ(registry_.openKey(12345, testKey, key), ERROR_INVALID_HANDLE);
  EXPECT_EQ(key, 0u);
}

TEST_F(Registry, CreateKey_MakesEveryKeyOnThePathAndOpensOneThatIsThere) {
  KeyHandle deep = 0;
  const std::string path = std::string(testKey) + "\\Deep\\Deeper";
  ASSERT_EQ(registry_.createKey(rootCurrentUser, path, deep), ERROR_SUCCESS);
  EXPECT_EQ(registry_.setValue(deep, "Text", REG_SZ, bytesOf("x")), ERROR_SUCCESS);
  registry_.closeKey(deep);

  ASSERT_EQ(registry_.createKey(rootCurrentUser, path, deep), ERROR_SUCCESS);
  std::uint32_t type = 0;
  std::uint32_t size = 0;
  EXPECT_EQ(registry_.queryValue(deep, "Text", type, nullptr, size), ERROR_SUCCESS);
  EXPECT_EQ(size, 1u);
  registry_.closeKey(deep);
}

TEST_F(Registry, OpenKey_LocalMachine_IsAnotherRoot) {
  KeyHandle key = 0;
  EXPECT_EQ(registry_.openKey(rootLocalMachine, "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion", key), ERROR_SUCCESS);
  EXPECT_NE(key, 0u);
  registry_.closeKey(key);
  EXPECT_EQ(registry_.openKey(rootLocalMachine, testKey, key), ERROR_FILE_NOT_FOUND);
}

TEST_F(Registry, CloseKey_ClosesIt) {
  KeyHandle key = 0;
  ASSERT_EQ(registry_.openKey(rootCurrentUser, testKey, key), ERROR_SUCCESS);
  registry_.closeKey(key);
  std::uint32_t type = 0;
  std::uint32_t size = 0;
  EXPECT_EQ(registry_.queryValue(key, "Text", type, nullptr, size), ERROR_INVALID_HANDLE);
}

}  // namespace
}  // namespace win32_tests
