// Octets in both directions: a connection, a terminal, the console.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace phonesim {

class Stream {
 public:
  virtual ~Stream() = default;

  // Without waiting. What the other side does not fetch for too long is dropped.
  virtual void write(std::string octets) = 0;
  // What was written before may still arrive; nothing is called any more.
  virtual void close() = 0;

  // Set these before start().
  std::function<void(std::string_view octets)> onOctets;
  std::function<void()> onClosed;  // by the other side
  virtual void start() = 0;
};

}  // namespace phonesim
