#include "registered_servers.h"

#include "com/create_object.h"
#include "servers/dvmworker/handset_control.h"
#include "support/patience.h"
#include "support/win32/product.h"

namespace servers_tests {

using platform::String;
using platform::StringView;

namespace {

constexpr StringView dlls[] = {u"timermm.dll", u"mrktxtmsghelper.dll", u"sms_object.dll"};

class Registration final : public testing::Environment {
 public:
  void SetUp() override {
    for (const StringView dll : dlls) EXPECT_EQ(callEntry(dll, "DllRegisterServer"), S_OK);
    EXPECT_EQ(run(productFile(u"dvmworker.exe") + u" /RegServer"), 0u);
  }
  void TearDown() override {
    EXPECT_EQ(run(productFile(u"dvmworker.exe") + u" /UnregServer"), 0u);
    for (const StringView dll : dlls) EXPECT_EQ(callEntry(dll, "DllUnregisterServer"), S_OK);
  }
};

[[maybe_unused]] const auto* const registration = testing::AddGlobalTestEnvironment(new Registration);

template <class... Arguments>
HRESULT callDll(StringView dll, const char* name, Arguments... arguments) {
  const HMODULE module = LoadLibraryExW(wide(productFile(dll)), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
  if (!module) return HRESULT_FROM_WIN32(GetLastError());
  using Entry = HRESULT(WINAPI*)(Arguments...);
  const auto entry = reinterpret_cast<Entry>(reinterpret_cast<void*>(GetProcAddress(module, name)));
  const HRESULT hr = entry ? entry(arguments...) : E_NOTIMPL;
  FreeLibrary(module);
  return hr;
}

// Keeps the message loop going until the handle is signalled.
bool waitFor(HANDLE handle) {
  return serveUntil([handle] { return WaitForSingleObject(handle, 0) == WAIT_OBJECT_0; });
}

}  // namespace

String productFile(StringView name) {
  String folder = com::modulePath(nullptr);
  folder.resize(folder.find_last_of(u'\\'));
  folder.resize(folder.find_last_of(u'\\'));
  return folder + u"\\bin\\" + String(name);
}

bool serveUntil(const std::function<bool()>& done) {
  const DWORD start = GetTickCount();
  while (!done()) {
    if (GetTickCount() - start > testing_support::patience) return false;
    MsgWaitForMultipleObjectsEx(0, nullptr, 20, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
  }
  return true;
}

void serveFor(DWORD milliseconds) {
  const DWORD start = GetTickCount();
  serveUntil([=] { return GetTickCount() - start >= milliseconds; });
}

DWORD run(String commandLine) {
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process{};
  if (!CreateProcessW(nullptr, reinterpret_cast<wchar_t*>(commandLine.data()), nullptr, nullptr, FALSE, 0, nullptr,
                      nullptr, &startup, &process))
    return GetLastError();
  EXPECT_TRUE(waitFor(process.hProcess));
  DWORD code = STILL_ACTIVE;
  GetExitCodeProcess(process.hProcess, &code);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return code;
}

HRESULT callEntry(StringView dll, const char* name) { return callDll<>(dll, name); }

HRESULT installDll(StringView dll, BOOL install, const wchar_t* text) {
  return callDll<BOOL, LPCWSTR>(dll, "DllInstall", install, text);
}

platform::LateBound create(const platform::Guid& clsid) {
  com::Ptr<IDispatch> made;
  com::check(com::createObject(com::iidOf(clsid), made));
  return platform::LateBound(com::import(made.get()));
}

Setting::Setting(const wchar_t* key, const wchar_t* name) : name_(name) {
  RegCreateKeyW(HKEY_CURRENT_USER, key, &key_);
  std::vector<BYTE> data(4096);
  auto size = static_cast<DWORD>(data.size());
  if (RegQueryValueExW(key_, name_, nullptr, &type_, data.data(), &size) == ERROR_SUCCESS) {
    data.resize(size);
    before_ = std::move(data);
  }
  RegDeleteValueW(key_, name_);
}

Setting::~Setting() {
  if (before_)
    RegSetValueExW(key_, name_, 0, type_, before_->data(), static_cast<DWORD>(before_->size()));
  else
    RegDeleteValueW(key_, name_);
  RegCloseKey(key_);
}

void Setting::set(DWORD number) {
  RegSetValueExW(key_, name_, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number), sizeof number);
}

void Setting::set(const String& text) {
  RegSetValueExW(key_, name_, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                 static_cast<DWORD>((text.size() + 1) * sizeof(char16_t)));
}

void Setting::remove() { RegDeleteValueW(key_, name_); }

RegisteredServers::RegisteredServers() {
  OleInitialize(nullptr);
  lasting_.emplace();
  wchar_t folder[MAX_PATH + 1];
  GetTempPathW(MAX_PATH, folder);
  file_ = String(reinterpret_cast<const char16_t*>(folder)) + u"marrick_servers_test.txt";
  stateFile_.set(file_);
  sendFile_.set(file_ + u".sends");
  ports_.set(u"sim");
  testing_support::endWorker();
  for (const StringView behind : {u"", u".sends"}) DeleteFileW(wide(file_ + String(behind)));
}

RegisteredServers::~RegisteredServers() {
  testing_support::endWorker();
  for (const StringView behind : {u"", u".sends"}) DeleteFileW(wide(file_ + String(behind)));
  lasting_.reset();
  OleUninitialize();
}

platform::LateBound RegisteredServers::handset() { return create(servers::dvmworker::clsidHandset); }

void RegisteredServers::killWorker(const platform::LateBound& handset) {
  const auto id = static_cast<DWORD>(handset.get<std::int32_t>(u"ProcessId"));
  const HANDLE process = OpenProcess(PROCESS_TERMINATE | SYNCHRONIZE, FALSE, id);
  ASSERT_NE(process, nullptr);
  TerminateProcess(process, 1);
  EXPECT_TRUE(waitFor(process));
  CloseHandle(process);
}

}  // namespace servers_tests
