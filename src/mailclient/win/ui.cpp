#include "mailclient/win/ui.h"

#include <algorithm>
#include <cstdlib>
#include <cwchar>
#include <utility>

#include "com/errors.h"

namespace mailclient::win {
namespace {

int screenDots() {
  static const int dots = [] {
    const HDC screen = GetDC(nullptr);
    const int found = screen ? GetDeviceCaps(screen, LOGPIXELSX) : 96;
    if (screen) ReleaseDC(nullptr, screen);
    return found;
  }();
  return dots;
}

HFONT makeFont(LONG weight) {
  NONCLIENTMETRICSW metrics{};
  metrics.cbSize = sizeof metrics;
  SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, metrics.cbSize, &metrics, 0);
  if (weight != 0) metrics.lfMessageFont.lfWeight = weight;
  return CreateFontIndirectW(&metrics.lfMessageFont);
}

class Measure {
 public:
  explicit Measure(HFONT font) : screen_(GetDC(nullptr)), before_(SelectObject(screen_, font)) {}
  Measure(const Measure&) = delete;
  Measure& operator=(const Measure&) = delete;
  ~Measure() {
    SelectObject(screen_, before_);
    ReleaseDC(nullptr, screen_);
  }
  HDC get() const { return screen_; }

 private:
  HDC screen_;
  HGDIOBJ before_;
};

}  // namespace

int scaled(int length) { return MulDiv(length, screenDots(), 96); }

// Made once, and the system's own to free at the end.
HFONT uiFont() {
  static const HFONT font = makeFont(0);
  return font;
}

HFONT boldFont() {
  static const HFONT font = makeFont(FW_BOLD);
  return font;
}

int lineHeight() {
  static const int height = [] {
    TEXTMETRICW metrics{};
    GetTextMetricsW(Measure(uiFont()).get(), &metrics);
    return static_cast<int>(metrics.tmHeight + metrics.tmExternalLeading);
  }();
  return height;
}

int textWidth(const String& text, HFONT font) {
  SIZE size{};
  GetTextExtentPoint32W(Measure(font).get(), wide(text), static_cast<int>(text.size()), &size);
  return size.cx;
}

int fieldHeight() { return lineHeight() + scaled(8); }

String textOf(HWND window) {
  String text(static_cast<std::size_t>(GetWindowTextLengthW(window)) + 1, u'\0');
  const int length = GetWindowTextW(window, reinterpret_cast<wchar_t*>(text.data()), static_cast<int>(text.size()));
  text.resize(static_cast<std::size_t>(length));
  return text;
}

void setText(HWND window, const String& text) {
  if (textOf(window) != text) SetWindowTextW(window, wide(text));
}

HWND makeControl(HWND parent, const wchar_t* className, const wchar_t* text, DWORD style, int id, DWORD extra) {
  const HWND control =
      CreateWindowExW(extra, className, text, WS_CHILD | WS_VISIBLE | style, 0, 0, 0, 0, parent,
                      reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), GetModuleHandleW(nullptr), nullptr);
  SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(uiFont()), FALSE);
  return control;
}

void place(HWND window, int left, int top, int width, int height) {
  SetWindowPos(window, nullptr, left, top, std::max(width, 0), std::max(height, 0), SWP_NOZORDER | SWP_NOACTIVATE);
}

void place(HWND window, const RECT& r) { place(window, r.left, r.top, widthOf(r), heightOf(r)); }

RECT clientArea(HWND window) {
  RECT area{};
  GetClientRect(window, &area);
  return area;
}

int widthOf(const RECT& r) { return static_cast<int>(r.right - r.left); }
int heightOf(const RECT& r) { return static_cast<int>(r.bottom - r.top); }

Window::~Window() { destroy(); }

void Window::destroy() {
  const HWND window = std::exchange(handle_, nullptr);
  if (!window) return;
  SetWindowLongPtrW(window, GWLP_USERDATA, 0);
  DestroyWindow(window);
}

