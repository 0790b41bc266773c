#include <vector>

#include <gtest/gtest.h>

#include "support/text.h"
#include "test_window.h"
#include "win32/system.h"

namespace win32_tests {
namespace {

constexpr const wchar_t* boxTitle = L"Marrick box \u00C5";

platform::UserInterface& userInterface() { return win32::system().ui; }

// What somebody sees who looks at the box and closes it.
struct SeenBox {
  HWND owner = nullptr;
  std::string text;
  bool otherWindowsWait = false;
};

BOOL CALLBACK addText(HWND control, LPARAM to) {
  wchar_t text[256];
  GetWindowTextW(control, text, 256);
  *reinterpret_cast<std::string*>(to) += testing_support::utf8(reinterpret_cast<const char16_t*>(text)) + '|';
  return TRUE;
}

SeenBox closeBox(HWND other) {
  HWND box = nullptr;
  while (!(box = FindWindowW(L"#32770", boxTitle)) || !IsWindowVisible(box)) Sleep(10);
  SeenBox seen;
  seen.owner = GetWindow(box, GW_OWNER);
  EnumChildWindows(box, addText, reinterpret_cast<LPARAM>(&seen.text));
  seen.otherWindowsWait = !IsWindowEnabled(other);
  PostMessageW(box, WM_COMMAND, IDOK, 0);
  return seen;
}

std::int32_t showBox(SeenBox& seen, HWND other) {
  const Thread user([&] { seen = closeBox(other); });
  return userInterface().messageBox(u"SIM is full \u65E5", 64, reinterpret_cast<const char16_t*>(boxTitle));
}

TEST(UserInterface, MessageBox_BelongsToTheActiveWindowAndTellsTheButton) {
  const TestWindow window;
  ShowWindow(window.handle(), SW_SHOW);
  SetActiveWindow(window.handle());
  SeenBox seen;
  EXPECT_EQ(showBox(seen, window.handle()), IDOK);
  EXPECT_EQ(seen.owner, window.handle());
  EXPECT_NE(seen.text.find("SIM is full \xE6\x97\xA5|"), std::string::npos) << seen.text;
  EXPECT_TRUE(seen.otherWindowsWait);
  EXPECT_TRUE(IsWindowEnabled(window.handle()));
}

TEST(UserInterface, MessageBox_WithoutAnActiveWindow_AllWindowsOfTheThreadWait) {
  const TestWindow window;
  ShowWindow(window.handle(), SW_SHOWNOACTIVATE);
  SetActiveWindow(nullptr);
  ASSERT_EQ(GetActiveWindow(), nullptr);
  SeenBox seen;
  EXPECT_EQ(showBox(seen, window.handle()), IDOK);
  EXPECT_TRUE(seen.otherWindowsWait);
  EXPECT_TRUE(IsWindowEnabled(window.handle()));
}

}  // namespace
}  // namespace win32_tests
