// The trace of a phone's dialogue, in a file that does not grow for ever: when it is full it becomes an older one, and
// a new one begins. A trace that cannot be written is no reason to disturb the phone: lines are lost.
//
// A full file that another program keeps from becoming an older one is gone on with, up to a limit of its own. It is
// not tried for each line anew: whoever holds it may do so for hours.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

namespace servers::modem {

// The file that is written, which has number 0, and the older ones, 1 being the youngest.
class TraceFiles {
 public:
  virtual ~TraceFiles() = default;

  // Makes the file when there is none, opens it when it is not open, and says how long it is.
  virtual std::optional<std::uint64_t> open() noexcept = 0;
  virtual void append(std::string_view text) noexcept = 0;
  // The file with that number, which is closed if it is open, gets the next one. In the place of what was there.
  virtual bool shift(int number) noexcept = 0;
};

class TraceLog {
 public:
  static constexpr std::uint64_t longest = 1024 * 1024;
  static constexpr std::uint64_t longestHeld = 4 * longest;
  static constexpr int older = 2;

  explicit TraceLog(std::unique_ptr<TraceFiles> files) : files_(std::move(files)) {}

  // `stamp` in front. What is not printable is written \xNN: files from strangers' modems are shown on screens.
  void write(std::string_view stamp, std::string_view line) noexcept;

 private:
  bool makeRoom(std::size_t size) noexcept;

  bool becomesOlder() noexcept;

  std::unique_ptr<TraceFiles> files_;
  std::optional<std::uint64_t> sinceHeld_;  // octets to be written since the full file could not become an older one
};

}  // namespace servers::modem
