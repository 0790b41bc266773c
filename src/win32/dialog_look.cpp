#include "win32/dialog_look.h"

#include <string_view>

namespace win32 {
namespace {

constexpr platform::Color systemColor = 0x80000000;

class WindowDc {
 public:
  WindowDc() : dc_(GetDC(nullptr)) {}
  WindowDc(const WindowDc&) = delete;
  WindowDc& operator=(const WindowDc&) = delete;
  ~WindowDc() { ReleaseDC(nullptr, dc_); }
  HDC get() const { return dc_; }

 private:
  HDC dc_;
};

}  // namespace

LOGFONTW messageFont() {
  NONCLIENTMETRICSW metrics{};
  metrics.cbSize = sizeof metrics;
  if (SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0)) return metrics.lfMessageFont;
  LOGFONTW font{};
  GetObjectW(GetStockObject(DEFAULT_GUI_FONT), sizeof font, &font);
  return font;
}

DialogLook::DialogLook(const LOGFONTW& font) : font_(CreateFontIndirectW(&font)) {
  LOGFONTW bold = font;
  bold.lfWeight = FW_BOLD;
  bold_ = GdiObject(CreateFontIndirectW(&bold));

  constexpr std::wstring_view letters = L"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
  const WindowDc dc;
  const HGDIOBJ before = SelectObject(dc.get(), font_.get());
  SIZE size{};
  GetTextExtentPoint32W(dc.get(), letters.data(), static_cast<int>(letters.size()), &size);
  SelectObject(dc.get(), before);
  unitX_ = static_cast<int>((size.cx / (letters.size() / 2) + 1) / 2);
  unitY_ = size.cy;
}

// Edges that meet in dialog units meet in pixels.
RECT DialogLook::pixels(const platform::Place& place) const {
  return {MulDiv(place.left, unitX_, 4), MulDiv(place.top, unitY_, 8), MulDiv(place.left + place.width, unitX_, 4),
          MulDiv(place.top + place.height, unitY_, 8)};
}

COLORREF colorOf(platform::Color color) {
  return color & systemColor ? GetSysColor(static_cast<int>(color & ~systemColor)) : color;
}

HBRUSH brushOf(HDC dc, platform::Color color) {
  if (color & systemColor) return GetSysColorBrush(static_cast<int>(color & ~systemColor));
  SetDCBrushColor(dc, color);
  return static_cast<HBRUSH>(GetStockObject(DC_BRUSH));
}

}  // namespace win32
