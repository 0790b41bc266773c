#include "support/win32/product.h"

#include <algorithm>

#include "com/bridge.h"
#include "support/win32/mail_client_process.h"

namespace testing_support {
namespace {

constexpr const wchar_t* optionsKey = L"Software\\Microsoft\\Office\\9.0\\Outlook\\Options\\TextMessage";
constexpr const wchar_t* installationKey = L"Software\\Marrick\\TextMessageAddIn";
constexpr const wchar_t* debugKey = L"SOFTWARE\\Marrick\\DbgOut";

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

// Runs a program to its end; its exit code, or -1.
int runProgram(std::wstring command) {
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION information{};
  if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &information))
    return -1;
  CloseHandle(information.hThread);
  DWORD code = 0;
  const bool ended = WaitForSingleObject(information.hProcess, 60000) == WAIT_OBJECT_0;
  GetExitCodeProcess(information.hProcess, &code);
  CloseHandle(information.hProcess);
  return ended ? static_cast<int>(code) : -1;
}

}  // namespace

std::vector<std::string> registerProduct() {
  std::vector<std::string> done;
  const auto run = [&](const std::wstring& command, const std::string& what) {
    done.push_back((runProgram(command) == 0 ? "" : "failed: ") + what);
  };
  const std::wstring folder = productFolder();
  for (const wchar_t* const dll : {L"timermm.dll", L"mrktxtmsghelper.dll", L"sms_object.dll", L"mrktxtmsg.dll"})
    run(L"regsvr32 /s \"" + folder + L"\\" + dll + L"\"", "regsvr32 " + narrow(dll));
  run(L"\"" + folder + L"\\dvmworker.exe\" /RegServer", "dvmworker.exe /RegServer");
  setText(HKEY_LOCAL_MACHINE, installationKey, L"SMSCPath", folder + L"\\smsc.txt");
  return done;
}

void setOption(const wchar_t* name, std::uint32_t number) { setNumber(HKEY_CURRENT_USER, optionsKey, name, number); }
void setOption(const wchar_t* name, const wchar_t* text) { setText(HKEY_CURRENT_USER, optionsKey, name, text); }
void removeOption(const wchar_t* name) { removeValue(HKEY_CURRENT_USER, optionsKey, name); }
void removeAllOptions() { RegDeleteKeyW(HKEY_CURRENT_USER, optionsKey); }

void setShortMinute(std::uint32_t milliseconds) {
  setNumber(HKEY_CURRENT_USER, L"Software\\Marrick\\timermm", L"ShortenMinute", milliseconds);
}
void setHandsetStateFile(const std::wstring& path) {
  setText(HKEY_CURRENT_USER, L"Software\\Marrick\\DVMWorker", L"StateFile", path);
}

TraceLog::TraceLog(std::wstring file) : file_(std::move(file)) {
  DeleteFileW(file_.c_str());
  setNumber(HKEY_LOCAL_MACHINE, debugKey, L"Enabled", 1);
  setText(HKEY_LOCAL_MACHINE, debugKey, L"Path", L"\"" + productFolder() + L"\\dbgview.exe\" --log \"" + file_ + L"\"");
  setNumber(HKEY_LOCAL_MACHINE, (std::wstring(debugKey) + L"\\mrktxtmsg").c_str(), L"Level", 2);
}

TraceLog::~TraceLog() {
  if (const HWND viewer = FindWindowW(L"DebugOut Window", L"DebugOutput")) PostMessageW(viewer, WM_CLOSE, 0, 0);
  removeValue(HKEY_LOCAL_MACHINE, debugKey, L"Enabled");
  removeValue(HKEY_LOCAL_MACHINE, debugKey, L"Path");
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

Handset Handset::connect() {
  CLSID clsid{};
  com::Ptr<IDispatch> dispatch;
  if (FAILED(CLSIDFromProgID(L"DVMWorker.Handset", &clsid)) ||
      FAILED(CoCreateInstance(clsid, nullptr, CLSCTX_LOCAL_SERVER, IID_IDispatch, dispatch.putVoid())))
    platform::raiseError(429);
  return platform::as<Handset>(com::import(dispatch.get()));
}

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
