#include "phonesim/handset/pace.h"

#include <algorithm>

namespace phonesim {

void Pace::send(std::string_view octets, Time now, int speed) {
  using namespace std::chrono_literals;
  constexpr auto bits = 10;  // with start and stop
  each_ = speed > 0 ? std::chrono::nanoseconds(bits * 1s) / speed : 0ns;
  if (underway_.empty()) due_ = now + each_;
  underway_ += octets;
}

std::string Pace::arrived(Time now) {
  std::size_t count = underway();
  if (each_.count() > 0) count = now < due_ ? 0 : std::min(count, static_cast<std::size_t>((now - due_) / each_) + 1);
  std::string octets = underway_.substr(gone_, count);
  gone_ += count;
  due_ += each_ * static_cast<std::int64_t>(count);
  // Not each time: what is under way may be much, and what has arrived at a time is little.
  constexpr std::size_t muchGone = 65536;
  if (gone_ == underway_.size() || gone_ >= muchGone) {
    underway_.erase(0, gone_);
    gone_ = 0;
  }
  return octets;
}

std::optional<Pace::Time> Pace::next() const {
  if (underway_.empty()) return std::nullopt;
  return std::chrono::ceil<Time>(due_);
}

}  // namespace phonesim
