// A place for an add-in's property page: an ActiveX control that implements the mail client's PropertyPage interface.
#pragma once

#include <functional>
#include <memory>

#include "mailclient/client.h"
#include "mailclient/win/ui.h"

namespace mailclient::win {

class PropertyPageHost {
 public:
  // Of a page object, or of the ProgID of a control. Null for what cannot be created or is no control.
  static std::unique_ptr<PropertyPageHost> create(const Variant& page, MailClient& client);
  virtual ~PropertyPageHost() = default;

  // Shows the control in a window; `touched` hears that the user changed something.
  virtual void show(HWND parent, const RECT& area, std::function<void()> touched) = 0;
  // Lets the page store what the user chose, if it says that there is something.
  virtual void apply() = 0;
  virtual void close() = 0;
};

}  // namespace mailclient::win
