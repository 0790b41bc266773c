// What the dialog paints by itself, and the colours of its controls.

#include "win32/form_window.h"

namespace win32 {
namespace {

using platform::Control;
using platform::ControlKind;

constexpr COLORREF black = 0;

class PaintDc {
 public:
  explicit PaintDc(HWND window) : window_(window), dc_(BeginPaint(window, &paint_)) {}
  PaintDc(const PaintDc&) = delete;
  PaintDc& operator=(const PaintDc&) = delete;
  ~PaintDc() { EndPaint(window_, &paint_); }
  HDC get() const { return dc_; }

 private:
  HWND window_;
  PAINTSTRUCT paint_{};
  HDC dc_;
};

}  // namespace

void FormWindow::paint() {
  const PaintDc dc(window_);
  for (const Face& face : faces_)
    if (!face.window && face.control->IsShown()) paintBackground(dc.get(), *face.control);
}

void FormWindow::paintBackground(HDC dc, const Control& control) {
  RECT place = pixels(control);
  if (control.Kind() == ControlKind::Line) {
    DrawEdge(dc, &place, EDGE_ETCHED, BF_TOP);
    return;
  }
  if (control.BackColor() != platform::colorButtonFace) FillRect(dc, &place, brushOf(dc, control.BackColor()));
  if (control.picture.empty()) return;
  const bool isPicture = control.Kind() == ControlKind::Picture;
  pictures_.draw(dc, control.picture, place, isPicture ? Pictures::Fit::Cover : Pictures::Fit::RightEnd);
}

HBRUSH FormWindow::colourFor(HDC dc, HWND window) const {
  const Face* const face = faceOf(window);
  if (!face || face->control->Kind() == ControlKind::Button) return nullptr;
  const platform::Color color = face->control->BackColor();
  SetBkColor(dc, colorOf(color));
  // A form's own white wants black text, whatever the system writes with, and the system's colour wants the system's:
  // the context comes with black. A disabled control keeps its grey.
  if (IsWindowEnabled(window)) SetTextColor(dc, color == platform::colorWhite ? black : GetSysColor(COLOR_BTNTEXT));
  return brushOf(dc, color);
}

}  // namespace win32
