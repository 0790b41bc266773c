#include "mailclient/win/status_bar.h"

#include <algorithm>

namespace mailclient::win {
namespace {

constexpr WPARAM textPart = 0;
constexpr WPARAM phonePart = 1;
constexpr WPARAM progressPart = 2;
constexpr WPARAM progressStep = 40;  // milliseconds

}  // namespace

void StatusBar::attach(HWND frame, int id) {
  bar_ = makeControl(frame, STATUSCLASSNAMEW, L"", SBARS_SIZEGRIP | CCS_BOTTOM, id);
  progress_ = makeControl(bar_, PROGRESS_CLASSW, L"Phone at work", PBS_SMOOTH | PBS_MARQUEE, 0);
  ShowWindow(progress_, SW_HIDE);
  layout();
}

int StatusBar::height() const {
  RECT r{};
  GetWindowRect(bar_, &r);
  return heightOf(r);
}

void StatusBar::layout() {
  SendMessageW(bar_, WM_SIZE, 0, 0);
  const int width = widthOf(clientArea(bar_));
  const int progress = scaled(120);
  const int phone = scaled(240);
  const int grip = GetSystemMetrics(SM_CXVSCROLL);
  const int parts[] = {std::max(width - phone - progress - grip, scaled(40)),
                       std::max(width - progress - grip, scaled(80)), -1};
  SendMessageW(bar_, SB_SETPARTS, 3, reinterpret_cast<LPARAM>(parts));
  RECT r{};
  SendMessageW(bar_, SB_GETRECT, progressPart, reinterpret_cast<LPARAM>(&r));
  r.right -= grip;
  InflateRect(&r, -scaled(2), -scaled(2));
  place(progress_, r);
}

void StatusBar::paintText() {
  const String& shown = hint_.empty() ? text_ : hint_;
  SendMessageW(bar_, SB_SETTEXTW, textPart, reinterpret_cast<LPARAM>(wide(shown)));
}

void StatusBar::setText(const String& text) {
  if (text == text_) return;
  text_ = text;
  paintText();
}

void StatusBar::setHint(const String& hint) {
  if (hint == hint_) return;
  hint_ = hint;
  paintText();
}

void StatusBar::showPhone(const PhoneActivity& phone) {
  const auto now = static_cast<std::uint32_t>(GetTickCount());
  SendMessageW(bar_, SB_SETTEXTW, phonePart, reinterpret_cast<LPARAM>(wide(phone.text(now))));
  if (phone.isWorking(now) == working_) return;
  working_ = !working_;
  SendMessageW(progress_, PBM_SETMARQUEE, working_, progressStep);
  ShowWindow(progress_, working_ ? SW_SHOWNA : SW_HIDE);
}

}  // namespace mailclient::win
