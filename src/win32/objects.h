// Automation objects by their ProgID.
#pragma once

#include "addin/platform/system.h"

namespace win32 {

class Objects final : public platform::Objects {
 public:
  // From a server in this process, else from one of its own. Whatever goes wrong is error 429.
  platform::Object create(platform::StringView progId) override;
};

}  // namespace win32
