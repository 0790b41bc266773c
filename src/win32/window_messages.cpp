#include "win32/window_messages.h"

#include "com/windows.h"

namespace win32 {

platform::WindowHandle Windows::findWindow(const std::string& className, const std::string& title) {
  return reinterpret_cast<platform::WindowHandle>(FindWindowA(className.c_str(), title.c_str()));
}

void Windows::sendCopyData(platform::WindowHandle to, std::uint32_t dwData, std::string_view data) {
  COPYDATASTRUCT record{};
  record.dwData = dwData;
  record.cbData = static_cast<DWORD>(data.size());
  record.lpData = const_cast<char*>(data.data());  // the receiver gets a copy
  SendMessageA(reinterpret_cast<HWND>(to), WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&record));
}

void Windows::beep() { MessageBeep(MB_OK); }

}  // namespace win32
