#include "win32/user_interface.h"

#include "addin/platform/runtime_error.h"
#include "win32/form_window.h"
#include "win32/text.h"

namespace win32 {
namespace {

BOOL CALLBACK findSeen(HWND window, LPARAM to) noexcept {
  if (!IsWindowVisible(window) || GetWindow(window, GW_OWNER)) return TRUE;
  *reinterpret_cast<HWND*>(to) = window;
  return FALSE;
}

HWND firstWindow() {
  HWND found = nullptr;
  EnumThreadWindows(GetCurrentThreadId(), findSeen, reinterpret_cast<LPARAM>(&found));
  return found;
}

// Never one of our own dialogs: what it owned would close with it.
HWND ownerOfDialogs() {
  const HWND active = GetActiveWindow();
  return active ? GetAncestor(active, GA_ROOTOWNER) : firstWindow();
}

// False when a quit message came; it is posted again.
bool serveUntilUnloaded(const platform::Form& form) {
  while (form.IsLoaded()) {
    MSG message{};  // a failure, which ends the wait too, leaves it as it is
    if (GetMessageW(&message, nullptr, 0, 0) <= 0) {
      PostQuitMessage(static_cast<int>(message.wParam));
      return false;
    }
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
  return true;
}

}  // namespace

std::int32_t UserInterface::messageBox(platform::StringView prompt, std::int32_t flags, platform::StringView title) {
  const HWND owner = GetActiveWindow();
  const UINT kind = static_cast<UINT>(flags) | (owner ? MB_APPLMODAL : MB_TASKMODAL);
  return MessageBoxW(owner, wide(platform::String(prompt)), wide(platform::String(title)), kind);
}

bool UserInterface::showForm(platform::Form& form, platform::FormModality modality) {
  platform::Ref<FormWindow> window(static_cast<FormWindow*>(form.View()));  // all views are of this kind here
  if (!window) window = FormWindow::open(form, ownerOfDialogs(), messageFont());
  if (!window) return true;
  if (modality == platform::FormModality::Modal) window.get()->blockOthers();
  window.get()->bringToFront();
  if (modality == platform::FormModality::Modeless) return true;
  window = nullptr;
  if (serveUntilUnloaded(form)) return true;
  form.Unload();
  return false;
}

}  // namespace win32
