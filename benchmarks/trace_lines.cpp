// What a trace line costs when nobody wants it.
#include <cstdio>

#include "addin/diag/basDbgOut.h"
#include "measure.h"
#include "support/native_system.h"

namespace bench {

void traceLines() {
  constexpr std::int32_t lines = 10'000'000;
  const testing_support::NativeSystem system;
  addin::dbgChannel = {};
  addin::dbgChannel.Level = 1;
  std::printf("\nTrace lines (median of %d runs)\n", runs);
  const double seconds = medianOf([&] {
    return secondsOf([&] {
      for (std::int32_t i = 0; i < lines; ++i) {
        addin::DbgOut(2, u"Used SIM Memory = ", i);
        barrier();
      }
    });
  });
  report("a line that the level filters out", seconds / lines, 20e-9, grouped(lines) + " lines a run");

  addin::dbgChannel.Level = 2;
  constexpr std::int32_t built = 100'000;
  const double unfiltered = medianOf([&] {
    return secondsOf([&] {
      for (std::int32_t i = 0; i < built; ++i) addin::DbgOut(2, u"Used SIM Memory = ", i);
    });
  });
  report("a line that passes, without a viewer", unfiltered / built, grouped(built) + " lines a run");
  require(system.windows.lookUps() == runs * built, "each line that passes looks for the viewer");
  addin::dbgChannel = {};
}

}  // namespace bench
