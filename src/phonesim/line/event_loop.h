// The one thread of the program, and its clock.
#pragma once

#include <chrono>
#include <csignal>
#include <functional>

#include <asio/executor_work_guard.hpp>
#include <asio/io_context.hpp>
#include <asio/signal_set.hpp>
#include <asio/steady_timer.hpp>

namespace phonesim {

class EventLoop {
 public:
  // Somebody who ends the program from outside ends the loop, so that what is open is closed.
  EventLoop() {
    signals_.async_wait([this](std::error_code error, int) {
      if (!error) stop();
    });
  }

  // Until stop(), even when there is nothing to wait for.
  void run() { context_.run(); }
  void stop() { context_.stop(); }
  asio::io_context& context() { return context_; }

  // From any thread.
  void post(std::function<void()> work);

  static std::chrono::milliseconds now() {
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now().time_since_epoch());
  }

 private:
  asio::io_context context_{1};
  asio::executor_work_guard<asio::io_context::executor_type> work_{context_.get_executor()};
  asio::signal_set signals_{context_, SIGINT, SIGTERM};
};

// Calls back once at a time on the loop's clock. A new time takes the place of the one before.
class Alarm {
 public:
  Alarm(EventLoop& loop, std::function<void()> ring) : timer_(loop.context()), ring_(std::move(ring)) {}
  void set(std::chrono::milliseconds time);
  void cancel() { timer_.cancel(); }

 private:
  asio::steady_timer timer_;
  std::function<void()> ring_;
};

}  // namespace phonesim
