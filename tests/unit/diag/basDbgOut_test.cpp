#include "addin/diag/basDbgOut.h"

#include <functional>
#include <thread>

#include <gtest/gtest.h>

#include "support/errors.h"
#include "support/native_system.h"
#include "support/text.h"

namespace addin {
namespace {

using namespace std::string_literals;
using testing_support::CopyData;
using testing_support::NativeShell;
using testing_support::NativeSystem;
using Lines = std::vector<std::string>;

constexpr const char* debugKey = "SOFTWARE\\Marrick\\DbgOut";
constexpr const char* writerKey = "SOFTWARE\\Marrick\\DbgOut\\mrktxtmsg";

class DbgOutTest : public testing::Test {
 protected:
  DbgOutTest() {
    dbgChannel = {};
    native.time.setNow({36925.0 + (4 * 3600 + 5 * 60 + 6) / 86400.0});
  }
  ~DbgOutTest() override { dbgChannel = {}; }

  void enable() {
    native.registry.setDword(rootLocalMachine, debugKey, "Enabled", 1);
    native.registry.setString(rootLocalMachine, debugKey, "Path", "C:\\view.exe");
    native.registry.setDword(rootLocalMachine, writerKey, "Level", 2);
  }
  static String nameOfChannel() { return String(dbgChannel.ProcessName, dbgChannel.ProcessNameLength); }
  std::vector<CopyData> received() { return native.windows.viewer().received; }

