#include "support/win32/product.h"

#include <algorithm>
#include <iterator>

#include "com/bridge.h"
#include "com/create_object.h"
#include "servers/dvmworker/handset_control.h"
#include "support/win32/mail_client_process.h"

// Behind the system's own header, which comes with the others.
#include <tlhelp32.h>

namespace testing_support {

const wchar_t* const optionsKey = L"Software\\Microsoft\\Office\\9.0\\Outlook\\Options\\TextMessage";

namespace {

constexpr const wchar_t* installationKey = L"Software\\Marrick\\TextMessageAddIn";
constexpr const wchar_t* workerMutex = L"Marrick DVMWorker";  // held by the running dvmworker.exe
constexpr const wchar_t* debugKey = L"SOFTWARE\\Marrick\\DbgOut";
constexpr const wchar_t* writerKey = L"SOFTWARE\\Marrick\\DbgOut\\mrktxtmsg";
constexpr const wchar_t* timerKey = L"Software\\Marrick\\timermm";
constexpr const wchar_t* workerKey = L"Software\\Marrick\\DVMWorker";

constexpr const wchar_t* addInKey = L"Software\\Microsoft\\Office\\Outlook\\Addins\\mrktxtmsg.connect";

constexpr const wchar_t* dlls[] = {L"timermm.dll", L"mrktxtmsghelper.dll", L"sms_object.dll", L"mrktxtmsg.dll"};
constexpr const wchar_t* workerFile = L"dvmworker.exe";

std::string narrow(const std::wstring& text) { return {text.begin(), text.end()}; }  // ASCII paths and names

void setValue(HKEY root, const wchar_t* path, const wchar_t* name, DWORD type, const void* data, DWORD size) {
  HKEY key = nullptr;
  if (RegCreateKeyExW(root, path, 0, nullptr, 0, KEY_WRITE, nullptr, &key, nullptr) != ERROR_SUCCESS) return;
  RegSetValueExW(key, name, 0, type, static_cast<const BYTE*>(data), size);
  RegCloseKey(key);
}
void setNumber(HKEY root, const wchar_t* path, const wchar_t* name, DWORD number) {
  setValue(root, path, name, REG_DWORD, &number, sizeof number);
}
void setText(HKEY root, const wchar_t* path, const wchar_t* name, const std::wstring& text) {
  setValue(root, path, name, REG_SZ, text.c_str(), static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
}
void removeValue(HKEY root, const wchar_t* path, const wchar_t* name) {
  HKEY key = nullptr;
  if (RegOpenKeyExW(root, path, 0, KEY_WRITE, &key) != ERROR_SUCCESS) return;
  RegDeleteValueW(key, name);
  RegCloseKey(key);
}

bool isDll(const std::wstring& file) { return file.ends_with(L".dll"); }

void killAll(const wchar_t* program) {
  const HANDLE processes = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
  PROCESSENTRY32W one{};
  one.dwSize = sizeof one;
  for (BOOL more = Process32FirstW(processes, &one); more; more = Process32NextW(processes, &one))
    if (lstrcmpiW(one.szExeFile, program) == 0) killProcess(one.th32ProcessID);
  CloseHandle(processes);
}

HWND findViewer() { return FindWindowW(L"DebugOut Window", L"DebugOutput"); }

// Runs a program to its end; its exit code, or -1.
int runProgram(std::wstring command) {
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION information{};
  if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &information))
    return -1;
  CloseHandle(information.hThread);
  DWORD code = 0;
  const bool ended = WaitForSingleObject(information.hProcess, patience) == WAIT_OBJECT_0;
  GetExitCodeProcess(information.hProcess, &code);
  CloseHandle(information.hProcess);
  return ended ? static_cast<int>(code) : -1;
}

}  // namespace

bool registerServer(const std::wstring& file) {
  const std::wstring path = L"\"" + productFolder() + L"\\" + file + L"\"";
  return runProgram(isDll(file) ? L"regsvr32 /s " + path : path + L" /RegServer") == 0;
}

