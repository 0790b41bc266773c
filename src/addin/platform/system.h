// What the add-in asks of the operating system, apart from automation objects: small interfaces, gathered in System.
//
// The Win32 ones are thin; the native ones keep a registry in memory, a clock that is moved by hand and a pump that
// runs posted work. Nothing here decides anything for the product.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>

#include "addin/platform/variant.h"

namespace platform {

class Clock {
 public:
  virtual std::int32_t ticks() = 0;  // GetTickCount, read as signed: milliseconds, wraps after 24.8 days
  virtual Date now() = 0;            // local date and time
  virtual void sleep(std::int32_t milliseconds) = 0;  // does not serve messages

 protected:
  ~Clock() = default;
};

class Pump {
 public:
  // Sleeps until there is a message or the time has passed, then serves every waiting message, timer and incoming call.
  // False when a quit message came: it is posted again, and every wait loop is to be left.
  virtual bool wait(std::int32_t milliseconds) = 0;

 protected:
  ~Pump() = default;
};

class Locale {
 public:
  virtual std::string toAnsi(StringView text) = 0;  // characters without a place in the code page become "?"
  virtual String fromAnsi(std::string_view text) = 0;
  virtual String dateText(Date date) = 0;  // short date and time; 2/3/2001 4:05:06 AM in US English

 protected:
  ~Locale() = default;
};

using RootKey = std::uint32_t;
using KeyHandle = std::uintptr_t;
inline constexpr RootKey rootCurrentUser = 0x80000001;   // HKEY_CURRENT_USER
inline constexpr RootKey rootLocalMachine = 0x80000002;  // HKEY_LOCAL_MACHINE

// The ANSI registry calls of advapi32. Results are Win32 status codes, 0 for success; names and texts are in the ANSI
// code page.
class Registry {
 public:
  virtual std::int32_t openKey(RootKey root, const std::string& path, KeyHandle& key) = 0;
  virtual std::int32_t createKey(RootKey root, const std::string& path, KeyHandle& key) = 0;
  // With no data, `size` becomes the stored byte count; with data it is the room on entry and the count on return.
  virtual std::int32_t queryValue(KeyHandle key, const std::string& name, std::uint32_t& type, std::byte* data,
                                  std::uint32_t& size) = 0;
  // Stores exactly the given bytes.
  virtual std::int32_t setValue(KeyHandle key, const std::string& name, std::uint32_t type,
                                std::span<const std::byte> data) = 0;
  virtual void closeKey(KeyHandle key) = 0;

 protected:
  ~Registry() = default;
};

using WindowHandle = std::uintptr_t;  // 0: none

class Windows {
 public:
  virtual WindowHandle findWindow(const std::string& className, const std::string& title) = 0;
  // WM_COPYDATA by SendMessageA with wParam 0: returns when the receiver has handled it.
  virtual void sendCopyData(WindowHandle to, std::uint32_t dwData, std::string_view data) = 0;
  virtual void beep() = 0;

 protected:
  ~Windows() = default;
};

class Shell {
 public:
  // Starts a program and does not wait for it. Error 5 for an empty command, 53 when there is no such file.
  virtual void start(StringView command, std::int16_t windowStyle) = 0;
  // HtmlHelpA of "hhctrl.ocx" in the system folder; error 53 when it is not there.
  virtual void htmlHelp(WindowHandle owner, const std::string& path, std::uint32_t command, std::uint32_t data) = 0;
  // The platform identifier of GetVersionExA: 2 is Windows NT.
  virtual std::int32_t platformId() = 0;

 protected:
  ~Shell() = default;
};

class Objects {
 public:
  // A new object by its ProgID; error 429 when it cannot be created.
  virtual Object create(StringView progId) = 0;

 protected:
  ~Objects() = default;
};

class Files {
 public:
  // Hands a file's bytes piece by piece to `take`, until it returns false or the file ends. Error 53 when there is no
  // such file, 75 when it cannot be read (on).
  virtual void read(StringView path, const std::function<bool(std::string_view piece)>& take) = 0;

 protected:
  ~Files() = default;
};

class Form;
enum class FormModality : std::uint8_t;  // form.h

class UserInterface {
 public:
  // Shows a box and waits for it to be closed. Flags as for MessageBox: 64 is the information icon with an OK button.
  virtual std::int32_t messageBox(StringView prompt, std::int32_t flags, StringView title) = 0;
  // Gives a loaded form a view and shows it, or brings it to the front when it has one. The view holds the form until
  // it is unloaded. A modal form is waited for: the thread's other windows take no input meanwhile, and a quit message
  // unloads the form, is posted again and makes the result false. Form::Show is what calls this.
  virtual bool showForm(Form& form, FormModality modality) = 0;

 protected:
  ~UserInterface() = default;
};

struct Version {
  std::int32_t major = 0;
  std::int32_t minor = 0;
  std::int32_t revision = 0;
};

// The add-in's own file.
class Module {
 public:
  virtual Version version() = 0;  // of the version resource: first, second and fourth number of the file version
  virtual String folder() = 0;    // without a trailing backslash

 protected:
  ~Module() = default;
};

struct System {
  Clock& clock;
  Pump& pump;
  Locale& locale;
  Registry& registry;
  Windows& windows;
  Shell& shell;
  Objects& objects;
  Files& files;
  UserInterface& ui;
  Module& module;
};

// The System that this program runs on; set once before the add-in's first call (tests: for each test).
inline System* currentSystem = nullptr;
inline System& system() { return *currentSystem; }

}  // namespace platform
