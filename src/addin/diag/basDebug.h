// The error line, and the error handler that nearly every procedure of the add-in is written with.
#pragma once

#include "addin/common/basGlobal.h"
#include "addin/platform/on_error.h"

namespace addin {

inline constexpr StringView ERROR_PREFIX = u"Error:";

// Writes the one line that a procedure owes for an error: prefix, number, ", ", description, ", ", source.
void LogError(const RuntimeError& error, StringView prefix = ERROR_PREFIX) noexcept;

// Runs a procedure's body, which sets `result` as it goes; an error is logged and the result built so far returned.
template <class R, class Body>
R onErrorLog(Body&& body, StringView prefix = ERROR_PREFIX) {
  return onErrorTell<R>(std::forward<Body>(body), [&](const RuntimeError& error) { LogError(error, prefix); });
}

template <class Body>
void onErrorLog(Body&& body, StringView prefix = ERROR_PREFIX) {
  struct NoResult {};
  onErrorLog<NoResult>([&](NoResult&) { body(); }, prefix);
}

}  // namespace addin
