// The user's settings, read by those who use them: from the current user's key only, as text, with the reader's own
// default where the text is empty.
#pragma once

#include "addin/common/basGlobal.h"

namespace addin {

// Empty when the value is missing or of an unsupported type.
String OptionText(StringView name);

// The default when the text is empty; else error 13 for what is no number and 6 for what is too large.
std::int32_t OptionNumber(StringView name, std::int32_t whenEmpty);

}  // namespace addin
