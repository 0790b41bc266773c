// The entry points of mrktxtmsg.dll.

#include "addin/platform/counted.h"
#include "com/class_factory.h"
#include "win32/addin_dll/addin_registration.h"
#include "win32/addin_dll/connect_face.h"
#include "win32/system.h"

namespace {

com::Ptr<IUnknown> create() {
  platform::currentSystem = &win32::system();
  return win32::createConnect();
}

constexpr com::Class classes[] = {{win32::clsidConnect, &create}};

bool isUser(LPCWSTR text) { return platform::sameName(reinterpret_cast<const char16_t*>(text), u"user"); }

}  // namespace

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void** result) {
  return com::getClassObject(classes, clsid, iid, result);
}

// An object that still lives without being held from outside has a call of its own on the stack.
STDAPI DllCanUnloadNow() { return platform::Counted::census == 0 ? com::canUnloadNow() : S_FALSE; }

STDAPI DllRegisterServer() { return win32::registerAddIn(win32::Scope::Machine); }

STDAPI DllUnregisterServer() { return win32::unregisterAddIn(win32::Scope::Machine); }

// "user" (regsvr32 /n /i:user) needs no administrator: everything goes under HKEY_CURRENT_USER. Without a text it does
// what the other two do. E_INVALIDARG for any other text.
STDAPI DllInstall(BOOL install, LPCWSTR text) {
  win32::Scope scope = win32::Scope::Machine;
  if (text && *text) {
    if (!isUser(text)) return E_INVALIDARG;
    scope = win32::Scope::User;
  }
  return install ? win32::registerAddIn(scope) : win32::unregisterAddIn(scope);
}
