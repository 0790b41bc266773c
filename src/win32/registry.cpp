#include "win32/registry.h"

#include <vector>

#include "com/windows.h"

namespace win32 {
namespace {

// The predefined keys are sign-extended where a handle is wider than 32 bits.
HKEY rootHandle(platform::RootKey root) {
  return reinterpret_cast<HKEY>(static_cast<std::intptr_t>(static_cast<std::int32_t>(root)));
}

HKEY keyHandle(platform::KeyHandle key) { return reinterpret_cast<HKEY>(key); }

std::int32_t givenKey(LSTATUS status, HKEY opened, platform::KeyHandle& key) {
  key = status == ERROR_SUCCESS ? reinterpret_cast<platform::KeyHandle>(opened) : 0;
  return status;
}

}  // namespace

std::int32_t Registry::openKey(platform::RootKey root, const std::string& path, platform::KeyHandle& key) {
  HKEY opened = nullptr;
  const LSTATUS status = RegOpenKeyA(rootHandle(root), path.c_str(), &opened);
  return givenKey(status, opened, key);
}

std::int32_t Registry::createKey(platform::RootKey root, const std::string& path, platform::KeyHandle& key) {
  HKEY opened = nullptr;
  const LSTATUS status = RegCreateKeyA(rootHandle(root), path.c_str(), &opened);
  return givenKey(status, opened, key);
}

std::int32_t Registry::queryValue(platform::KeyHandle key, const std::string& name, std::uint32_t& type,
                                  std::byte* data, std::uint32_t& size) {
  DWORD foundType = type;
  DWORD foundSize = size;
  const LSTATUS status =
      RegQueryValueExA(keyHandle(key), name.c_str(), nullptr, &foundType, reinterpret_cast<BYTE*>(data), &foundSize);
  type = foundType;
  size = foundSize;
  return status;
}

std::int32_t Registry::setValue(platform::KeyHandle key, const std::string& name, std::uint32_t type,
                                std::span<const std::byte> data) {
  // A text without its NUL gets one from RegSetValueExA when the byte behind the count happens to be 0.
  std::vector<std::byte> bytes(data.begin(), data.end());
  bytes.push_back(std::byte{1});
  return RegSetValueExA(keyHandle(key), name.c_str(), 0, type, reinterpret_cast<const BYTE*>(bytes.data()),
                        static_cast<DWORD>(data.size()));
}

void Registry::closeKey(platform::KeyHandle key) { RegCloseKey(keyHandle(key)); }

}  // namespace win32
