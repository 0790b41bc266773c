// What fuzzers use instead of a test's expectations: a failure ends the program, and the input is kept.
#pragma once

#include <cstdio>
#include <cstdlib>

namespace fuzz {

inline void require(bool condition, const char* what) {
  if (condition) return;
  std::fprintf(stderr, "does not hold: %s\n", what);
  std::abort();
}

}  // namespace fuzz
