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

  // The file that tells about the page; empty when it names none.
  virtual String helpFile() = 0;
  // Shows the control in a window; `statusChanged` hears that isDirty() may have changed.
  virtual void show(HWND parent, const RECT& area, std::function<void()> statusChanged) = 0;
  virtual bool isDirty() = 0;
  // Lets the page store what the user chose, if it says that there is something. Its failure is thrown.
  virtual void apply() = 0;
  virtual void close() = 0;
};

}  // namespace mailclient::win
