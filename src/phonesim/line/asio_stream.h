// A Stream over any of Asio's devices. It lives for as long as one of its operations does.
#pragma once

#include <array>
#include <memory>
#include <utility>

#include <asio/buffer.hpp>
#include <asio/write.hpp>

#include "phonesim/line/stream.h"

namespace phonesim {

template <class Device>
class AsioStream final : public Stream, public std::enable_shared_from_this<AsioStream<Device>> {
 public:
  explicit AsioStream(Device device) : device_(std::move(device)) {}

  void start() override { read(); }

  void write(std::string octets) override {
    if (closed_ || octets.empty() || pending_.size() > mostPending) return;
    pending_ += octets;
    if (writing_.empty()) writeNext();
  }

  void close() override {
    closed_ = true;
    onOctets = nullptr;
    onClosed = nullptr;
    if (writing_.empty()) shut();
  }

 private:
  static constexpr std::size_t mostPending = 1 << 20;

  void shut() {
    std::error_code ignored;
    device_.close(ignored);
  }

  void read() {
    device_.async_read_some(asio::buffer(input_), [self = this->shared_from_this()](auto error, std::size_t count) {
      if (self->closed_) return;
      if (error) {
        // The callback may let go of this stream, and so of itself.
        const auto tell = self->onClosed;
        self->close();
        if (tell) tell();
        return;
      }
      const auto tell = self->onOctets;
      tell(std::string_view(self->input_.data(), count));
      if (!self->closed_) self->read();
    });
  }

  void writeNext() {
    writing_ = std::exchange(pending_, {});
    asio::async_write(device_, asio::buffer(writing_), [self = this->shared_from_this()](auto error, std::size_t) {
      self->writing_.clear();
      if (!error && !self->pending_.empty())
        self->writeNext();
      else if (self->closed_)
        self->shut();
    });
  }

  Device device_;
  std::array<char, 4096> input_{};
  std::string pending_;
  std::string writing_;
  bool closed_ = false;
};

}  // namespace phonesim
