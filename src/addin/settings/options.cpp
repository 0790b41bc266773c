#include "addin/settings/options.h"

#include "addin/settings/basRegistry.h"

namespace addin {

String OptionText(StringView name) { return CStr(GetRegValue(rootCurrentUser, KEY_OPTIONS, name)); }

std::int32_t OptionNumber(StringView name, std::int32_t whenEmpty) {
  const String text = OptionText(name);
  return text.empty() ? whenEmpty : CLng(text);
}

}  // namespace addin
