// gammu at a serial line, by its library: the time is measured where the program's own would begin, behind the opening
// of the line and whatever it wants to know of a phone first.
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace bench {

class Gammu {
 public:
  // `settings` is the file that the program reads.
  explicit Gammu(const std::string& settings);
  ~Gammu();
  Gammu(const Gammu&) = delete;
  Gammu& operator=(const Gammu&) = delete;

  // The texts of everything in all memories.
  std::vector<std::string> list();
  void send(const std::string& number, const std::string& text);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace bench
