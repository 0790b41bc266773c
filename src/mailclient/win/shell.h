// What the windows of the program ask of the program.
#pragma once

#include <memory>

#include "mailclient/client.h"
#include "mailclient/view/columns.h"
#include "mailclient/view/phone_activity.h"
#include "mailclient/view/text_message.h"

namespace mailclient::win {

class Shell {
 public:
  virtual MailClient& client() = 0;
  // A setting of the mail client's own window; remembered with the store.
  virtual String setting(StringView name) const = 0;
  virtual void putSetting(StringView name, const String& value) = 0;
  virtual String timeText(Date utc) const = 0;
  virtual const PhoneActivity& phone() const = 0;

  // Runs a command of a menu: an add-in's click, or a built-in one.
  virtual void click(const ControlPtr& control) = 0;
  virtual void open(const std::vector<MessagePtr>& messages) = 0;
  // Opens the answer, unless somebody cancelled it.
  virtual void answer(const MessagePtr& original, Answer kind) = 0;
  virtual void newItem(Folder& folder, StringView messageClass) = 0;
  // The user closed the last window, or chose Exit.
  virtual void exit() = 0;
  virtual void tellError(void* owner, const RuntimeError& error) = 0;

 protected:
  ~Shell() = default;
};

// Runs what a user asked for; a failure is shown to the user.
template <class F>
void attempt(Shell& shell, void* owner, F&& action) {
  try {
    action();
  } catch (const RuntimeError& error) {
    shell.tellError(owner, error);
  }
}

}  // namespace mailclient::win
