// Transaction identifiers: positive, and not given out twice, not even by a server that was ended and started anew.
#pragma once

#include <cstdint>
#include <functional>
#include <limits>

namespace servers::sms_object {

// What outlives the server: the first identifier that no server has taken yet; 0 before the first time.
struct IdentifierMemory {
  std::function<std::int32_t()> load;
  std::function<void(std::int32_t)> store;
};

// Takes identifiers in blocks, so that the memory is written once per block and a killed server loses the rest of one.
// After 2,147,483,647 it begins again at 1.
class TransactionIds {
 public:
  static constexpr std::int32_t block = 1000;

  explicit TransactionIds(IdentifierMemory memory) : memory_(std::move(memory)) {}

  std::int32_t next() {
    if (left_ == 0) takeBlock();
    --left_;
    return next_++;
  }

 private:
  void takeBlock() {
    const std::int32_t first = memory_.load();
    next_ = first < 1 || first > std::numeric_limits<std::int32_t>::max() - block ? 1 : first;
    left_ = block;
    memory_.store(next_ + block);
  }

  IdentifierMemory memory_;
  std::int32_t next_ = 0;
  std::int32_t left_ = 0;
};

}  // namespace servers::sms_object
