// What registering writes to the registry, as a list of values: written in order, removed in reverse.
#pragma once

#include <span>
#include <variant>
#include <vector>

#include "addin/platform/guid.h"
#include "addin/platform/text.h"
#include "com/windows.h"

namespace com {

// One value: a text (REG_SZ) or a number (REG_DWORD). The name of a key's default value is empty.
struct RegistryEntry {
  platform::String key;  // below the place that the entries are written to
  platform::String name;
  std::variant<platform::String, std::uint32_t> data;
};

// Where entries go: a root key and a path below it, which is never removed itself. An empty path is the root.
struct RegistryPlace {
  HKEY root;
  platform::StringView path;
};

// For everybody (HKEY_CLASSES_ROOT, needs an administrator) or for the user who registers.
inline const RegistryPlace machineClasses{HKEY_CLASSES_ROOT, u""};
inline const RegistryPlace userClasses{HKEY_CURRENT_USER, u"Software\\Classes"};

// Stops at the first failure and returns it as an HRESULT.
HRESULT writeEntries(const RegistryPlace& place, std::span<const RegistryEntry> entries) noexcept;

// Removes the values, whatever their data, and then each key on their paths that this leaves empty. What is not there
// is no failure. Goes on after a failure, and returns the first one.
HRESULT removeEntries(const RegistryPlace& place, std::span<const RegistryEntry> entries) noexcept;

enum class ServerKind : std::uint8_t { InProcess, Local };

struct ClassRegistration {
  platform::Guid clsid;
  platform::StringView progId;
  platform::StringView title;  // the class's name for people
  ServerKind kind = ServerKind::InProcess;
};

// The entries of a class whose server is the file `path`: class, threading model (apartment), program identifier.
std::vector<RegistryEntry> classEntries(const ClassRegistration& registration, platform::StringView path);

// Writes or removes the class. Its ProgID is left alone by unregistering when it names another class by now.
HRESULT registerClass(const RegistryPlace& place, const ClassRegistration& registration,
                      platform::StringView path) noexcept;
HRESULT unregisterClass(const RegistryPlace& place, const ClassRegistration& registration) noexcept;

// The full path of a module's file, however long; null is the program's. Empty when Windows does not tell.
platform::String modulePath(HMODULE module);

// {5D32FE61-985F-44E7-AA09-5EE82BB29976}
platform::String guidText(const platform::Guid& guid);

}  // namespace com
