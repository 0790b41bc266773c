#include "win32/user_interface.h"

#include "addin/platform/runtime_error.h"
#include "win32/text.h"

namespace win32 {

std::int32_t UserInterface::messageBox(platform::StringView prompt, std::int32_t flags, platform::StringView title) {
  const HWND owner = GetActiveWindow();
  const UINT kind = static_cast<UINT>(flags) | (owner ? MB_APPLMODAL : MB_TASKMODAL);
  return MessageBoxW(owner, wide(platform::String(prompt)), wide(platform::String(title)), kind);
}

void UserInterface::showForm(platform::StringView /*form*/, platform::FormModality /*modality*/) {
  platform::raiseError(438);
}

}  // namespace win32
