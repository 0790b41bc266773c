// The two shapes of error handling: "on error, tell and leave with the result built so far", and "on error, go on with
// the next statement". Procedures use the first through onErrorLog (diag/basDebug.h), which knows what to tell.
#pragma once

#include <new>
#include <type_traits>

#include "addin/platform/runtime_error.h"

namespace platform {

// Runs a procedure's body, which sets its result as it goes and leaves with return. A failure is given to `tell`, and
// the result built so far is the result. `tell` must not throw.
template <class R, class Body, class Tell>
R onErrorTell(Body&& body, Tell&& tell) {
  R result{};
  try {
    body(result);
  } catch (const RuntimeError& error) {
    tell(error);
  } catch (const std::bad_alloc&) {
    tell(RuntimeError(7, u"mrktxtmsg", standardText(7)));
  } catch (const std::exception&) {
    tell(RuntimeError(51, u"mrktxtmsg", standardText(51)));
  }
  return result;
}

// Each argument is one statement. A failing one is given up, and the next one runs.
template <class... Statements>
void onErrorResumeNext(Statements&&... statements) noexcept {
  const auto attempt = [](auto& statement) {
    try {
      statement();
    } catch (const std::exception&) {  // what went wrong is deliberately not looked at
    }
  };
  (attempt(statements), ...);
}

}  // namespace platform
