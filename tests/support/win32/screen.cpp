#include "support/win32/screen.h"

namespace screen {
namespace {

struct Search {
  DWORD process;
  const std::wstring* className;
  const std::wstring* title;
  HWND found;
};

BOOL CALLBACK look(HWND window, LPARAM extra) {
  auto& search = *reinterpret_cast<Search*>(extra);
  DWORD process = 0;
  GetWindowThreadProcessId(window, &process);
  if (process != search.process || !IsWindowVisible(window)) return TRUE;
  wchar_t name[128] = L"";
  GetClassNameW(window, name, 128);
  if (!search.className->empty() && *search.className != name) return TRUE;
  if (!search.title->empty() && textOf(window) != *search.title) return TRUE;
  search.found = window;
  return FALSE;
}

// Memory in the process of a window, for messages that carry a pointer.
class Remote {
 public:
  Remote(HWND window, std::size_t size) {
    DWORD id = 0;
    GetWindowThreadProcessId(window, &id);
    process_ = OpenProcess(PROCESS_VM_OPERATION | PROCESS_VM_READ | PROCESS_VM_WRITE, FALSE, id);
    place_ = static_cast<char*>(VirtualAllocEx(process_, nullptr, size, MEM_COMMIT, PAGE_READWRITE));
  }
  Remote(const Remote&) = delete;
  Remote& operator=(const Remote&) = delete;
  ~Remote() {
    VirtualFreeEx(process_, place_, 0, MEM_RELEASE);
    CloseHandle(process_);
  }
  char* at(std::size_t offset = 0) const { return place_ + offset; }
  void write(const void* data, std::size_t size, std::size_t offset = 0) const {
    WriteProcessMemory(process_, at(offset), data, size, nullptr);
  }
  void read(void* data, std::size_t size, std::size_t offset = 0) const {
    ReadProcessMemory(process_, at(offset), data, size, nullptr);
  }

 private:
  HANDLE process_;
  char* place_;
};

constexpr std::size_t textAt = 512;  // behind the structure of a message
constexpr int longest = 300;

void key(WORD code, DWORD flags, wchar_t character = 0) {
  INPUT input{};
  input.type = INPUT_KEYBOARD;
  input.ki.wVk = code;
  input.ki.wScan = character != 0 ? static_cast<WORD>(character) : static_cast<WORD>(MapVirtualKeyW(code, 0));
  input.ki.dwFlags = flags;
  SendInput(1, &input, sizeof input);
}

void strike(WORD code) {
  const bool extended = code >= VK_PRIOR && code <= VK_DELETE;
  key(code, extended ? KEYEVENTF_EXTENDEDKEY : 0u);
  key(code, KEYEVENTF_KEYUP | (extended ? KEYEVENTF_EXTENDEDKEY : 0u));
}

}  // namespace

HWND find(DWORD process, const std::wstring& className, const std::wstring& title) {
  Search search{process, &className, &title, nullptr};
  EnumWindows(&look, reinterpret_cast<LPARAM>(&search));
  return search.found;
}

HWND await(DWORD process, const std::wstring& className, const std::wstring& title) {
  HWND found = nullptr;
  waitUntil([&] { return (found = find(process, className, title)) != nullptr; });
  return found;
}

bool awaitGone(DWORD process, const std::wstring& className, const std::wstring& title) {
  return waitUntil([&] { return !find(process, className, title); });
}

HWND child(HWND parent, const wchar_t* className, int position) {
  HWND found = nullptr;
  for (int i = 0; i <= position; ++i) found = FindWindowExW(parent, found, className, nullptr);
  return found;
}

std::wstring textOf(HWND window) {
  std::wstring text(4096, L'\0');
  const auto length = SendMessageW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()));
  text.resize(static_cast<std::size_t>(length));
  return text;
}

int rows(HWND list) { return static_cast<int>(SendMessageW(list, LVM_GETITEMCOUNT, 0, 0)); }

std::wstring cell(HWND list, int row, int column) {
  const Remote memory(list, textAt + longest * sizeof(wchar_t));
  LVITEMW item{};
  item.iSubItem = column;
  item.pszText = reinterpret_cast<wchar_t*>(memory.at(textAt));
  item.cchTextMax = longest;
  memory.write(&item, sizeof item);
  SendMessageW(list, LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(memory.at()));
  wchar_t text[longest] = L"";
  memory.read(text, sizeof text, textAt);
  text[longest - 1] = L'\0';
  return text;
}

