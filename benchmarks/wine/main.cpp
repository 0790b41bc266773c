// Benchmarks of the DLL and its servers under Wine. Run by ./bench.
#include "../measure.h"
#include "com/bridge.h"
#include "mailclient/win/mapi_face.h"
#include "stage.h"
#include "win32/system.h"

int main() {
  if (FAILED(OleInitialize(nullptr))) return 2;
  com::opaqueConverter = &mailclient::win::mapiFace;
  platform::currentSystem = &win32::system();
  bench::install();
  bench::connecting();
  bench::borderCalls();
  bench::listTimesOut();
  OleUninitialize();
  return bench::limitsKept() ? 0 : 1;
}
