// The time that OnConnection takes of the mail client's start, through the real DLL.
#include <cstdio>

#include "../measure.h"
#include "addin/platform/dvmworkerlib.h"
#include "com/bridge.h"
#include "com/create_object.h"
#include "com/extensibility2.h"
#include "stage.h"
#include "win32/addin_dll/addin_registration.h"

namespace bench {
namespace {

constexpr std::size_t buttons = 4;

double secondsSince(const LARGE_INTEGER& start) {
  LARGE_INTEGER now, perSecond;
  QueryPerformanceCounter(&now);
  QueryPerformanceFrequency(&perSecond);
  return static_cast<double>(now.QuadPart - start.QuadPart) / static_cast<double>(perSecond.QuadPart);
}

double connectOnce() {
  Stage stage;
  com::Ptr<com::IDTExtensibility2> addIn;
  require(SUCCEEDED(CoCreateInstance(com::iidOf(win32::clsidConnect), nullptr, CLSCTX_INPROC_SERVER,
                                     __uuidof(com::IDTExtensibility2), addIn.putVoid())),
          "the add-in is created");
  const auto application = com::exported(stage.application());
  const auto instance = com::exported(stage.addInInst());
  LARGE_INTEGER start;
  QueryPerformanceCounter(&start);
  addIn->OnConnection(application.get(), 1, instance.get(), nullptr);
  const double seconds = secondsSince(start);
  require(stage.addedButtons() == buttons, "the add-in has its buttons");
  require(stage.tell("references") != "ok 0", "and holds the mail client's objects");
  addIn->OnDisconnection(1, nullptr);
  require(stage.addedButtons() == 0, "they are gone with it");
  return seconds;
}

com::Ptr<IDispatch> worker() {
  com::Ptr<IDispatch> made;
  require(SUCCEEDED(com::createObject(com::iidOf(platform::dvmworkerlib::clsidWorker), made)), "the worker is created");
  return made;
}

}  // namespace

void connecting() {
  std::printf("OnConnection, without viewer and wizard (median of %d runs)\n", runs);
  {
    const auto keepsItRunning = worker();
    report("dvmworker.exe running", medianOf(connectOnce), 0.1, "four buttons, engine, timers, form published");
  }
  const double cold = medianOf([] {
    require(testing_support::waitUntil([] { return !testing_support::workerRuns(); }, 60000),
            "dvmworker.exe ends without clients");
    return connectOnce();
  });
  report("dvmworker.exe to be started", cold, "the same");
}

}  // namespace bench
