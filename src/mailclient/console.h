// The mail client's command line: what a user would do with mouse and keyboard, as one command per line.
//
// A line is a command and its arguments, separated by blanks. Text is UTF-8. An argument with blanks stands in double
// quotes; between them a backslash goes before a quote, a backslash, r, n, t, and before u with four hexadecimal digits
// (one UTF-16 unit). The answer is any number of lines that begin with "- ", and then one line "ok" (with what the
// command tells) or "error NUMBER DESCRIPTION". Each line of the n-th command's answer begins with n and a blank,
// because a command can run inside another one's wait.
//
// The commands: console_help.cpp, which `help` and mailclient --help show.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "mailclient/client.h"

namespace mailclient {

// What the command line needs of the program that it runs in.
class ConsoleHost {
 public:
  virtual void answer(const std::string& line) = 0;
  // Serves messages until the condition holds (true) or the time is over (false).
  virtual bool waitUntil(const std::function<bool()>& condition, std::int32_t milliseconds) = 0;
  virtual void connectAddIn(const String& progId) = 0;
  virtual void disconnectAddIn(const String& progId, std::int32_t removeMode) = 0;
  virtual void quit() = 0;
  // The items of the front window's menus as they are shown: id=N text="..." enabled=0|1 checked=0|1 icon=0|1.
  virtual std::vector<std::string> menuItems() { return {}; }

 protected:
  ~ConsoleHost() = default;
};

class Console {
 public:
  Console(MailClient& client, ConsoleHost& host) : client_(client), host_(host) {}
  void execute(std::string_view line);

  // Every command, one line each.
  static std::string_view helpText();

  using Words = std::vector<String>;
  // Error 5 for a text that ends inside quotes or has an unknown escape.
  static Words split(std::string_view line);
  // In quotes, as split reads it.
  static std::string quoted(StringView text);

 private:
  struct Command;
  using Result = std::string;
  static const Command* find(StringView name);

  Result help(const Words& words);
  Result status(const Words& words);
  Result folders(const Words& words);
  Result list(const Words& words);
  Result compose(const Words& words);
  Result item(const Words& words);
  Result contact(const Words& words);
  Result remove(const Words& words);
  Result move(const Words& words);
  Result select(const Words& words);
  Result reply(const Words& words);
  Result buttons(const Words& words);
  Result click(const Words& words);
  Result menus(const Words& words);
  Result explorer(const Words& words);
  Result inspector(const Words& words);
  Result options(const Words& words);
  Result assistant(const Words& words);
  Result balloons(const Words& words);
  Result form(const Words& words);
  Result connect(const Words& words);
  Result disconnect(const Words& words);
  Result wait(const Words& words);
  Result idle(const Words& words);
  Result references(const Words& words);
  Result quit(const Words& words);

  void tell(const std::string& line);
  void listFolder(const Folder& folder);
  std::shared_ptr<Folder> folderNamed(StringView name) const;
  MessagePtr messageWith(const String& entryId) const;
  void saved(const MessagePtr& message);

  MailClient& client_;
  ConsoleHost& host_;
  int number_ = 0;    // of the last command that began
  int answered_ = 0;  // the command whose answer is being given
};

}  // namespace mailclient
