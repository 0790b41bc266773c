// Reading files.
#pragma once

#include "addin/platform/system.h"

namespace win32 {

class Files final : public platform::Files {
 public:
  void read(platform::StringView path, const std::function<bool(std::string_view piece)>& take) override;
};

}  // namespace win32
