#include "win32/shell.h"

#include <cstdlib>
#include <fstream>
#include <iterator>

#include <gtest/gtest.h>

#include "support/errors.h"
#include "support/text.h"
#include "test_window.h"
#include "win32/module.h"
#include "win32/system.h"
#include "win32/text.h"

namespace win32_tests {
namespace {

using platform::String;
using platform::StringView;
using testing_support::errorNumberOf;

constexpr const wchar_t* reportVariable = L"MRKTXTMSG_TEST_REPORT";

String fromWide(const wchar_t* text) { return reinterpret_cast<const char16_t*>(text); }

String ownPath() {
  wchar_t path[MAX_PATH];
  GetModuleFileNameW(nullptr, path, MAX_PATH);
  return fromWide(path);
}

// A copy of this program that was started by a test: it reports how, and ends.
[[maybe_unused]] const bool isChild = [] {
  wchar_t report[MAX_PATH];
  const DWORD length = GetEnvironmentVariableW(reportVariable, report, MAX_PATH);
  if (length == 0 || length >= MAX_PATH) return false;
  STARTUPINFOW startup{};
  GetStartupInfoW(&startup);
  const bool shows = (startup.dwFlags & STARTF_USESHOWWINDOW) != 0;
  const String lines = ownPath() + u'\n' + fromWide(GetCommandLineW()) + u'\n';
  const String temporary = fromWide(report) + u".part";
  {
    std::ofstream file(win32::wide(temporary), std::ios::binary);
    file << testing_support::utf8(lines) << (shows ? startup.wShowWindow : -1);
  }
  MoveFileW(win32::wide(temporary), report);  // complete from the moment it is seen
  ExitProcess(0);
}();

struct Report {
  std::string path;
  std::string commandLine;
  std::string window;
};

class Shell : public testing::Test {
 protected:
  void SetUp() override {
    wchar_t temp[MAX_PATH];
    GetTempPathW(MAX_PATH, temp);
    folder_ = fromWide(temp) + u"mrktxtmsg shell \u00C5 " + fromWide(std::to_wstring(GetCurrentProcessId()).c_str());
    report_ = folder_ + u"\\report.txt";
    ASSERT_TRUE(CreateDirectoryW(win32::wide(folder_), nullptr));
    SetEnvironmentVariableW(reportVariable, win32::wide(report_));
  }
  void TearDown() override {
    SetEnvironmentVariableW(reportVariable, nullptr);
    for (const StringView file : {u"child program.exe", u"child.exe", u"report.txt", u"text.txt"})
      removeFile(folder_ + u'\\' + String(file));
    RemoveDirectoryW(win32::wide(folder_));
  }

  // A program that has just ended may hold its file for a moment longer.
  static void removeFile(const String& path) {
    for (int i = 0; i < 100 && !DeleteFileW(win32::wide(path)) && GetLastError() != ERROR_FILE_NOT_FOUND; ++i)
      Sleep(20);
  }

  String copyOfThisProgram(StringView name) {
    const String copy = folder_ + u'\\' + String(name);
    EXPECT_TRUE(CopyFileW(win32::wide(ownPath()), win32::wide(copy), FALSE));
    return copy;
  }

  Report start(const String& command, std::int16_t style = 1) {
    DeleteFileW(win32::wide(report_));
    win32::system().shell.start(command, style);
    // It is there a moment before whoever has moved it lets go of it.
    std::ifstream file;
    while (file.open(win32::wide(report_), std::ios::binary), !file.is_open()) Sleep(10);
    Report report;
    std::getline(file, report.path);
    std::getline(file, report.commandLine);
    std::getline(file, report.window);
    return report;
  }

