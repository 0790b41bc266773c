#include "win32/key_filter.h"

#include "com/errors.h"

namespace win32 {
namespace {

constexpr wchar_t oldProcedure[] = L"mrktxtmsg.EditProcedure";

// What Ctrl+C, Ctrl+V, Ctrl+X and Ctrl+Z come as.
constexpr WPARAM copyCode = 3;
constexpr WPARAM pasteCode = 22;
constexpr WPARAM cutCode = 24;
constexpr WPARAM undoCode = 26;

constexpr std::int32_t swallowed = 0;
// What a form puts in the place of a character that no text box inserts. Some select everything on it: it is Ctrl+A.
constexpr std::int32_t notInserted = 1;

class Clipboard {
 public:
  explicit Clipboard(HWND window) : open_(OpenClipboard(window)) {}
  Clipboard(const Clipboard&) = delete;
  Clipboard& operator=(const Clipboard&) = delete;
  ~Clipboard() {
    if (open_) CloseClipboard();
  }

  // The first line of the text, as a text box of one line takes it.
  platform::String line() const {
    const HANDLE data = open_ ? GetClipboardData(CF_UNICODETEXT) : nullptr;
    const auto* const text = data ? static_cast<const char16_t*>(GlobalLock(data)) : nullptr;
    if (!text) return {};
    platform::StringView all(text, GlobalSize(data) / sizeof(char16_t));
    platform::String line(all.substr(0, all.find_first_of(platform::StringView(u"\0\r\n", 3))));
    GlobalUnlock(data);
    return line;
  }

 private:
  BOOL open_;
};

LRESULT callOld(HWND edit, UINT message, WPARAM wParam, LPARAM lParam) {
  const auto old = reinterpret_cast<WNDPROC>(GetPropW(edit, oldProcedure));
  return old ? CallWindowProcW(old, edit, message, wParam, lParam) : DefWindowProcW(edit, message, wParam, lParam);
}

void insert(HWND edit, platform::Control& control, WPARAM code, LPARAM lParam) {
  const std::int32_t passed = control.userPresses(static_cast<std::int32_t>(code));
  if (passed != swallowed && passed != notInserted) callOld(edit, WM_CHAR, static_cast<WPARAM>(passed), lParam);
}

void paste(HWND edit, platform::Control& control) {
  const platform::String text = Clipboard(edit).line();
  for (const char16_t c : text) {
    if (!IsWindow(edit)) return;  // a handler has closed the form
    insert(edit, control, c, 1);
  }
}

LRESULT CALLBACK filter(HWND edit, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
  return com::guardedOr(LRESULT{0}, [&]() -> LRESULT {
    auto& control = *reinterpret_cast<platform::Control*>(GetWindowLongPtrW(edit, GWLP_USERDATA));
    if (message == WM_PASTE || (message == WM_CHAR && wParam == pasteCode)) {
      paste(edit, control);
      return 0;
    }
    if (message == WM_CHAR) {
      const bool isCommand = wParam == copyCode || wParam == cutCode || wParam == undoCode;
      if (!isCommand) {
        insert(edit, control, wParam, lParam);
        return 0;
      }
      // A form sees every key, and what it does beside filtering holds for these too. But no character comes of them,
      // so its answer, which would take copying and cutting from the user, is not asked for.
      control.userPresses(static_cast<std::int32_t>(wParam));
    }
    const LRESULT result = callOld(edit, message, wParam, lParam);
    if (message == WM_NCDESTROY) RemovePropW(edit, oldProcedure);
    return result;
  });
}

}  // namespace

void filterKeys(HWND edit, platform::Control& control) {
  SetWindowLongPtrW(edit, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&control));
  const LONG_PTR old = GetWindowLongPtrW(edit, GWLP_WNDPROC);
  SetPropW(edit, oldProcedure, reinterpret_cast<HANDLE>(old));
  SetWindowLongPtrW(edit, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&filter));
}

}  // namespace win32
