#include "win32/shell.h"

#include <array>

#include "addin/platform/runtime_error.h"
#include "win32/text.h"

namespace win32 {
namespace {

using platform::raiseError;
using platform::String;
using platform::StringView;

String trimmed(StringView text) {
  constexpr StringView blanks = u" \t";
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == StringView::npos) return {};
  return String(text.substr(first, text.find_last_not_of(blanks) - first + 1));
}

bool isFile(const String& path) {
  const DWORD attributes = GetFileAttributesW(wide(path));
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

// Unquoted, "C:\Program Files\view.exe" would first be tried as the program "C:\Program" with an argument.
String commandLine(StringView command) {
  String line = trimmed(command);
  return isFile(line) ? u'"' + line + u'"' : line;
}

std::int32_t errorOfStart(DWORD code) {
  switch (code) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_DRIVE:
    case ERROR_INVALID_NAME:
    case ERROR_BAD_PATHNAME:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
    case ERROR_NOT_READY:
    case ERROR_FILENAME_EXCED_RANGE:
      return 53;
    case ERROR_ACCESS_DENIED:
      return 70;
    default:
      return 5;
  }
}

String systemFolder() {
  std::array<wchar_t, MAX_PATH> buffer{};
  const UINT length = GetSystemDirectoryW(buffer.data(), static_cast<UINT>(buffer.size()));
  if (length == 0 || length >= buffer.size()) raiseError(53);
  return String(reinterpret_cast<const char16_t*>(buffer.data()), length);
}

using HtmlHelpFunction = HWND(WINAPI*)(HWND caller, LPCSTR file, UINT command, DWORD_PTR data);

}  // namespace

void Shell::start(StringView command, std::int16_t windowStyle) {
  String line = commandLine(command);
  if (line.empty()) raiseError(5);
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESHOWWINDOW;
  startup.wShowWindow = static_cast<WORD>(windowStyle);  // the run time's window styles are Windows' own
  PROCESS_INFORMATION process{};
  if (!CreateProcessW(nullptr, wide(line), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process))
    raiseError(errorOfStart(GetLastError()));
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
}

void Shell::htmlHelp(platform::WindowHandle owner, const std::string& path, std::uint32_t command, std::uint32_t data) {
  if (!helpViewer_) helpViewer_ = loadFrom(systemFolder(), u"hhctrl.ocx");
  const FARPROC found = GetProcAddress(helpViewer_, "HtmlHelpA");
  if (!found) raiseError(53);  // a file of that name which is not the help viewer
  const auto htmlHelpA = reinterpret_cast<HtmlHelpFunction>(reinterpret_cast<void*>(found));
  htmlHelpA(reinterpret_cast<HWND>(owner), path.c_str(), command, data);
}

std::int32_t Shell::platformId() {
  OSVERSIONINFOA version{};
  static_assert(sizeof version == 148 && sizeof version.szCSDVersion == 128);  // which record it is, its size tells
  version.dwOSVersionInfoSize = sizeof version;
  GetVersionExA(&version);
  return static_cast<std::int32_t>(version.dwPlatformId);
}

HMODULE loadFrom(StringView folder, StringView file) {
  String path(folder);
  path += u'\\';
  path += file;
  const HMODULE library = LoadLibraryW(wide(path));
  if (!library) raiseError(53);
  return library;
}

}  // namespace win32
