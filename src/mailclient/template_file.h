// Form templates (.oft): compound files whose root storage holds the properties of an item.
#pragma once

#include "mailclient/types.h"

namespace mailclient {

// The message class of the item in a template. The mail client's own error when there is no such file, or when it is no
// template.
String readTemplateClass(StringView path);

}  // namespace mailclient
