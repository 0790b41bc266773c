#include "mailclient/win/key_router.h"

#include "com/errors.h"

namespace mailclient::win {
namespace {

// The keys of an open menu are its own, although they come to the window that has the focus.
bool menuIsOpen() {
  GUITHREADINFO info{};
  info.cbSize = sizeof info;
  return GetGUIThreadInfo(GetCurrentThreadId(), &info) && (info.flags & (GUI_INMENUMODE | GUI_POPUPMENUMODE)) != 0;
}

}  // namespace

constinit KeyRouter* KeyRouter::current = nullptr;

KeyRouter::KeyRouter(Route route)
    : route_(std::move(route)),
      hook_(SetWindowsHookExW(WH_GETMESSAGE, &KeyRouter::hook, nullptr, GetCurrentThreadId())) {
  current = this;
}

KeyRouter::~KeyRouter() {
  current = nullptr;
  UnhookWindowsHookEx(hook_);
}

LRESULT CALLBACK KeyRouter::hook(int code, WPARAM wide, LPARAM extra) {
  auto& message = *reinterpret_cast<MSG*>(extra);
  const bool isKey = message.message >= WM_KEYFIRST && message.message <= WM_KEYLAST;
  if (code == HC_ACTION && wide == PM_REMOVE && isKey && message.hwnd && current && !menuIsOpen()) {
    const HWND top = GetAncestor(message.hwnd, GA_ROOT);
    if (com::guardedOr<bool>(false, [&] { return current->route_(top, message); })) message.message = WM_NULL;
  }
  return CallNextHookEx(nullptr, code, wide, extra);
}

}  // namespace mailclient::win