bool unregisterServer(const std::wstring& file) {
  const std::wstring path = L"\"" + productFolder() + L"\\" + file + L"\"";
  return runProgram(isDll(file) ? L"regsvr32 /u /s " + path : path + L" /UnregServer") == 0;
}

std::vector<std::string> registerProduct() {
  std::vector<std::string> done;
  for (const wchar_t* const dll : dlls)
    done.push_back((registerServer(dll) ? "regsvr32 " : "failed: regsvr32 ") + narrow(dll));
  done.push_back((registerServer(workerFile) ? "" : "failed: ") + narrow(workerFile) + " /RegServer");
  setText(HKEY_LOCAL_MACHINE, installationKey, L"SMSCPath", productFolder() + L"\\smsc.txt");
  setPorts(L"sim");
  return done;
}

std::vector<std::string> unregisterProduct() {
  std::vector<std::string> done;
  for (const wchar_t* const dll : dlls)
    done.push_back((unregisterServer(dll) ? "regsvr32 /u " : "failed: regsvr32 /u ") + narrow(dll));
  done.push_back((unregisterServer(workerFile) ? "" : "failed: ") + narrow(workerFile) + " /UnregServer");
  removeValue(HKEY_LOCAL_MACHINE, installationKey, L"SMSCPath");
  removeValue(HKEY_CURRENT_USER, workerKey, L"Ports");
  return done;
}

void setLoadBehavior(std::uint32_t number) { setNumber(HKEY_CURRENT_USER, addInKey, L"LoadBehavior", number); }
void setOption(const wchar_t* name, std::uint32_t number) { setNumber(HKEY_CURRENT_USER, optionsKey, name, number); }
void setOption(const wchar_t* name, const wchar_t* text) { setText(HKEY_CURRENT_USER, optionsKey, name, text); }
void setOption(const wchar_t* name, std::uint32_t type, const std::vector<std::byte>& data) {
  setValue(HKEY_CURRENT_USER, optionsKey, name, type, data.data(), static_cast<DWORD>(data.size()));
}
void removeOption(const wchar_t* name) { removeValue(HKEY_CURRENT_USER, optionsKey, name); }
void removeAllOptions() { RegDeleteKeyW(HKEY_CURRENT_USER, optionsKey); }

std::wstring setRegisteredOwner(const std::wstring& name) {
  constexpr const wchar_t* windowsKey = L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion";
  constexpr const wchar_t* valueName = L"RegisteredOwner";
  wchar_t before[256] = L"";
  HKEY key = nullptr;
  if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, windowsKey, 0, KEY_READ, &key) == ERROR_SUCCESS) {
    DWORD size = sizeof before - sizeof *before;
    RegQueryValueExW(key, valueName, nullptr, nullptr, reinterpret_cast<BYTE*>(before), &size);
    RegCloseKey(key);
  }
  if (name.empty())
    removeValue(HKEY_LOCAL_MACHINE, windowsKey, valueName);
  else
    setText(HKEY_LOCAL_MACHINE, windowsKey, valueName, name);
  return before;
}

void setHelpFiles(const std::wstring& folder, std::uint32_t language) {
  if (folder.empty()) {
    removeValue(HKEY_CURRENT_USER, installationKey, L"RESPATH");
    removeValue(HKEY_CURRENT_USER, installationKey, L"LANGID");
    return;
  }
  setText(HKEY_CURRENT_USER, installationKey, L"RESPATH", folder);
  setNumber(HKEY_CURRENT_USER, installationKey, L"LANGID", language);
}

