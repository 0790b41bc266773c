// Octets and septets: what goes over the air.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace phone {

using Octets = std::vector<std::uint8_t>;
using OctetsView = std::span<const std::uint8_t>;

// Characters of the 7-bit alphabet before they are packed: one element per septet, values 00 to 7F.
using Septets = std::vector<std::uint8_t>;
using SeptetsView = std::span<const std::uint8_t>;

}  // namespace phone
