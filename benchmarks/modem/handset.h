// The simulated handset, driven by its console.
#pragma once

#include <string>
#include <vector>

#include <sys/types.h>

namespace bench {

// A file descriptor.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
  Descriptor(Descriptor&& other) noexcept : descriptor_(other.release()) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    close();
    descriptor_ = other.release();
    return *this;
  }
  ~Descriptor() { close(); }

  int get() const { return descriptor_; }
  int release();
  void close();

 private:
  int descriptor_ = -1;
};

// phonesim, for as long as this lives.
class Handset {
 public:
  Handset(const std::string& program, const std::vector<std::string>& options);
  ~Handset();
  Handset(const Handset&) = delete;
  Handset& operator=(const Handset&) = delete;

  const std::string& tcp() const { return tcp_; }  // "127.0.0.1:40213"

  // One command; what its last line says behind "ok". A command that fails ends the benchmark.
  std::string tell(const std::string& command);

 private:
  std::string line();

  Descriptor input_, output_;
  pid_t process_ = 0;
  std::string received_;
  std::string tcp_;
};

// The time that passes, whoever uses the processors meanwhile.
double wallClock();

}  // namespace bench