// The real one of a real Windows is left alone.
bool installHelpViewer() {
  if (!GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version")) return false;
  wchar_t folder[MAX_PATH] = L"";
  GetSystemDirectoryW(folder, MAX_PATH);
  const std::wstring target = std::wstring(folder) + L"\\hhctrl.ocx";
  const std::wstring source = productFolder() + L"\\..\\tests\\hhctrl.ocx";
  // Wine would take its own one all the same.
  setText(HKEY_CURRENT_USER, L"Software\\Wine\\AppDefaults\\mailclient.exe\\DllOverrides", L"hhctrl.ocx", L"native");
  return CopyFileW(source.c_str(), target.c_str(), FALSE) != FALSE;
}

void setShortMinute(std::uint32_t milliseconds) {
  setNumber(HKEY_CURRENT_USER, timerKey, L"ShortenMinute", milliseconds);
}
void setHandsetStateFile(const std::wstring& path) { setText(HKEY_CURRENT_USER, workerKey, L"StateFile", path); }
void setSendFile(const std::wstring& path) {
  if (path.empty())
    removeValue(HKEY_CURRENT_USER, workerKey, L"SendFile");
  else
    setText(HKEY_CURRENT_USER, workerKey, L"SendFile", path);
}
void setPorts(const std::wstring& list) { setText(HKEY_CURRENT_USER, workerKey, L"Ports", list); }

class SavedSettings::Key {
 public:
  Key(HKEY root, const wchar_t* path) : root_(root), path_(path) {
    HKEY key = nullptr;
    existed_ = RegOpenKeyExW(root_, path_, 0, KEY_READ, &key) == ERROR_SUCCESS;
    if (!existed_) return;
    values_ = valuesOf(key);
    RegCloseKey(key);
  }
  Key(const Key&) = delete;
  Key& operator=(const Key&) = delete;
  ~Key() {
    HKEY key = nullptr;
    if (RegOpenKeyExW(root_, path_, 0, KEY_READ | KEY_WRITE, &key) == ERROR_SUCCESS) {
      for (const Value& value : valuesOf(key)) RegDeleteValueW(key, value.name.c_str());
      RegCloseKey(key);
    }
    for (const Value& value : values_)
      setValue(root_, path_, value.name.c_str(), value.type, value.data.data(), static_cast<DWORD>(value.data.size()));
    if (!existed_) RegDeleteKeyW(root_, path_);
  }

 private:
  struct Value {
    std::wstring name;
    DWORD type;
    std::vector<BYTE> data;
  };

  static std::vector<Value> valuesOf(HKEY key) {
    std::vector<Value> values;
    for (DWORD i = 0;; ++i) {
      wchar_t name[256];
      DWORD length = static_cast<DWORD>(std::size(name));
      DWORD type = 0;
      DWORD size = 0;
      if (RegEnumValueW(key, i, name, &length, nullptr, &type, nullptr, &size) != ERROR_SUCCESS) return values;
      Value value{name, type, std::vector<BYTE>(size)};
      RegQueryValueExW(key, name, nullptr, &type, value.data.data(), &size);
      values.push_back(std::move(value));
    }
  }

  HKEY root_;
  const wchar_t* path_;
  bool existed_ = false;
  std::vector<Value> values_;
};

SavedSettings::SavedSettings() {
  for (const wchar_t* const path : {optionsKey, timerKey, workerKey, addInKey})
    keys_.push_back(std::make_unique<Key>(HKEY_CURRENT_USER, path));
  for (const wchar_t* const path : {debugKey, writerKey})
    keys_.push_back(std::make_unique<Key>(HKEY_LOCAL_MACHINE, path));
}

SavedSettings::~SavedSettings() {
  while (!keys_.empty()) keys_.pop_back();  // a key that came into being goes before the one above it
}

TraceLog::TraceLog(std::wstring file) : file_(std::move(file)) {
  DeleteFileW(file_.c_str());
  setNumber(HKEY_LOCAL_MACHINE, debugKey, L"Enabled", 1);
  setText(HKEY_LOCAL_MACHINE, debugKey, L"Path", viewerCommand());
  setNumber(HKEY_LOCAL_MACHINE, writerKey, L"Level", 2);
}

// Not by closing its window: without a window manager, Wine takes two seconds to destroy a minimised one. The file is
// complete after each line.
//
// All of them: one that the add-in has started may not have seen yet that it is not the first.
void TraceLog::endViewer() const { killAll(L"dbgview.exe"); }

TraceLog::~TraceLog() {
  endViewer();
  removeValue(HKEY_LOCAL_MACHINE, debugKey, L"Enabled");
  removeValue(HKEY_LOCAL_MACHINE, debugKey, L"Path");
}

std::wstring TraceLog::viewerCommand() const {
  return L"\"" + productFolder() + L"\\dbgview.exe\" --log \"" + file_ + L"\"";
}

bool TraceLog::startViewer() const {
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESHOWWINDOW;
  startup.wShowWindow = SW_SHOWMINNOACTIVE;
  PROCESS_INFORMATION information{};
  std::wstring command = viewerCommand();
  if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &information))
    return false;
  CloseHandle(information.hThread);
  CloseHandle(information.hProcess);
  return waitUntil([] { return findViewer() != nullptr; });
}

