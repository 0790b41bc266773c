#include "measure.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <vector>

namespace bench {
namespace {

bool allKept = true;

void line(const std::string& what, const std::string& figure, const std::string& rest) {
  std::printf("  %-44s %10s   %s\n", what.c_str(), figure.c_str(), rest.c_str());
}

std::string verdict(bool kept, const std::string& limit) {
  allKept = allKept && kept;
  return "limit " + limit + (kept ? ": kept" : ": MISSED");
}

}  // namespace

double secondsOf(const std::function<void()>& work) {
  const std::clock_t start = std::clock();
  work();
  return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

double medianOf(const std::function<double()>& run) {
  std::array<double, runs> seconds{};
  for (double& s : seconds) s = run();
  std::sort(seconds.begin(), seconds.end());
  return seconds[runs / 2];
}

std::string grouped(std::int64_t number) {
  std::string text = std::to_string(number);
  for (std::size_t at = text.size(); at > 3;) text.insert(at -= 3, ",");
  return text;
}

std::string duration(double seconds) {
  constexpr double nothing = 1e-12;  // but for what sums of differences leave
  if (std::abs(seconds) < nothing) seconds = 0;
  struct Unit {
    double length;
    const char* name;
  };
  constexpr std::array units{Unit{1.0, "s"}, Unit{1e-3, "ms"}, Unit{1e-6, "us"}, Unit{1e-9, "ns"}};
  const auto* unit = std::find_if(units.begin(), units.end(), [&](const Unit& u) { return seconds >= u.length; });
  if (unit == units.end()) --unit;
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.3g %s", seconds / unit->length, unit->name);
  return text.data();
}

void report(const std::string& what, double seconds, const std::string& work) { line(what, duration(seconds), work); }

void report(const std::string& what, double seconds, double limit, const std::string& work) {
  line(what, duration(seconds), verdict(seconds < limit, duration(limit)) + "; " + work);
}

void reportRatio(const std::string& what, double ratio, double limit) {
  std::array<char, 32> text{}, most{};
  std::snprintf(text.data(), text.size(), "%.2f", ratio);
  std::snprintf(most.data(), most.size(), "%.2f", limit);
  line(what, text.data(), verdict(ratio <= limit, most.data()));
}

bool limitsKept() { return allKept; }

void require(bool done, const char* what) {
  if (done) return;
  std::fprintf(stderr, "bench: the work was not done: %s\n", what);
  std::exit(2);
}

}  // namespace bench
