// A dialogue as it took place on a line, and the same dialogue once more by a client that does nothing else: it writes
// the same octets and waits for the answers to end as they did. What that takes is the time that the dialogue needs.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "phone/line/line.h"
#include "phone/line/line_name.h"

namespace bench {

struct Exchange {
  std::string sent;
  std::string received;
};
using Tape = std::vector<Exchange>;

// A line that writes down what goes over it, from its opening on.
class TapedLine final : public phone::Line {
 public:
  explicit TapedLine(std::unique_ptr<phone::Line> line) : line_(std::move(line)) {}

  const Tape& tape() const { return tape_; }

  void write(std::string_view octets, phone::Instant deadline) override {
    line_->write(octets, deadline);
    if (tape_.empty() || !tape_.back().received.empty()) tape_.emplace_back();
    tape_.back().sent += octets;
  }
  std::string read(phone::Instant deadline) override {
    std::string octets = line_->read(deadline);
    if (!tape_.empty()) tape_.back().received += octets;
    return octets;
  }
  void wake() noexcept override { line_->wake(); }
  void end() noexcept override { line_->end(); }

 private:
  std::unique_ptr<phone::Line> line_;
  Tape tape_;
};

// Opens the line by itself, plays the tape, and says how long that took from the exchange at `begin` on.
double secondsOfReplay(const phone::LineName& line, const Tape& tape, std::size_t begin);

}  // namespace bench
