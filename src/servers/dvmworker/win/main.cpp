// dvmworker.exe: the local server with the worker, its phones (ports.h) and the simulated handset.
//
//   dvmworker /RegServer | /UnregServer                 registers its classes for everybody
//   dvmworker /RegServerPerUser | /UnregServerPerUser   for this user, without an administrator
//   dvmworker [/Embedding]                              serves, until no client has been left for a while

#include <algorithm>
#include <memory>
#include <vector>

#include "com/class_factory.h"
#include "com/create_object.h"
#include "com/lasting_interfaces.h"
#include "com/registration.h"
#include "servers/common/win/window_scheduler.h"
#include "servers/dvmworker/handset_control.h"
#include "servers/dvmworker/idleness.h"
#include "servers/dvmworker/win/memory_file.h"
#include "servers/dvmworker/win/ports.h"
#include "servers/dvmworker/worker.h"
#include "servers/sms_object/phone_port.h"

namespace {

using namespace platform;
using namespace servers::dvmworker;

constexpr std::int32_t lookForClientsEvery = 1000;  // milliseconds
constexpr std::int32_t lookForPortsEvery = 5000;
// It may have to wait for several lines (modem/win/line_thread.cpp); COM waits for a server longer than this.
constexpr DWORD waitForTheOneBefore = 25000;

constexpr com::ClassRegistration registrations[] = {
    {dvmworkerlib::clsidWorker, dvmworkerlib::progIdWorker, u"Marrick Phone Connection Worker", com::ServerKind::Local},
    {clsidHandset, progIdHandset, u"Marrick Simulated Handset", com::ServerKind::Local},
};

// The SMS object of a phone, from sms_object.dll. Nothing when that cannot be had: such a phone cannot do messages.
Object smsObjectOf(const Ref<handset::Phone>& phone) {
  com::Ptr<IDispatch> dispatch;
  if (FAILED(com::createObject(com::iidOf(sms_objectlib::clsidSMS), dispatch))) return {};
  const Object sms = com::import(dispatch.get());
  LateBound(sms).call<void>(u"AttachPhone", make<servers::sms_object::PhonePort>(phone).get()->object());
  return sms;
}

// References to an object of another module, as far as its count can be trusted.
ULONG referencesTo(IUnknown& object) {
  object.AddRef();
  return object.Release();
}

class Server {
 public:
  Server() {
    handset_->memoriesChanged = [this] { file_.save(handset_->memories()); };
    for (const phone::LineName& name : ports_.names) attach(name);
    if (ports_.serialOnes) attachSerialOnes();
  }

  // A client holds an object of this process, or an SMS object alone.
  bool hasClients() const {
    return com::liveExports() > ownExports_ || std::any_of(attached_.begin(), attached_.end(), [](const Attached& one) {
             return one.sms && referencesTo(*one.sms.get()) > one.ownReferences;
           });
  }

  bool isSending() const {
    const auto& phones = phones_->all();
    return std::any_of(phones.begin(), phones.end(), [](const auto& phone) { return phone->phone()->isSending(); });
  }
  void abandoned() const {
    for (const auto& phone : phones_->all()) phone->phone()->abandoned();
  }

  const Ref<CellPhones>& phones() const { return phones_; }
  const Ref<handset::SimulatedPhone>& handset() const { return handset_; }

 private:
  // What this process itself holds of a phone's SMS object.
  struct Attached {
    phone::LineName name;
    com::Ptr<IDispatch> sms;
    ULONG ownReferences;
  };

  void attach(const phone::LineName& name) {
    const LONG exports = com::liveExports();
    const bool simulated = name.kind == phone::LineName::Kind::Simulated;
    const Ref<handset::Phone> one =
        simulated ? Ref<handset::Phone>(handset_) : modemAt(name, sends_, [this] { return hasClients(); });
    const Object sms = smsObjectOf(one);
    phones_->add(make<CellPhone>(one, sms));
    com::Ptr<IDispatch> dispatch;
    if (sms) dispatch = com::exported(sms);
    const ULONG references = dispatch ? referencesTo(*dispatch.get()) : 0;
    attached_.push_back({name, std::move(dispatch), references});
    ownExports_ += com::liveExports() - exports;
  }

