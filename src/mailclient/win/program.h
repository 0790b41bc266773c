// What the mail client does with a window and without one: it loads add-ins, executes commands from standard input,
// serves messages, and ends once, whoever asks for it.
#pragma once

#include "com/windows.h"
#include "mailclient/console.h"
#include "mailclient/steps.h"
#include "mailclient/win/addin_loader.h"
#include "mailclient/win/console_input.h"

namespace mailclient::win {

class Program : public ConsoleHost {
 public:
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  void answer(const std::string& line) override { writeAnswer(line); }
  bool waitUntil(const std::function<bool()>& condition, std::int32_t milliseconds) override {
    return serveUntil(condition, static_cast<DWORD>(milliseconds));
  }
  void connectAddIn(const String& progId) override { addIns_.connect(progId, ConnectMode::AfterStartup); }
  void disconnectAddIn(const String& progId, std::int32_t removeMode) override {
    addIns_.disconnect(progId, removeMode);
  }
  // Every step of it is tried, whatever fails before.
  void quit() final;

 protected:
  explicit Program(MailClient& client) : client_(client), addIns_(client), console_(client, *this) {}
  ~Program() = default;

  void execute(const std::string& line);
  void loadAddIns();
  void saveButtons();
  // Until the program has ended; its exit code.
  int serveMessages();
  bool isEnding() const { return ending_; }

 private:
  // Before the windows close, and after all is saved that the mail client itself keeps.
  virtual void leaving(Steps& /*steps*/) {}
  virtual void left(Steps& /*steps*/) {}

  MailClient& client_;
  AddInLoader addIns_;
  Console console_;
  bool ending_ = false;
};

}  // namespace mailclient::win
