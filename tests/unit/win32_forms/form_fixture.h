// Forms in real windows, on a system whose other parts are those of the tests.
#pragma once

#include <gtest/gtest.h>

#include "addin/settings/frmabout.h"
#include "addin/settings/frmwizard.h"
#include "support/native_system.h"
#include "support/text.h"
#include "support/win32/dialog_user.h"
#include "support/win32/product.h"
#include "unit/win32_system/test_window.h"
#include "win32/system.h"

namespace win32_tests {

using platform::Control;
using platform::ControlKind;
using platform::Form;
using platform::FormModality;
using platform::Ref;
using testing_support::DialogUser;
using testing_support::utf8;
using testing_support::waitUntil;

inline constexpr const wchar_t* wizardTitle = L"Marrick Text Message Add-In for Outlook 2000";
inline constexpr const wchar_t* aboutTitle = L"About Text Message Add-In";

class FormFixture : public testing::Test {
 protected:
  static constexpr const char* optionsKey = "Software\\Microsoft\\Office\\9.0\\Outlook\\Options\\TextMessage";

  explicit FormFixture(platform::UserInterface& ui = win32::system().ui)
      : mixed_{native.time,  native.time, native.locale, native.registry, native.windows, native.shell, native.objects,
               native.files, ui,          native.module} {
    platform::currentSystem = &mixed_;
    native.registry.setString(platform::rootLocalMachine, "Software\\Marrick\\TextMessageAddIn", "SMSCPath", "list");
    native.files.contents[u"list"] = "Choose one\r\nAs stored on the SIM card ()\r\nNorth (+123)\r\n";
    ShowWindow(mailClient.handle(), SW_SHOW);
    SetForegroundWindow(mailClient.handle());
  }
  ~FormFixture() override {
    wizard->Unload();
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
  }

  void setOption(const std::string& name, const std::string& text) {
    native.registry.setString(platform::rootCurrentUser, optionsKey, name, text);
  }

  // A mail client's loop: it knows nothing of dialogs.
  static void serveWhile(const std::function<bool()>& condition) {
    const std::uint32_t start = testing_support::ticksNow();
    while (condition()) {
      ASSERT_LT(testing_support::ticksNow() - start, 60000u) << "the user came to no end";
      MsgWaitForMultipleObjects(0, nullptr, FALSE, 50, QS_ALLINPUT);
      MSG message;
      while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
      }
    }
  }

  // The wizard, while somebody on a thread of its own uses it; it is closed afterwards if it is still open.
  bool modal(const std::function<void(const DialogUser&)>& use) {
    const Thread user([&] { useAndClose(use); });
    return wizard->Show(FormModality::Modal);
  }
  void modeless(Form& form, const wchar_t* title, const std::function<void(const DialogUser&)>& use) {
    form.Show(FormModality::Modeless);
    const Thread user([&] { useAndClose(use, title); });
    serveWhile([&] { return !user.hasEnded(); });
  }
  void modeless(const std::function<void(const DialogUser&)>& use) { modeless(*wizard, wizardTitle, use); }

  testing_support::NativeSystem native;
  TestWindow mailClient;
  Ref<addin::frmwizard> wizard = platform::make<addin::frmwizard>();

 private:
  static void useAndClose(const std::function<void(const DialogUser&)>& use, const wchar_t* title = wizardTitle) {
    const DialogUser user(title);
    EXPECT_TRUE(user.isThere());
    use(user);
    if (user.isThere()) user.closeByMenu();
    EXPECT_TRUE(user.hasGone());
  }

  platform::System mixed_;
};

}  // namespace win32_tests
