// The colours of the dialogs as they are on the screen, on a system whose own colours are not the usual ones: where the
// form says white it is white, and where it says button face it is the system's.

#include <array>
#include <memory>
#include <set>

#include "form_fixture.h"

namespace win32_tests {
namespace {

constexpr COLORREF white = RGB(255, 255, 255);
constexpr COLORREF black = RGB(0, 0, 0);

// As somebody has chosen them who wants light letters on dark ground.
constexpr COLORREF systemWindow = RGB(16, 0, 64);
constexpr COLORREF systemText = RGB(255, 255, 0);
constexpr COLORREF systemFace = RGB(0, 64, 96);

class SystemColours {
 public:
  SystemColours(COLORREF window, COLORREF text, COLORREF face) {
    for (std::size_t i = 0; i < elements.size(); ++i) before_[i] = GetSysColor(elements[i]);
    set({window, text, text, face});
  }
  SystemColours(const SystemColours&) = delete;
  SystemColours& operator=(const SystemColours&) = delete;
  ~SystemColours() { set(before_); }

 private:
  static constexpr std::array elements{COLOR_WINDOW, COLOR_WINDOWTEXT, COLOR_BTNTEXT, COLOR_BTNFACE};
  static void set(const std::array<COLORREF, elements.size()>& colours) {
    SetSysColors(static_cast<INT>(elements.size()), elements.data(), colours.data());
  }
  std::array<COLORREF, elements.size()> before_{};
};

class FormColours : public FormFixture {
 protected:
  static void SetUpTestSuite() { colours_ = std::make_unique<SystemColours>(systemWindow, systemText, systemFace); }
  static void TearDownTestSuite() { colours_ = nullptr; }

  HWND show(Form& form, const wchar_t* title) {
    form.Show(FormModality::Modeless);
    dialog_ = FindWindowW(L"#32770", title);
    return dialog_;
  }
  // The n-th control of its class that can be seen.
  HWND shown(const wchar_t* className, int n = 0) const {
    for (HWND at = nullptr; (at = FindWindowExW(dialog_, at, className, nullptr)) != nullptr;)
      if (IsWindowVisible(at) && n-- == 0) return at;
    ADD_FAILURE() << "no such control";
    return nullptr;
  }
  HWND labelled(const wchar_t* text) const { return FindWindowExW(dialog_, nullptr, nullptr, text); }
  void next() { wizard->Find(u"btnNext")->userClicks(); }

  static void paintNow(HWND window) {
    RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW | RDW_ALLCHILDREN);
  }
  // What a control has on the screen where its text is: the ground, which is found in a corner, and everything.
  struct Painted {
    COLORREF ground;
    std::set<COLORREF> colours;
  };
  static RECT textPlace(HWND control) {
    COMBOBOXINFO combo{};
    combo.cbSize = sizeof combo;
    if (GetComboBoxInfo(control, &combo)) return combo.rcItem;
    RECT inner{};
    GetClientRect(control, &inner);
    return inner;
  }
  static Painted painted(HWND control) {
    paintNow(GetParent(control));
    const RECT place = textPlace(control);
    const HDC dc = GetDC(control);
    Painted result{GetPixel(dc, place.right - 2, place.bottom - 2), {}};
    for (LONG y = place.top; y < place.bottom; ++y)
      for (LONG x = place.left; x < place.right; ++x) result.colours.insert(GetPixel(dc, x, y));
    ReleaseDC(control, dc);
    return result;
  }
  static COLORREF ground(HWND control) { return painted(control).ground; }
  static bool has(HWND control, COLORREF colour) { return painted(control).colours.count(colour) != 0; }
  COLORREF pixelOfDialog(int x, int y) const {
    paintNow(dialog_);
    const HDC dc = GetDC(dialog_);
    const COLORREF colour = GetPixel(dc, x, y);
    ReleaseDC(dialog_, dc);
    return colour;
  }

