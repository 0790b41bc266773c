// How our dialogs look: the system's font and what follows from it.
#pragma once

#include "addin/platform/form.h"
#include "com/windows.h"

namespace win32 {

// The font that the system writes messages in, at the resolution of the screen.
LOGFONTW messageFont();

// Frees what it holds with DeleteObject.
template <class Handle>
class GdiObject {
 public:
  GdiObject() = default;
  explicit GdiObject(Handle handle) noexcept : handle_(handle) {}
  GdiObject(GdiObject&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  GdiObject& operator=(GdiObject&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  GdiObject(const GdiObject&) = delete;
  GdiObject& operator=(const GdiObject&) = delete;
  ~GdiObject() {
    if (handle_) DeleteObject(handle_);
  }
  Handle get() const { return handle_; }
  explicit operator bool() const { return handle_ != nullptr; }

 private:
  Handle handle_ = nullptr;
};

class DialogLook {
 public:
  explicit DialogLook(const LOGFONTW& font);

  HFONT font() const { return font_.get(); }
  HFONT boldFont() const { return bold_.get(); }
  // Dialog units follow the font, and so the resolution.
  RECT pixels(const platform::Place& place) const;

 private:
  GdiObject<HFONT> font_;
  GdiObject<HFONT> bold_;
  int unitX_ = 0;  // four dialog units
  int unitY_ = 0;  // eight
};

// A colour of a form, on this system.
COLORREF colorOf(platform::Color color);
// The brush is the system's own, or the device context's until the next call.
HBRUSH brushOf(HDC dc, platform::Color color);

}  // namespace win32
