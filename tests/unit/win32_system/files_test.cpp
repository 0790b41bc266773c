#include <gtest/gtest.h>

#include "support/errors.h"
#include "win32/system.h"
#include "win32/text.h"

namespace win32_tests {
namespace {

using platform::String;
using testing_support::errorNumberOf;

class Files : public testing::Test {
 protected:
  Files() {
    wchar_t folder[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    folder_ = String(reinterpret_cast<const char16_t*>(folder));
    path_ = folder_ + u"mrktxtmsg \u00E5\u65E5.txt";
  }
  ~Files() override { DeleteFileW(win32::wide(path_)); }

  void write(const std::string& bytes) {
    const HANDLE file = CreateFileW(win32::wide(path_), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    DWORD count = 0;
    WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr);
    CloseHandle(file);
  }
  std::string read(std::size_t most = std::size_t(-1)) {
    std::string all;
    win32::system().files.read(path_, [&](std::string_view piece) {
      all += piece;
      return all.size() < most;
    });
    return all;
  }

  String folder_;
  String path_;
};

TEST_F(Files, Read_GivesEveryByteInOrder) {
  std::string bytes(100'000, '\0');
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i % 251);
  write(bytes);
  EXPECT_EQ(read(), bytes);
  write("");
  EXPECT_EQ(read(), "");
}

TEST_F(Files, Read_StopsWhenTheReaderHasEnough) {
  write(std::string(1'000'000, 'x'));
  EXPECT_LT(read(10).size(), 100'000u) << "the rest is not read";
}

TEST_F(Files, Read_WhatIsNotThereOrNoFile_IsAnError) {
  EXPECT_EQ(errorNumberOf([&] { read(); }), 53);
  path_ = folder_ + u"no such folder\\x";
  EXPECT_EQ(errorNumberOf([&] { read(); }), 53);
  path_ = u"";
  EXPECT_EQ(errorNumberOf([&] { read(); }), 53);
  path_ = folder_;
  EXPECT_NE(errorNumberOf([&] { read(); }), 0);
}

TEST_F(Files, Read_FileThatAnotherProgramHasForItself_IsError75) {
  write("x");
  const HANDLE other = CreateFileW(win32::wide(path_), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  EXPECT_EQ(errorNumberOf([&] { read(); }), 75);
  CloseHandle(other);
}

}  // namespace
}  // namespace win32_tests
