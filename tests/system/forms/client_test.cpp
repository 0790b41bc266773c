// The add-in's forms in a mail client that is a process of its own, with every server registered: the wizard that
// start-up waits for, the one that a command opens, and the About box.

#include <functional>

#include <gtest/gtest.h>

#include "support/win32/dialog_user.h"
#include "support/win32/mail_client_process.h"
#include "support/win32/product.h"
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

TEST_F(ClientForms, FinishedAtStartUp_TheCommandMakesAMessage) {
  start([](const DialogUser& dialog) {
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(dialog.click(L"Next >"));
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
}

}  // namespace
