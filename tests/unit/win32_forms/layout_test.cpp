// Nothing is clipped and nothing lies upon another thing, in the fonts of all resolutions.

#include <cmath>

#include "form_fixture.h"
#include "win32/form_window.h"

namespace win32_tests {
namespace {

class Layout : public FormFixture, public testing::WithParamInterface<int> {
 protected:
  // The system's font, as it is at that resolution.
  static LOGFONTW font() {
    LOGFONTW font = win32::messageFont();
    const HDC dc = GetDC(nullptr);
    font.lfHeight = MulDiv(font.lfHeight, GetParam(), GetDeviceCaps(dc, LOGPIXELSY));
    ReleaseDC(nullptr, dc);
    return font;
  }

  static SIZE textSize(HWND control, int width) {
    const std::wstring text = DialogUser::textOf(control);
    const HDC dc = GetDC(control);
    const HGDIOBJ before = SelectObject(dc, reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0)));
    RECT rect{0, 0, width, 0};
    DrawTextW(dc, text.c_str(), -1, &rect, DT_CALCRECT | DT_WORDBREAK);
    SelectObject(dc, before);
    ReleaseDC(control, dc);
    return {rect.right, rect.bottom};
  }

  static void expectFits(HWND control) {
    wchar_t className[32];
    GetClassNameW(control, className, 32);
    RECT inner{};
    GetClientRect(control, &inner);
    const bool isButton = std::wstring_view(className) == L"Button";
    const auto style = static_cast<DWORD>(GetWindowLongW(control, GWL_STYLE));
    const bool isPush = isButton && (style & BS_TYPEMASK) <= BS_DEFPUSHBUTTON;
    const int margin = isPush ? 8 : isButton ? 20 : 0;  // frame, or box and gap
    const SIZE size = textSize(control, inner.right - margin);
    const std::string text = utf8(reinterpret_cast<const char16_t*>(DialogUser::textOf(control).c_str()));
    EXPECT_LE(size.cx, inner.right - margin) << text;
    EXPECT_LE(size.cy, inner.bottom) << text;
  }

  static void expectTidy(HWND dialog) {
    RECT client{};
    GetClientRect(dialog, &client);
    std::vector<RECT> places;
    for (HWND child = GetWindow(dialog, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
      if ((GetWindowLongW(child, GWL_STYLE) & WS_VISIBLE) == 0) continue;
      expectFits(child);
      RECT place{};
      GetWindowRect(child, &place);
      MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&place), 2);
      RECT inside{};
      IntersectRect(&inside, &place, &client);
      EXPECT_TRUE(EqualRect(&inside, &place));
      for (const RECT& other : places) EXPECT_FALSE(IntersectRect(&inside, &place, &other));
      places.push_back(place);
    }
  }
};

TEST_P(Layout, Wizard_EveryPage) {
  setOption("My_FullName", "Anna");
  setOption("My_PhoneNo", "+46");
  const auto opened = win32::FormWindow::open(*wizard, nullptr, font());
  wizard->Show(FormModality::Modeless);
  for (int page = 1; page <= 4; ++page) {
    SCOPED_TRACE(page);
    expectTidy(opened.get()->handle());
    if (page < 4) wizard->Find(u"btnNext")->userClicks();
  }
}

TEST_P(Layout, About) {
  const auto about = platform::make<addin::frmabout>();
  const auto opened = win32::FormWindow::open(*about, nullptr, font());
  about->Show(FormModality::Modeless);
  expectTidy(opened.get()->handle());
  about->Unload();
}

TEST_P(Layout, GrowsWithTheFont) {
  const auto opened = win32::FormWindow::open(*wizard, nullptr, font());
  wizard->Show(FormModality::Modeless);
  RECT client{};
  GetClientRect(opened.get()->handle(), &client);
  // Dialog units are rounded to whole pixels of a character, so the growth is not quite that of the font.
  EXPECT_NEAR(client.right, 462.0 * GetParam() / 96, 70);
  EXPECT_NEAR(client.bottom, 335.0 * GetParam() / 96, 50);
}

INSTANTIATE_TEST_SUITE_P(Resolutions, Layout, testing::Values(96, 120, 144));

}  // namespace
}  // namespace win32_tests
