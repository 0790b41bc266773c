// The phone of the installed product: phonesim.exe, which dvmworker.exe finds through the value "Ports".
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "addin/platform/dvmworkerlib.h"
#include "support/win32/phonesim_process.h"

namespace testing_support {

class ServedPhone {
 public:
  // Starts phonesim with its memory in a file, and further arguments. COM must be initialised.
  ServedPhone(const std::wstring& memoryFile, const std::wstring& arguments);
  // Ends both, and the setting.
  ~ServedPhone();
  ServedPhone(const ServedPhone&) = delete;
  ServedPhone& operator=(const ServedPhone&) = delete;

  // Starts the server anew; false when it does not find the phone.
  bool serve();
  // Whether the server has found the phone, or has lost it, now or soon.
  bool awaitConnected(bool connected = true) const;

  // A command at the phone's console.
  Answer ask(std::string_view command) { return phonesim_->ask(command); }
  // The lines of `list` (one per message) and of `sent`.
  std::vector<std::string> stored(std::string_view memory) { return ask("list " + std::string(memory)).lines; }
  std::vector<std::string> sent() { return ask("sent").lines; }
  // A message arrives, with a time stamp of twelve digits; a long one in parts. True when the server has read it from
  // the phone.
  bool receives(const std::string& number, const platform::String& text, std::string_view stamp);
  // What the console is told for that: a command for each part, with its PDU.
  static std::vector<std::string> commands(const std::string& command, const std::string& number,
                                           const platform::String& text, std::string_view stamp);
  // Whether the server's copy of the memories has as many messages as they, now or soon.
  bool awaitCopy();

  // As a crash; what was there is there again, at the same address, once it has started anew.
  void kill() { phonesim_->kill(); }
  void start();

 private:
  std::wstring command_;  // all arguments but the address
  std::string address_ = "127.0.0.1:0";
  std::optional<PhonesimProcess> phonesim_;
  platform::dvmworkerlib::Worker worker_;
};

}  // namespace testing_support
