#include "win32/module.h"

#include <gtest/gtest.h>

#include "com/windows.h"
#include "win32/system.h"

namespace win32_tests {
namespace {

// version.rc gives this program the file version 3.7.11.13.
TEST(Module, Version_IsTheFirstSecondAndFourthNumberOfTheFileVersion) {
  const platform::Version version = win32::system().module.version();
  EXPECT_EQ(version.major, 3);
  EXPECT_EQ(version.minor, 7);
  EXPECT_EQ(version.revision, 13);
}

TEST(Module, Folder_IsWhereTheFileLies) {
  const platform::String folder = win32::system().module.folder();
  ASSERT_FALSE(folder.empty());
  EXPECT_NE(folder.back(), u'\\');
  wchar_t path[MAX_PATH];
  GetModuleFileNameW(nullptr, path, MAX_PATH);
  const platform::String own(reinterpret_cast<const char16_t*>(path));
  EXPECT_EQ(own.substr(0, folder.size() + 1), folder + u'\\');
  EXPECT_EQ(own.find(u'\\', folder.size() + 1), platform::String::npos);
}

TEST(Module, OwnModule_IsTheOneThatThisCodeIsLinkedInto) { EXPECT_EQ(win32::ownModule(), GetModuleHandleW(nullptr)); }

}  // namespace
}  // namespace win32_tests
