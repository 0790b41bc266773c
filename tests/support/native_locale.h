// The locale of the tests: US English, Windows code page 1252.
#pragma once

#include "addin/platform/system.h"

namespace testing_support {

class NativeLocale final : public platform::Locale {
 public:
  std::string toAnsi(platform::StringView text) override;  // one byte for each UTF-16 unit
  platform::String fromAnsi(std::string_view text) override;
  // 2/3/2001 4:05:06 AM; no time at midnight, no date on day 0.
  platform::String dateText(platform::Date date) override;
};

}  // namespace testing_support
