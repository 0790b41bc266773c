// What serial ports and TCP connections have in common. All input and output happens inside read and write, on the
// thread that calls them: there is no thread of its own.
//
// One read is always under way once the first has been asked for. A deadline therefore cancels nothing, and no octet
// can get lost between a cancelled read and the next.
#pragma once

#include <array>
#include <atomic>

#include <asio.hpp>

#include "phone/line/line.h"

namespace phone {

template <class Stream>
class AsioLine : public Line {
 public:
  void write(std::string_view octets, Instant deadline) override {
    check();
    bool done = false;
    asio::error_code failure;
    asio::async_write(stream_, asio::buffer(octets.data(), octets.size()),
                      [&](const asio::error_code& error, std::size_t) {
                        done = true;
                        failure = error;
                      });
    while (!done && !ended_ && runOne(deadline)) {
    }
    if (!done) {
      // Its buffer is the caller's: it must be over before this function is. One cancelling ends one part of it, and
      // with bad luck one that is over already: then the next one has begun.
      while (!done) {
        asio::error_code ignored;
        stream_.cancel(ignored);
        context_.restart();
        context_.run_one_for(cancelInterval);
      }
      failure_ = failure ? failure : asio::error::timed_out;
    } else if (failure) {
      failure_ = failure;
    }
    check();
  }

  std::string read(Instant deadline) override {
    do {
      if (!received_.empty()) return std::exchange(received_, {});
      check();
      if (std::exchange(woken_, false)) return {};
      beginRead();
    } while (runOne(deadline));
    return {};
  }

  void wake() noexcept override {
    tell([this] { woken_ = true; });
  }

  void end() noexcept override {
    ended_ = true;
    wake();
  }

 protected:
  static constexpr Instant never() { return Instant::max(); }
  static constexpr std::chrono::milliseconds cancelInterval{20};

  // Runs one piece of work, waiting for it until `deadline`; false when there was none.
  bool runOne(Instant deadline) {
    context_.restart();
    if (context_.poll_one() > 0) return true;
    if (deadline == never()) return context_.run_one() > 0;
    return context_.run_one_until(std::chrono::steady_clock::time_point(deadline)) > 0;
  }

  asio::io_context context_{1};
  Stream stream_{context_};

 private:
  template <class Work>
  void tell(Work work) noexcept {
    try {
      asio::post(context_, work);
    } catch (...) {
      // Out of memory: the reader hears of it at its deadline.
    }
  }

  void check() const {
    if (ended_) throw LineLost("the line was given up");
    if (failure_) throw LineLost(failure_.message());
  }

  void beginRead() {
    if (reading_) return;
    reading_ = true;
    stream_.async_read_some(asio::buffer(buffer_), [this](const asio::error_code& error, std::size_t count) {
      reading_ = false;
      received_.append(buffer_.data(), count);
      if (error) failure_ = error;
    });
  }

  std::array<char, 4096> buffer_{};
  std::string received_;
  asio::error_code failure_;
  bool reading_ = false;
  bool woken_ = false;
  std::atomic<bool> ended_ = false;
};

}  // namespace phone
