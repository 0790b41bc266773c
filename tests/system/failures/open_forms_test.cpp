// The add-in is disconnected, or the mail client ends, while the add-in's own forms are open: those that it waits for
// and those that it does not.

#include "com/windows.h"
#include "product_test.h"
#include "support/win32/dialog_user.h"
#include "unit/win32_system/test_window.h"

namespace failures_tests {
namespace {

using testing_support::DialogUser;
using win32_tests::Thread;

constexpr const wchar_t* wizardTitle = L"Marrick Text Message Add-In for Outlook 2000";
constexpr const wchar_t* aboutTitle = L"About Text Message Add-In";
constexpr const char* newMessage = "click \"New Text Message\"";
constexpr const char* about = "click \"About Text Message Add-In\"";

const Lines buttonsRemoved{"Removed new button", "Removed send&receive button", "Removed delete button",
                           "Removed Help button"};
// The last window closes, and then the add-in is told: the buttons are removed twice.
const Lines mailClientEnds = buttonsRemoved + Lines{"OnBeginShutdown", "OnDisconnection"} + buttonsRemoved;
// What OnConnection comes back with when the add-in was torn down inside it.
const Lines startGivenUp{"Error:-1, Failed in baseclass.StartUpCompleted, IDTExtensibility2_OnConnection"};

class OpenForms : public ProductTest {
 protected:
  OpenForms() {
    testing_support::removeOption(L"WizardDone");
    testing_support::setOption(L"SendReceive_UseAuto", 1);
    testing_support::setShortMinute(50);
  }
  void SetUp() override { startHandset(); }

  // Starts the mail client, whose start-up waits for the wizard, while somebody uses that.
  void startWhile(const std::wstring& mode, const std::function<void(const DialogUser&)>& use) {
    const Thread user([&] {
      const DialogUser wizard(wizardTitle);
      EXPECT_TRUE(wizard.isThere());
      use(wizard);
      EXPECT_TRUE(wizard.hasGone());
    });
    client_ = std::make_unique<MailClientProcess>(L"", mode);
    EXPECT_TRUE(client_->isReady());
  }
  static void cancel(const DialogUser& wizard) { EXPECT_TRUE(wizard.click(L"Cancel")); }

  // Connects the add-in, which waits for the wizard while somebody uses that.
  void connectWhile(const std::function<void(const DialogUser&)>& use) {
    const int connecting = client_->send("connect mrktxtmsg.connect");
    const DialogUser wizard(wizardTitle);
    ASSERT_TRUE(wizard.isThere());
    use(wizard);
    EXPECT_TRUE(wizard.hasGone());
    EXPECT_TRUE(client_->answerTo(connecting, patience).ok);
  }

  void click(const char* command) { EXPECT_EQ(ask(command).result, "clicked"); }
  void expectEnd() {
    quitsByItself_ = true;  // and then its exit code is looked at
    ASSERT_TRUE(client_->waitForEnd(patience)) << "the mail client does not end";
  }
  void waitForPolling() {
    const std::size_t from = mark();
    EXPECT_TRUE(testing_support::waitUntil([&] { return trace_->count("Poll timer: 60000", from) >= 4; }, patience));
  }
};

TEST_F(OpenForms, ModalWizard_NothingBesideItAndNothingAfterDisconnecting) {
  startWhile(L"--headless", cancel);
  disconnectAddIn();
  EXPECT_EQ(references(), Lines{});
  const Lines waiting = connectingLines(Start::ByTheUser);

  std::size_t from = mark();
  connectWhile([this](const DialogUser& wizard) {
    click(newMessage);  // the menus are in place already
    click(about);
    EXPECT_EQ(FindWindowW(L"#32770", aboutTitle), nullptr);
    EXPECT_TRUE(wizard.isThere());
    disconnectAddIn();
  });
  EXPECT_EQ(references(), Lines{});
  const std::string error401 = "Error:401, Can't show non-modal form when modal form is displayed, mrktxtmsg";
  EXPECT_EQ(traced(from), waiting + Lines(2, error401) + disconnectedByUserLines() + startGivenUp);

  from = mark();
  connectWhile([this](const DialogUser&) { EXPECT_TRUE(ask("explorer close").ok); });  // the last window
  EXPECT_EQ(traced(from), waiting + buttonsRemoved + startGivenUp);
  disconnectAddIn();
  EXPECT_EQ(references(), Lines{});

  EXPECT_TRUE(ask("explorer open").ok);
  from = mark();
  connectWhile([this](const DialogUser&) { client_->send("quit"); });
  expectEnd();
  EXPECT_EQ(traced(from), waiting + mailClientEnds + startGivenUp);
}

TEST_F(OpenForms, ModalWizard_WindowOfTheMailClientClosed_EndsIt) {
  startWhile(L"--console", [](const DialogUser& wizard) {
    const HWND window = GetWindow(wizard.dialog(), GW_OWNER);
    EXPECT_FALSE(IsWindowEnabled(window));
    PostMessageW(window, WM_CLOSE, 0, 0);
  });
  expectEnd();
  EXPECT_EQ(traced(0), connectingLines(Start::OfTheMailClient) + mailClientEnds + startGivenUp);
}

TEST_F(OpenForms, ModelessWizardAndAboutBox_GoWithTheAddInAndNothingGoesOn) {
  startWhile(L"--console", cancel);
  {
    const DialogUser wizard(wizardTitle);  // the polling opens it
    click(about);
    const DialogUser box(aboutTitle);
    EXPECT_TRUE(wizard.isThere());
    EXPECT_TRUE(box.isThere());
    waitForPolling();  // and finds it open
    disconnectAddIn();
    const std::size_t after = mark();
    EXPECT_TRUE(wizard.hasGone());
    EXPECT_TRUE(box.hasGone());
    EXPECT_EQ(references(), Lines{});
    ask("idle 200");  // four of the polling timer's minutes
    EXPECT_EQ(traced(after), Lines{});
  }
  EXPECT_EQ(trace_->count("Error:"), noLocalizer.size() * 2) << "one for the buttons, one for the engine";

  const std::size_t from = mark();
  connectWhile(cancel);
  click(newMessage);
  click(about);
  const DialogUser wizard(wizardTitle);
  const DialogUser box(aboutTitle);
  ASSERT_TRUE(wizard.isThere());
  EXPECT_TRUE(box.isThere());
  PostMessageW(GetWindow(wizard.dialog(), GW_OWNER), WM_CLOSE, 0, 0);
  EXPECT_TRUE(wizard.hasGone());
  EXPECT_TRUE(box.hasGone());
  expectEnd();
  Lines lines = traced(from);
  std::erase(lines, "Poll timer: 60000");
  EXPECT_EQ(lines, startLines(Start::ByTheUser) + mailClientEnds);
}

}  // namespace
}  // namespace failures_tests