RECT cellArea(HWND list, int row, int column) {
  const Remote memory(list, sizeof(RECT));
  RECT area{LVIR_BOUNDS, column, 0, 0};
  memory.write(&area, sizeof area);
  SendMessageW(list, LVM_GETSUBITEMRECT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(memory.at()));
  memory.read(&area, sizeof area);
  InflateRect(&area, -2, -2);  // there the focus has its rectangle
  POINT corner{0, 0};
  ClientToScreen(list, &corner);
  OffsetRect(&area, corner.x, corner.y);
  return area;
}

std::vector<std::wstring> treeLabels(HWND tree) {
  const Remote memory(tree, textAt + longest * sizeof(wchar_t));
  std::vector<std::wstring> labels;
  const auto next = [&](WPARAM how, LRESULT from) { return SendMessageW(tree, TVM_GETNEXTITEM, how, from); };
  const auto visit = [&](auto& self, LRESULT node) -> void {
    for (; node; node = next(TVGN_NEXT, node)) {
      TVITEMW item{};
      item.mask = TVIF_HANDLE | TVIF_TEXT;
      item.hItem = reinterpret_cast<HTREEITEM>(node);
      item.pszText = reinterpret_cast<wchar_t*>(memory.at(textAt));
      item.cchTextMax = longest;
      memory.write(&item, sizeof item);
      SendMessageW(tree, TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(memory.at()));
      wchar_t text[longest] = L"";
      memory.read(text, sizeof text, textAt);
      labels.emplace_back(text);
      self(self, next(TVGN_CHILD, node));
    }
  };
  visit(visit, next(TVGN_ROOT, 0));
  return labels;
}

std::wstring statusText(HWND bar, int part) {
  const Remote memory(bar, longest * sizeof(wchar_t));
  SendMessageW(bar, SB_GETTEXTW, static_cast<WPARAM>(part), reinterpret_cast<LPARAM>(memory.at()));
  wchar_t text[longest] = L"";
  memory.read(text, sizeof text);
  text[longest - 1] = L'\0';
  return text;
}

// In front, and its program has given it the focus: a key before that would be lost. News of the focus that the display
// sent before may reach the program afterwards and take it away again, so it has to be there for several looks, between
// which the program has served its messages.
bool toFront(HWND window) {
  constexpr int looks = 4;
  const DWORD thread = GetWindowThreadProcessId(window, nullptr);
  int there = 0;
  return waitUntil([&] {
    SendMessageW(window, WM_NULL, 0, 0);
    if (GetForegroundWindow() != window) SetForegroundWindow(window);
    GUITHREADINFO now{};
    now.cbSize = sizeof now;
    GetGUIThreadInfo(thread, &now);
    const bool hasFocus = now.hwndFocus == window || IsChild(window, now.hwndFocus);
    there = GetForegroundWindow() == window && now.hwndActive == window && hasFocus ? there + 1 : 0;
    return there == looks;
  });
}

void press(WORD code, bool control, bool shift) {
  if (control) key(VK_CONTROL, 0);
  if (shift) key(VK_SHIFT, 0);
  strike(code);
  if (shift) key(VK_SHIFT, KEYEVENTF_KEYUP);
  if (control) key(VK_CONTROL, KEYEVENTF_KEYUP);
}

void pressWithAlt(wchar_t letter) {
  key(VK_MENU, 0);
  strike(static_cast<WORD>(letter));
  key(VK_MENU, KEYEVENTF_KEYUP);
}

void type(const std::wstring& text) {
  for (const wchar_t c : text) {
    key(0, KEYEVENTF_UNICODE, c);
    key(0, KEYEVENTF_UNICODE | KEYEVENTF_KEYUP, c);
  }
}

// Both halves of the click say where: news of where the pointer was before may come between them.
void clickAt(HWND window, int x, int y, bool control) {
  POINT at{x, y};
  ClientToScreen(window, &at);
  SetCursorPos(at.x, at.y);
  const auto ofWhole = [](LONG pixels, int metric) { return (pixels * 65536 + 32768) / GetSystemMetrics(metric); };
  if (control) key(VK_CONTROL, 0);
  for (const DWORD flag : {MOUSEEVENTF_LEFTDOWN, MOUSEEVENTF_LEFTUP}) {
    INPUT input{};
    input.type = INPUT_MOUSE;
    input.mi.dx = ofWhole(at.x, SM_CXSCREEN);
    input.mi.dy = ofWhole(at.y, SM_CYSCREEN);
    input.mi.dwFlags = MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE | flag;
    SendInput(1, &input, sizeof input);
  }
  if (control) key(VK_CONTROL, KEYEVENTF_KEYUP);
}

void clickOn(HWND window) {
  RECT area{};
  GetClientRect(window, &area);
  clickAt(window, static_cast<int>(area.right) / 2, static_cast<int>(area.bottom) / 2);
}

}  // namespace screen
