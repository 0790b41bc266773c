// mrktxtmsg.dll as a process loads it, and the files that lie beside it.
#pragma once

#include <gtest/gtest.h>

#include "com/class_factory.h"
#include "com/extensibility2.h"
#include "com/registration.h"
#include "win32/addin_dll/addin_registration.h"
#include "win32/module.h"
#include "win32/text.h"

namespace addin_dll_tests {

inline constexpr const wchar_t* dllName = L"mrktxtmsg.dll";

// The full path of a file in the folder of the product, which is the neighbour of the tests' own.
inline platform::String productFile(platform::StringView name) {
  platform::String folder = com::modulePath(win32::ownModule());
  folder.resize(folder.find_last_of(u'\\'));
  folder.resize(folder.find_last_of(u'\\'));
  return folder + u"\\bin\\" + platform::String(name);
}

class AddInLibrary {
 public:
  explicit AddInLibrary(const platform::String& path = productFile(u"mrktxtmsg.dll"))
      : library_(LoadLibraryExW(win32::wide(path), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH)) {
    EXPECT_NE(library_, nullptr) << "error " << GetLastError();
  }
  AddInLibrary(const AddInLibrary&) = delete;
  AddInLibrary& operator=(const AddInLibrary&) = delete;
  ~AddInLibrary() { FreeLibrary(library_); }

  platform::String path() const {
    platform::String path(32768, u'\0');
    path.resize(GetModuleFileNameW(library_, win32::wide(path), static_cast<DWORD>(path.size())));
    return path;
  }

  HRESULT getClassObject(REFCLSID clsid, REFIID iid, void** result) const {
    return entry<HRESULT(WINAPI*)(REFCLSID, REFIID, void**)>("DllGetClassObject")(clsid, iid, result);
  }
  HRESULT canUnloadNow() const { return entry<HRESULT(WINAPI*)()>("DllCanUnloadNow")(); }
  HRESULT registerServer() const { return entry<HRESULT(WINAPI*)()>("DllRegisterServer")(); }
  HRESULT unregisterServer() const { return entry<HRESULT(WINAPI*)()>("DllUnregisterServer")(); }
  HRESULT install(bool install, const wchar_t* text) const {
    return entry<HRESULT(WINAPI*)(BOOL, LPCWSTR)>("DllInstall")(install, text);
  }

  com::Ptr<IClassFactory> factory() const {
    com::Ptr<IClassFactory> made;
    EXPECT_EQ(getClassObject(com::iidOf(win32::clsidConnect), IID_IClassFactory, made.putVoid()), S_OK);
    return made;
  }

  com::Ptr<com::IDTExtensibility2> connect() const {
    com::Ptr<com::IDTExtensibility2> made;
    EXPECT_EQ(factory()->CreateInstance(nullptr, __uuidof(com::IDTExtensibility2), made.putVoid()), S_OK);
    return made;
  }

 private:
  template <class Function>
  Function entry(const char* name) const {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library_, name)));
  }

  HMODULE library_;
};

}  // namespace addin_dll_tests
