// How long a test waits for what should come.
#pragma once

#include <cstdint>

namespace testing_support {

// Nothing takes so long unless it hangs, however busy the machine is. A test that passes waits no longer than it must.
inline constexpr std::uint32_t patience = 60000;  // milliseconds

}  // namespace testing_support
