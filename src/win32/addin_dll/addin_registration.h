// What makes the add-in known: its class, and its entry among the mail client's add-ins.
#pragma once

#include "addin/platform/guid.h"
#include "com/windows.h"

namespace win32 {

// {E095A390-ABCC-4B19-8580-F6DA56BEFDB7}
inline constexpr platform::Guid clsidConnect{
    0xE095A390, 0xABCC, 0x4B19, {0x85, 0x80, 0xF6, 0xDA, 0x56, 0xBE, 0xFD, 0xB7}};

// For whom the class is registered. The add-in entry is the user's own in either case.
enum class Scope : std::uint8_t { Machine, User };

HRESULT registerAddIn(Scope scope) noexcept;

// Removes what registerAddIn() writes and nothing else. Goes on after a failure, and returns the first one.
HRESULT unregisterAddIn(Scope scope) noexcept;

}  // namespace win32
