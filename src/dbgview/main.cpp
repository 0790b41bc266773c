// The debug viewer: a window that shows the lines which other programs send it as WM_COPYDATA.
//
//   dbgview [--log FILE]     FILE gets each line as well, before the sender goes on
//
// There is one viewer. A second start shows the first one's window and ends; when it is asked to start minimised, as by
// a program that only wants a viewer to be there, the window stays as it is.

#include <optional>
#include <string>

#include <windows.h>

#include "dbgview/lines.h"

namespace {

// Both are what programs look for.
constexpr const char* className = "DebugOut Window";
constexpr const char* windowTitle = "DebugOutput";

constexpr LRESULT mostLines = 10000;  // then the oldest go
constexpr DWORD waitForTheFirst = 2000;

// Each line is in the file when the sender's call returns.
class Log {
 public:
  explicit Log(const std::wstring& path)
      : file_(CreateFileW(path.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_ALWAYS,
                          FILE_ATTRIBUTE_NORMAL, nullptr)) {}
  Log(const Log&) = delete;
  Log& operator=(const Log&) = delete;
  ~Log() {
    if (*this) CloseHandle(file_);
  }
  explicit operator bool() const { return file_ != INVALID_HANDLE_VALUE; }

  void write(const std::string& text) const {
    DWORD written = 0;
    WriteFile(file_, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
  }

 private:
  HANDLE file_;
};

class Viewer {
 public:
  explicit Viewer(const Log* log) : log_(log) {}

  bool open(HINSTANCE instance, int show) {
    WNDCLASSA windowClass{};
    windowClass.lpfnWndProc = &windowProcedure;
    windowClass.hInstance = instance;
    windowClass.hCursor = LoadCursorW(nullptr, MAKEINTRESOURCEW(32512));  // the arrow
    windowClass.hbrBackground = reinterpret_cast<HBRUSH>(static_cast<INT_PTR>(COLOR_WINDOW + 1));
    windowClass.lpszClassName = className;
    if (!RegisterClassA(&windowClass)) return false;
    window_ = CreateWindowExA(0, className, windowTitle, WS_OVERLAPPEDWINDOW, CW_USEDEFAULT, CW_USEDEFAULT, 800, 500,
                              nullptr, nullptr, instance, this);
    if (!window_) return false;
    ShowWindow(window_, show);
    return true;
  }

 private:
  static LRESULT CALLBACK windowProcedure(HWND window, UINT message, WPARAM w, LPARAM l) {
    if (message == WM_NCCREATE) {
      const auto* const creation = reinterpret_cast<const CREATESTRUCTA*>(l);
      SetWindowLongPtrA(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(creation->lpCreateParams));
    }
    auto* const viewer = reinterpret_cast<Viewer*>(GetWindowLongPtrA(window, GWLP_USERDATA));
    try {
      if (const auto result = viewer ? viewer->handle(window, message, l) : std::nullopt) return *result;
    } catch (...) {  // out of memory: this line is lost
      return FALSE;
    }
    return DefWindowProcA(window, message, w, l);
  }

  std::optional<LRESULT> handle(HWND window, UINT message, LPARAM l) {
    switch (message) {
      case WM_CREATE:
        list_ = CreateWindowExA(0, "LISTBOX", nullptr,
                                WS_CHILD | WS_VISIBLE | WS_VSCROLL | WS_HSCROLL | LBS_NOINTEGRALHEIGHT, 0, 0, 0, 0,
                                window, nullptr, nullptr, nullptr);
        SendMessageA(list_, WM_SETFONT, reinterpret_cast<WPARAM>(GetStockObject(ANSI_FIXED_FONT)), FALSE);
        SendMessageA(list_, LB_SETHORIZONTALEXTENT, 4000, 0);
        return list_ ? 0 : -1;
      case WM_SIZE:
        MoveWindow(list_, 0, 0, LOWORD(l), HIWORD(l), TRUE);
        return 0;
      case WM_COPYDATA:
        receive(reinterpret_cast<const COPYDATASTRUCT*>(l));
        return TRUE;
      case WM_DESTROY:
        PostQuitMessage(0);
        return 0;
      default:
        return std::nullopt;
    }
  }