  // A modem that is plugged into the computer may bring a port of its own. A port that goes is one that cannot be
  // opened for a while.
  void attachSerialOnes() {
    for (const phone::LineName& name : serialPortsOfSystem()) {
      const auto known = [&](const Attached& one) { return one.name == name; };
      if (std::none_of(attached_.begin(), attached_.end(), known)) attach(name);
    }
    looking_ = servers::windowScheduler().after(lookForPortsEvery, [this] { attachSerialOnes(); });
  }

  const Ports ports_ = portsOfUser();
  MemoryFile file_;
  Ref<handset::SimulatedPhone> handset_ =
      make<handset::SimulatedPhone>(servers::windowScheduler(), u"Simulated handset", file_.load());
  std::shared_ptr<servers::modem::SendRecord> sends_ = recordOfSends();
  Ref<CellPhones> phones_ = make<CellPhones>();
  std::vector<Attached> attached_;
  LONG ownExports_ = 0;
  Ref<Counted> looking_;
};

// The classes, offered to other processes.
//
// Wine does not forget what a killed server has offered, and would hand it out for ever; what is offered for one use
// only is gone with the first try that fails. So under Wine each use of a class is followed by a new offer.
class Offers {
 public:
  explicit Offers(std::initializer_list<com::Class> classes) {
    for (const com::Class& one : classes) offers_.push_back({one, std::make_unique<com::RunningClass>(one, use()), {}});
  }

  void used(const Guid& clsid) {
    if (use() == REGCLS_MULTIPLEUSE) return;
    for (Offer& offer : offers_) {
      if (offer.offered.clsid != clsid) continue;
      offer.renewal = servers::windowScheduler().after(0, [&offer] {
        offer.running = nullptr;  // one offer of a class at a time
        offer.running = std::make_unique<com::RunningClass>(offer.offered, use());
      });
    }
  }

 private:
  struct Offer {
    com::Class offered;
    std::unique_ptr<com::RunningClass> running;
    Ref<Counted> renewal;
  };

  static REGCLS use() {
    static const bool isWine = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
    return isWine ? REGCLS_SINGLEUSE : REGCLS_MULTIPLEUSE;
  }

  std::vector<Offer> offers_;
};

constinit Server* server = nullptr;
constinit Offers* offers = nullptr;  // null while nothing is offered: what was asked for before may still come

// The server, for a new object of a class. Whoever is too late is told to ask again, which starts the next one.
Server& serving(const Guid& clsid) {
  if (!server) raiseError(CO_E_SERVER_STOPPING, u"dvmworker", u"The server is ending");
  if (offers) offers->used(clsid);
  return *server;
}

Ref<Worker> makeWorker() {
  return make<Worker>(servers::windowScheduler(), serving(dvmworkerlib::clsidWorker).phones());
}

Ref<HandsetControl> makeControl() {
  return make<HandsetControl>(serving(clsidHandset).handset(), static_cast<std::int32_t>(GetCurrentProcessId()));
}

// Ends the message loop when the server may end.
class EndsWhenIdle {
 public:
  EndsWhenIdle() { lookAgain(); }

 private:
  void lookAgain() {
    next_ = servers::windowScheduler().after(lookForClientsEvery, [this] {
      const bool hasClients = server->hasClients();
      if (!hasClients) server->abandoned();
      if (idleness_.look(hasClients, server->isSending()))
        PostQuitMessage(0);
      else
        lookAgain();
    });
  }

