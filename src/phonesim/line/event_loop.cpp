#include "phonesim/line/event_loop.h"

#include <asio/post.hpp>

namespace phonesim {

void EventLoop::post(std::function<void()> work) { asio::post(context_, std::move(work)); }

void Alarm::set(std::chrono::milliseconds time) {
  timer_.expires_at(std::chrono::steady_clock::time_point(time));
  timer_.async_wait([this](std::error_code error) {
    if (!error) ring_();
  });
}

}  // namespace phonesim
