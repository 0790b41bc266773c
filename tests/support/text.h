// Text for people: what tests write into logs and compare, as UTF-8.
#pragma once

#include <string>
#include <string_view>

#include "addin/platform/text.h"

namespace testing_support {

// A lone surrogate becomes U+FFFD.
std::string utf8(platform::StringView text);

// Of ASCII letters, as the system compares names of keys, values, classes and windows.
bool sameAnsiName(std::string_view a, std::string_view b) noexcept;

}  // namespace testing_support
