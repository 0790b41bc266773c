// Starting programs and the help viewer.
#pragma once

#include "addin/platform/system.h"
#include "com/windows.h"

namespace win32 {

class Shell final : public platform::Shell {
 public:
  // `command` is a program, quoted or not, and its arguments. Besides 5 and 53: error 70 when access is denied, and 5
  // for a file that is no program.
  void start(platform::StringView command, std::int16_t windowStyle) override;
  void htmlHelp(platform::WindowHandle owner, const std::string& path, std::uint32_t command,
                std::uint32_t data) override;
  std::int32_t platformId() override;

 private:
  HMODULE helpViewer_ = nullptr;  // stays loaded: its windows outlive the call that opened them
};

// Loads a library by its full path, so that nothing of the same name in another folder takes its place. Error 53 when
// it is not there.
HMODULE loadFrom(platform::StringView folder, platform::StringView file);

}  // namespace win32
