//   tour FOLDER     leaves the mail store, the trace and the pictures in FOLDER
//
// The add-in is the real DLL, loaded by the stand-in mail client through the registry; the phone is phonesim, with
// which the COM servers speak as with a modem. Exit code 0 when every check held.

#include "tour/tour.h"

#include <cstdio>

#include "com/bridge.h"
#include "support/text.h"
#include "support/win32/screenshot.h"

namespace tour {

Tour::Tour(const std::wstring& folder) : folder_(folder), trace_(folder + L"\\trace.log") {}

Tour::~Tour() {
  if (!ownerBefore_.empty()) setRegisteredOwner(ownerBefore_);
  setHelpFiles(L"", 0);
}

int Tour::run() {
  std::printf("A tour of the Marrick Text Message Add-In, through real COM, with real keys and clicks\n");
  install();
  startTheFirstTime();
  lookAtTheWindow();
  finishTheWizard();
  showAbout();
  askForHelp();
  openOptions();
  addContact();
  writeMessage();
  receiveAnswer();
  replyToAnswer();
  sendLongMessage();
  receiveMessages();
  pollForMessages();
  listAgain();
  deleteOne();
  removeAutomatically();
  fillTheSim();
  refuseAMessage();
  unplugDuringASend();
  disconnectAddIn();
  std::printf("\n%d passed, %d failed; %d pictures\n", passed_, failed_, pictures_);
  return failed_ == 0 ? 0 : 1;
}

// ---- telling --------------------------------------------------------------------------------------------------------

void Tour::step(const char* title) { std::printf("\n%d. %s\n", ++steps_, title); }

void Tour::say(const std::string& text) const { std::printf("     %s\n", text.c_str()); }

bool Tour::check(bool holds, const std::string& what) {
  std::printf("  %s %s\n", holds ? "ok  " : "FAIL", what.c_str());
  std::fflush(stdout);
  ++(holds ? passed_ : failed_);
  return holds;
}

bool Tour::traced(const std::string& line, std::size_t from) {
  return check(trace_.waitFor(line, from), "the trace says \"" + line + "\"");
}

void Tour::picture(const char* name) {
  char file[100];
  std::snprintf(file, sizeof file, "%02d-%s.png", ++pictures_, name);
  const std::string narrow = file;
  if (screen::saveScreenshot(process(), folder_ + L"\\" + std::wstring(narrow.begin(), narrow.end())))
    say("picture: " + narrow);
  else
    check(false, "picture: " + narrow);
}

// ---- asking ---------------------------------------------------------------------------------------------------------

std::size_t Tour::itemsIn(const std::string& folder) {
  return ask("list " + MailClientProcess::quoted(folder)).lines.size();
}

bool Tour::waitFor(const std::string& folder, std::size_t count) {
  return ask("wait " + MailClientProcess::quoted(folder) + " " + std::to_string(count) + " " + std::to_string(patience),
             2 * patience)
             .result == "yes";
}

std::string Tour::itemWith(const std::string& folder, const std::string& body) {
  for (const std::string& line : ask("list " + MailClientProcess::quoted(folder)).lines)
    if (field(line, "body") == body) return line;
  return {};
}

bool Tour::sendReceiveEnabled() {
  for (const std::string& line : ask("buttons").lines)
    if (field(line, "tag") == "Send & Receive Text Message") return field(line, "enabled") == "1";
  return false;
}

bool Tour::sendTimerIsArmed() const {
  bool armed = false;
  for (const std::string& line : trace_.lines()) {
    armed |= line.find("SetupSendMessage: ") != std::string::npos;
    armed &= line.find("m_objTimer_Timer: ") == std::string::npos;
  }
  return armed;
}

std::vector<std::string> Tour::phone(const std::string& command) {
  const Answer answer = handset_->ask(command);
  if (!answer.ok) check(false, "the handset's console takes \"" + command + "\": " + answer.result);
  return answer.lines;
}

void Tour::arrives(const char* number, const char16_t* text, const char* stamp) {
  if (!handset_->receives(number, text, stamp)) check(false, "a message arrives, and the server reads it");
}

// ---- at the screen --------------------------------------------------------------------------------------------------

bool waitForText(HWND control, const std::wstring& text) {
  return waitUntil([&] { return screen::textOf(control) == text; });
}

HWND Tour::awaitItemWindow(const std::wstring& title) {
  const HWND window = screen::await(process(), screen::inspectorClass, title);
  const bool there = window && screen::toFront(window);
  const String text(title.begin(), title.end());
  check(there, "a window \"" + utf8(text) + "\" opens");
  return there ? window : nullptr;
}

bool Tour::toFront(HWND window, const char* what) {
  return screen::toFront(window) || check(false, std::string(what) + " comes to the front");
}

void Tour::openMenu(wchar_t letter, const std::function<void()>& below, int up) {
  constexpr const wchar_t* menuClass = L"#32768";
  if (!toFront(explorer_, "the main window")) return;
  screen::pressWithAlt(letter);
  if (!screen::await(process(), menuClass)) check(false, "the menu opens");
  if (below) below();
  for (int i = 0; i < up; ++i) screen::press(VK_UP);
}

void Tour::choose(wchar_t letter, int up) {
  openMenu(letter, {}, up);
  screen::press(VK_RETURN);
}

// File > New: its last item is the add-in's.
void Tour::openNewMenu() {
  openMenu(
      L'F', [] { screen::press('W'); }, 1);
}

void Tour::clickSendReceive() {
  const std::size_t from = trace_.size();
  check(waitUntil([&] { return sendReceiveEnabled(); }), "Send & Receive can be chosen");
  choose(L'T', 1);
  check(trace_.waitFor("SendAll = ", from), "and, chosen from the Tools menu, receives and sends");
}

bool Tour::selectRow(int column, const std::wstring& text) {
  int row = -1;
  const bool found = waitUntil([&] {
    for (int i = 0; i < screen::rows(list()); ++i)
      if (screen::cell(list(), i, column) == text) row = i;
    return row >= 0;
  });
  if (!found || !toFront(explorer_, "the main window")) return false;
  screen::press(VK_HOME);
  for (int i = 0; i < row; ++i) screen::press(VK_DOWN);
  return waitUntil(
      [&] { return SendMessageW(list(), LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED) == row; });
}

}  // namespace tour

int wmain(int count, wchar_t** texts) {
  if (count != 2) {
    std::fputs("tour FOLDER\n", stderr);
    return 2;
  }
  if (FAILED(OleInitialize(nullptr))) return 1;
  int code = 1;
  try {
    code = tour::Tour(texts[1]).run();
  } catch (const platform::RuntimeError& error) {
    std::printf("\nThe tour ended with error %d: %s\n0 passed, 1 failed\n", static_cast<int>(error.number),
                testing_support::utf8(error.description).c_str());
  }
  OleUninitialize();
  return code;
}
