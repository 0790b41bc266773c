// The user's code page and the user's way of writing dates.
#pragma once

#include "addin/platform/system.h"

namespace win32 {

class Locale final : public platform::Locale {
 public:
  std::string toAnsi(platform::StringView text) override;
  platform::String fromAnsi(std::string_view text) override;
  platform::String dateText(platform::Date date) override;
};

}  // namespace win32
