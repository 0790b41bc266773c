// The speed of a serial line, one way: octets arrive one after the other, each as ten bits.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace phonesim {

class Pace {
 public:
  using Time = std::chrono::milliseconds;

  // At that many bits per second; 0 is no time at all.
  void send(std::string_view octets, Time now, int speed);
  // What has arrived by now.
  std::string arrived(Time now);
  std::size_t underway() const { return underway_.size() - gone_; }
  // When more will arrive; nothing when nothing is under way.
  std::optional<Time> next() const;

 private:
  std::string underway_;
  std::size_t gone_ = 0;  // of those
  std::chrono::nanoseconds due_{0};
  std::chrono::nanoseconds each_{0};
};

}  // namespace phonesim
