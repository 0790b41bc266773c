// Benchmarks of the DLL, its servers and the mail client's window under Wine. Run by ./bench, which makes the store.
#include <cstdio>
#include <cwchar>

#include "../measure.h"
#include "com/bridge.h"
#include "mailclient/win/mapi_face.h"
#include "stage.h"
#include "win32/system.h"

int wmain(int count, wchar_t** texts) {
  if (count != 3) {
    std::fputs("bench_wine STORE COUNT: STORE is a new one with COUNT messages\n", stderr);
    return 2;
  }
  if (FAILED(OleInitialize(nullptr))) return 2;
  com::opaqueConverter = &mailclient::win::mapiFace;
  platform::currentSystem = &win32::system();
  bench::install();
  bench::connecting();
  bench::borderCalls();
  bench::listTimesOut();
  bench::opening(texts[1], static_cast<int>(std::wcstol(texts[2], nullptr, 10)));
  OleUninitialize();
  return bench::limitsKept() ? 0 : 1;
}
