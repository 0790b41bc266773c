// A stand-in for the system's help viewer: shows what it was asked for. Wine's own opens nothing when the file is not
// there, and says nothing either.
#include <cwchar>
#include <iterator>
#include <string>

#include "com/windows.h"

namespace {

constexpr const wchar_t* windowClass = L"Marrick stand-in help viewer";

std::wstring wideOf(const char* text) {
  wchar_t wide[MAX_PATH * 2] = L"";
  MultiByteToWideChar(CP_ACP, 0, text ? text : "", -1, wide, static_cast<int>(std::size(wide)));
  return wide;
}

int scaled(int length) {
  const HDC screen = GetDC(nullptr);
  const int dots = GetDeviceCaps(screen, LOGPIXELSX);
  ReleaseDC(nullptr, screen);
  return MulDiv(length, dots, 96);
}

// The text is the only child.
void layOut(HWND window) {
  RECT area{};
  GetClientRect(window, &area);
  const int margin = scaled(14);
  SetWindowPos(GetWindow(window, GW_CHILD), nullptr, margin, margin, static_cast<int>(area.right) - 2 * margin,
               static_cast<int>(area.bottom) - 2 * margin, SWP_NOZORDER);
}

LRESULT CALLBACK serve(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_SIZE:
      layOut(window);
      return 0;
    case WM_KEYDOWN:
      if (wParam == VK_ESCAPE) PostMessageW(window, WM_CLOSE, 0, 0);
      return 0;
    default:
      return DefWindowProcW(window, message, wParam, lParam);
  }
}

HWND makeWindow() {
  WNDCLASSW windows{};
  windows.lpfnWndProc = &serve;
  windows.hInstance = GetModuleHandleW(L"hhctrl.ocx");
  windows.hCursor = LoadCursorW(nullptr, IDC_ARROW);
  windows.hbrBackground = reinterpret_cast<HBRUSH>(static_cast<INT_PTR>(COLOR_BTNFACE + 1));
  windows.lpszClassName = windowClass;
  RegisterClassW(&windows);
  const HWND window =
      CreateWindowExW(WS_EX_DLGMODALFRAME, windowClass, L"HTML Help", WS_POPUP | WS_CAPTION | WS_SYSMENU, scaled(380),
                      scaled(320), scaled(440), scaled(130), nullptr, nullptr, windows.hInstance, nullptr);
  const HWND text = CreateWindowExW(0, L"Static", L"", WS_CHILD | WS_VISIBLE | SS_NOPREFIX, 0, 0, 0, 0, window, nullptr,
                                    windows.hInstance, nullptr);
  NONCLIENTMETRICSW metrics{};
  metrics.cbSize = sizeof metrics;
  SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, metrics.cbSize, &metrics, 0);
  static const HFONT font = CreateFontIndirectW(&metrics.lfMessageFont);
  SendMessageW(text, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
  layOut(window);
  return window;
}

}  // namespace

extern "C" HWND WINAPI HtmlHelpA(HWND caller, LPCSTR file, UINT command, DWORD_PTR data) {
  if (command != 0) return nullptr;  // shows topics only
  HWND window = FindWindowW(windowClass, nullptr);
  if (!window) window = makeWindow();
  const std::wstring asked = L"This window stands in for the help viewer, which was asked to open\r\n\r\n" +
                             wideOf(file) + L"\r\n\r\n(owner " + std::to_wstring(reinterpret_cast<UINT_PTR>(caller)) +
                             L", command " + std::to_wstring(command) + L", data " + std::to_wstring(data) + L")";
  SetWindowTextW(GetWindow(window, GW_CHILD), asked.c_str());
  ShowWindow(window, SW_SHOW);
  SetForegroundWindow(window);
  return window;
}
