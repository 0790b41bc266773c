// The entry points of timermm.dll.

#include "servers/common/win/dll_server.h"
#include "servers/common/win/settings.h"
#include "servers/common/win/window_scheduler.h"
#include "servers/timermm/timer.h"

namespace {

using namespace platform::timermm;

// The test setting; see settings.h.
std::int32_t minuteLength() {
  constexpr std::uint32_t realMinute = 60000;
  const std::uint32_t length = servers::settings::number(servers::settings::timerKey, u"ShortenMinute").value_or(0);
  return static_cast<std::int32_t>(length == 0 || length > realMinute ? realMinute : length);
}

platform::Ref<servers::timermm::Timer> create() {
  return platform::make<servers::timermm::Timer>(servers::windowScheduler(), &minuteLength);
}

constexpr com::Class classes[] = {com::nativeClass<&create>(clsidTimer)};
constexpr com::ClassRegistration registrations[] = {
    {clsidTimer, progIdTimer, u"Marrick Timer", com::ServerKind::InProcess}};

}  // namespace

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void** result) {
  return com::getClassObject(classes, clsid, iid, result);
}
STDAPI DllCanUnloadNow() { return servers::canUnloadDll(); }
STDAPI DllRegisterServer() { return servers::registerDll(registrations, servers::Scope::Machine); }
STDAPI DllUnregisterServer() { return servers::unregisterDll(registrations, servers::Scope::Machine); }
STDAPI DllInstall(BOOL install, LPCWSTR text) { return servers::installDll(registrations, install != FALSE, text); }
