#include "win32/dialog_keys.h"

namespace win32 {
namespace {

// Trivial, as all per-thread state.
thread_local constinit DialogKeys* first = nullptr;
thread_local constinit HHOOK hook = nullptr;

bool isKey(const MSG& message) { return message.message >= WM_KEYFIRST && message.message <= WM_KEYLAST; }

}  // namespace

DialogKeys::DialogKeys(HWND dialog) noexcept : dialog_(dialog), next_(first) {
  first = this;
  if (!hook) hook = SetWindowsHookExW(WH_GETMESSAGE, hear, nullptr, GetCurrentThreadId());
}

DialogKeys::~DialogKeys() {
  DialogKeys** link = &first;
  while (*link != this) link = &(*link)->next_;
  *link = next_;
  if (first || !hook) return;
  UnhookWindowsHookEx(hook);
  hook = nullptr;
}

LRESULT CALLBACK DialogKeys::hear(int code, WPARAM removed, LPARAM lParam) noexcept {
  auto& message = *reinterpret_cast<MSG*>(lParam);
  if (code == HC_ACTION && removed == PM_REMOVE && isKey(message)) {
    for (const DialogKeys* keys = first; keys; keys = keys->next_) {
      const HWND dialog = keys->dialog_;
      if (message.hwnd != dialog && !IsChild(dialog, message.hwnd)) continue;
      // The dialog manager has dealt with the key: the loop gets a message that means nothing. The dialog may be gone.
      if (IsDialogMessageW(dialog, &message)) message.message = WM_NULL;
      break;
    }
  }
  return CallNextHookEx(nullptr, code, removed, lParam);
}

}  // namespace win32
