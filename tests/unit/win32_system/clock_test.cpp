#include <gtest/gtest.h>

#include "addin/platform/date.h"
#include "test_window.h"
#include "win32/system.h"

namespace win32_tests {
namespace {

platform::Clock& systemClock() { return win32::system().clock; }

platform::DateParts localParts() {
  SYSTEMTIME t{};
  GetLocalTime(&t);
  return {t.wYear, t.wMonth, t.wDay, t.wHour, t.wMinute, t.wSecond};
}

TEST(Clock, Ticks_AreTheSystemsReadAsSigned) {
  const DWORD before = GetTickCount();
  const auto ticks = static_cast<DWORD>(systemClock().ticks());
  EXPECT_LE(ticks - before, GetTickCount() - before);
}

TEST(Clock, Now_IsTheLocalDateAndTimeToTheSecond) {
  platform::DateParts before;
  platform::DateParts now;
  platform::DateParts after;
  do {  // until no second began in between
    before = localParts();
    now = platform::partsOf(systemClock().now());
    after = localParts();
  } while (before != after);
  EXPECT_EQ(now, before);
}

TEST(Clock, Sleep_TakesItsTimeAndServesNoMessages) {
  int handled = 0;
  const TestWindow window([&](UINT message, WPARAM, LPARAM) {
    handled += message == WM_APP;
    return std::optional<LRESULT>();
  });
  window.post(WM_APP);
  const DWORD before = GetTickCount();
  systemClock().sleep(100);
  EXPECT_GE(GetTickCount() - before, 50u);  // ticks come in steps
  EXPECT_EQ(handled, 0);
}

TEST(Clock, Sleep_NegativeTime_DoesNotSleepForEver) {
  systemClock().sleep(-1);
  SUCCEED();
}

}  // namespace
}  // namespace win32_tests
