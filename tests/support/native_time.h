// Time that tests move by hand: the clock, the message pump and the servers' scheduler stand on one queue of work.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <vector>

#include "addin/platform/system.h"
#include "servers/common/scheduler.h"
#include "support/journal.h"

namespace testing_support {

class NativeTime final : public platform::Clock, public platform::Pump, public servers::Scheduler {
 public:
  explicit NativeTime(Journal& journal) : journal_(journal) {}
  ~NativeTime() { dropWork(); }
  NativeTime(const NativeTime&) = delete;
  NativeTime& operator=(const NativeTime&) = delete;

  // Clock. The date goes along with the ticks; the ticks wrap from INT32_MAX to INT32_MIN.
  std::int32_t ticks() override;
  platform::Date now() override;
  void sleep(std::int32_t milliseconds) override;  // does not run work, however much of it falls due

  // Pump. When work is due within the time, the clock goes to the first of it and everything due by then runs (work
  // that is asked for meanwhile waits for the next call); otherwise the clock goes on by the whole time.
  bool wait(std::int32_t milliseconds) override;

  // Scheduler.
  [[nodiscard]] platform::Ref<platform::Counted> after(std::int32_t milliseconds, Work work) override;

  // For tests ------------------------------------------------------------------------------------------------------

  void setTicks(std::int32_t ticks) {
    tickOffset_ = static_cast<std::uint32_t>(ticks) - static_cast<std::uint32_t>(elapsed_);
  }
  void setNow(platform::Date date);
  void advance(std::int64_t milliseconds) { elapsed_ += milliseconds; }  // without running anything
  void post(std::int32_t milliseconds, Work work);                       // as after(), and cannot be cancelled
  void post(Work work) { post(0, std::move(work)); }
  // From the next return to a wait on, every wait is false. It stays posted.
  void postQuit() { quit_ = true; }
  void takeQuit() { quit_ = false; }

  // Serves messages as the mail client's own loop does, for so long; not counted as the add-in's waits.
  void run(std::int64_t milliseconds);
  // Everything that is due now, and what that asks for without a delay, until nothing is due.
  void runDue();

  void dropWork();
  std::size_t pendingWork() const { return queue_->size(); }
  std::int64_t elapsed() const { return elapsed_; }  // milliseconds since the test began
  std::int32_t waits() const { return waits_; }
  std::int64_t waited() const { return waited_; }  // milliseconds that the waits took
  const std::vector<std::int32_t>& sleeps() const { return sleeps_; }

  // A wait loop that never ends is reported as a test failure and ended by a quit message at this many waits.
  std::int32_t mostWaits = 100'000;

 private:
  struct Moment {
    std::int64_t due;
    std::uint64_t sequence;
    friend auto operator<=>(const Moment&, const Moment&) = default;
  };
  using Queue = std::map<Moment, Work>;
  struct Ticket;

  Moment enqueue(std::int32_t milliseconds, Work work);
  void serve(std::int64_t milliseconds);
  bool runFirstDue(std::uint64_t before);

  Journal& journal_;
  std::shared_ptr<Queue> queue_ = std::make_shared<Queue>();  // shared with tickets, which may outlive this
  std::uint64_t sequence_ = 0;
  std::int64_t elapsed_ = 0;
  std::uint32_t tickOffset_ = 1'000'000;
  platform::Date date_{36925.0};  // 3 February 2001, midnight
  std::int64_t dateSetAt_ = 0;
  bool quit_ = false;
  std::int32_t waits_ = 0;
  std::int64_t waited_ = 0;
  std::vector<std::int32_t> sleeps_;
};

}  // namespace testing_support
