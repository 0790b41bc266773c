// The debug viewer's window, for the add-in's trace.
#pragma once

#include <string>
#include <vector>

#include "com/errors.h"

namespace addin_dll_tests {

class Viewer {
 public:
  Viewer() {
    WNDCLASSA c{};
    c.lpfnWndProc = procedure;
    c.hInstance = GetModuleHandleW(nullptr);
    c.lpszClassName = "DebugOut Window";
    RegisterClassA(&c);
    window_ = CreateWindowExA(0, c.lpszClassName, "DebugOutput", 0, 0, 0, 0, 0, nullptr, nullptr, c.hInstance, nullptr);
    SetWindowLongPtrA(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
  }
  Viewer(const Viewer&) = delete;
  Viewer& operator=(const Viewer&) = delete;
  ~Viewer() {
    DestroyWindow(window_);
    UnregisterClassA("DebugOut Window", GetModuleHandleW(nullptr));
  }

  // The texts of the lines since the last call, without the writer's name, the level and the line end.
  std::vector<std::string> take() { return std::exchange(lines_, {}); }

 private:
  static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* const self = reinterpret_cast<Viewer*>(GetWindowLongPtrA(window, GWLP_USERDATA));
    if (message != WM_COPYDATA || !self) return DefWindowProcA(window, message, wParam, lParam);
    return com::guardedOr(LRESULT{0}, [&] {
      const auto& record = *reinterpret_cast<const COPYDATASTRUCT*>(lParam);
      self->add({static_cast<const char*>(record.lpData), record.cbData});
      return LRESULT{1};
    });
  }

  void add(std::string line) {
    line.erase(0, line.find(") :") + 3);
    line.resize(line.find_last_not_of(std::string("\r\n\0", 3)) + 1);
    lines_.push_back(std::move(line));
  }

  HWND window_ = nullptr;
  std::vector<std::string> lines_;
};

}  // namespace addin_dll_tests
