// One list of everything that the add-in asked of the system, in order, for tests about order across its parts.
#pragma once

#include <string>
#include <vector>

namespace testing_support {

class Journal {
 public:
  void write(std::string line) { lines_.push_back(std::move(line)); }
  void clear() { lines_.clear(); }
  const std::vector<std::string>& lines() const { return lines_; }

 private:
  std::vector<std::string> lines_;
};

}  // namespace testing_support
