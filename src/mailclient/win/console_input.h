// Lines of standard input, read on a thread of their own and posted to the window that executes them, as Windows does
// with a user's input: a command can arrive in the wait of another one. The end of the input is the command "quit".
#pragma once

#include <functional>
#include <memory>
#include <string>

namespace mailclient::win {

class ConsoleInput {
 public:
  explicit ConsoleInput(std::function<void(const std::string& line)> execute);
  ConsoleInput(const ConsoleInput&) = delete;
  ConsoleInput& operator=(const ConsoleInput&) = delete;
  ~ConsoleInput();

 private:
  class Lines;
  class Reader;
  std::unique_ptr<Reader> reader_;
};

// The end of main(), instead of a return: a thread that still reads standard input cannot be waited for, and the usual
// end of a process, which terminates it and then takes locks, may hang. Writes what the standard streams still hold.
void endProcess(int code);

// An answer, on standard output.
void writeAnswer(const std::string& line);

// Serves messages until the condition holds (true), or the time is over or the program ends (false).
bool serveUntil(const std::function<bool()>& condition, unsigned long milliseconds);

}  // namespace mailclient::win
