// dbgview.exe as the programs that write to it see it.

#include <fstream>
#include <sstream>

#include "registered_servers.h"

namespace servers_tests {
namespace {

using platform::String;
using Lines = std::vector<std::string>;

class DebugViewer : public testing::Test {
 protected:
  DebugViewer() {
    char folder[MAX_PATH + 1];
    GetTempPathA(MAX_PATH, folder);
    log_ = std::string(folder) + "marrick viewer test.log";
    DeleteFileA(log_.c_str());
  }
  ~DebugViewer() override {
    close();
    DeleteFileA(log_.c_str());
  }

  static HWND window() { return FindWindowA("DebugOut Window", "DebugOutput"); }

  // Starts a viewer and waits for its window.
  void open(WORD show = SW_SHOWNORMAL) {
    process_ = start("--log \"" + log_ + "\"", show);
    ASSERT_TRUE(serveUntil([] { return window() != nullptr; }));
  }

  static HANDLE start(const std::string& arguments, WORD show) {
    const String program = productFile(u"dbgview.exe");
    std::string line = '"' + std::string(program.begin(), program.end()) + "\" " + arguments;
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESHOWWINDOW;
    startup.wShowWindow = show;
    PROCESS_INFORMATION process{};
    EXPECT_TRUE(CreateProcessA(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process));
    CloseHandle(process.hThread);
    return process.hProcess;
  }
  static DWORD exitCode(HANDLE process) {
    EXPECT_TRUE(serveUntil([&] { return WaitForSingleObject(process, 0) == WAIT_OBJECT_0; }));
    DWORD code = STILL_ACTIVE;
    GetExitCodeProcess(process, &code);
    CloseHandle(process);
    return code;
  }

  void close() {
    if (!process_) return;
    PostMessageA(window(), WM_CLOSE, 0, 0);
    EXPECT_EQ(exitCode(std::exchange(process_, nullptr)), 0u);
  }

  static LRESULT send(const void* data, std::size_t size) {
    COPYDATASTRUCT record{0, static_cast<DWORD>(size), const_cast<void*>(data)};
    return SendMessageA(window(), WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&record));
  }
  static LRESULT send(const std::string& text) { return send(text.c_str(), text.size() + 1); }

  std::string logged() const {
    std::ifstream file(log_, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
  }
  static HWND list() { return FindWindowExA(window(), nullptr, "LISTBOX", nullptr); }
  static std::string shownAt(std::size_t i) {
    // The W message: Wine does not translate the other one between processes.
    std::wstring text(static_cast<std::size_t>(SendMessageW(list(), LB_GETTEXTLEN, i, 0)) + 1, L'\0');
    SendMessageW(list(), LB_GETTEXT, i, reinterpret_cast<LPARAM>(text.data()));
    std::string line;
    for (const wchar_t c : text.substr(0, text.find(L'\0'))) line += static_cast<char>(c);
    return line;
  }
  static std::size_t shownCount() { return static_cast<std::size_t>(SendMessageW(list(), LB_GETCOUNT, 0, 0)); }
  static Lines shown() {
    Lines lines;
    for (std::size_t i = 0; i < shownCount(); ++i) lines.push_back(shownAt(i));
    return lines;
  }

  std::string log_;
  HANDLE process_ = nullptr;
};

TEST_F(DebugViewer, Lines_AreShownAndLoggedBeforeTheSenderGoesOn) {
  open();
  send("mrktxtmsg (2) :Inside Function SendMessage\r\n");
  EXPECT_EQ(logged(), "mrktxtmsg (2) :Inside Function SendMessage\r\n");
  send("mrktxtmsg (2) :");
  send("two\r\nlines\r\n");
  EXPECT_EQ(logged(), "mrktxtmsg (2) :Inside Function SendMessage\r\nmrktxtmsg (2) :\r\ntwo\r\nlines\r\n");
  EXPECT_EQ(shown(), (Lines{"mrktxtmsg (2) :Inside Function SendMessage", "mrktxtmsg (2) :", "two", "lines"}));
}

TEST_F(DebugViewer, Log_IsContinuedByTheNextViewer) {
  open();
  send("first\r\n");
  close();
  open();
  send("second\r\n");
  EXPECT_EQ(logged(), "first\r\nsecond\r\n");
}

TEST_F(DebugViewer, HugeRecord_IsCut) {
  open();
  const std::string huge(512 * 1024, 'x');  // Wine hands a record over on the stack: four megabytes end any program
  send(huge.data(), huge.size());
  send("alive\r\n");
  EXPECT_TRUE(logged() == std::string(64 * 1024, 'x') + "\r\nalive\r\n") << logged().size() << " bytes";
}

TEST_F(DebugViewer, RecordWithoutNul_EndsWithItsSize) {
  open();
  send("no nul", 6);
  send("", 0);
  send("alive\r\n");
  EXPECT_EQ(logged(), "no nul\r\n\r\nalive\r\n");
}

TEST_F(DebugViewer, RecordWithoutData_IsAnEmptyLine) {
  open();
  send(nullptr, 0);
  send(nullptr, 100);
  send("alive\r\n");
  EXPECT_EQ(logged(), "\r\n\r\nalive\r\n");
}

TEST_F(DebugViewer, MessageWithoutARecord_IsIgnored) {
  open();
  SendMessageA(window(), WM_COPYDATA, 0, 0);
  send("alive\r\n");
  EXPECT_EQ(logged(), "alive\r\n");
}

TEST_F(DebugViewer, MoreLinesThanItShows_LoseTheOldest) {
  open();
  std::string block;
  for (int i = 0; i < 1000; ++i) block += "line\r\n";
  for (int i = 0; i < 10; ++i) send(block);
  send("newest\r\n");
  EXPECT_EQ(shownCount(), 10000u);
  EXPECT_EQ(shownAt(9998), "line");
  EXPECT_EQ(shownAt(9999), "newest");
}

TEST_F(DebugViewer, SecondStart_EndsAndShowsTheFirst) {
  open(SW_SHOWMINIMIZED);
  EXPECT_TRUE(serveUntil([] { return IsIconic(window()) != FALSE; }));
  EXPECT_EQ(exitCode(start("", SW_SHOWMINIMIZED)), 0u);
  EXPECT_TRUE(IsIconic(window()));
  EXPECT_EQ(exitCode(start("", SW_SHOWNORMAL)), 0u);
  EXPECT_TRUE(serveUntil([] { return !IsIconic(window()); }));
  EXPECT_EQ(WaitForSingleObject(process_, 0), static_cast<DWORD>(WAIT_TIMEOUT));
  const HWND second = FindWindowExA(nullptr, window(), "DebugOut Window", nullptr);
  EXPECT_EQ(second, nullptr);
}

}  // namespace
}  // namespace servers_tests