  String folder_;
  String report_;
};

TEST_F(Shell, Start_GivesTheProgramItsWindowStyle) {
  EXPECT_EQ(start(ownPath(), 2).window, "2");
  EXPECT_EQ(start(ownPath(), 0).window, "0");
}

TEST_F(Shell, Start_ArgumentsReachTheProgramAsWritten) {
  const Report report = start(u'"' + ownPath() + u"\" --one \"two three\"");
  EXPECT_EQ(report.path, testing_support::utf8(ownPath()));
  EXPECT_TRUE(report.commandLine.ends_with("\" --one \"two three\"")) << report.commandLine;
}

TEST_F(Shell, Start_PathWithBlanks_QuotedOrNotWithArgumentsOrWithout) {
  const String child = copyOfThisProgram(u"child program.exe");
  const std::string path = testing_support::utf8(child);
  EXPECT_EQ(start(child).path, path);
  EXPECT_EQ(start(u"  " + child + u" ").path, path);
  EXPECT_EQ(start(child + u" --one").path, path);
  EXPECT_EQ(start(u'"' + child + u'"').path, path);
  EXPECT_EQ(start(u'"' + child + u"\" --one").path, path);
}

TEST_F(Shell, Start_PathWithBlanks_IsNotCutShortAtTheBlank) {
  const String child = copyOfThisProgram(u"child program.exe");
  copyOfThisProgram(u"child.exe");
  EXPECT_EQ(start(child).path, testing_support::utf8(child));
}

TEST_F(Shell, Start_ProgramOfTheSystemByItsNameAlone) {
  SetEnvironmentVariableW(reportVariable, nullptr);
  EXPECT_EQ(errorNumberOf([] { win32::system().shell.start(u"cmd /c exit", 0); }), 0);
}

TEST_F(Shell, Start_EmptyCommand_IsError5) {
  const auto error = testing_support::errorOf([] { win32::system().shell.start(u"", 2); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number, 5);
  EXPECT_EQ(error->description, u"Invalid procedure call or argument");
  EXPECT_EQ(error->source, u"mrktxtmsg");
  EXPECT_EQ(errorNumberOf([] { win32::system().shell.start(u" \t ", 2); }), 5);
}

TEST_F(Shell, Start_MissingFileOrFolder_IsError53) {
  const auto startError = [](const String& command) {
    return errorNumberOf([&] { win32::system().shell.start(command, 2); });
  };
  EXPECT_EQ(startError(folder_ + u"\\none.exe"), 53);
  EXPECT_EQ(startError(u'"' + folder_ + u"\\none.exe\" --one"), 53);
  EXPECT_EQ(startError(folder_ + u"\\none\\none.exe"), 53);
  EXPECT_EQ(startError(u"mrktxtmsg-has-no-such-program"), 53);
  const auto error = testing_support::errorOf([&] { win32::system().shell.start(folder_ + u"\\none.exe", 2); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->description, u"File not found");
}

TEST_F(Shell, Start_FileThatIsNoProgram_IsError5) {
  const String text = folder_ + u"\\text.txt";
  std::ofstream(win32::wide(text)) << "no program";
  EXPECT_EQ(errorNumberOf([&] { win32::system().shell.start(text, 2); }), 5);
}

TEST_F(Shell, HtmlHelp_LoadsTheViewerOfTheSystemFolderOnly) {
  const String decoy = folder_ + u"\\hhctrl.ocx";
  std::ofstream(win32::wide(decoy)) << "no library";
  SetCurrentDirectoryW(win32::wide(folder_));
  constexpr std::uint32_t closeAll = 0x12;
  EXPECT_NO_THROW(win32::system().shell.htmlHelp(0, "", closeAll, 0));
  SetCurrentDirectoryW(L"C:\\");
  DeleteFileW(win32::wide(decoy));

  wchar_t path[MAX_PATH] = L"";
  GetModuleFileNameW(GetModuleHandleW(L"hhctrl.ocx"), path, MAX_PATH);
  wchar_t expected[MAX_PATH];
  GetSystemDirectoryW(expected, MAX_PATH);
  lstrcatW(expected, L"\\hhctrl.ocx");
  EXPECT_EQ(lstrcmpiW(path, expected), 0) << testing_support::utf8(fromWide(path));
}

TEST_F(Shell, LoadFrom_LibraryThatIsNotThere_IsError53) {
  EXPECT_EQ(errorNumberOf([&] { win32::loadFrom(folder_, u"hhctrl.ocx"); }), 53);
  EXPECT_EQ(errorNumberOf([&] { win32::loadFrom(folder_, u"user32.dll"); }), 53);
}

TEST_F(Shell, PlatformId_IsWindowsNt) { EXPECT_EQ(win32::system().shell.platformId(), 2); }

}  // namespace
}  // namespace win32_tests
