#include "support/native_system.h"

#include <limits>

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include "support/errors.h"
#include "support/seam_recorder.h"
#include "support/text.h"

namespace testing_support {
namespace {

using platform::rootCurrentUser;
using platform::rootLocalMachine;
using Lines = std::vector<std::string>;
using namespace std::string_literals;

TEST(NativeSystem, IsTheSystemWhileItLives) {
  EXPECT_EQ(platform::currentSystem, nullptr);
  {
    NativeSystem system;
    system.time.setTicks(5);
    EXPECT_EQ(platform::system().clock.ticks(), 5);
  }
  EXPECT_EQ(platform::currentSystem, nullptr);
}

// Time ---------------------------------------------------------------------------------------------------------------

TEST(NativeTime, TicksWrapAndTheDateGoesAlong) {
  NativeSystem system;
  system.time.setTicks(std::numeric_limits<std::int32_t>::max());
  system.time.setNow({36925.5});
  system.time.advance(1);
  EXPECT_EQ(system.time.ticks(), std::numeric_limits<std::int32_t>::min());
  system.time.sleep(86'400'000 - 1);
  EXPECT_EQ(system.time.now(), platform::Date{36926.5});
  EXPECT_EQ(system.time.sleeps(), (std::vector<std::int32_t>{86'399'999}));
}

TEST(NativeTime, Wait_WithoutWork_TakesTheWholeTime) {
  NativeSystem system;
  EXPECT_TRUE(system.time.wait(100));
  EXPECT_EQ(system.time.elapsed(), 100);
  EXPECT_EQ(system.time.waits(), 1);
  EXPECT_EQ(system.time.waited(), 100);
}

TEST(NativeTime, Wait_GoesToTheFirstWorkAndRunsWhatIsDueByThen) {
  NativeSystem system;
  std::string ran;
  system.time.post(50, [&] { ran += 'b'; });
  system.time.post(30, [&] { ran += 'a'; });
  system.time.post(30, [&] { ran += 'A'; });
  EXPECT_TRUE(system.time.wait(100));
  EXPECT_EQ(ran, "aA");
  EXPECT_EQ(system.time.elapsed(), 30);
  EXPECT_TRUE(system.time.wait(10));
  EXPECT_EQ(ran, "aA");
  EXPECT_EQ(system.time.elapsed(), 40);
  EXPECT_TRUE(system.time.wait(10));
  EXPECT_EQ(ran, "aAb");
}

TEST(NativeTime, WorkAskedForByWork_RunsAtTheNextWait) {
  NativeSystem system;
  std::string ran;
  system.time.post([&] {
    ran += 'a';
    system.time.post([&] { ran += 'b'; });
  });
  system.time.wait(10);
  EXPECT_EQ(ran, "a");
  system.time.wait(10);
  EXPECT_EQ(ran, "ab");
  EXPECT_EQ(system.time.elapsed(), 0);
}

TEST(NativeTime, NestedWait_ServesTheRest) {
  NativeSystem system;
  std::string ran;
  system.time.post([&] {
    ran += '(';
    system.time.wait(10);
    ran += ')';
  });
  system.time.post([&] { ran += 'x'; });
  system.time.wait(10);
  EXPECT_EQ(ran, "(x)");
}

TEST(NativeTime, ReleasedWork_DoesNotRun) {
  NativeSystem system;
  int runs = 0;
  auto ticket = system.time.after(10, [&] { ++runs; });
  EXPECT_EQ(system.time.pendingWork(), 1u);
  ticket = nullptr;
  EXPECT_EQ(system.time.pendingWork(), 0u);
  platform::Ref<platform::Counted> kept;
  kept = system.time.after(10, [&] {
    ++runs;
    kept = nullptr;  // inside its own run
  });
  system.time.run(100);
  EXPECT_EQ(runs, 1);
  EXPECT_EQ(system.time.elapsed(), 100);
}

TEST(NativeTime, Ticket_MayOutliveTheSystem) {
  platform::Ref<platform::Counted> ticket;
  {
    NativeSystem system;
    ticket = system.time.after(10, [] {});
  }
  EXPECT_TRUE(ticket);
  ticket = nullptr;
}

TEST(NativeTime, Quit_EndsTheRunningWaitAndAllLaterOnes) {
  NativeSystem system;
  system.time.post(5, [&] { system.time.postQuit(); });
  EXPECT_FALSE(system.time.wait(100));
  EXPECT_EQ(system.time.elapsed(), 5);
  EXPECT_FALSE(system.time.wait(100));
  EXPECT_EQ(system.time.elapsed(), 5);
  system.time.takeQuit();
  EXPECT_TRUE(system.time.wait(100));
}

TEST(NativeTime, EndlessWaitLoop_IsAFailureAndIsEnded) {
  EXPECT_NONFATAL_FAILURE(
      {
        NativeSystem system;
        system.time.mostWaits = 10;
        while (system.time.wait(1)) {
        }
      },
      "a wait loop did not end after 10 waits");
}

// Locale -------------------------------------------------------------------------------------------------------------

TEST(NativeLocale, CodePage1252_ThereAndBack) {
  NativeLocale locale;
  for (int byte = 0; byte < 256; ++byte) {
    const std::string ansi(1, static_cast<char>(byte));
    EXPECT_EQ(locale.toAnsi(locale.fromAnsi(ansi)), ansi) << byte;
  }
  EXPECT_EQ(locale.toAnsi(u"\u20AC\u00E5\u2019"), "\x80\xE5\x92");
  EXPECT_EQ(locale.fromAnsi("\x80\xE5\x92"), u"\u20AC\u00E5\u2019");
  EXPECT_EQ(locale.toAnsi(u"\u0416\U0001F600"), "???");  // one for each unit
}

// Registry -----------------------------------------------------------------------------------------------------------

struct RegistryTest : testing::Test {
  NativeSystem system;
  NativeRegistry& registry = system.registry;
  platform::KeyHandle key = 0;
  std::uint32_t type = 0;
  std::uint32_t size = 0;
};

TEST_F(RegistryTest, QueryIsTwoCalls_IgnoringCase) {
  registry.setString(rootCurrentUser, "Software\\A", "Name", "hi");
  ASSERT_EQ(registry.openKey(rootCurrentUser, "SOFTWARE\\a", key), 0);
  ASSERT_EQ(registry.queryValue(key, "NAME", type, nullptr, size), 0);
  EXPECT_EQ(type, regSz);
  EXPECT_EQ(size, 3u);
  std::string buffer(size, 'x');
  ASSERT_EQ(registry.queryValue(key, "name", type, reinterpret_cast<std::byte*>(buffer.data()), size), 0);
  EXPECT_EQ(buffer, "hi\0"s);
  size = 2;
  EXPECT_EQ(registry.queryValue(key, "name", type, reinterpret_cast<std::byte*>(buffer.data()), size), errorMoreData);
  EXPECT_EQ(registry.openHandles(), 1u);
  registry.closeKey(key);
  EXPECT_EQ(registry.openHandles(), 0u);
  EXPECT_EQ(registry.log(), (Lines{"open HKCU\\SOFTWARE\\a", "query size HKCU\\SOFTWARE\\a \"NAME\"",
                                   "query data HKCU\\SOFTWARE\\a \"name\"",
                                   "query data HKCU\\SOFTWARE\\a \"name\" -> 234", "close HKCU\\SOFTWARE\\a"}));
}

TEST_F(RegistryTest, RootsAreApart_AndWhatIsMissingIsStatus2) {
  registry.setDword(rootLocalMachine, "A", "N", 1);
  EXPECT_EQ(registry.openKey(rootCurrentUser, "A", key), errorFileNotFound);
  EXPECT_EQ(key, 0u);
  EXPECT_EQ(registry.queryValue(key, "N", type, nullptr, size), errorInvalidHandle);
  ASSERT_EQ(registry.openKey(rootLocalMachine, "A", key), 0);
  EXPECT_EQ(registry.queryValue(key, "M", type, nullptr, size), errorFileNotFound);
}

TEST_F(RegistryTest, CreateMakesThePath_AndSetStoresExactlyTheBytes) {
  ASSERT_EQ(registry.createKey(rootCurrentUser, "A\\B\\C", key), 0);
  EXPECT_TRUE(registry.hasKey(rootCurrentUser, "a\\b"));
  EXPECT_EQ(registry.keyCount(), 3u);
  const std::string bytes = "x\0y"s;
  ASSERT_EQ(registry.setValue(key, "V", regBinary, std::as_bytes(std::span(bytes))), 0);
  EXPECT_EQ(registry.value(rootCurrentUser, "A\\B\\C", "v"), (NativeRegistry::Value{regBinary, bytes}));
  EXPECT_EQ(registry.createKey(rootCurrentUser, "\\A", key), errorBadPathname);
}

TEST_F(RegistryTest, InjectedFailures) {
  registry.setDword(rootCurrentUser, "A", "N", 0x01020304);
  EXPECT_EQ(registry.value(rootCurrentUser, "A", "N")->bytes, "\x04\x03\x02\x01");
  registry.fail("query data", errorAccessDenied);
  ASSERT_EQ(registry.openKey(rootCurrentUser, "A", key), 0);
  ASSERT_EQ(registry.queryValue(key, "N", type, nullptr, size), 0);
  std::byte buffer[4];
  EXPECT_EQ(registry.queryValue(key, "N", type, buffer, size), errorAccessDenied);
  registry.failNoMore();
  EXPECT_EQ(registry.queryValue(key, "N", type, buffer, size), 0);
}

// Windows ------------------------------------------------------------------------------------------------------------

TEST(NativeWindows, FoundByClassAndTitleOnly) {
  NativeSystem system;
  const auto handle = system.windows.openViewer().handle;
  EXPECT_EQ(system.windows.findWindow("DebugOut Window", "DebugOutput"), handle);
  EXPECT_EQ(system.windows.findWindow("DebugOut Window", "Other"), 0u);
  EXPECT_EQ(system.windows.findWindow("Other", "DebugOutput"), 0u);
  system.windows.viewer().open = false;
  EXPECT_EQ(system.windows.findWindow("DebugOut Window", "DebugOutput"), 0u);
  EXPECT_EQ(system.windows.lookUps(), 4);
}

TEST(NativeWindows, AppearsAfterLookUpsOrTime) {
  NativeSystem system;
  auto& window = system.windows.open("C", "T");
  window.opensAtLookUp = 3;
  EXPECT_FALSE(system.windows.findWindow("C", "T"));
  EXPECT_FALSE(system.windows.findWindow("C", "T"));
  EXPECT_TRUE(system.windows.findWindow("C", "T"));
  window.opensAtElapsed = 100;
  EXPECT_FALSE(system.windows.findWindow("C", "T"));
  system.time.sleep(100);
  EXPECT_TRUE(system.windows.findWindow("C", "T"));
}

TEST(NativeWindows, Trace_TakesLinesApart) {
  NativeSystem system;
  const auto viewer = system.windows.openViewer().handle;
  system.windows.sendCopyData(viewer, 0, "mrktxtmsg (2) :a (b) :c\r\n\0"s);
  system.windows.sendCopyData(viewer, 0, "? (255) :\x80\0"s);
  system.windows.sendCopyData(99, 0, "nobody"s);
  EXPECT_EQ(system.windows.traceLines(), (std::vector<TraceLine>{{"mrktxtmsg", 2, "a (b) :c"}, {"?", 255, "\u20AC"}}));
  EXPECT_EQ(system.trace(), (Lines{"a (b) :c", "\u20AC"}));
  system.windows.clearTrace();
  system.windows.sendCopyData(viewer, 0, "m (2) :no nul"s);
  EXPECT_NONFATAL_FAILURE(system.trace(), "not a line of the debug channel");
}

// Shell, objects, user interface --------------------------------------------------------------------------------------

TEST(NativeShell, Start) {
  NativeSystem system;
  EXPECT_EQ(errorNumberOf([&] { system.shell.start(u"", 2); }), 5);
  system.shell.start(u"a.exe", 2);
  system.shell.programsAreMissing = true;
  EXPECT_EQ(errorNumberOf([&] { system.shell.start(u"b.exe", 2); }), 53);
  EXPECT_EQ(system.shell.started, (std::vector<NativeShell::Start>{{u"a.exe", 2}}));
  EXPECT_EQ(system.journal.lines(),
            (Lines{"start \"\" style 2", "start \"a.exe\" style 2", "start \"b.exe\" style 2"}));
}

TEST(NativeObjects, CreateByProgIdWithoutCase) {
  NativeSystem system;
  system.objects.provide(u"A.B", [] { return platform::Object(); });
  EXPECT_EQ(errorNumberOf([&] { system.objects.create(u"a.b"); }), 0);
  EXPECT_EQ(errorNumberOf([&] { system.objects.create(u"c.d"); }), 429);
  system.objects.withdraw(u"a.B");
  EXPECT_EQ(errorNumberOf([&] { system.objects.create(u"a.b"); }), 429);
  EXPECT_EQ(system.objects.asked, (std::vector<platform::String>{u"a.b", u"c.d", u"a.b"}));
}

TEST(NativeUserInterface, Boxes) {
  NativeSystem system;
  int open = 0;
  system.ui.whileBoxIsOpen = [&] { ++open; };
  EXPECT_EQ(system.ui.messageBox(u"p", 64, u"t"), 1);
  EXPECT_EQ(open, 1);
  EXPECT_EQ(system.ui.boxes, (std::vector<NativeUserInterface::Box>{{u"p", 64, u"t"}}));
}

class PlainForm final : public platform::Form {
 public:
  PlainForm() : Form(u"frmPlain") {}

