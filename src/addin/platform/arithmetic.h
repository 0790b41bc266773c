// Arithmetic of fixed width: 32-bit signed, with overflow as run-time error 6 instead of wrap-around.
#pragma once

#include <cstdint>

#include "addin/platform/runtime_error.h"

namespace platform {

inline std::int32_t checkedAdd(std::int32_t a, std::int32_t b) {
  std::int32_t result = 0;
  if (__builtin_add_overflow(a, b, &result)) raiseError(6);
  return result;
}

inline std::int32_t checkedMultiply(std::int32_t a, std::int32_t b) {
  std::int32_t result = 0;
  if (__builtin_mul_overflow(a, b, &result)) raiseError(6);
  return result;
}

}  // namespace platform
