// Waiting must not burn the processor.
#include <cstdio>

#include "../measure.h"
#include "com/windows.h"
#include "stage.h"

namespace bench {

// Processor time of this process, which is the mail client's, over one listing that is never answered. Wine counts it
// in steps of 10 ms.
void listTimesOut() {
  std::printf("A listing that is never answered (median of %d runs)\n", runs);
  double waited = 0;
  double together = 0;
  const double seconds = medianOf([&] {
    ConnectedStage stage;
    testing_support::Handset::connect().SilenceNext(u"list");
    const std::uint32_t start = testing_support::ticksNow();
    const double before = processorSeconds(GetCurrentProcess());
    stage->tell(sendReceive);
    const double used = processorSeconds(GetCurrentProcess()) - before;
    waited = (testing_support::ticksNow() - start) / 1000.0;
    require(waited > 4.9 && waited < 10, "the wait took its five seconds");
    together += used;
    return used;
  });
  report("processor time", seconds, 0.05, "of " + duration(waited) + "; " + duration(together) + " in all runs");
}

}  // namespace bench
