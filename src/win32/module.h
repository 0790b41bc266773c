// The file that this code is linked into.
#pragma once

#include "addin/platform/system.h"
#include "com/windows.h"

namespace win32 {

HMODULE ownModule() noexcept;

class Module final : public platform::Module {
 public:
  platform::Version version() override;  // all 0 without a version resource
  platform::String folder() override;    // "C:" for the root of a drive
};

}  // namespace win32
