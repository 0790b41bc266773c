#include "addin/settings/bashelp.h"

#include <map>

#include <gtest/gtest.h>

#include "addin/diag/basDbgOut.h"
#include "support/errors.h"
#include "support/native_system.h"
#include "support/text.h"

namespace addin {
namespace {

using namespace testing_support;

class HelpFileTest : public testing::Test {
 protected:
  static constexpr const char* key = "Software\\Marrick\\TextMessageAddIn";

  std::string file() { return utf8(HelpFile()); }
  void setFolder(const std::string& folder) { system.registry.setString(rootLocalMachine, key, "RESPATH", folder); }
  void setLanguage(std::uint32_t id) { system.registry.setDword(rootLocalMachine, key, "LANGID", id); }

  NativeSystem system;
};

TEST_F(HelpFileTest, EveryLanguage_HasItsFileAndAllOthersTheEnglishOne) {
  setFolder("C:\\help");
  const std::map<std::uint32_t, std::string> files{
      {0x0404, "zh-tw"}, {0x0406, "da"}, {0x0407, "de"}, {0x040A, "es"}, {0x040B, "fi"},    {0x040C, "fr"},
      {0x0410, "it"},    {0x0413, "nl"}, {0x0414, "no"}, {0x041D, "sv"}, {0x0804, "zh-cn"}, {0x0816, "pt"}};
  for (std::uint32_t id = 0; id < 3300; ++id) {
    const auto at = files.find(id);
    setLanguage(id);
    ASSERT_EQ(file(), "C:\\help\\smsx_" + (at == files.end() ? "en-us" : at->second) + ".chm") << id;
  }
}

TEST_F(HelpFileTest, LanguageMissing_IsEnglish) {
  setFolder("C:\\help");
  EXPECT_EQ(file(), "C:\\help\\smsx_en-us.chm");
}

TEST_F(HelpFileTest, LanguageAsText_IsItsNumber) {
  setFolder("C:\\help");
  system.registry.setString(rootLocalMachine, key, "LANGID", "1053");
  EXPECT_EQ(file(), "C:\\help\\smsx_sv.chm");
}

TEST_F(HelpFileTest, LanguageBeyond16Bits_IsEnglish) {
  setFolder("C:\\help");
  setLanguage(65536 + 1053);
  EXPECT_EQ(file(), "C:\\help\\smsx_en-us.chm");
}

TEST_F(HelpFileTest, FolderMissingOrEmpty_IsTheBareEnglishNameAndTheLanguageIsNotRead) {
  setLanguage(1053);
  EXPECT_EQ(file(), "smsx_en-us.chm");
  setFolder("");
  EXPECT_EQ(file(), "smsx_en-us.chm");
  for (const std::string& line : system.registry.log()) EXPECT_EQ(line.find("LANGID"), std::string::npos);
}

TEST_F(HelpFileTest, TheUsersOwnFolderAndLanguage_ComeBeforeTheMachines) {
  setFolder("C:\\machine");
  setLanguage(1053);
  system.registry.setString(rootCurrentUser, key, "RESPATH", "C:\\user");
  system.registry.setDword(rootCurrentUser, key, "LANGID", 1036);
  EXPECT_EQ(file(), "C:\\user\\smsx_fr.chm");
}

TEST_F(HelpFileTest, ShowHelp_GivesTheViewerThePathInTheAnsiCodePage) {
  system.registry.setString(rootLocalMachine, key, "RESPATH", "C:\\Hj\xE4lp");
  ShowHelp();
  EXPECT_EQ(system.shell.helps, (std::vector<NativeShell::Help>{{0, "C:\\Hj\xE4lp\\smsx_en-us.chm", 0, 0}}));
}

TEST_F(HelpFileTest, ShowHelp_WithoutViewer_IsError53) {
  system.shell.helpViewerIsMissing = true;
  EXPECT_EQ(errorNumberOf([] { ShowHelp(); }), 53);
}

}  // namespace
}  // namespace addin