  Ref<Counted> next_;
  Idleness idleness_;
};

void serveMessages() {
  MSG message;
  while (GetMessageW(&message, nullptr, 0, 0) > 0) DispatchMessageW(&message);
}

// Calls that came in before the classes were withdrawn.
void serveWhatWaits() {
  MSG message;
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
}

void serve() {
  const com::LastingInterfaces lasting;
  Server running;
  server = &running;
  do {
    {
      Offers offered{com::nativeClass<&makeWorker>(dvmworkerlib::clsidWorker),
                     com::nativeClass<&makeControl>(clsidHandset)};
      offers = &offered;
      const EndsWhenIdle end;
      serveMessages();
      offers = nullptr;
    }
    serveWhatWaits();
  } while (running.hasClients());
  server = nullptr;
}

// One server at a time. One that is about to end gets the time for it; one that was killed leaves its place.
class OnlyOne {
 public:
  OnlyOne() : mutex_(CreateMutexW(nullptr, FALSE, L"Marrick DVMWorker")) {
    const DWORD waited = mutex_ ? WaitForSingleObject(mutex_, waitForTheOneBefore) : WAIT_FAILED;
    owned_ = waited == WAIT_OBJECT_0 || waited == WAIT_ABANDONED;
  }
  OnlyOne(const OnlyOne&) = delete;
  OnlyOne& operator=(const OnlyOne&) = delete;
  ~OnlyOne() {
    if (owned_) ReleaseMutex(mutex_);
    if (mutex_) CloseHandle(mutex_);
  }
  explicit operator bool() const { return owned_; }

 private:
  HANDLE mutex_;
  bool owned_ = false;
};

int serveAlone() {
  const OnlyOne only;
  if (!only) return 1;
  if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return 1;
  const bool served = com::guardedOr(false, [] { return serve(), true; });
  CoUninitialize();
  return served ? 0 : 1;
}

// Registers (or the opposite) all classes; the exit code.
template <class Step>
int forEachClass(Step&& step) {
  HRESULT first = S_OK;
  for (const auto& registration : registrations) {
    const HRESULT hr = step(registration);
    if (SUCCEEDED(first)) first = hr;
  }
  return SUCCEEDED(first) ? 0 : 1;
}

int registerIn(const com::RegistryPlace& place) {
  const String path = com::modulePath(nullptr);
  return forEachClass([&](const com::ClassRegistration& one) { return com::registerClass(place, one, path); });
}

int unregisterFrom(const com::RegistryPlace& place) {
  return forEachClass([&](const com::ClassRegistration& one) { return com::unregisterClass(place, one); });
}

// What comes behind the program's own name.
String argumentOf(StringView commandLine) {
  const bool quoted = commandLine.starts_with(u'"');
  const auto end = commandLine.find(quoted ? u'"' : u' ', quoted ? 1 : 0);
  if (end == StringView::npos) return {};
  commandLine.remove_prefix(end + 1);
  const auto first = commandLine.find_first_not_of(u' ');
  const auto last = commandLine.find_last_not_of(u' ');
  return first == StringView::npos ? String() : String(commandLine.substr(first, last - first + 1));
}

int run(StringView argument) {
  if (argument.starts_with(u'/') || argument.starts_with(u'-')) argument.remove_prefix(1);
  if (sameName(argument, u"RegServer")) return registerIn(com::machineClasses);
  if (sameName(argument, u"UnregServer")) return unregisterFrom(com::machineClasses);
  if (sameName(argument, u"RegServerPerUser")) return registerIn(com::userClasses);
  if (sameName(argument, u"UnregServerPerUser")) return unregisterFrom(com::userClasses);
  if (argument.empty() || sameName(argument, u"Embedding")) return serveAlone();
  return 2;
}

}  // namespace

int WINAPI WinMain(HINSTANCE /*instance*/, HINSTANCE /*before*/, LPSTR /*line*/, int /*show*/) {
  return com::guardedOr(1, [] { return run(argumentOf(reinterpret_cast<const char16_t*>(GetCommandLineW()))); });
}
