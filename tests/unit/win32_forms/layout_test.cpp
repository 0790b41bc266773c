// Nothing is clipped and nothing lies upon another thing, in the fonts of all resolutions.

#include <algorithm>

#include "addin/platform/convert.h"
#include "form_fixture.h"
#include "support/fake_object.h"
#include "win32/form_window.h"

namespace win32_tests {
namespace {

// Shows forms in a font of the test's choice.
class FontedInterface final : public platform::UserInterface {
 public:
  std::int32_t messageBox(platform::StringView, std::int32_t, platform::StringView) override { return 0; }
  bool showForm(Form& form, FormModality) override {
    window = win32::FormWindow::open(form, nullptr, font).get()->handle();
    ShowWindow(window, SW_SHOW);
    return true;
  }
  LOGFONTW font{};
  HWND window = nullptr;
};

class Layout : public FormFixture, public testing::WithParamInterface<int> {
 protected:
  Layout() : FormFixture(interface_) { interface_.font = font(); }

  HWND show(Form& form) {
    form.Show(FormModality::Modeless);
    return interface_.window;
  }

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
      for (const RECT& other : places)
        EXPECT_FALSE(IntersectRect(&inside, &place, &other))
            << utf8(reinterpret_cast<const char16_t*>(DialogUser::textOf(child).c_str())) << " at " << place.left
            << ", " << place.top << " upon " << other.left << ", " << other.top;
      places.push_back(place);
    }
  }

 private:
  FontedInterface interface_;
};

TEST_P(Layout, Wizard_EveryPage) {
  setOption("My_FullName", "Anna");
  setOption("My_PhoneNo", "+46");
  const HWND dialog = show(*wizard);
  for (int page = 1; page <= 4; ++page) {
    SCOPED_TRACE(page);
    expectTidy(dialog);
    if (page < 4) wizard->Find(u"btnNext")->userClicks();
  }
}

// The letters behind the marks of what can be seen.
std::string accelerators(HWND dialog) {
  std::string letters;
  for (HWND child = GetWindow(dialog, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
    const std::wstring text = DialogUser::textOf(child);
    const std::size_t mark = text.find(L'&');
    if ((GetWindowLongW(child, GWL_STYLE) & WS_VISIBLE) != 0 && mark != std::wstring::npos)
      letters += static_cast<char>(text[mark + 1]);
  }
  std::sort(letters.begin(), letters.end());
  return letters;
}

TEST_P(Layout, Accelerators_AreOfOneControlEachOnEveryPage) {
  setOption("My_FullName", "Anna");
  setOption("My_PhoneNo", "+46");
  const HWND dialog = show(*wizard);
  for (const char* expected : {"BCHN", "BCHINS", "BCHINR", "BCFHMN"}) {
    EXPECT_EQ(accelerators(dialog), expected);
    if (expected != std::string("BCFHMN")) wizard->Find(u"btnNext")->userClicks();
  }
}

// Such a mark would be an accelerator that nobody has checked against the others.
TEST_P(Layout, AndSign_InALabelOfNoField_IsShownAsItStands) {
  const auto localizer = testing_support::fake("Localizer");
  localizer->method(u"getlocalizedresstring", [](platform::Args a) {
    const std::int32_t id = platform::CLng(a[0]);
    return id == 404 || id == 407 || id == 409 ? platform::Variant(platform::concat(u"A & B", id)) : a[1];
  });
  native.objects.provide(u"mrktxtmsgres.localizer", [&] { return localizer->object(); });
  const HWND dialog = show(*wizard);
  for (const wchar_t* text : {L"A & B404", L"A & B407", L"A & B409"}) {
    const HWND label = FindWindowExW(dialog, nullptr, L"STATIC", text);
    ASSERT_NE(label, nullptr) << utf8(reinterpret_cast<const char16_t*>(text));
    EXPECT_NE(GetWindowLongW(label, GWL_STYLE) & SS_NOPREFIX, 0);
  }
}

TEST_P(Layout, About) {
  const auto about = platform::make<addin::frmabout>();
  expectTidy(show(*about));
  about->Unload();
}

TEST_P(Layout, GrowsWithTheFont) {
  RECT client{};
  GetClientRect(show(*wizard), &client);
  // Dialog units are rounded to whole pixels of a character, so the growth is not quite that of the font.
  const double scale = GetParam() / 96.0;
  EXPECT_NEAR(client.right, 462 * scale, 70 * scale);
  EXPECT_NEAR(client.bottom, 335 * scale, 50 * scale);
}

INSTANTIATE_TEST_SUITE_P(Resolutions, Layout, testing::Values(96, 120, 144));

}  // namespace
}  // namespace win32_tests
