// The text of a message in parts. Used inside this folder only.
#pragma once

#include <string>

#include "phone/joining/grouping.h"

namespace phone {

// Where parts are missing, the text says which.
std::u16string joinedText(const Group& group);

}  // namespace phone
