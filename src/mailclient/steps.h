// Several things that must all be tried, as at the end of the program: what fails does not keep the rest from running.
#pragma once

#include <optional>

#include "mailclient/types.h"

namespace mailclient {

class Steps {
 public:
  template <class F>
  void run(F&& step) {
    try {
      step();
    } catch (const RuntimeError& error) {
      if (!failure_) failure_ = error;
    }
  }

  // The first failure, if there was one.
  const std::optional<RuntimeError>& failure() const { return failure_; }
  void raise() const {
    if (failure_) throw RuntimeError(*failure_);
  }

 private:
  std::optional<RuntimeError> failure_;
};

}  // namespace mailclient
