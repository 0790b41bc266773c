#include "support/native_time.h"

#include <algorithm>

#include <gtest/gtest.h>

namespace testing_support {

struct NativeTime::Ticket final : platform::Counted {
  Ticket(std::weak_ptr<Queue> q, Moment m) : queue(std::move(q)), moment(m) {}
  ~Ticket() override {
    if (const auto all = queue.lock()) const auto gone = all->extract(moment);  // its end may cancel others
  }

  std::weak_ptr<Queue> queue;
  Moment moment;
};

void NativeTime::dropWork() {
  while (!queue_->empty()) const auto gone = queue_->extract(queue_->begin());
}

std::int32_t NativeTime::ticks() {
  return static_cast<std::int32_t>(tickOffset_ + static_cast<std::uint32_t>(elapsed_));
}

platform::Date NativeTime::now() {
  constexpr double millisecondsPerDay = 86'400'000.0;
  return {date_.days + static_cast<double>(elapsed_ - dateSetAt_) / millisecondsPerDay};
}

void NativeTime::setNow(platform::Date date) {
  date_ = date;
  dateSetAt_ = elapsed_;
}

void NativeTime::sleep(std::int32_t milliseconds) {
  journal_.write("sleep " + std::to_string(milliseconds));
  sleeps_.push_back(milliseconds);
  advance(std::max(milliseconds, 0));
}

bool NativeTime::wait(std::int32_t milliseconds) {
  if (++waits_ == mostWaits) {
    ADD_FAILURE() << "a wait loop did not end after " << waits_ << " waits";
    postQuit();
  }
  const std::int64_t start = elapsed_;
  serve(quit_ ? 0 : std::max(milliseconds, 0));
  waited_ += elapsed_ - start;
  return !quit_;
}

platform::Ref<platform::Counted> NativeTime::after(std::int32_t milliseconds, Work work) {
  return platform::make<Ticket>(queue_, enqueue(milliseconds, std::move(work)));
}

void NativeTime::post(std::int32_t milliseconds, Work work) { enqueue(milliseconds, std::move(work)); }

NativeTime::Moment NativeTime::enqueue(std::int32_t milliseconds, Work work) {
  const Moment moment{elapsed_ + std::max(milliseconds, 0), sequence_++};
  queue_->emplace(moment, std::move(work));
  return moment;
}

void NativeTime::serve(std::int64_t milliseconds) {
  const std::int64_t end = elapsed_ + milliseconds;
  const bool inTime = !queue_->empty() && queue_->begin()->first.due <= end;
  elapsed_ = inTime ? std::max(elapsed_, queue_->begin()->first.due) : end;
  const std::uint64_t asked = sequence_;
  while (runFirstDue(asked)) {
  }
}

bool NativeTime::runFirstDue(std::uint64_t before) {
  const auto first =
      std::find_if(queue_->begin(), queue_->end(), [&](const auto& e) { return e.first.sequence < before; });
  if (first == queue_->end() || first->first.due > elapsed_) return false;
  auto entry = queue_->extract(first);
  entry.mapped()();
  return true;
}

void NativeTime::run(std::int64_t milliseconds) {
  const std::int64_t end = elapsed_ + milliseconds;
  do serve(std::max<std::int64_t>(end - elapsed_, 0));
  while (elapsed_ < end);
  runDue();
}

void NativeTime::runDue() {
  constexpr int most = 100'000;
  for (int rounds = 0; !queue_->empty() && queue_->begin()->first.due <= elapsed_; ++rounds) {
    if (rounds == most) {
      ADD_FAILURE() << "work that asks for more work never ends";
      return;
    }
    serve(0);
  }
}

}  // namespace testing_support
