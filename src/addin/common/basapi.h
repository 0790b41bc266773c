// Outside functions and records, under the names that the rest of the program calls them by.
#pragma once

#include <string>

#include "addin/common/basGlobal.h"

namespace addin {

// The record of WM_COPYDATA. `lpData` covers cbData bytes.
struct CopyData {
  std::uint32_t dwData = 0;
  std::uint32_t cbData = 0;
  const char* lpData = nullptr;
};

inline std::int32_t GetTickCount() { return system().clock.ticks(); }
inline Date Now() { return system().clock.now(); }
inline void Sleep(std::int32_t milliseconds) { system().clock.sleep(milliseconds); }
inline void Beep() { system().windows.beep(); }
inline Object CreateObject(StringView progId) { return system().objects.create(progId); }
inline void Shell(StringView command, std::int16_t windowStyle) { system().shell.start(command, windowStyle); }
inline std::int32_t GetPlatformId() { return system().shell.platformId(); }

// The help viewer, without an owner window; what it returns is not looked at.
inline void HtmlHelp(const std::string& path, std::uint32_t command) { system().shell.htmlHelp(0, path, command, 0); }

inline WindowHandle FindWindow(const std::string& className, const std::string& title) {
  return system().windows.findWindow(className, title);
}
inline void SendCopyData(WindowHandle window, const CopyData& record) {
  system().windows.sendCopyData(window, record.dwData, {record.lpData, record.cbData});
}

// Registry value types that the program understands.
inline constexpr std::int32_t REG_TYPE_SZ = 1;
inline constexpr std::int32_t REG_TYPE_DWORD = 4;
inline constexpr std::int32_t STATUS_SUCCESS = 0;  // ERROR_SUCCESS of the Win32 calls

// Command of HtmlHelp: opens the file at its default topic.
inline constexpr std::uint32_t HH_DISPLAY_TOPIC = 0;

// Platform identifier of Windows NT and what came of it.
inline constexpr std::int32_t PLATFORM_WIN32_NT = 2;  // VER_PLATFORM_WIN32_NT

// Window style of Shell: minimised, with the focus.
inline constexpr std::int16_t SHELL_MINIMIZED_FOCUS = 2;

// Message box: an OK button and the information icon.
inline constexpr std::int32_t MSGBOX_INFORMATION = 64;

}  // namespace addin
