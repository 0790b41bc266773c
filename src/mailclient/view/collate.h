// The order in which people expect names: case and Latin accents do not count, unless nothing else differs.
#pragma once

#include "mailclient/types.h"

namespace mailclient {

// Below 0, 0 or above 0.
int collate(StringView a, StringView b);

// True when `text` begins with `start`, case and accents aside.
bool beginsAlike(StringView text, StringView start);

}  // namespace mailclient