void TraceLog::set(Where where, const wchar_t* name, std::uint32_t type, const std::vector<std::byte>& data) {
  setValue(HKEY_LOCAL_MACHINE, where == Where::Channel ? debugKey : writerKey, name, type, data.data(),
           static_cast<DWORD>(data.size()));
}

std::vector<std::string> TraceLog::lines(std::size_t from) const {
  std::string text;
  const HANDLE file =
      CreateFileW(file_.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
  if (file == INVALID_HANDLE_VALUE) return {};
  char buffer[65536];
  DWORD count = 0;
  while (ReadFile(file, buffer, sizeof buffer, &count, nullptr) && count > 0) text.append(buffer, count);
  CloseHandle(file);
  std::vector<std::string> all;
  for (std::size_t at = 0, end = 0; (end = text.find('\n', at)) != std::string::npos; at = end + 1) {
    std::string line = text.substr(at, end - at);
    if (line.ends_with('\r')) line.pop_back();
    all.push_back(std::move(line));
  }
  all.erase(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(std::min(from, all.size())));
  return all;
}

std::size_t TraceLog::count(const std::string& text, std::size_t from) const {
  const auto all = lines(from);
  return static_cast<std::size_t>(
      std::count_if(all.begin(), all.end(), [&](const std::string& l) { return l.find(text) != std::string::npos; }));
}

bool TraceLog::waitFor(const std::string& text, std::size_t from, std::uint32_t milliseconds) const {
  return waitUntil([&] { return count(text, from) > 0; }, milliseconds);
}

bool workerRuns() {
  const HANDLE mutex = OpenMutexW(SYNCHRONIZE, FALSE, workerMutex);
  if (mutex) CloseHandle(mutex);
  return mutex != nullptr;
}

void startWorker() {
  if (workerRuns()) return;
  std::wstring command = L"\"" + productFolder() + L"\\dvmworker.exe\" /Embedding";
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION information{};
  if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &information))
    return;
  WaitForInputIdle(information.hProcess, patience);
  CloseHandle(information.hThread);
  CloseHandle(information.hProcess);
}

Handset Handset::connect() {
  startWorker();
  com::Ptr<IDispatch> dispatch;
  if (FAILED(com::createObject(com::iidOf(servers::dvmworker::clsidHandset), dispatch))) platform::raiseError(429);
  return platform::as<Handset>(com::import(dispatch.get()));
}

bool killProcess(std::uint32_t id) {
  const HANDLE process = OpenProcess(PROCESS_TERMINATE | SYNCHRONIZE, FALSE, id);
  if (!process) return false;
  TerminateProcess(process, 1);
  const bool ended = WaitForSingleObject(process, patience) == WAIT_OBJECT_0;
  CloseHandle(process);
  return ended;
}

// By its name: one that hangs could not be asked, and Wine may have started several, of which one serves at a time.
void endWorker() { killAll(workerFile); }

bool closeWindow(const wchar_t* title, std::uint32_t milliseconds) {
  HWND window = nullptr;
  if (!waitUntil([&] { return (window = FindWindowW(nullptr, title)) != nullptr; }, milliseconds)) return false;
  PostMessageW(window, WM_CLOSE, 0, 0);
  return waitUntil([&] { return FindWindowW(nullptr, title) == nullptr; }, milliseconds);
}

// Serves messages meanwhile: this process may be a COM client with calls coming in.
void pauseBriefly() {
  MsgWaitForMultipleObjectsEx(0, nullptr, 20, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
  MSG message{};
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
}

std::uint32_t ticksNow() { return GetTickCount(); }

}  // namespace testing_support
