// From the installation to the finished wizard.
#include <algorithm>

#include "support/win32/registry_listing.h"
#include "tour/tour.h"

namespace tour {
namespace {

constexpr const wchar_t* ownNumber = L"I want to use a different number.";
constexpr const wchar_t* polling = L"I want to send and receive text messages every";

bool waitForPage(const DialogUser& wizard, const wchar_t* heading) {
  return waitUntil([&] { return wizard.find(L"Static", heading) != nullptr; });
}

bool waitForTick(const DialogUser& wizard, const wchar_t* caption, bool ticked) {
  return waitUntil([&] { return DialogUser::isTicked(wizard.button(caption)) == ticked; });
}

void clickOn(const DialogUser& wizard, const wchar_t* caption) {
  if (wizard.waitFor(caption)) screen::clickOn(wizard.button(caption));
}

constexpr const wchar_t* headings[] = {L"Service Centre Number", L"Send and Receive", L"User Information"};

}  // namespace

void Tour::install() {
  step("Install: register the servers and the add-in");
  for (const std::string& line : registerProduct()) check(!line.starts_with("failed"), line);
  removeAllOptions();
  ownerBefore_ = setRegisteredOwner(L"Eva Moberg");
  setHelpFiles(L"", 0);
  check(installHelpViewer(), "a stand-in for the system's help viewer shows what it is asked for");
  setShortMinute(0);
  // The add-in would start it, but waits for it for little more than a second.
  if (!trace_.startViewer()) check(false, "the debug viewer is there");
  // A small SIM card: it is filled by messages that arrive.
  handset_ = std::make_unique<ServedPhone>(folder_ + L"\\handset.phone", L"--sm 8");
  check(phone("list").empty(), "a simulated handset is there, its memories empty");
  for (const std::string& put :
       ServedPhone::commands("store SM read", "+46704445566", u"Read on the phone already", "261120075900"))
    phone(put);
  check(handset_->serve(), "with a message on its SIM card, it is plugged in, and dvmworker.exe finds it");
}

void Tour::startTheFirstTime() {
  step("Start the mail client for the first time: the setup wizard comes by itself");
  client_ = std::make_unique<MailClientProcess>(MailClientProcess::NotAwaited{}, L"--store \"" + folder_ + L"\\store\"",
                                                L"--console");
  const DialogUser wizard(wizardTitle);
  check(wizard.isThere(), "the wizard is there");
  explorer_ = screen::await(process(), screen::explorerClass);
  check(explorer_ && !IsWindowEnabled(explorer_), "and the mail client's window waits for it");
  if (!wizard.isThere() || !toFront(wizard.dialog(), "the wizard")) return;
  SetCursorPos(0, 0);  // out of the way: what lies under the mouse is lit
  picture("wizard-welcome");
  walkThroughTheWizard(wizard);
  walkBackAndCancel(wizard);
  check(client_->awaitReady(), "the mail client goes on");
  for (const char* const line :
       {"<==== MRKTXTMSG Version 1.0.0", "Connectmode:1", "ActiveWindow is something", "Added textmessage to new menu",
        "Added send&receive to tools menu", "Added about to help menu", "Added Help button to Help menu",
        "If phone connected - Get reference to SMS object", "m_objSMSHandler_OnPhoneConnected: True"})
    traced(line, 0);
}

void Tour::walkThroughTheWizard(const DialogUser& wizard) {
  check(!IsWindowEnabled(wizard.button(L"< Back")), "there is no way back from its first page");
  screen::press(VK_RETURN);
  fillServiceCentre(wizard);
  fillSendReceive(wizard);
  fillUserInformation(wizard);
}

void Tour::fillServiceCentre(const DialogUser& wizard) {
  check(waitForPage(wizard, headings[0]), "Enter goes on to the service centre");
  check(wizard.waitForFocus(wizard.list()) && waitForText(wizard.list(), L"As stored on the SIM card ()"),
        "the list offers what the SIM card says");
  screen::press(VK_F4);
  waitUntil([&] { return SendMessageW(wizard.list(), CB_GETDROPPEDSTATE, 0, 0) != 0; });
  picture("wizard-service-centres");
  // In the open list the mouse may choose as well, wherever it is.
  screen::press(VK_F4);
  waitUntil([&] { return SendMessageW(wizard.list(), CB_GETDROPPEDSTATE, 0, 0) == 0; });
  screen::press(VK_HOME);
  screen::press(VK_DOWN);
  screen::press(VK_DOWN);
  check(waitForText(wizard.list(), L"Austral Mobile, Australia (+61 491 570 006)"), "and operators");
  clickOn(wizard, ownNumber);
  check(wizard.waitFor(L"Next >", false), "a number of one's own, not typed yet: Next is grey");
  screen::press(VK_TAB);
  check(wizard.waitForFocus(wizard.edit()), "the field for it is next");
  screen::type(L"+46705008999");
  check(wizard.waitFor(L"Next >") && !IsWindowEnabled(wizard.list()), "typed: Next can be clicked, the list is grey");
  picture("wizard-own-number");
  clickOn(wizard, L"Next >");
}

void Tour::fillSendReceive(const DialogUser& wizard) {
  check(waitForPage(wizard, headings[1]), "Next goes on to sending and receiving");
  check(waitForTick(wizard, polling, true) && waitForText(wizard.edit(), L"2"), "automatically, every 2 minutes");
  picture("wizard-send-and-receive");
  screen::press(VK_TAB);
  check(wizard.waitForFocus(wizard.edit()), "Tab goes to the minutes");
  screen::press(VK_HOME);
  screen::press(VK_DELETE);
  check(wizard.waitFor(L"Next >", false), "without a number Next is grey");
  screen::type(L"x1-5");
  check(waitForText(wizard.edit(), L"15") && wizard.waitFor(L"Next >"), "only digits can be typed");
  screen::press(VK_RETURN);
}

void Tour::fillUserInformation(const DialogUser& wizard) {
  check(waitForPage(wizard, headings[2]), "Enter goes on to the user");
  check(wizard.waitFor(L"Finish", false), "Finish is grey");
  check(waitForText(wizard.edit(0), L"Eva Moberg"), "the name is the registered owner's");
  screen::press(VK_TAB);
  check(wizard.waitForFocus(wizard.edit(1)), "Tab goes to the phone number");
  screen::type(L"+46 70-000 00 01 x");
  check(waitForText(wizard.edit(1), L"+46700000001"), "which takes digits and +");
  check(wizard.waitFor(L"Finish"), "Finish can be clicked");
  picture("wizard-user-information");
}

void Tour::walkBackAndCancel(const DialogUser& wizard) {
  clickOn(wizard, L"< Back");
  check(waitForPage(wizard, headings[1]) && waitForText(wizard.edit(), L"15"), "Back: what was typed is still there");
  clickOn(wizard, L"< Back");
  check(waitForPage(wizard, headings[0]) && waitForText(wizard.edit(), L"+46705008999"), "Back: and the own number");
  clickOn(wizard, L"< Back");
  check(wizard.waitFor(L"< Back", false), "Back: the first page again");
  screen::press(VK_ESCAPE);
  check(wizard.hasGone(), "Esc cancels the wizard");
  check(listed(HKEY_CURRENT_USER, optionsKey) == std::vector<std::string>{"none"}, "and nothing has been stored");
}

void Tour::lookAtTheWindow() {
  step("The mail client's window, with the add-in's commands in its menus");
  const auto buttons = ask("buttons").lines;
  const auto has = [&](const std::string& menu, const std::string& caption) {
    const bool there = std::any_of(buttons.begin(), buttons.end(), [&](const std::string& line) {
      return field(line, "menu") == menu && field(line, "caption") == caption && field(line, "enabled") == "1";
    });
    check(there, "button \"" + caption + "\" in its menu");
  };
  has("30037", "Text Message");
  has("30007", "Send && Receive Text Messages");
  has("30010", "About Text Message Add-In");
  has("30010", "Text Message Add-In Help");
  const auto forms = ask("form").lines;
  check(forms.size() == 1 && forms[0].starts_with("\"IPM.Note.TxtMsg\""), "the text-message form is published");
  const HWND status = screen::child(explorer_, STATUSCLASSNAMEW);
  check(waitUntil([&] { return screen::statusText(status, 1) == L"Marrick Simulated handset connected"; }),
        "the status bar says that the phone is connected");
  check(waitUntil([&] { return IsWindowEnabled(explorer_) != FALSE; }), "the window takes clicks again");
  picture("mail-client");
}

void Tour::finishTheWizard() {
  step("New > Text Message before the setup: the wizard comes again, and is finished");
  openNewMenu();
  picture("new-menu");
  screen::press(VK_RETURN);
  const DialogUser wizard(wizardTitle);
  check(wizard.isThere(), "instead of a message, the wizard comes");
  check(IsWindowEnabled(explorer_) != FALSE, "and the mail client's window does not wait for it");
  if (!wizard.isThere() || !toFront(wizard.dialog(), "the wizard")) return;
  clickOn(wizard, L"Help");
  check(helpIsAsked(L"smsx_en-us.chm"), "its Help button asks for smsx_en-us.chm");
  toFront(wizard.dialog(), "the wizard");
  clickOn(wizard, L"Next >");
  check(waitForPage(wizard, headings[0]), "the service centre");
  clickOn(wizard, ownNumber);
  screen::press(VK_TAB);
  wizard.waitForFocus(wizard.edit());
  screen::type(L"+46705008999");
  check(waitForText(wizard.edit(), L"+46705008999"), "a number of one's own");
  screen::press(VK_RETURN);
  check(waitForPage(wizard, headings[1]), "sending and receiving");
  screen::press(VK_SPACE);
  check(waitForTick(wizard, polling, false), "the space bar takes the tick away: not automatically");
  screen::press(VK_RETURN);
  check(waitForPage(wizard, headings[2]), "the user");
  screen::press(VK_TAB);
  wizard.waitForFocus(wizard.edit(1));
  screen::type(L"+46700000001");
  check(waitForText(wizard.edit(1), L"+46700000001") && wizard.waitFor(L"Finish"), "the own mobile number");
  screen::press(VK_RETURN);
  check(wizard.hasGone(), "Enter finishes the wizard");
  checkStoredSettings();
}

// Texts are stored without the NUL that others write behind them.
void Tour::checkStoredSettings() {
  const std::string text = " without its NUL";
  std::vector<std::string> wanted = {"|SCAddress|As stored on the SIM card ()" + text,
                                     "|SCAddress_Own|(+46705008999)" + text,
                                     "|SCAddress_UseOwn|dword 1",
                                     "|SendReceive_UseAuto|dword 0",
                                     "|SendReceive_AutoIntervall|dword 2",
                                     "|SendReceive_AutoRemove|dword 0",
                                     "|My_FullName|Eva Moberg" + text,
                                     "|My_PhoneNo|+46700000001" + text,
                                     "|WizardDone|dword 1"};
  std::vector<std::string> stored = listed(HKEY_CURRENT_USER, optionsKey);
  std::sort(stored.begin(), stored.end());
  std::sort(wanted.begin(), wanted.end());
  check(stored == wanted, "every value is in the registry:");
  for (const std::string& line : stored) say(line.substr(1, line.find(text) - 1));
}

}  // namespace tour