bool Window::create(const Look& look) {
  WNDCLASSEXW windows{};
  windows.cbSize = sizeof windows;
  if (!GetClassInfoExW(GetModuleHandleW(nullptr), look.className, &windows)) {
    windows.lpfnWndProc = &Window::procedure;
    windows.hInstance = GetModuleHandleW(nullptr);
    windows.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    windows.hbrBackground = reinterpret_cast<HBRUSH>(static_cast<INT_PTR>(COLOR_BTNFACE + 1));
    windows.lpszClassName = look.className;
    RegisterClassExW(&windows);
  }
  const HWND made =
      CreateWindowExW(look.extraStyle, look.className, wide(look.title), look.style, look.place.left, look.place.top,
                      widthOf(look.place), heightOf(look.place), look.parent, nullptr, GetModuleHandleW(nullptr), this);
  return made != nullptr && handle_ == made;
}

LRESULT Window::byDefault(UINT message, WPARAM wide, LPARAM extra) {
  return DefWindowProcW(handle_, message, wide, extra);
}

LRESULT Window::onMessage(UINT message, WPARAM wide, LPARAM extra) { return byDefault(message, wide, extra); }

LRESULT CALLBACK Window::procedure(HWND window, UINT message, WPARAM wide, LPARAM extra) {
  if (message == WM_NCCREATE) {
    auto* const self = static_cast<Window*>(reinterpret_cast<CREATESTRUCTW*>(extra)->lpCreateParams);
    self->handle_ = window;
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(self));
  }
  auto* const self = reinterpret_cast<Window*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  if (!self) return DefWindowProcW(window, message, wide, extra);
  if (message == WM_NCDESTROY) {
    self->handle_ = nullptr;
    SetWindowLongPtrW(window, GWLP_USERDATA, 0);
    return DefWindowProcW(window, message, wide, extra);
  }
  const Serving serving(*self);
  return com::guardedOr<LRESULT>(0, [&] { return self->onMessage(message, wide, extra); });
}

// The placement counts from the corner of the work area, a new window's place from the corner of the screen.
String placeText(HWND window) {
  WINDOWPLACEMENT now{};
  now.length = sizeof now;
  GetWindowPlacement(window, &now);
  RECT r = now.rcNormalPosition;
  MONITORINFO monitor{};
  monitor.cbSize = sizeof monitor;
  if (now.showCmd == SW_SHOWNORMAL)
    GetWindowRect(window, &r);
  else if (GetMonitorInfoW(MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST), &monitor))
    OffsetRect(&r, static_cast<int>(monitor.rcWork.left - monitor.rcMonitor.left),
               static_cast<int>(monitor.rcWork.top - monitor.rcMonitor.top));
  const bool isMaximized =
      now.showCmd == SW_SHOWMAXIMIZED || (now.showCmd == SW_SHOWMINIMIZED && (now.flags & WPF_RESTORETOMAXIMIZED) != 0);
  wchar_t text[80];
  std::swprintf(text, 80, L"%ld %ld %d %d %d", r.left, r.top, widthOf(r), heightOf(r), isMaximized ? 1 : 0);
  return String(view(text));
}

bool readPlace(StringView text, WindowPlace& found) {
  long left = 0;
  long top = 0;
  int width = 0;
  int height = 0;
  int maximized = 0;
  if (std::swscanf(wide(String(text)), L"%ld %ld %d %d %d", &left, &top, &width, &height, &maximized) != 5)
    return false;
  constexpr long far = 100000;  // no screen is as large
  if (std::abs(left) > far || std::abs(top) > far || width > far || height > far) return false;
  const RECT r{left, top, left + width, top + height};
  if (width < 100 || height < 80 || !MonitorFromRect(&r, MONITOR_DEFAULTTONULL)) return false;
  found = {r, maximized != 0};
  return true;
}

RECT freePlace(int width, int height, int step) {
  RECT area{};
  SystemParametersInfoW(SPI_GETWORKAREA, 0, &area, 0);
  const int w = std::min(scaled(width), widthOf(area));
  const int h = std::min(scaled(height), heightOf(area));
  const int shift = scaled(26) * (step % 6);
  const LONG left = std::min(area.left + (widthOf(area) - w) / 3 + shift, area.right - w);
  const LONG top = std::min(area.top + (heightOf(area) - h) / 3 + shift, area.bottom - h);
  return {left, top, left + w, top + h};
}

}  // namespace mailclient::win
