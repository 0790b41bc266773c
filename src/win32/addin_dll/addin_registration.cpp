#include "win32/addin_dll/addin_registration.h"

#include "com/errors.h"
#include "com/registration.h"
#include "win32/module.h"

namespace win32 {
namespace {

using com::RegistryEntry;
using com::RegistryPlace;
using platform::String;
using platform::StringView;

constexpr StringView progId = u"mrktxtmsg.connect";
constexpr StringView displayName = u"Marrick Text Message Add-In";

constexpr com::ClassRegistration connectClass{clsidConnect, progId, displayName, com::ServerKind::InProcess};

// Other add-ins have their keys here too.
constexpr StringView addInsKey = u"Software\\Microsoft\\Office\\Outlook\\Addins";

constexpr std::uint32_t connectedAndLoadedAtStartUp = 3;

std::vector<RegistryEntry> addInEntries() {
  const String key(progId);
  return {
      {key, u"FriendlyName", String(displayName)},
      {key, u"Description", u"Marrick Text Message Add-In for Outlook 2000"},
      {key, u"LoadBehavior", connectedAndLoadedAtStartUp},
      {key, u"CommandLineSafe", 0u},
      // Mail clients from 2010 on leave out the disconnection of an add-in that does not ask for it.
      {key, u"RequireShutdownNotification", 1u},
  };
}

const RegistryPlace& classesOf(Scope scope) { return scope == Scope::User ? com::userClasses : com::machineClasses; }

RegistryPlace addInsPlace() { return {HKEY_CURRENT_USER, addInsKey}; }

}  // namespace

HRESULT registerAddIn(Scope scope) noexcept {
  return com::guarded([&] {
    const HRESULT hr = com::registerClass(classesOf(scope), connectClass, com::modulePath(ownModule()));
    return FAILED(hr) ? hr : com::writeEntries(addInsPlace(), addInEntries());
  });
}

HRESULT unregisterAddIn(Scope scope) noexcept {
  return com::guarded([&] {
    const HRESULT first = com::removeEntries(addInsPlace(), addInEntries());
    const HRESULT second = com::unregisterClass(classesOf(scope), connectClass);
    return FAILED(first) ? first : second;
  });
}

}  // namespace win32
