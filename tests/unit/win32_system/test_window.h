// A window of the test's own, and a thread of its own.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "com/errors.h"

namespace win32_tests {

// Without a handler, or when that gives nothing, the message takes its usual course.
class TestWindow {
 public:
  using Handler = std::function<std::optional<LRESULT>(UINT message, WPARAM wParam, LPARAM lParam)>;

  explicit TestWindow(Handler handler = {}, const char* className = "mrktxtmsg test window", const char* title = "")
      : className_(className), handler_(std::move(handler)) {
    WNDCLASSA c{};
    c.lpfnWndProc = procedure;
    c.hInstance = GetModuleHandleW(nullptr);
    c.lpszClassName = className;
    RegisterClassA(&c);
    handle_ = CreateWindowExA(0, className, title, WS_OVERLAPPEDWINDOW, 0, 0, 100, 100, nullptr, nullptr, c.hInstance,
                              nullptr);
    SetWindowLongPtrA(handle_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
  }
  TestWindow(const TestWindow&) = delete;
  TestWindow& operator=(const TestWindow&) = delete;
  ~TestWindow() {
    handler_ = {};
    DestroyWindow(handle_);
    UnregisterClassA(className_.c_str(), GetModuleHandleW(nullptr));
  }

  HWND handle() const { return handle_; }
  void post(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const {
    PostMessageA(handle_, message, wParam, lParam);
  }

 private:
  static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* const self = reinterpret_cast<TestWindow*>(GetWindowLongPtrA(window, GWLP_USERDATA));
    std::optional<LRESULT> result;
    if (self && self->handler_)
      result = com::guardedOr(result, [&] { return self->handler_(message, wParam, lParam); });
    return result ? *result : DefWindowProcA(window, message, wParam, lParam);
  }

  std::string className_;
  Handler handler_;
  HWND handle_ = nullptr;
};

// Runs `body` on a thread that has ended when this does.
class Thread {
 public:
  explicit Thread(std::function<void()> body) : body_(std::move(body)) {
    handle_ = CreateThread(nullptr, 0, run, this, 0, nullptr);
  }
  Thread(const Thread&) = delete;
  Thread& operator=(const Thread&) = delete;
  ~Thread() {
    WaitForSingleObject(handle_, INFINITE);
    CloseHandle(handle_);
  }

  bool hasEnded() const { return WaitForSingleObject(handle_, 0) == WAIT_OBJECT_0; }

 private:
  static DWORD WINAPI run(void* self) {
    return com::guardedOr(DWORD{1}, [&] {
      static_cast<Thread*>(self)->body_();
      return DWORD{0};
    });
  }

  std::function<void()> body_;
  HANDLE handle_ = nullptr;
};

// COM on this thread, as in the mail client.
class Apartment {
 public:
  Apartment() { OleInitialize(nullptr); }
  Apartment(const Apartment&) = delete;
  Apartment& operator=(const Apartment&) = delete;
  ~Apartment() { OleUninitialize(); }
};

}  // namespace win32_tests
