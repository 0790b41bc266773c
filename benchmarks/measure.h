// Measuring: every figure is the median of several runs, printed with the work that was done.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace bench {

inline constexpr int runs = 7;

// Keeps the compiler from moving or dropping what is measured.
inline void barrier() { asm volatile("" ::: "memory"); }

// Processor time, so that other programs on the machine do not count (what they do to the caches does).
double secondsOf(const std::function<void()>& work);

// The median over `runs` runs of the seconds that `run` says it took.
double medianOf(const std::function<double()>& run);

// "12,345"; "1.23 ms".
std::string grouped(std::int64_t number);
std::string duration(double seconds);

// One line: what was measured, the figure, and the work done.
void report(const std::string& what, double seconds, const std::string& work);

// The same with a limit. A missed one is said, and makes the program's exit status 1.
void report(const std::string& what, double seconds, double limit, const std::string& work);
// A ratio with a limit.
void reportRatio(const std::string& what, double ratio, double limit);

bool limitsKept();

// A check of the work itself: a benchmark that did not do what it says ends the program.
void require(bool done, const char* what);

// The benchmarks.
void duplicates();
void receiving();
void traceLines();

}  // namespace bench
