// The servers as the system knows them: registered for the time of these tests, with settings of their own.
#pragma once

#include <functional>
#include <optional>

#include <gtest/gtest.h>

#include "addin/platform/object.h"
#include "com/bridge.h"
#include "com/lasting_interfaces.h"
#include "com/registration.h"

namespace servers_tests {

inline const wchar_t* wide(const platform::String& text) { return reinterpret_cast<const wchar_t*>(text.c_str()); }

// The full path of a file in the folder of the product, which is the neighbour of the tests' own.
platform::String productFile(platform::StringView name);

// Serves messages until `done`, at most for a minute; whether it was done.
bool serveUntil(const std::function<bool()>& done);
void serveFor(DWORD milliseconds);

// Runs a program to its end, serving messages meanwhile; its exit code.
DWORD run(platform::String commandLine);

// Calls an entry point without arguments (DllRegisterServer, …) of a DLL of the product.
HRESULT callEntry(platform::StringView dll, const char* name);
HRESULT installDll(platform::StringView dll, BOOL install, const wchar_t* text);

// A new object by its class. Errors as of com::createObject.
platform::LateBound create(const platform::Guid& clsid);

// A value under HKEY_CURRENT_USER, put back as it was.
class Setting {
 public:
  Setting(const wchar_t* key, const wchar_t* name);
  Setting(const Setting&) = delete;
  Setting& operator=(const Setting&) = delete;
  ~Setting();

  void set(DWORD number);
  void set(const platform::String& text);
  void remove();

 private:
  HKEY key_ = nullptr;
  const wchar_t* name_;
  DWORD type_ = 0;
  std::optional<std::vector<BYTE>> before_;
};

// A test with all servers registered, and for a phone the simulated handset with its memories in a file of its own. A
// dvmworker.exe that runs when the test begins or ends is ended.
class RegisteredServers : public testing::Test {
 protected:
  RegisteredServers();
  ~RegisteredServers() override;

  // The handset of the running server, which it starts when there is none.
  static platform::LateBound handset();
  // Kills the server, as a crash would.
  static void killWorker(const platform::LateBound& handset);

  Setting stateFile_{L"Software\\Marrick\\DVMWorker", L"StateFile"};
  Setting sendFile_{L"Software\\Marrick\\DVMWorker", L"SendFile"};
  Setting ports_{L"Software\\Marrick\\DVMWorker", L"Ports"};
  Setting minute_{L"Software\\Marrick\\timermm", L"ShortenMinute"};
  platform::String file_;

 private:
  // This process is called by the servers.
  std::optional<com::LastingInterfaces> lasting_;
};

}  // namespace servers_tests
