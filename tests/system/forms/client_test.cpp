// The add-in's forms in a mail client that is a process of its own, with every server registered: the wizard that
// start-up waits for, the one that a command opens, and the About box.

#include <algorithm>
#include <functional>

#include <gtest/gtest.h>

#include "support/win32/dialog_user.h"
#include "support/win32/mail_client_process.h"
#include "support/win32/product.h"
#include "support/win32/registry_listing.h"
#include "unit/win32_system/test_window.h"

namespace {

using namespace testing_support;
using win32_tests::Thread;

constexpr const wchar_t* wizardTitle = L"Marrick Text Message Add-In for Outlook 2000";
constexpr const wchar_t* aboutTitle = L"About Text Message Add-In";
constexpr const char* newMessage = "click \"New Text Message\"";
constexpr const char* about = "click \"About Text Message Add-In\"";

class ClientForms : public testing::Test {
 protected:
  static void SetUpTestSuite() { expectDone(registerProduct()); }
  static void TearDownTestSuite() { expectDone(unregisterProduct()); }
  static void expectDone(const std::vector<std::string>& lines) {
    for (const std::string& line : lines) EXPECT_FALSE(line.starts_with("failed")) << line;
  }

  ClientForms() {
    removeAllOptions();
    wchar_t folder[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    folder_ = std::wstring(folder) + L"mrktxtmsg_forms";
    CreateDirectoryW(folder_.c_str(), nullptr);
  }
  ~ClientForms() override {
    client_ = nullptr;
    removeAllOptions();
  }

  // Starts the mail client, whose start-up waits until the wizard has been dealt with.
  void start(const std::function<void(const DialogUser&)>& use) {
    const Thread user([&] {
      const DialogUser dialog(wizardTitle);
      EXPECT_TRUE(dialog.isThere());
      use(dialog);
      EXPECT_TRUE(dialog.hasGone());
    });
    client_ = std::make_unique<MailClientProcess>(L"--store \"" + folder_ + L"\\store\"");
    EXPECT_TRUE(client_->isReady());
  }
  static void cancel(const DialogUser& dialog) { EXPECT_TRUE(dialog.click(L"Cancel")); }

  static void expectSampleList(HWND list) {
    ASSERT_EQ(SendMessageW(list, CB_GETCOUNT, 0, 0), 8);
    EXPECT_EQ(entry(list, 0), L"Choose your service centre");
    EXPECT_EQ(entry(list, 1), L"As stored on the SIM card ()");
    for (int i = 2; i < 8; ++i) {
      const std::wstring text = entry(list, i);
      const std::size_t number = text.find(L"(+");
      ASSERT_NE(number, std::wstring::npos) << i;
      EXPECT_EQ(text.find_first_not_of(L"0123456789 ", number + 2), text.size() - 1) << i;
      EXPECT_EQ(text.back(), L')') << i;
      EXPECT_EQ(text.find(L'"'), std::wstring::npos) << i;
    }
  }
  static std::wstring entry(HWND list, int index) {
    const auto at = static_cast<WPARAM>(index);
    std::wstring text(static_cast<std::size_t>(SendMessageW(list, CB_GETLBTEXTLEN, at, 0)) + 1, L'\0');
    text.resize(static_cast<std::size_t>(SendMessageW(list, CB_GETLBTEXT, at, reinterpret_cast<LPARAM>(text.data()))));
    return text;
  }

  std::wstring folder_;
  std::unique_ptr<MailClientProcess> client_;
};

TEST_F(ClientForms, CancelledAtStartUp_TheCommandOpensItAgainWithoutWaiting) {
  start(cancel);
  EXPECT_EQ(client_->ask(newMessage).result, "clicked");  // although the wizard is still open
  const DialogUser dialog(wizardTitle);
  ASSERT_TRUE(dialog.isThere());
  EXPECT_TRUE(dialog.click(L"Next >"));
  EXPECT_EQ(client_->ask(newMessage).result, "clicked");
  EXPECT_TRUE(dialog.waitFor(L"< Back"));  // the same one, where it was
  EXPECT_EQ(FindWindowExW(nullptr, dialog.dialog(), L"#32770", wizardTitle), nullptr);
  dialog.press(VK_ESCAPE);
  EXPECT_TRUE(dialog.hasGone());
  EXPECT_TRUE(client_->quit());
}

// With the list of service centres that the product comes with.
TEST_F(ClientForms, FinishedAtStartUp_TheCommandMakesAMessage) {
  start([](const DialogUser& dialog) {
    EXPECT_TRUE(dialog.click(L"Next >"));
    expectSampleList(dialog.list());
    dialog.select(dialog.list(), 5);
    for (int i = 0; i < 2; ++i) EXPECT_TRUE(dialog.click(L"Next >"));
    EXPECT_TRUE(waitUntil([&] { return dialog.edit(1) != nullptr; }));
    EXPECT_TRUE(dialog.waitForFocus(dialog.edit(0)));
    SendMessageW(dialog.edit(0), EM_SETSEL, 0, -1);
    dialog.type(L"Eva");
    EXPECT_TRUE(waitUntil([&] { return DialogUser::textOf(dialog.edit(0)) == L"Eva"; }));
    dialog.press(VK_TAB);
    EXPECT_TRUE(dialog.waitForFocus(dialog.edit(1)));
    dialog.type(L"+4670");
    EXPECT_TRUE(dialog.waitFor(L"Finish"));
    dialog.press(VK_RETURN);
  });
  auto stored = listed(HKEY_CURRENT_USER, L"Software\\Microsoft\\Office\\9.0\\Outlook\\Options\\TextMessage");
  std::sort(stored.begin(), stored.end());
  EXPECT_EQ(stored,
            (std::vector<std::string>{"|My_FullName|Eva without its NUL", "|My_PhoneNo|+4670 without its NUL",
                                      "|SCAddress_Own|() without its NUL", "|SCAddress_UseOwn|dword 0",
                                      "|SCAddress|Kestrel Wireless, United Kingdom (+44 7700 900 123) without its NUL",
                                      "|SendReceive_AutoIntervall|dword 2", "|SendReceive_AutoRemove|dword 0",
                                      "|SendReceive_UseAuto|dword 1", "|WizardDone|dword 1"}));
  EXPECT_EQ(client_->ask(newMessage).result, "clicked");
  EXPECT_EQ(FindWindowW(L"#32770", wizardTitle), nullptr);
  EXPECT_TRUE(client_->quit());
}

TEST_F(ClientForms, About_ShowsTheVersionOfTheFileAndIsNotWaitedFor) {
  start(cancel);
  EXPECT_EQ(client_->ask(about).result, "clicked");
  const DialogUser dialog(aboutTitle);
  ASSERT_TRUE(dialog.isThere());
  EXPECT_NE(dialog.find(L"Static", L"Version 1.0.0"), nullptr);
  EXPECT_EQ(client_->ask(about).result, "clicked");
  EXPECT_EQ(FindWindowExW(nullptr, dialog.dialog(), L"#32770", aboutTitle), nullptr);
  EXPECT_TRUE(dialog.waitForFocus(dialog.button(L"OK")));
  dialog.press(VK_RETURN);
  EXPECT_TRUE(dialog.hasGone());
  EXPECT_TRUE(client_->quit());
}

TEST_F(ClientForms, MailClientThatQuits_TakesItsOpenFormsAlong) {
  start(cancel);
  client_->ask(newMessage);
  client_->ask(about);
  const DialogUser wizard(wizardTitle);
  const DialogUser box(aboutTitle);
  EXPECT_TRUE(wizard.isThere());
  EXPECT_TRUE(box.isThere());
  EXPECT_TRUE(client_->quit());
  EXPECT_TRUE(wizard.hasGone());
  EXPECT_TRUE(box.hasGone());
  EXPECT_EQ(client_->exitCode(), 0u);
}

}  // namespace
