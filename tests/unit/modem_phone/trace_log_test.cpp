#include "servers/modem/trace_log.h"

#include <map>
#include <string>

#include <gtest/gtest.h>

namespace {

using servers::modem::TraceFiles;
using servers::modem::TraceLog;

struct Folder {
  std::map<int, std::string> files;
  bool writable = true;
  int immovable = -1;  // the number of a file that another program holds
  int attempts = 0;    // to give file 0 another number
};

class FolderFiles final : public TraceFiles {
 public:
  explicit FolderFiles(Folder& folder) : folder_(folder) {}
  std::optional<std::uint64_t> open() noexcept override {
    if (!folder_.writable) return std::nullopt;
    return folder_.files[0].size();
  }
  void append(std::string_view text) noexcept override { folder_.files[0] += text; }
  bool shift(int number) noexcept override {
    if (number == 0) ++folder_.attempts;
    const auto file = folder_.files.extract(number);
    if (!file) return false;
    folder_.files[number == folder_.immovable ? number : number + 1] = file.mapped();
    return number != folder_.immovable;
  }

 private:
  Folder& folder_;
};

class TraceLogTest : public testing::Test {
 protected:
  void write(std::string_view line) { log_.write("12:00", line); }
  // One line that fills so much of a file.
  void fill(std::uint64_t size, char with) { write(std::string(static_cast<std::size_t>(size) - 8, with)); }

  Folder folder_;
  TraceLog log_{std::make_unique<FolderFiles>(folder_)};
};

TEST_F(TraceLogTest, Lines_HaveTheirStampAndNothingUnprintable) {
  write("> AT");
  write(std::string_view("< \x1B[2J\0\xC3\xA4", 9));
  EXPECT_EQ(folder_.files, (std::map<int, std::string>{{0, "12:00 > AT\r\n12:00 < \\x1B[2J\\x00\\xC3\\xA4\r\n"}}));
}

TEST_F(TraceLogTest, FullFile_BecomesAnOlderOneAndTwoOfThemAreKept) {
  for (const char with : {'a', 'b', 'c', 'd'}) fill(TraceLog::longest, with);
  ASSERT_EQ(folder_.files.size(), 3u);
  for (const auto& [number, text] : folder_.files) {
    EXPECT_EQ(text.size(), TraceLog::longest);
    EXPECT_EQ(text[6], "dcb"[number]);
  }
}

TEST_F(TraceLogTest, LineThatJustFits_StaysInTheFile) {
  fill(TraceLog::longest - 12, 'a');
  write("> AT");
  EXPECT_EQ(folder_.files.size(), 1u);
  write("> AT");
  EXPECT_EQ(folder_.files[0], "12:00 > AT\r\n");
  EXPECT_EQ(folder_.files[1].size(), TraceLog::longest);
}

TEST_F(TraceLogTest, FileOfTheTimeBefore_IsGoneOnWith) {
  folder_.files[0] = "before\r\n";
  write("> AT");
  EXPECT_EQ(folder_.files[0], "before\r\n12:00 > AT\r\n");
}

TEST_F(TraceLogTest, LineLongerThanAFile_HasOneOfItsOwn) {
  write("short");
  fill(TraceLog::longest + 1, 'a');
  write("short");
  EXPECT_EQ(folder_.files[0], folder_.files[2]);
  EXPECT_EQ(folder_.files[1].size(), TraceLog::longest + 1);
}

TEST_F(TraceLogTest, FileThatCannotBeWritten_LosesLinesUntilItCan) {
  folder_.writable = false;
  write("lost");
  EXPECT_TRUE(folder_.files.empty());
  folder_.writable = true;
  write("> AT");
  EXPECT_EQ(folder_.files[0], "12:00 > AT\r\n");
}

TEST_F(TraceLogTest, FullFileThatAnotherProgramHolds_IsGoneOnWithAndTriedAgainAMegabyteLater) {
  fill(TraceLog::longest, 'a');
  folder_.immovable = 0;
  for (int i = 0; i < 100; ++i) write("> AT");  // 12 octets each
  EXPECT_EQ(folder_.attempts, 1);
  EXPECT_EQ(folder_.files[0].size(), TraceLog::longest + 1200);
  folder_.immovable = -1;
  fill(TraceLog::longest - 1200, 'b');
  EXPECT_EQ(folder_.attempts, 1);
  EXPECT_EQ(folder_.files[0].size(), 2 * TraceLog::longest);
  write("> AT");
  EXPECT_EQ(folder_.attempts, 2);
  EXPECT_EQ(folder_.files[0], "12:00 > AT\r\n");
  EXPECT_EQ(folder_.files[1].size(), 2 * TraceLog::longest);
  // And from then on as always.
  fill(TraceLog::longest - 12, 'c');
  write("> AT");
  EXPECT_EQ(folder_.attempts, 3);
  EXPECT_EQ(folder_.files[1].size(), TraceLog::longest);
}

TEST_F(TraceLogTest, FileThatIsHeldForLong_HasALimit) {
  fill(TraceLog::longest, 'a');
  folder_.immovable = 0;
  for (int i = 0; i < 10; ++i) fill(TraceLog::longest, 'b');
  EXPECT_EQ(folder_.files[0].size(), TraceLog::longestHeld);
  EXPECT_EQ(folder_.attempts, 10);
  write("lost");
  EXPECT_EQ(folder_.attempts, 11);
  for (int i = 0; i < 100; ++i) write("lost");
  EXPECT_EQ(folder_.attempts, 11);
  EXPECT_EQ(folder_.files[0].size(), TraceLog::longestHeld);
  folder_.immovable = -1;
  fill(TraceLog::longest, 'c');
  EXPECT_EQ(folder_.files[0].size(), TraceLog::longest);
  EXPECT_EQ(folder_.files[1].size(), TraceLog::longestHeld);
}

TEST_F(TraceLogTest, OlderFileThatAnotherProgramHolds_IsGivenUpForTheNext) {
  fill(TraceLog::longest, 'a');
  fill(TraceLog::longest, 'b');
  folder_.immovable = 1;
  write("> AT");
  EXPECT_EQ(folder_.files[0], "12:00 > AT\r\n");
  EXPECT_EQ(folder_.files[1][6], 'b');
}

}  // namespace
