// The entry points of mrktxtmsghelper.dll.

#include "servers/common/win/dll_server.h"
#include "servers/mrktxtmsghelper/txtmsg.h"
#include "servers/mrktxtmsghelper/win/message_props.h"

namespace {

using namespace platform::txtmsghelper;

platform::Ref<servers::txtmsghelper::TxtMsg> create() {
  return platform::make<servers::txtmsghelper::TxtMsg>(servers::txtmsghelper::Surroundings{
      .toUtc = &servers::txtmsghelper::toUtc, .propertiesOf = &servers::txtmsghelper::propertiesOf});
}

constexpr com::Class classes[] = {com::nativeClass<&create>(clsidTxtMsg)};
constexpr com::ClassRegistration registrations[] = {
    {clsidTxtMsg, progIdTxtMsg, u"Marrick Text Message Helper", com::ServerKind::InProcess}};

}  // namespace

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void** result) {
  return com::getClassObject(classes, clsid, iid, result);
}
STDAPI DllCanUnloadNow() { return servers::canUnloadDll(); }
STDAPI DllRegisterServer() { return servers::registerDll(registrations, servers::Scope::Machine); }
STDAPI DllUnregisterServer() { return servers::unregisterDll(registrations, servers::Scope::Machine); }
STDAPI DllInstall(BOOL install, LPCWSTR text) { return servers::installDll(registrations, install != FALSE, text); }
