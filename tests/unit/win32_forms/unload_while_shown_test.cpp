// A form that somebody unloads, or shows, in the middle of its being shown: windows are told of what is done to them,
// and what they do then is theirs.

#include "form_fixture.h"
#include "support/seam_recorder.h"

namespace win32_tests {
namespace {

using testing_support::Census;

// Runs an action once, when this thread is about to make its next window.
class WhenWindowIsMade {
 public:
  explicit WhenWindowIsMade(std::function<void()> act) {
    action = std::move(act);
    hook_ = SetWindowsHookExW(WH_CBT, hear, nullptr, GetCurrentThreadId());
  }
  WhenWindowIsMade(const WhenWindowIsMade&) = delete;
  WhenWindowIsMade& operator=(const WhenWindowIsMade&) = delete;
  ~WhenWindowIsMade() {
    UnhookWindowsHookEx(hook_);
    action = {};
  }
  static bool hasHappened() { return !action; }

 private:
  static LRESULT CALLBACK hear(int code, WPARAM wParam, LPARAM lParam) noexcept {
    if (code == HCBT_CREATEWND)
      if (const auto act = std::exchange(action, {})) com::guardedOr(0, [&] { return act(), 0; });
    return CallNextHookEx(nullptr, code, wParam, lParam);
  }

  static inline std::function<void()> action;
  HHOOK hook_;
};

class FormUnloaded : public FormFixture {
 protected:
  static std::size_t dialogs() {
    std::size_t count = 0;
    for (HWND at = nullptr; (at = FindWindowExW(nullptr, at, L"#32770", wizardTitle)) != nullptr;) ++count;
    return count;
  }

  void expectNothingLeft() {
    EXPECT_FALSE(wizard->IsLoaded());
    EXPECT_EQ(dialogs(), 0u);
    EXPECT_TRUE(IsWindowEnabled(mailClient.handle()));
    EXPECT_EQ(census_.more(), 0);  // the wizard itself was there before
  }

  // Shows the wizard while a second window unloads it on this message, whose word parameter begins with `low`.
  void showAndUnloadOn(FormModality modality, UINT message, WORD low, bool isActive = true) {
    SCOPED_TRACE(message);
    bool told = false;
    const TestWindow other([&](UINT m, WPARAM wParam, LPARAM) -> std::optional<LRESULT> {
      if (m != message || LOWORD(wParam) != low || !wizard->IsLoaded()) return std::nullopt;
      told = true;
      wizard->Unload();
      return std::nullopt;
    });
    ShowWindow(other.handle(), SW_SHOW);
    SetForegroundWindow(isActive ? other.handle() : mailClient.handle());
    EXPECT_TRUE(wizard->Show(modality));
    EXPECT_TRUE(told);
    EXPECT_TRUE(IsWindowEnabled(other.handle()));
    expectNothingLeft();
  }

 private:
  Census census_;
};

TEST_F(FormUnloaded, Modal_ByAWindowThatIsBlocked_LeavesNothingBlocked) {
  for (const bool isActive : {true, false}) {
    showAndUnloadOn(FormModality::Modal, WM_ENABLE, FALSE, isActive);
    showAndUnloadOn(FormModality::Modal, WM_CANCELMODE, 0, isActive);  // before it is disabled
  }
}

TEST_F(FormUnloaded, ByTheWindowThatLosesTheActivation_LeavesNoDialog) {
  showAndUnloadOn(FormModality::Modal, WM_ACTIVATE, WA_INACTIVE);
  showAndUnloadOn(FormModality::Modeless, WM_ACTIVATE, WA_INACTIVE);
}

TEST_F(FormUnloaded, WhileItsWindowsAreMade_LeavesNoDialog) {
  for (const FormModality modality : {FormModality::Modal, FormModality::Modeless}) {
    const WhenWindowIsMade unload([&] { wizard->Unload(); });
    EXPECT_TRUE(wizard->Show(modality));
    EXPECT_TRUE(WhenWindowIsMade::hasHappened());
    expectNothingLeft();
  }
}

TEST_F(FormUnloaded, ShownAgainWhileItsWindowsAreMade_HasOneDialog) {
  {
    const WhenWindowIsMade show([&] { wizard->Show(FormModality::Modeless); });
    EXPECT_TRUE(wizard->Show(FormModality::Modeless));
    EXPECT_TRUE(WhenWindowIsMade::hasHappened());
  }
  EXPECT_TRUE(wizard->IsLoaded());
  EXPECT_EQ(dialogs(), 1u);
  wizard->Unload();
  expectNothingLeft();
}

TEST_F(FormUnloaded, ShownModallyWhileItsWindowsAreMade_IsWaitedForAndHasOneDialog) {
  const WhenWindowIsMade show([&] {
    const Thread user([] {
      const DialogUser dialog(wizardTitle);
      EXPECT_TRUE(dialog.isThere());
      EXPECT_EQ(dialogs(), 1u);
      dialog.closeByMenu();
    });
    EXPECT_TRUE(wizard->Show(FormModality::Modal));
  });
  EXPECT_TRUE(wizard->Show(FormModality::Modeless));
  EXPECT_TRUE(WhenWindowIsMade::hasHappened());
  expectNothingLeft();
}

}  // namespace
}  // namespace win32_tests
