// The stand-in mail client as a process of its own, driven through its command line (see mailclient/console.h).
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "support/patience.h"

namespace testing_support {

// The folder of the programs under test: "bin" beside the folder of this test's program. No trailing backslash.
std::wstring productFolder();

struct Answer {
  bool ok = false;
  std::string result;              // behind "ok" or "error"; "no answer" when none came in time
  std::vector<std::string> lines;  // without "- "
};

class MailClientProcess {
 public:
  // Starts mailclient.exe with further arguments and waits until it is ready. `mode` is --headless, or --console for
  // one with windows.
  explicit MailClientProcess(const std::wstring& arguments = L"", const std::wstring& mode = L"--headless");
  // The same without waiting, for a start that somebody at the screen has to help along.
  struct NotAwaited {};
  MailClientProcess(NotAwaited, const std::wstring& arguments, const std::wstring& mode);
  // A process that still runs is ended by force.
  ~MailClientProcess();
  MailClientProcess(const MailClientProcess&) = delete;
  MailClientProcess& operator=(const MailClientProcess&) = delete;

  bool isReady() const { return ready_; }
  bool awaitReady();
  bool isRunning() const;
  std::uint32_t processId() const;
  // What the process ended with; 259 while it runs.
  std::uint32_t exitCode() const;
  // False when it does not end by itself in time.
  bool waitForEnd(std::uint32_t milliseconds = patience) const;
  void kill();

  Answer ask(std::string_view command, std::uint32_t milliseconds = patience) {
    return answerTo(send(command), milliseconds);
  }
  // Does not wait; the number is for answerTo().
  int send(std::string_view command);
  Answer answerTo(int number, std::uint32_t milliseconds = patience);

  // "quit", and then the end of the process. False when it does not end in time.
  bool quit(std::uint32_t milliseconds = patience);

  // The value of `name` in an answer's line: name=value or name="value" (as it stands in the quotes).
  static std::string field(const std::string& line, const std::string& name);
  // A text as an argument of a command; only for texts without quotes and backslashes.
  static std::string quoted(std::string_view text) { return "\"" + std::string(text) + "\""; }

 private:
  class Pipes;
  std::unique_ptr<Pipes> pipes_;
  bool ready_ = false;
  int sent_ = 0;
};

}  // namespace testing_support
