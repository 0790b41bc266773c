#include "mailclient/win/balloon.h"

#include <algorithm>
#include <array>

#include "mailclient/win/dialogs.h"

namespace mailclient::win {
namespace {

// MsoBalloonButtonType.
enum BalloonAnswer : std::int32_t {
  ok = -1,
  cancel = -2,
  yes = -3,
  no = -4,
  back = -5,
  next = -6,
  retry = -7,
  abort = -8,
  ignore = -9,
  close = -12
};

struct ButtonSet {
  std::int32_t set;  // MsoButtonSetType
  std::array<std::pair<std::int32_t, StringView>, 3> buttons;
};

constexpr std::array buttonSets{
    ButtonSet{1, {{{ok, u"OK"}}}},
    ButtonSet{2, {{{cancel, u"Cancel"}}}},
    ButtonSet{3, {{{ok, u"OK"}, {cancel, u"Cancel"}}}},
    ButtonSet{4, {{{yes, u"&Yes"}, {no, u"&No"}}}},
    ButtonSet{5, {{{yes, u"&Yes"}, {no, u"&No"}, {cancel, u"Cancel"}}}},
    ButtonSet{6, {{{back, u"&Back"}, {close, u"Close"}}}},
    ButtonSet{7, {{{next, u"&Next"}, {close, u"Close"}}}},
    ButtonSet{8, {{{back, u"&Back"}, {next, u"&Next"}, {close, u"Close"}}}},
    ButtonSet{9, {{{retry, u"&Retry"}, {cancel, u"Cancel"}}}},
    ButtonSet{10, {{{abort, u"&Abort"}, {retry, u"&Retry"}, {ignore, u"&Ignore"}}}},
};

constexpr int firstButton = 100;  // control identifiers: this minus the answer

const wchar_t* iconOf(std::int32_t icon) {
  constexpr std::int32_t warning = 5;  // MsoIconType
  constexpr std::int32_t query = 6;
  constexpr std::int32_t critical = 7;
  if (icon == warning || icon == 2) return reinterpret_cast<const wchar_t*>(IDI_WARNING);
  if (icon == query) return reinterpret_cast<const wchar_t*>(IDI_QUESTION);
  return reinterpret_cast<const wchar_t*>(icon == critical ? IDI_ERROR : IDI_INFORMATION);
}

class BalloonWindow final : public Dialog {
 public:
  explicit BalloonWindow(const BalloonState& balloon) : balloon_(balloon) {}

 protected:
  SIZE layout() override {
    const int margin = scaled(14);
    const int icon = GetSystemMetrics(SM_CXICON);
    const int left = margin + icon + margin;
    const int width = scaled(400);
    const HWND picture = makeControl(handle(), WC_STATICW, L"", SS_ICON);
    SendMessageW(picture, STM_SETICON, reinterpret_cast<WPARAM>(LoadIconW(nullptr, iconOf(balloon_.icon))), 0);
    place(picture, margin, margin, icon, icon);
    int top = margin;
    top = line(balloon_.heading, left, top, width - left - margin, boldFont());
    top = line(balloon_.text, left, top, width - left - margin, uiFont());
    for (const String& label : balloon_.labels)
      if (!label.empty()) top = line(labelText(label), left, top, width - left - margin, uiFont());
    top = std::max(top, margin + icon) + scaled(8);
    return {width, placeButtons(buttons(), width, top)};
  }
  void command(int id, int) override {
    if (id == IDCANCEL) end(cancel);
    if (id == IDOK) end(buttons().front().first == IDOK ? ok : firstButton - buttons().front().first);
    if (id >= firstButton) end(firstButton - id);
  }

 private:
  String labelText(const String& label) const {
    constexpr std::int32_t bullets = 1;  // MsoBalloonType
    return balloon_.type == bullets ? u"\u2022  " + label : label;
  }

  int line(const String& text, int left, int top, int width, HFONT font) {
    if (text.empty()) return top;
    const HWND label = makeControl(handle(), WC_STATICW, wide(text), SS_LEFT | SS_NOPREFIX);
    SendMessageW(label, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    const HDC dc = GetDC(label);
    const HGDIOBJ before = SelectObject(dc, font);
    RECT needed{0, 0, width, 0};
    DrawTextW(dc, wide(text), -1, &needed, DT_CALCRECT | DT_WORDBREAK | DT_NOPREFIX);
    SelectObject(dc, before);
    ReleaseDC(label, dc);
    place(label, left, top, width, heightOf(needed));
    return top + heightOf(needed) + scaled(8);
  }

  // A balloon without a button could not be closed: it gets one.
  std::vector<std::pair<int, String>> buttons() const {
    const auto* set = std::find_if(buttonSets.begin(), buttonSets.end(),
                                   [&](const ButtonSet& s) { return s.set == balloon_.button; });
    if (set == buttonSets.end()) set = buttonSets.begin();
    std::vector<std::pair<int, String>> made;
    for (const auto& [answer, text] : set->buttons)
      if (!text.empty()) made.emplace_back(answer == ok ? IDOK : firstButton - answer, String(text));
    return made;
  }

  const BalloonState& balloon_;
};

}  // namespace

std::int32_t showBalloon(HWND owner, const BalloonState& balloon) {
  return static_cast<std::int32_t>(BalloonWindow(balloon).run(owner, u"Office Assistant"));
}

}  // namespace mailclient::win
