#include "addin/host/connect.h"

#include "addin/diag/basDbgOut.h"
#include "addin/diag/basDebug.h"
#include "addin/platform/extensibility.h"

namespace addin {
namespace {

// Without a main window with an explorer there is nobody to serve: a mail client that another program has started for
// itself gets no buttons, no engine and no timer.
bool hasMainWindow(const outlook::Application& application) {
  if (!application.ActiveWindow()) {
    DbgOut(2, u"ActiveWindow is nothing");
    return false;
  }
  if (!application.ActiveExplorer()) return false;
  DbgOut(2, u"ActiveWindow is something");
  return true;
}

}  // namespace

std::span<const Member> connect::members() const {
  static constexpr Member table[] = {
      method<&connect::OnConnection>(u"OnConnection", 1),
      method<&connect::OnDisconnection>(u"OnDisconnection", 2),
      method<&connect::OnAddInsUpdate>(u"OnAddInsUpdate", 3),
      method<&connect::OnStartupComplete>(u"OnStartupComplete", 4),
      method<&connect::OnBeginShutdown>(u"OnBeginShutdown", 5),
  };
  return table;
}

Ref<OutAddIn> connect::baseclass() {
  if (!m_baseclass) m_baseclass = make<OutAddIn>();
  return m_baseclass;
}

void connect::OnConnection(const Object& Application, std::int32_t ConnectMode, const Object& AddInInst,
                           const Variant& /*custom*/) {
  onErrorLog([&] {
    DbgOutInit(PROCESS_NAME);
    const Version version = system().module.version();
    DbgOut(2, u"<==== MRKTXTMSG Version ", version.major, u".", version.minor, u".", version.revision);
    DbgOut(2, u"Connectmode:", ConnectMode);

    const auto application = as<outlook::Application>(Application);
    if (!hasMainWindow(application)) return;
    const String progId = as<extensibility::AddInInst>(AddInInst).ProgId();
    // One object for both steps: when the mail client disconnects from inside the first, reading the field again would
    // start a fresh one that nobody ends. Held, not referenced: its end comes at once then.
    const Hold<OutAddIn> addIn(baseclass().get());
    addIn->InitHandler(application, progId);
    if (!addIn->StartUpCompleted())
      raiseError(-1, u"IDTExtensibility2_OnConnection", u"Failed in baseclass.StartUpCompleted");
  });
}

void connect::OnDisconnection(std::int32_t RemoveMode, const Variant& /*custom*/) {
  onErrorLog([&] {
    DbgOut(2, u"OnDisconnection");
    baseclass()->UnInitHandler();
    if (RemoveMode == extensibility::ext_dm_UserClosed)
      DbgOut(2, u"OnDisconnection - RemoveMode = ext_dm_UserClosed!!!!!!!!!!!!!!!!!!!!");
    m_baseclass = nullptr;
  });
}

void connect::OnAddInsUpdate(const Variant& /*custom*/) { DbgOut(2, u"OnAddInsUpdate"); }
void connect::OnStartupComplete(const Variant& /*custom*/) { DbgOut(2, u"OnStartupComplete"); }
void connect::OnBeginShutdown(const Variant& /*custom*/) { DbgOut(2, u"OnBeginShutdown"); }

}  // namespace addin