 private:
  static inline std::unique_ptr<SystemColours> colours_;
  HWND dialog_ = nullptr;
};

TEST_F(FormColours, Fields_AreWhiteWhileTheyCanBeUsedAndOfTheButtonsColourOtherwise) {
  show(*wizard, wizardTitle);
  next();
  Control& own = *wizard->Find(u"chkOwnSCAddress");
  own.SetFocus();  // a list that has the focus is marked
  const HWND list = shown(L"ComboBox");
  const HWND number = shown(L"Edit");
  EXPECT_EQ(ground(list), white);
  EXPECT_EQ(ground(number), systemFace);
  own.userClicks();
  EXPECT_EQ(ground(list), systemFace);
  EXPECT_EQ(ground(number), white);
  wizard->Find(u"txtOwnSCAddress")->Text(u"+46");
  next();
  EXPECT_EQ(ground(shown(L"Edit")), white);
  wizard->Find(u"chkAutoPoll")->userClicks();
  EXPECT_EQ(ground(shown(L"Edit")), systemFace);
  next();
  EXPECT_EQ(ground(shown(L"Edit", 0)), white);
  EXPECT_EQ(ground(shown(L"Edit", 1)), white);
}

TEST_F(FormColours, TextOnWhite_IsBlackWhateverTheSystemWritesWith) {
  setOption("My_FullName", "MMMM");
  setOption("SCAddress_Own", "(+46)");
  show(*wizard, wizardTitle);
  next();
  wizard->Find(u"chkOwnSCAddress")->SetFocus();
  const HWND list = shown(L"ComboBox");
  EXPECT_TRUE(has(list, black));
  EXPECT_FALSE(has(list, systemText));
  const HWND number = shown(L"Edit");
  EXPECT_FALSE(has(number, black)) << "what cannot be used is grey";
  next();
  next();
  const HWND name = shown(L"Edit", 0);
  wizard->Find(u"txtPhoneNo")->SetFocus();
  SendMessageW(name, EM_SETSEL, 0, 0);
  EXPECT_TRUE(has(name, black));
  EXPECT_FALSE(has(name, systemText));
}

// The grey of what cannot be used is the control's own, or the system's.
TEST_F(FormColours, Answer_ForWhatCannotBeUsed_IsTheGroundAlone) {
  const HWND dialog = show(*wizard, wizardTitle);
  next();
  const HWND number = shown(L"Edit");
  const HDC dc = GetDC(number);
  SetTextColor(dc, RGB(1, 2, 3));
  const auto ask = [&](UINT message) {
    return reinterpret_cast<HBRUSH>(
        SendMessageW(dialog, message, reinterpret_cast<WPARAM>(dc), reinterpret_cast<LPARAM>(number)));
  };
  EXPECT_EQ(ask(WM_CTLCOLORSTATIC), GetSysColorBrush(COLOR_BTNFACE));
  EXPECT_EQ(GetBkColor(dc), systemFace);
  EXPECT_EQ(GetTextColor(dc), RGB(1, 2, 3));
  wizard->Find(u"chkOwnSCAddress")->userClicks();
  EXPECT_EQ(ask(WM_CTLCOLOREDIT), GetStockObject(DC_BRUSH));
  EXPECT_EQ(GetDCBrushColor(dc), white);
  EXPECT_EQ(GetBkColor(dc), white);
  EXPECT_EQ(GetTextColor(dc), black);
  ReleaseDC(number, dc);
}

TEST_F(FormColours, TextOnTheButtonsColour_IsTheSystems) {
  show(*wizard, wizardTitle);
  next();
  next();
  const HWND heading = labelled(L"Send and Receive");
  // Not ticked: the mark has the system's colour too.
  const HWND box = labelled(L"&Remove text messages from the SIM card when retrieved in the Inbox.");
  for (const HWND control : {heading, box}) {
    ASSERT_NE(control, nullptr);
    EXPECT_EQ(ground(control), systemFace);
    EXPECT_TRUE(has(control, systemText));
  }
  EXPECT_FALSE(has(heading, black));
}

TEST_F(FormColours, Banner_IsWhiteWithItsTitleAndTheRestIsTheButtonsColour) {
  const auto about = platform::make<addin::frmabout>();
  for (const bool isWizard : {true, false}) {
    const HWND dialog = isWizard ? show(*wizard, wizardTitle) : show(*about, aboutTitle);
    EXPECT_EQ(pixelOfDialog(1, 1), white);
    RECT client{};
    GetClientRect(dialog, &client);
    EXPECT_EQ(pixelOfDialog(client.right - 2, client.bottom - 2), systemFace);
    const HWND title = labelled(isWizard ? L"Marrick Text Message Add-In for Outlook 2000"
                                         : L"Marrick Text Message Add-In For Outlook");
    ASSERT_NE(title, nullptr);
    EXPECT_EQ(ground(title), white);
    EXPECT_TRUE(has(title, black));
    EXPECT_FALSE(has(title, systemText));
  }
  EXPECT_EQ(ground(labelled(L"Version 1.0.0")), systemFace);
  about->Unload();
}

TEST_F(FormColours, ChangedWhileTheDialogIsOpen_AreFollowed) {
  show(*wizard, wizardTitle);
  next();
  const HWND number = shown(L"Edit");
  EXPECT_EQ(ground(number), systemFace);
  const SystemColours others(systemWindow, systemText, RGB(96, 64, 0));
  EXPECT_EQ(ground(number), RGB(96, 64, 0));
}

// Who changes the colours paints nothing anew: those who are told do.
TEST_F(FormColours, DialogThatIsToldOfOthers_PaintsItselfAnew) {
  const HWND dialog = show(*wizard, wizardTitle);
  paintNow(dialog);
  EXPECT_FALSE(GetUpdateRect(dialog, nullptr, FALSE));
  SendMessageW(dialog, WM_SYSCOLORCHANGE, 0, 0);
  EXPECT_TRUE(GetUpdateRect(dialog, nullptr, FALSE));
}

}  // namespace
}  // namespace win32_tests
