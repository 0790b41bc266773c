#include "servers/common/win/dll_server.h"

extern "C" IMAGE_DOS_HEADER __ImageBase;  // the linker's name for where this module begins

namespace servers {
namespace {

const com::RegistryPlace& classesOf(Scope scope) {
  return scope == Scope::User ? com::userClasses : com::machineClasses;
}

template <class Step>
HRESULT forEach(std::span<const com::ClassRegistration> classes, Step&& step) noexcept {
  HRESULT first = S_OK;
  for (const auto& registration : classes) {
    const HRESULT hr = com::guarded([&] { return step(registration); });
    if (SUCCEEDED(first)) first = hr;
  }
  return first;
}

}  // namespace

HRESULT registerDll(std::span<const com::ClassRegistration> classes, Scope scope) noexcept {
  return forEach(classes, [&](const com::ClassRegistration& registration) {
    const auto path = com::modulePath(reinterpret_cast<HMODULE>(&__ImageBase));
    return com::registerClass(classesOf(scope), registration, path);
  });
}

HRESULT unregisterDll(std::span<const com::ClassRegistration> classes, Scope scope) noexcept {
  return forEach(classes, [&](const com::ClassRegistration& registration) {
    return com::unregisterClass(classesOf(scope), registration);
  });
}

HRESULT installDll(std::span<const com::ClassRegistration> classes, bool install, LPCWSTR text) noexcept {
  Scope scope = Scope::Machine;
  if (text && *text) {
    if (!platform::sameName(reinterpret_cast<const char16_t*>(text), u"user")) return E_INVALIDARG;
    scope = Scope::User;
  }
  return install ? registerDll(classes, scope) : unregisterDll(classes, scope);
}

HRESULT canUnloadDll() noexcept { return platform::Counted::census == 0 ? com::canUnloadNow() : S_FALSE; }

}  // namespace servers
