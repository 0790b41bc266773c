// Class objects: how a module's classes are created from outside, in process and as a local server.
#pragma once

#include <span>

#include "com/bridge.h"

namespace com {

// A class that can be created: its identifier and who makes a new object. A failure is thrown as RuntimeError.
struct Class {
  platform::Guid clsid;
  Ptr<IUnknown> (*create)();
};

// A class of native objects; `Create` returns a platform::Ref to a new one:
//
//   constexpr com::Class classes[] = {com::nativeClass<&makeTimer>(clsidTimer)};
template <auto Create>
constexpr Class nativeClass(const platform::Guid& clsid) {
  return {clsid, []() -> Ptr<IUnknown> { return exported(Create()->object()); }};
}

// The body of DllGetClassObject.
HRESULT getClassObject(std::span<const Class> classes, REFCLSID clsid, REFIID iid, void** result) noexcept;

// The body of DllCanUnloadNow: S_OK when nothing of this module is held outside.
HRESULT canUnloadNow() noexcept;

// One class of a local server, offered to other processes while this lives. Error as of CoRegisterClassObject.
class RunningClass {
 public:
  explicit RunningClass(const Class& offered, REGCLS use = REGCLS_MULTIPLEUSE);
  RunningClass(const RunningClass&) = delete;
  RunningClass& operator=(const RunningClass&) = delete;
  ~RunningClass();

 private:
  DWORD cookie_ = 0;
};

}  // namespace com
