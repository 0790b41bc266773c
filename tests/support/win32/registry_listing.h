// What stands in the registry, as text.
#pragma once

#include <string>
#include <vector>

#include "com/windows.h"

namespace testing_support {

// One line for each value below a key: "path|name|data"; "none" when there is no such key.
std::vector<std::string> listed(HKEY root, const std::wstring& key);

}  // namespace testing_support
