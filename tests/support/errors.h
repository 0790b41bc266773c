// How a call failed.
#pragma once

#include <cstdint>
#include <optional>

#include "addin/platform/runtime_error.h"

namespace testing_support {

template <class F>
std::optional<platform::RuntimeError> errorOf(F&& call) {
  try {
    call();
  } catch (const platform::RuntimeError& error) {
    return error;
  }
  return std::nullopt;
}

// 0 when the call did not fail.
template <class F>
std::int32_t errorNumberOf(F&& call) {
  const auto error = errorOf(call);
  return error ? error->number : 0;
}

}  // namespace testing_support
