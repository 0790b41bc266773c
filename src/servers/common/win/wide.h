// Text as Windows takes it.
#pragma once

#include "addin/platform/text.h"

namespace servers {

inline const wchar_t* wide(const platform::String& text) { return reinterpret_cast<const wchar_t*>(text.c_str()); }

}  // namespace servers