 protected:
  void Form_Load() override {}
};

TEST(NativeUserInterface, ModalForm_IsOpenUntilPostedWorkUnloadsIt) {
  NativeSystem system;
  const Census census;
  const auto form = platform::make<PlainForm>();
  system.time.post(3000, [&] { system.ui.view(u"FRMplain").close(); });
  EXPECT_TRUE(form->Show(platform::FormModality::Modal));
  EXPECT_EQ(system.time.elapsed(), 3000);
  EXPECT_FALSE(system.ui.isOpen(u"frmPlain"));
  EXPECT_EQ(system.ui.shown, (std::vector<NativeUserInterface::Shown>{{u"frmPlain", platform::FormModality::Modal}}));
}

TEST(NativeUserInterface, ModelessForm_StaysOpenUntilTheSystemEnds) {
  const Census census;
  const auto form = platform::make<PlainForm>();
  {
    NativeSystem system;
    EXPECT_TRUE(form->Show(platform::FormModality::Modeless));
    EXPECT_TRUE(system.ui.isOpen(u"frmPlain"));
  }
  EXPECT_FALSE(form->IsLoaded());
}

TEST(NativeFiles, Read_InPiecesUntilTheReaderHasEnough) {
  NativeSystem system;
  system.files.contents[u"C:\\list"] = "0123456789";
  std::vector<std::string> pieces;
  const auto take = [&](std::string_view piece) { return pieces.emplace_back(piece), pieces.size() < 4; };
  system.files.read(u"C:\\list", take);
  EXPECT_EQ(pieces, (std::vector<std::string>{"0123", "4567", "89"}));
  pieces.assign(3, "");
  system.files.read(u"C:\\list", take);
  EXPECT_EQ(pieces.size(), 4u);
  pieces.clear();
  system.files.breaksAt = 4;
  EXPECT_EQ(errorNumberOf([&] { system.files.read(u"C:\\list", take); }), 75);
  EXPECT_EQ(errorNumberOf([&] { system.files.read(u"C:\\none", take); }), 53);
}

TEST(Text, Utf8) {
  EXPECT_EQ(utf8(u"a\u00E5\u20AC\U0001F600"), "a\xC3\xA5\xE2\x82\xAC\xF0\x9F\x98\x80");
  EXPECT_EQ(utf8(platform::String{0xD800, u'x', 0xDC00}), "\xEF\xBF\xBDx\xEF\xBF\xBD");
}

}  // namespace
}  // namespace testing_support
