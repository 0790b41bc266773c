#include <gtest/gtest.h>

#include "test_window.h"
#include "win32/system.h"

namespace win32_tests {
namespace {

constexpr const char* className = "mrktxtmsg test viewer";
constexpr const char* title = "test output";

platform::Windows& windows() { return win32::system().windows; }

platform::WindowHandle handleOf(const TestWindow& window) {
  return reinterpret_cast<platform::WindowHandle>(window.handle());
}

struct Received {
  ULONG_PTR dwData = 0;
  std::string bytes;
  WPARAM wParam = 0;
  DWORD thread = 0;
};

TestWindow::Handler receiveInto(Received& received) {
  return [&received](UINT message, WPARAM wParam, LPARAM lParam) -> std::optional<LRESULT> {
    if (message != WM_COPYDATA) return std::nullopt;
    const auto& record = *reinterpret_cast<const COPYDATASTRUCT*>(lParam);
    received = {record.dwData, std::string(static_cast<const char*>(record.lpData), record.cbData), wParam,
                GetCurrentThreadId()};
    return 1;
  };
}

TEST(Windows, FindWindow_ClassAndTitleMustBothMatch) {
  const TestWindow window({}, className, title);
  EXPECT_EQ(windows().findWindow(className, title), handleOf(window));
  EXPECT_EQ(windows().findWindow(className, "other output"), 0u);
  EXPECT_EQ(windows().findWindow("other test viewer", title), 0u);
}

TEST(Windows, FindWindow_AfterItsEnd_FindsNothing) {
  { const TestWindow window({}, className, title); }
  EXPECT_EQ(windows().findWindow(className, title), 0u);
}

TEST(Windows, SendCopyData_ArrivesWithEveryByteBeforeTheCallReturns) {
  Received received;
  const TestWindow window(receiveInto(received), className, title);
  const std::string line("mrktxtmsg (2) :a\0b\r\n\0", 21);
  windows().sendCopyData(handleOf(window), 0, line);
  EXPECT_EQ(received.bytes, line);
  EXPECT_EQ(received.dwData, 0u);
  EXPECT_EQ(received.wParam, 0u);
  windows().sendCopyData(handleOf(window), 0xFFFFFFFF, "x");
  EXPECT_EQ(received.dwData, 0xFFFFFFFFu);
}

TEST(Windows, SendCopyData_ToAWindowOfAnotherThread_WaitsForItsAnswer) {
  Received received;
  DWORD receiver = 0;
  const HANDLE ready = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  {
    const Thread thread([&] {
      receiver = GetCurrentThreadId();
      const TestWindow window(receiveInto(received), className, title);
      SetEvent(ready);
      while (received.thread == 0) win32::system().pump.wait(1000);
    });
    WaitForSingleObject(ready, INFINITE);
    windows().sendCopyData(windows().findWindow(className, title), 0, "line");
    EXPECT_EQ(received.bytes, "line");
  }
  EXPECT_EQ(received.thread, receiver);
  EXPECT_NE(received.thread, GetCurrentThreadId());
  CloseHandle(ready);
}

TEST(Windows, SendCopyData_ToAWindowThatHasGone_IsNoFailure) {
  platform::WindowHandle gone = 0;
  {
    const TestWindow window({}, className, title);
    gone = handleOf(window);
  }
  EXPECT_NO_THROW(windows().sendCopyData(gone, 0, "line"));
}

}  // namespace
}  // namespace win32_tests
