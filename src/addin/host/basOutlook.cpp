#include "addin/host/basOutlook.h"

namespace addin {
namespace {

thread_local constinit Automation* moduleApplication = nullptr;  // counted: one reference while it is set

}  // namespace

void SetModuleApplication(const outlook::Application& application) {
  Automation* const incoming = application.automation().get();
  if (incoming) incoming->addRef();
  Automation* const old = std::exchange(moduleApplication, incoming);
  if (old) old->release();
}

outlook::Application ModuleApplication() { return outlook::Application(Ref<Automation>(moduleApplication)); }

}  // namespace addin
