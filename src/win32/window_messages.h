// Other programs' windows: finding one and handing it a record; and the beep.
#pragma once

#include "addin/platform/system.h"

namespace win32 {

class Windows final : public platform::Windows {
 public:
  platform::WindowHandle findWindow(const std::string& className, const std::string& title) override;
  // Blocks until the receiver has handled the record, by design: lines arrive in order and none is lost. A receiver
  // that hangs therefore blocks its senders until it goes on or is ended. Messages sent to this thread are served
  // meanwhile, posted ones are not.
  void sendCopyData(platform::WindowHandle to, std::uint32_t dwData, std::string_view data) override;
  void beep() override;
};

}  // namespace win32
