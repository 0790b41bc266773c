// The entry points of sms_object.dll: the class of the SMS object. dvmworker.exe creates one per phone and attaches the
// phone to it.

#include <ctime>

#include "servers/common/win/dll_server.h"
#include "servers/common/win/settings.h"
#include "servers/common/win/window_scheduler.h"
#include "servers/sms_object/sms_object.h"

namespace {

using namespace servers::sms_object;
using platform::sms_objectlib::clsidSMS;

constexpr platform::StringView nextTransaction = u"NextTransaction";

// Where the registry cannot be written, the seconds of this century stand in: one block per second.
std::int32_t fromTheClock() {
  constexpr std::time_t year2000 = 946684800;
  return static_cast<std::int32_t>((std::time(nullptr) - year2000) % 2'000'000 * TransactionIds::block + 1);
}

void store(std::int32_t next) {
  servers::settings::setNumber(servers::settings::workerKey, nextTransaction, static_cast<std::uint32_t>(next));
}

std::int32_t load() {
  const std::uint32_t stored = servers::settings::number(servers::settings::workerKey, nextTransaction).value_or(1);
  const bool writable = servers::settings::setNumber(servers::settings::workerKey, nextTransaction, stored);
  return writable ? static_cast<std::int32_t>(stored) : fromTheClock();
}

platform::Ref<SmsObject> create() {
  return platform::make<SmsObject>(servers::windowScheduler(), TransactionIds({&load, &store}));
}

constexpr com::Class classes[] = {com::nativeClass<&create>(clsidSMS)};
constexpr com::ClassRegistration registrations[] = {
    {clsidSMS, u"SMS_OBJECT.SMS", u"Marrick SMS Object", com::ServerKind::InProcess}};

}  // namespace

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void** result) {
  return com::getClassObject(classes, clsid, iid, result);
}
STDAPI DllCanUnloadNow() { return servers::canUnloadDll(); }
STDAPI DllRegisterServer() { return servers::registerDll(registrations, servers::Scope::Machine); }
STDAPI DllUnregisterServer() { return servers::unregisterDll(registrations, servers::Scope::Machine); }
STDAPI DllInstall(BOOL install, LPCWSTR text) { return servers::installDll(registrations, install != FALSE, text); }