  void receive(const COPYDATASTRUCT* record) {
    if (!record) return;
    const std::string text = dbgview::textOfRecord(static_cast<const char*>(record->lpData), record->cbData);
    if (log_) log_->write(dbgview::loggedText(text));
    show(dbgview::linesOf(text));
  }

  void show(const std::vector<std::string>& lines) {
    SendMessageA(list_, WM_SETREDRAW, FALSE, 0);
    LRESULT count = SendMessageA(list_, LB_GETCOUNT, 0, 0);
    for (const std::string& line : lines) {
      for (; count >= mostLines; --count) SendMessageA(list_, LB_DELETESTRING, 0, 0);
      SendMessageA(list_, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(line.c_str()));
      ++count;
    }
    SendMessageA(list_, LB_SETTOPINDEX, static_cast<WPARAM>(count - 1), 0);
    SendMessageA(list_, WM_SETREDRAW, TRUE, 0);
    InvalidateRect(list_, nullptr, TRUE);
  }

  const Log* log_;
  HWND window_ = nullptr;
  HWND list_ = nullptr;
};

bool startsMinimised(int show) {
  return show == SW_SHOWMINIMIZED || show == SW_MINIMIZE || show == SW_SHOWMINNOACTIVE || show == SW_FORCEMINIMIZE ||
         show == SW_HIDE;
}

// Shows the window of the viewer that runs already, as soon as it has one.
void showTheFirst(int show) {
  HWND first = nullptr;
  for (DWORD waited = 0; waited < waitForTheFirst && !first; waited += 50) {
    first = FindWindowA(className, windowTitle);
    if (!first) Sleep(50);
  }
  if (!first || startsMinimised(show)) return;
  ShowWindow(first, IsIconic(first) ? SW_RESTORE : SW_SHOW);
  SetForegroundWindow(first);
}

// Holds the place of the one viewer for as long as it lives.
class OnlyOne {
 public:
  OnlyOne()
      : mutex_(CreateMutexW(nullptr, FALSE, L"Marrick DebugOutput")),
        first_(mutex_ && GetLastError() != ERROR_ALREADY_EXISTS) {}
  OnlyOne(const OnlyOne&) = delete;
  OnlyOne& operator=(const OnlyOne&) = delete;
  ~OnlyOne() {
    if (mutex_) CloseHandle(mutex_);
  }
  explicit operator bool() const { return first_; }

 private:
  HANDLE mutex_;
  bool first_;
};

// The file behind --log; nothing without it. A path with blanks may be quoted.
std::optional<std::wstring> logPath(std::wstring_view line) {
  constexpr std::wstring_view option = L"--log";
  const auto at = line.rfind(L" --log");
  if (at == std::wstring_view::npos) return std::nullopt;
  line.remove_prefix(at + 1 + option.size());
  const auto first = line.find_first_not_of(L" =");
  if (first == std::wstring_view::npos) return std::nullopt;
  line.remove_prefix(first);
  const auto last = line.find_last_not_of(L' ');
  line = line.substr(0, last + 1);
  if (line.size() > 2 && line.starts_with(L'"') && line.ends_with(L'"')) line = line.substr(1, line.size() - 2);
  return std::wstring(line);
}

}  // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE /*before*/, LPSTR /*line*/, int show) {
  const OnlyOne only;
  if (!only) {
    showTheFirst(show);
    return 0;
  }
  std::optional<Log> log;
  if (const auto path = logPath(GetCommandLineW())) {
    log.emplace(*path);
    if (!*log) {
      MessageBoxW(nullptr, L"The log file cannot be written.", L"DebugOutput", MB_OK | MB_ICONWARNING);
      log.reset();
    }
  }
  Viewer viewer(log ? &*log : nullptr);
  if (!viewer.open(instance, show)) return 1;
  MSG message;
  while (GetMessageW(&message, nullptr, 0, 0) > 0) {
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
  return 0;
}
