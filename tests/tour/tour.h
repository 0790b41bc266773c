// The guided tour: does what a user would do, at the screen and with the phone, and says what came of each step.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "support/win32/dialog_user.h"
#include "support/win32/mail_client_process.h"
#include "support/win32/product.h"
#include "support/win32/screen.h"
#include "support/win32/served_phone.h"

namespace tour {

using namespace testing_support;
using platform::String;

inline constexpr const char* addInId = "mrktxtmsg.connect";
inline constexpr const char* sim = "SM";

class Tour {
 public:
  // Everything is left in this folder: the mail store, the trace, and a picture of each step.
  explicit Tour(const std::wstring& folder);
  ~Tour();
  Tour(const Tour&) = delete;
  Tour& operator=(const Tour&) = delete;

  int run();

 private:
  // ---- telling
  void step(const char* title);
  void say(const std::string& text) const;
  bool check(bool holds, const std::string& what);
  bool traced(const std::string& line, std::size_t from);
  // What is on the screen now, as NN-NAME.png.
  void picture(const char* name);

  // ---- asking
  Answer ask(const std::string& command, std::uint32_t milliseconds = patience) {
    return client_->ask(command, milliseconds);
  }
  std::size_t itemsIn(const std::string& folder);
  bool waitFor(const std::string& folder, std::size_t count);
  // The item of a folder whose body is this text; empty when there is none.
  std::string itemWith(const std::string& folder, const std::string& body);
  static std::string field(const std::string& line, const std::string& name) {
    return MailClientProcess::field(line, name);
  }
  bool sendReceiveEnabled();
  bool sendTimerIsArmed() const;
  // A command at the handset's console; its answer's lines.
  std::vector<std::string> phone(const std::string& command);
  std::size_t storedOn(const char* memory) { return phone("list " + std::string(memory)).size(); }
  // A message arrives at the handset.
  void arrives(const char* number, const char16_t* text, const char* stamp);

  // ---- at the screen
  DWORD process() const { return client_->processId(); }
  HWND list() const { return screen::child(explorer_, WC_LISTVIEWW); }
  HWND awaitItemWindow(const std::wstring& title);
  bool toFront(HWND window, const char* what);
  // Opens a menu of the main window with Alt and its letter, and goes to the item with the arrow keys: `up` steps from
  // the end of the menu.
  void openMenu(wchar_t letter, const std::function<void()>& below, int up);
  void choose(wchar_t letter, int up);
  void openNewMenu();
  // Clicks Send & Receive and waits for the run to have armed the send timer.
  void clickSendReceive();
  // Selects the row of the list whose column `column` says this.
  bool selectRow(int column, const std::wstring& text);
  bool helpIsAsked(const std::wstring& path);

  // ---- the steps
  void install();
  void startTheFirstTime();
  void walkThroughTheWizard(const DialogUser& wizard);
  void fillServiceCentre(const DialogUser& wizard);
  void fillSendReceive(const DialogUser& wizard);
  void fillUserInformation(const DialogUser& wizard);
  void walkBackAndCancel(const DialogUser& wizard);
  void lookAtTheWindow();
  void finishTheWizard();
  void checkStoredSettings();
  void showAbout();
  void askForHelp();
  void openOptions();
  void addContact();
  void writeMessage();
  void sendLongMessage();
  void receiveAnswer();
  void replyToAnswer();
  void receiveMessages();
  void pollForMessages();
  void listAgain();
  void deleteOne();
  void removeAutomatically();
  void fillTheSim();
  void refuseAMessage();
  void unplugDuringASend();
  void disconnectAddIn();

  std::wstring folder_;
  std::wstring ownerBefore_;
  TraceLog trace_;
  std::unique_ptr<ServedPhone> handset_;
  std::unique_ptr<MailClientProcess> client_;
  HWND explorer_ = nullptr;
  int steps_ = 0;
  int pictures_ = 0;
  int passed_ = 0;
  int failed_ = 0;
};

bool waitForText(HWND control, const std::wstring& text);

inline constexpr const wchar_t* wizardTitle = L"Marrick Text Message Add-In for Outlook 2000";
inline constexpr const wchar_t* aboutTitle = L"About Text Message Add-In";
inline constexpr const wchar_t* messageBoxTitle = L"Marrick Text Message Add-In For Outlook";

}  // namespace tour
