// Native benchmarks of the engine. Run by ./bench.
#include "measure.h"

int main() {
  bench::duplicates();
  bench::receiving();
  bench::traceLines();
  return bench::limitsKept() ? 0 : 1;
}
