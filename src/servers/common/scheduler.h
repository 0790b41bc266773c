// Work to be done later on the thread that asks for it: what the servers' timers, answers and delays are made of.
//
// On Windows it stands on window messages, in tests on a clock that is moved by hand.
#pragma once

#include <cstdint>
#include <functional>

#include "addin/platform/counted.h"

namespace servers {

class Scheduler {
 public:
  using Work = std::function<void()>;

  // Runs `work` once, on this thread, not before `milliseconds` have passed and never inside the call that asked for
  // it. Releasing the result cancels work that has not begun. Work that is due at the same time runs in the order of
  // asking.
  [[nodiscard]] virtual platform::Ref<platform::Counted> after(std::int32_t milliseconds, Work work) = 0;

 protected:
  ~Scheduler() = default;
};

}  // namespace servers
