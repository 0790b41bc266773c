// The registry, through its ANSI functions.
#pragma once

#include "addin/platform/system.h"

namespace win32 {

class Registry final : public platform::Registry {
 public:
  // Without success `key` is 0, which the other calls refuse with ERROR_INVALID_HANDLE.
  std::int32_t openKey(platform::RootKey root, const std::string& path, platform::KeyHandle& key) override;
  std::int32_t createKey(platform::RootKey root, const std::string& path, platform::KeyHandle& key) override;
  std::int32_t queryValue(platform::KeyHandle key, const std::string& name, std::uint32_t& type, std::byte* data,
                          std::uint32_t& size) override;
  std::int32_t setValue(platform::KeyHandle key, const std::string& name, std::uint32_t type,
                        std::span<const std::byte> data) override;
  void closeKey(platform::KeyHandle key) override;
};

}  // namespace win32
