// What the servers that are DLLs have in common: their registration.
#pragma once

#include <span>

#include "com/class_factory.h"
#include "com/registration.h"

namespace servers {

// For whom the classes are registered.
enum class Scope : std::uint8_t { Machine, User };

HRESULT registerDll(std::span<const com::ClassRegistration> classes, Scope scope) noexcept;
HRESULT unregisterDll(std::span<const com::ClassRegistration> classes, Scope scope) noexcept;

// The body of DllInstall: "user" (regsvr32 /n /i:user) goes under HKEY_CURRENT_USER and needs no administrator; without
// a text it is for everybody. E_INVALIDARG for any other text.
HRESULT installDll(std::span<const com::ClassRegistration> classes, bool install, LPCWSTR text) noexcept;

// The body of DllCanUnloadNow: an object that lives without being held from outside has a call of its own on the stack,
// or work that waits.
HRESULT canUnloadDll() noexcept;

}  // namespace servers
