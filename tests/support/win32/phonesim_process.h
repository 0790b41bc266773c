// phonesim.exe as a process of its own, driven as by somebody at its console (docs/phonesim.md).
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "support/patience.h"
#include "support/win32/mail_client_process.h"

namespace testing_support {

class PhonesimProcess {
 public:
  explicit PhonesimProcess(const std::wstring& arguments);
  // A process that still runs is ended by force.
  ~PhonesimProcess();
  PhonesimProcess(const PhonesimProcess&) = delete;
  PhonesimProcess& operator=(const PhonesimProcess&) = delete;

  // The rest of the first line that begins like this; nothing when none came in time.
  std::optional<std::string> awaitLine(std::string_view beginning, std::uint32_t milliseconds = patience);
  void type(std::string_view command) { send(command); }
  Answer ask(std::string_view command, std::uint32_t milliseconds = patience);
  void kill();

 private:
  class Pipes;
  int send(std::string_view command);

  std::unique_ptr<Pipes> pipes_;
  int sent_ = 0;
};

}  // namespace testing_support
