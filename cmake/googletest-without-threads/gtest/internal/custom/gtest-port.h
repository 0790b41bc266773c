// GoogleTest's own place for adjustments. On Windows it locks by Windows' means, but for one small class, which wants
// std::mutex and std::condition_variable; the compilers without threads have neither. Nothing here uses the class:
// it synchronises the threads that GoogleTest's own tests start.
#pragma once

#include <atomic>

#define GTEST_HAS_NOTIFICATION_ 1

namespace testing::internal {

class Notification {
 public:
  void Notify() { notified_ = true; }
  void WaitForNotification() {
    while (!notified_) {
    }
  }

 private:
  std::atomic<bool> notified_{false};
};

}  // namespace testing::internal