  NativeSystem native;
};

// Before initialisation ----------------------------------------------------------------------------------------------

TEST_F(DbgOutTest, BeforeInit_EverythingIsZero_OnlyLevel0PassesWithoutAName) {
  native.windows.openViewer();
  DbgOut(2, u"two");
  DbgOut(1, u"one");
  DbgOut(0, u"zero");
  EXPECT_EQ(received(), (std::vector<CopyData>{{0, " (0) :zero\r\n\0"s}}));
  EXPECT_EQ(native.windows.beeps(), 0);
}

// DbgOutInit ---------------------------------------------------------------------------------------------------------

TEST_F(DbgOutTest, Init_ReadsStartsWaitsAndSendsTheHeader_InThisOrder) {
  enable();
  native.registry.setDword(rootLocalMachine, debugKey, "Visible", 0);
  native.windows.openViewer().opensAtLookUp = 3;
  DbgOutInit(u"mrktxtmsg");
  const std::string key = "HKLM\\SOFTWARE\\Marrick\\DbgOut";
  const std::string writer = key + "\\mrktxtmsg";
  EXPECT_EQ(native.journal.lines(), (Lines{"open " + key,
                                           "query size " + key + " \"Enabled\"",
                                           "query data " + key + " \"Enabled\"",
                                           "close " + key,
                                           "open " + key,
                                           "query size " + key + " \"Visible\"",
                                           "query data " + key + " \"Visible\"",
                                           "close " + key,
                                           "open " + writer,
                                           "query size " + writer + " \"Level\"",
                                           "query data " + writer + " \"Level\"",
                                           "close " + writer,
                                           "open " + key,
                                           "query size " + key + " \"Path\"",
                                           "query data " + key + " \"Path\"",
                                           "close " + key,
                                           "start \"C:\\view.exe\" style 2",
                                           "find \"DebugOut Window\" \"DebugOutput\" -> none",
                                           "sleep 100",
                                           "find \"DebugOut Window\" \"DebugOutput\" -> none",
                                           "sleep 100",
                                           "find \"DebugOut Window\" \"DebugOutput\"",
                                           "find \"DebugOut Window\" \"DebugOutput\"",
                                           "send 94 bytes to \"DebugOutput\""}));
}

TEST_F(DbgOutTest, Init_Header_ByteForByte) {
  enable();
  native.windows.openViewer();
  DbgOutInit(u"mrktxtmsg");
  EXPECT_EQ(received(), (std::vector<CopyData>{{0,
                                                "mrktxtmsg (255) : *********** ProcessName: mrktxtmsg - Level: 2 - "
                                                "Time: 2/3/2001 4:05:06 AM\r\n\0"s}}));
}

TEST_F(DbgOutTest, Init_Header_PassesAtAnyLevelAndNeverBeeps) {
  enable();
  native.registry.setDword(rootLocalMachine, writerKey, "Level", 0xFFFFFFFB);  // -5
  native.registry.setDword(rootLocalMachine, debugKey, "Visible", 1);
  native.windows.openViewer();
  DbgOutInit(u"mrktxtmsg");
  EXPECT_EQ(native.trace(), (Lines{" *********** ProcessName: mrktxtmsg - Level: -5 - Time: 2/3/2001 4:05:06 AM"}));
  EXPECT_EQ(native.windows.beeps(), 0);
}

TEST_F(DbgOutTest, Init_EnabledMissing_StartsNothingAndKeepsTheQuestionMark) {
  native.registry.setDword(rootLocalMachine, writerKey, "Level", 0);
  native.registry.setDword(rootLocalMachine, debugKey, "Visible", 1);
  native.windows.openViewer();
  DbgOutInit(u"mrktxtmsg");
  EXPECT_TRUE(native.shell.started.empty());
  EXPECT_TRUE(received().empty());
  EXPECT_EQ(dbgChannel.Level, 2);
  EXPECT_EQ(dbgChannel.Enabled, 0);
  EXPECT_EQ(dbgChannel.Visible, 0);
  EXPECT_TRUE(dbgChannel.Initialized);

  for (std::int16_t level = 0; level <= 3; ++level) DbgOut(level, u"x");
  EXPECT_EQ(received(),
            (std::vector<CopyData>{{0, "? (0) :x\r\n\0"s}, {0, "? (1) :x\r\n\0"s}, {0, "? (2) :x\r\n\0"s}}));
  EXPECT_EQ(native.windows.beeps(), 0);
}

TEST_F(DbgOutTest, Init_EnabledZero_ReadsNothingElse) {
  enable();
  native.registry.setDword(rootLocalMachine, debugKey, "Enabled", 0);
  DbgOutInit(u"mrktxtmsg");
  const std::string key = "HKLM\\SOFTWARE\\Marrick\\DbgOut";
  EXPECT_EQ(native.journal.lines(), (Lines{"open " + key, "query size " + key + " \"Enabled\"",
                                           "query data " + key + " \"Enabled\"", "close " + key}));
}

TEST_F(DbgOutTest, Init_ReadsTheMachinesKeyOnly) {
  native.registry.setDword(rootCurrentUser, debugKey, "Enabled", 1);
  DbgOutInit(u"mrktxtmsg");
  EXPECT_EQ(dbgChannel.Enabled, 0);
  EXPECT_TRUE(native.shell.started.empty());
}

TEST_F(DbgOutTest, Init_EnabledOfAnyOtherNumber_IsOn) {
  enable();
  native.registry.setDword(rootLocalMachine, debugKey, "Enabled", 7);
  DbgOutInit(u"mrktxtmsg");
  EXPECT_EQ(native.shell.started, (std::vector<NativeShell::Start>{{u"C:\\view.exe", 2}}));
}

TEST_F(DbgOutTest, Init_TextsOfNumbers_GiveTheSameAsNumbers) {
  enable();
  native.registry.setString(rootLocalMachine, debugKey, "Enabled", "1");
  native.registry.setString(rootLocalMachine, debugKey, "Visible", "1");
  native.registry.setString(rootLocalMachine, writerKey, "Level", "3");
  DbgOutInit(u"mrktxtmsg");
  EXPECT_EQ(dbgChannel.Enabled, 1);
  EXPECT_EQ(dbgChannel.Visible, 1);
  EXPECT_EQ(dbgChannel.Level, 3);
  EXPECT_EQ(nameOfChannel(), u"mrktxtmsg");
}

TEST_F(DbgOutTest, Init_LevelMissing_IsZero) {
  enable();
  native.registry.deleteValue(rootLocalMachine, writerKey, "Level");
  native.registry.setDword(rootLocalMachine, debugKey, "Level", 2);  // of the shared key: not looked at
  DbgOutInit(u"mrktxtmsg");
  EXPECT_EQ(dbgChannel.Level, 0);
}

TEST_F(DbgOutTest, Init_LevelIsReadFromTheWritersOwnKey) {
  enable();
  native.registry.setDword(rootLocalMachine, "SOFTWARE\\Marrick\\DbgOut\\other", "Level", 5);
  DbgOutInit(u"other");
  EXPECT_EQ(dbgChannel.Level, 5);
  EXPECT_EQ(nameOfChannel(), u"other");
}

TEST_F(DbgOutTest, Init_WithoutAViewer_LooksElevenTimesInElevenHundredMilliseconds) {
  enable();
  DbgOutInit(u"mrktxtmsg");
  EXPECT_EQ(native.time.sleeps(), std::vector<std::int32_t>(11, 100));
  EXPECT_EQ(native.windows.lookUps(), 11 + 1);  // the header looks once more
  EXPECT_EQ(nameOfChannel(), u"mrktxtmsg");
  EXPECT_EQ(native.time.waits(), 0);
}

TEST_F(DbgOutTest, Init_ViewerAtTheEleventhLookUp_IsStillFound) {
  enable();
  native.windows.openViewer().opensAtLookUp = 11;
  DbgOutInit(u"mrktxtmsg");
  EXPECT_EQ(native.time.sleeps().size(), 10u);
  // The header's time is that of its sending: a second of waiting has passed.
  EXPECT_EQ(native.trace(), Lines{" *********** ProcessName: mrktxtmsg - Level: 2 - Time: 2/3/2001 4:05:07 AM"});
}

TEST_F(DbgOutTest, Init_WithAViewerRunning_StartsTheProgramAllTheSame) {
  enable();
  native.windows.openViewer();
  DbgOutInit(u"mrktxtmsg");
  EXPECT_EQ(native.shell.started.size(), 1u);
  EXPECT_TRUE(native.time.sleeps().empty());
  EXPECT_EQ(native.windows.lookUps(), 2);
}

TEST_F(DbgOutTest, Init_EmptyPath_EndsThere) {
  enable();
  native.registry.setDword(rootLocalMachine, debugKey, "Visible", 1);
  native.registry.deleteValue(rootLocalMachine, debugKey, "Path");
  native.registry.setDword(rootLocalMachine, writerKey, "Level", 1);
  native.windows.openViewer();
  DbgOutInit(u"mrktxtmsg");
  EXPECT_EQ(native.windows.lookUps(), 0);
  EXPECT_TRUE(received().empty());
  EXPECT_EQ(dbgChannel.Visible, 1);
  EXPECT_EQ(dbgChannel.Level, 1);
  DbgOut(1, u"x");
  EXPECT_EQ(received(), (std::vector<CopyData>{{0, "? (1) :x\r\n\0"s}}));
}

TEST_F(DbgOutTest, Init_ProgramThatIsMissing_EndsThere) {
  enable();
  native.shell.programsAreMissing = true;
  DbgOutInit(u"mrktxtmsg");
  EXPECT_EQ(native.windows.lookUps(), 0);
  EXPECT_EQ(nameOfChannel(), u"?");
  EXPECT_EQ(dbgChannel.Level, 2);
}

TEST_F(DbgOutTest, Init_ValueThatIsNoNumber_EndsThere_WithWhatWasReadSoFar) {
  enable();
  native.registry.setString(rootLocalMachine, debugKey, "Visible", "yes");
  native.registry.setDword(rootLocalMachine, writerKey, "Level", 9);
  DbgOutInit(u"mrktxtmsg");
  EXPECT_EQ(dbgChannel.Enabled, 1);
  EXPECT_EQ(dbgChannel.Visible, 0);
  EXPECT_EQ(dbgChannel.Level, 2);  // not reached
  EXPECT_TRUE(native.shell.started.empty());
}

TEST_F(DbgOutTest, Init_NumberBeyondSixteenBits_EndsThere) {
  enable();
  native.registry.setDword(rootLocalMachine, debugKey, "Enabled", 40000);
  DbgOutInit(u"mrktxtmsg");
  EXPECT_EQ(dbgChannel.Enabled, 1);
  EXPECT_TRUE(native.shell.started.empty());
  EXPECT_EQ(native.registry.openHandles(), 0u);
}

TEST_F(DbgOutTest, Init_ASecondTime_DoesNothing) {
  enable();
  native.windows.openViewer();
  DbgOutInit(u"mrktxtmsg");
  native.journal.clear();
  DbgOutInit(u"other");
  EXPECT_TRUE(native.journal.lines().empty());
  EXPECT_EQ(nameOfChannel(), u"mrktxtmsg");
}

TEST_F(DbgOutTest, Init_ASecondTimeAfterAFailure_DoesNothing) {
  enable();
  native.shell.programsAreMissing = true;
  DbgOutInit(u"mrktxtmsg");
  native.shell.programsAreMissing = false;
  native.journal.clear();
  DbgOutInit(u"mrktxtmsg");
  EXPECT_TRUE(native.journal.lines().empty());
  EXPECT_EQ(nameOfChannel(), u"?");
}

// DbgOut -------------------------------------------------------------------------------------------------------------

class OpenChannelTest : public DbgOutTest {
 protected:
  OpenChannelTest() {
    native.windows.openViewer();
    open(2, 0);
  }
  void open(std::uint32_t level, std::uint32_t visible) {
    dbgChannel = {};
    enable();
    native.registry.setDword(rootLocalMachine, writerKey, "Level", level);
    native.registry.setDword(rootLocalMachine, debugKey, "Visible", visible);
    DbgOutInit(u"mrktxtmsg");
    native.windows.clearTrace();
    native.journal.clear();
  }
  std::string sent(std::int16_t level, String text) {
    native.windows.clearTrace();
    DbgOut(level, text);
    return received().size() == 1 ? received()[0].bytes : "nothing";
  }
};

TEST_F(OpenChannelTest, Line_HasNameLevelTextLineEndAndNul) {
  const std::string line = sent(2, u"abc");
  EXPECT_EQ(line, "mrktxtmsg (2) :abc\r\n\0"s);
  EXPECT_EQ(line.size(), 21u);
  EXPECT_EQ(received()[0].dwData, 0u);
  EXPECT_EQ(sent(2, u"Inside Function SendMessage"), "mrktxtmsg (2) :Inside Function SendMessage\r\n\0"s);
}

TEST_F(OpenChannelTest, EmptyText_GetsNoLineEnd) {
  const std::string line = sent(2, u"");
  EXPECT_EQ(line, "mrktxtmsg (2) :\0"s);
  EXPECT_EQ(line.size(), 16u);
}

TEST_F(OpenChannelTest, TextEndingInLf_GetsNoSecondLineEnd) {
  EXPECT_EQ(sent(2, u"abc\r\n"), "mrktxtmsg (2) :abc\r\n\0"s);
  EXPECT_EQ(sent(2, u"abc\n"), "mrktxtmsg (2) :abc\n\0"s);
  EXPECT_EQ(sent(2, u"abc\r"), "mrktxtmsg (2) :abc\r\r\n\0"s);
  EXPECT_EQ(sent(2, u"\n"), "mrktxtmsg (2) :\n\0"s);
}

TEST_F(OpenChannelTest, Text_IsSentInTheAnsiCodePage) {
  EXPECT_EQ(sent(2, u"\u00E5\u20AC\u0416\U0001F600"), "mrktxtmsg (2) :\xE5\x80???\r\n\0"s);
  EXPECT_EQ(sent(2, String(u"a\0b", 3)), "mrktxtmsg (2) :a\0b\r\n\0"s);
}

TEST_F(OpenChannelTest, Levels_UpToTheChannelsPass) {
  EXPECT_EQ(sent(-1, u"x"), "mrktxtmsg (-1) :x\r\n\0"s);
  EXPECT_EQ(sent(0, u"x"), "mrktxtmsg (0) :x\r\n\0"s);
  EXPECT_EQ(sent(2, u"x"), "mrktxtmsg (2) :x\r\n\0"s);
  EXPECT_EQ(sent(3, u"x"), "nothing");
  EXPECT_EQ(sent(254, u"x"), "nothing");
  EXPECT_EQ(sent(255, u"x"), "mrktxtmsg (255) :x\r\n\0"s);
  EXPECT_EQ(sent(256, u"x"), "nothing");
  EXPECT_EQ(native.windows.beeps(), 0);  // this channel is not visible
}

TEST_F(OpenChannelTest, ChannelBelowLevel0_FiltersWarningsOutBeforeTheyBeep) {
  open(0xFFFFFFFF, 1);
  EXPECT_EQ(sent(0, u"x"), "nothing");
  EXPECT_EQ(native.windows.beeps(), 0);
  EXPECT_EQ(sent(-1, u"x"), "mrktxtmsg (-1) :x\r\n\0"s);
}

// A line that nobody wants costs next to nothing: its pieces are not even made into text.
TEST_F(OpenChannelTest, FilteredLine_BuildsNoText) {
  struct CountingLocale final : Locale {
    std::string toAnsi(StringView text) override { return std::string(text.begin(), text.end()); }
    String fromAnsi(std::string_view text) override { return String(text.begin(), text.end()); }
    String dateText(Date) override {
      ++dates;
      return u"then";
    }
    int dates = 0;
  } locale;
  System counting{native.time,  native.time,    locale,       native.registry, native.windows,
                  native.shell, native.objects, native.files, native.ui,       native.module};
  System* const before = std::exchange(platform::currentSystem, &counting);
  DbgOut(3, u"x", Date{1});
  EXPECT_EQ(locale.dates, 0);
  DbgOut(2, u"x", Date{1});
  EXPECT_EQ(locale.dates, 1);
  platform::currentSystem = before;
  EXPECT_EQ(native.trace(), Lines{"xthen"});
}

TEST_F(OpenChannelTest, Level0Channel_PassesLevel0AndTheHeaderOnly_AndBeepsWhenVisible) {
  open(0, 1);
  EXPECT_EQ(sent(1, u"x"), "nothing");
  EXPECT_EQ(native.windows.beeps(), 0);
  EXPECT_EQ(sent(0, u"x"), "mrktxtmsg (0) :x\r\n\0"s);
  EXPECT_EQ(native.windows.beeps(), 1);
  EXPECT_EQ(sent(255, u"x"), "mrktxtmsg (255) :x\r\n\0"s);
  EXPECT_EQ(native.windows.beeps(), 1);
}

TEST_F(OpenChannelTest, Beep_ComesFirst_AndWithoutAViewerToo) {
  open(2, 1);
  DbgOut(0, u"x");
  EXPECT_EQ(native.journal.lines(),
            (Lines{"beep", "find \"DebugOut Window\" \"DebugOutput\"", "send 19 bytes to \"DebugOutput\""}));
  native.windows.viewer().open = false;
  DbgOut(0, u"x");
  EXPECT_EQ(native.windows.beeps(), 2);
}

TEST_F(OpenChannelTest, Beep_ForNoOtherLevel) {
  open(2, 1);
  for (const std::int16_t level : std::initializer_list<std::int16_t>{-1, 1, 2, 255}) DbgOut(level, u"x");
  EXPECT_EQ(native.windows.beeps(), 0);
}

TEST_F(OpenChannelTest, CallersText_GetsTheLineEnd_WithoutAViewerToo) {
  String text = u"abc";
  DbgOut(2, text);
  EXPECT_EQ(text, u"abc\r\n");
  DbgOut(2, text);
  EXPECT_EQ(text, u"abc\r\n");
  native.windows.viewer().open = false;
  text = u"abc";
  DbgOut(2, text);
  EXPECT_EQ(text, u"abc\r\n");
  text.clear();
  DbgOut(2, text);
  EXPECT_EQ(text, u"");
}

TEST_F(OpenChannelTest, FilteredLine_LeavesTheCallersTextAndLooksForNoWindow) {
  String text = u"abc";
  DbgOut(3, text);
  EXPECT_EQ(text, u"abc");
  EXPECT_TRUE(native.journal.lines().empty());
}

TEST_F(OpenChannelTest, Viewer_IsLookedUpForEveryLine) {
  auto& viewer = native.windows.viewer();
  DbgOut(2, u"a");
  viewer.open = false;
  DbgOut(2, u"b");
  viewer.open = true;
  DbgOut(2, u"c");
  EXPECT_EQ(native.trace(), (Lines{"a", "c"}));
  EXPECT_EQ(native.windows.lookUps(), 2 + 3);  // two of the initialisation
}

TEST_F(DbgOutTest, Viewer_OfAnotherClassOrTitle_ReceivesNothing) {
  auto& otherClass = native.windows.open("DebugOut", "DebugOutput");
  auto& otherTitle = native.windows.open("DebugOut Window", "DebugOutput - log");
  DbgOut(0, u"x");
  EXPECT_TRUE(otherClass.received.empty());
  EXPECT_TRUE(otherTitle.received.empty());
}

TEST_F(OpenChannelTest, DisabledLater_IsNotLookedAt) {
  dbgChannel.Enabled = 0;
  EXPECT_EQ(sent(2, u"x"), "mrktxtmsg (2) :x\r\n\0"s);
}

TEST_F(OpenChannelTest, FailureInside_DropsThatLineOnly) {
  native.windows.viewer().whenReceiving = [](const CopyData&) { platform::raiseError(70); };
  EXPECT_EQ(testing_support::errorNumberOf([&] { DbgOut(2, u"x"); }), 0);
  String text = u"y";
  EXPECT_EQ(testing_support::errorNumberOf([&] { DbgOut(2, text); }), 0);
  native.windows.viewer().whenReceiving = nullptr;
  EXPECT_EQ(sent(2, u"z"), "mrktxtmsg (2) :z\r\n\0"s);
}

TEST_F(OpenChannelTest, Pieces_AreJoinedToOneLine) {
  DbgOut(2, u"SendAll = ", true, u", ", std::int32_t{-5}, u", ", std::int16_t{7}, String(u"!"), Date{36925});
  EXPECT_EQ(native.trace(), (Lines{"SendAll = True, -5, 7!2/3/2001"}));
}

#ifdef _GLIBCXX_HAS_GTHREADS
TEST_F(OpenChannelTest, State_IsPerThread) {
  std::thread([] {
    DbgOut(2, u"two");
    DbgOut(0, u"zero");
  }).join();
  EXPECT_EQ(received(), (std::vector<CopyData>{{0, " (0) :zero\r\n\0"s}}));
}
#endif

}  // namespace
}  // namespace addin
