//   demo_user      sits before what tools/demo opens for the first time: cancels the wizard, waits until the mail
//   client
//                  shows the phone, and closes its window
//
// Exit code 0 when all of it came.

#include <cstdio>

#include "support/win32/dialog_user.h"
#include "support/win32/screen.h"

namespace {

using namespace testing_support;

constexpr const wchar_t* wizardTitle = L"Marrick Text Message Add-In for Outlook 2000";

bool check(bool holds, const char* what) {
  std::printf("  %s %s\n", holds ? "ok  " : "FAIL", what);
  std::fflush(stdout);
  return holds;
}

bool lookAtTheDemo() {
  HWND explorer = nullptr;
  const bool shown = waitUntil([&] {
    explorer = FindWindowW(screen::explorerClass, nullptr);
    return explorer && IsWindowVisible(explorer);
  });
  if (!check(shown, "the mail client's window opens")) return false;
  const DialogUser wizard(wizardTitle);
  if (!check(wizard.isThere(), "the wizard comes")) return false;
  PostMessageW(wizard.dialog(), WM_CLOSE, 0, 0);
  if (!check(wizard.hasGone() && waitUntil([&] { return IsWindowEnabled(explorer) != FALSE; }), "and can be closed"))
    return false;
  const HWND status = screen::child(explorer, STATUSCLASSNAMEW);
  bool right = check(waitUntil([&] { return screen::statusText(status, 1) == L"Marrick Simulated handset connected"; }),
                     "the phone is connected");
  const auto folders = screen::treeLabels(screen::child(explorer, WC_TREEVIEWW));
  right &= check(folders.size() == 9 && folders[7] == L"Family" && folders[8] == L"Work",
                 "the folders of the contacts are there");
  PostMessageW(explorer, WM_CLOSE, 0, 0);
  return check(waitUntil([&] { return !IsWindow(explorer); }), "the window closes") && right;
}

}  // namespace

int main() { return lookAtTheDemo() ? 0 : 1; }
