// Identifiers of classes and event interfaces, in the memory layout of Windows' GUID.
#pragma once

#include <array>
#include <cstdint>

namespace platform {

struct Guid {
  std::uint32_t a = 0;
  std::uint16_t b = 0;
  std::uint16_t c = 0;
  std::array<std::uint8_t, 8> d{};

  friend constexpr bool operator==(const Guid&, const Guid&) = default;
};

}  // namespace platform
