// Message boxes and the add-in's own forms.
#pragma once

#include "addin/platform/system.h"

namespace win32 {

class UserInterface final : public platform::UserInterface {
 public:
  // The thread's active window owns the box; without one, all windows of the thread wait for it. 0 when the box could
  // not be shown.
  std::int32_t messageBox(platform::StringView prompt, std::int32_t flags, platform::StringView title) override;
  // The thread's active top-level window owns the dialog, or else its first one that can be seen. Error 7 when Windows
  // makes no window.
  bool showForm(platform::Form& form, platform::FormModality modality) override;
};

}  // namespace win32
