#include "failing_worker.h"

#include <atomic>
#include <string>
#include <vector>

#include "addin/platform/dvmworkerlib.h"
#include "addin/platform/native.h"
#include "com/class_factory.h"
#include "com/lasting_interfaces.h"
#include "com/registration.h"
#include "support/patience.h"

namespace failures_tests {
namespace {

using namespace platform;

constexpr Guid clsidFailing{0x6E3E8A51, 0x4F0C, 0x4E7D, {0x9A, 0x31, 0x5B, 0x0D, 0x7C, 0x28, 0x11, 0xF4}};
constexpr const wchar_t* progIdKey = L"DVMWorker.Worker\\CLSID";

std::atomic<Fails> failing{Fails::Nothing};

void mayFail() {
  if (failing == Fails::Calls)
    raiseError(static_cast<std::int32_t>(0x80004005), u"Broken phone", u"The phone is broken");
}

// The value of a call that does not fail.
template <class T, int Value>
T answer() {
  mayFail();
  return static_cast<T>(Value);
}

class Sms final : public NativeObject {
 public:
  std::span<const Member> members() const override {
    namespace id = sms_objectlib::dispid;
    static constexpr Member table[] = {
        method<&Sms::create>(u"CreateShortMessage", id::smsCreateShortMessage),
        method<&Sms::list>(u"ListMessages", id::smsListMessages),
        method<&Sms::remove>(u"DeleteMessage", id::smsDeleteMessage),
        method<&Sms::supported>(u"IsStorageSupported", id::smsIsStorageSupported),
        method<&Sms::capacity>(u"StorageCapacity", id::smsStorageCapacity),
        method<&Sms::used>(u"StorageUsed", id::smsStorageUsed),
    };
    return table;
  }
  Guid events() const override { return sms_objectlib::SMSEvents::iid; }

 private:
  Object create() { return mayFail(), Object(); }
  std::int32_t list(std::int32_t, std::int32_t) { return answer<std::int32_t, 1>(); }
  std::int32_t remove(std::int32_t, std::int16_t) { return answer<std::int32_t, 2>(); }
  bool supported(std::int32_t) { return answer<bool, 1>(); }
  std::int16_t capacity(std::int32_t) { return answer<std::int16_t, 20>(); }
  std::int16_t used(std::int32_t) { return answer<std::int16_t, 0>(); }
};

class Phone final : public NativeObject {
 public:
  std::span<const Member> members() const override {
    namespace id = dvmworkerlib::dispid;
    static constexpr Member table[] = {
        method<&Phone::isConnected>(u"IsConnected", id::phoneIsConnected),
        method<&Phone::sms>(u"SMS", id::phoneSMS),
    };
    return table;
  }

 private:
  bool isConnected() { return answer<bool, 1>(); }
  Ref<Sms> sms() { return mayFail(), sms_; }

  Ref<Sms> sms_ = make<Sms>();
};

class Phones final : public NativeObject {
 public:
  std::span<const Member> members() const override {
    namespace id = dvmworkerlib::dispid;
    static constexpr Member table[] = {
        method<&Phones::count>(u"Count", id::phonesCount),
        method<&Phones::item>(u"Item", id::phonesItem),
    };
    return table;
  }

 private:
  std::int32_t count() { return answer<std::int32_t, 1>(); }
  Ref<Phone> item(std::int32_t) { return mayFail(), phone_; }

  Ref<Phone> phone_ = make<Phone>();
};

class Worker final : public NativeObject {
 public:
  std::span<const Member> members() const override {
    namespace id = dvmworkerlib::dispid;
    static constexpr Member table[] = {
        method<&Worker::phones>(u"CellPhones", id::workerCellPhones),
        method<&Worker::isConnected>(u"IsConnected", id::workerIsConnected),
    };
    return table;
  }
  Guid events() const override { return failing == Fails::Notices ? Guid{} : dvmworkerlib::WorkerEvents::iid; }

 private:
  Ref<Phones> phones() { return mayFail(), phones_; }
  bool isConnected() { return answer<bool, 1>(); }

  Ref<Phones> phones_ = make<Phones>();
};

Ref<Worker> makeWorker() { return make<Worker>(); }

// The ProgID names another class for a while.
class Redirection {
 public:
  Redirection() {
    std::vector<wchar_t> text(64);
    LONG bytes = static_cast<LONG>(text.size() * sizeof(wchar_t));
    if (RegQueryValueW(HKEY_CLASSES_ROOT, progIdKey, text.data(), &bytes) == ERROR_SUCCESS) before_ = text.data();
    set(reinterpret_cast<const wchar_t*>(com::guidText(clsidFailing).c_str()));
  }
  Redirection(const Redirection&) = delete;
  Redirection& operator=(const Redirection&) = delete;
  ~Redirection() { set(before_.c_str()); }

 private:
  static void set(const wchar_t* text) { RegSetValueW(HKEY_CLASSES_ROOT, progIdKey, REG_SZ, text, 0); }

  std::wstring before_;
};

}  // namespace

class FailingWorker::Server {
 public:
  Server() {
    ready_ = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    thread_ = CreateThread(nullptr, 0, &Server::run, this, 0, &threadId_);
    const HANDLE either[] = {ready_, thread_};
    WaitForMultipleObjects(2, either, FALSE, testing_support::patience);
  }
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;
  ~Server() {
    PostThreadMessageW(threadId_, WM_QUIT, 0, 0);
    WaitForSingleObject(thread_, testing_support::patience);
    CloseHandle(thread_);
    CloseHandle(ready_);
  }
  bool isServing() const { return serving_; }

 private:
  static DWORD WINAPI run(void* self) {
    if (FAILED(OleInitialize(nullptr))) return 1;
    com::guarded([self] {
      static_cast<Server*>(self)->serve();
      return S_OK;
    });
    OleUninitialize();
    return 0;
  }
  void serve() {
    const com::LastingInterfaces lasting;
    const com::RunningClass running(com::nativeClass<&makeWorker>(clsidFailing));
    serving_ = true;
    SetEvent(ready_);
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) DispatchMessageW(&message);
  }

  Redirection redirection_;
  HANDLE ready_ = nullptr;
  HANDLE thread_ = nullptr;
  DWORD threadId_ = 0;
  std::atomic<bool> serving_{false};
};

FailingWorker::FailingWorker(Fails what) {
  failing = what;
  server_ = std::make_unique<Server>();
}
FailingWorker::~FailingWorker() = default;
bool FailingWorker::isServing() const { return server_->isServing(); }
void FailingWorker::fail(Fails what) { failing = what; }

}  // namespace failures_tests
