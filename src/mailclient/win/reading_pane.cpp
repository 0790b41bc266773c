#include "mailclient/win/reading_pane.h"

#include <algorithm>
#include <utility>

namespace mailclient::win {
namespace {

constexpr std::int32_t contactKind = 40;  // olContact

String headerOf(const Message& m, const TimeText& timeText) {
  String text;
  const auto line = [&](StringView name, const String& value) {
    if (!value.empty()) text += (text.empty() ? u"" : u"\r\n") + String(name) + u"  " + oneLine(value);
  };
  if (kindOf(m[Text::MessageClass]) == contactKind) {
    line(u"Mobile:", m[Text::MobileTelephoneNumber]);
    line(u"Business:", m[Text::BusinessTelephoneNumber]);
    line(u"Company:", m[Text::CompanyName]);
    return text;
  }
  const Date time = timeOf(m, Column::Received);
  line(u"From:", m[Text::SenderName]);
  line(u"To:", m[Text::To]);
  line(u"Cc:", m[Text::Cc]);
  if (time != Date{}) line(u"Sent:", timeText(time));
  return text;
}

}  // namespace

String editText(StringView body) {
  String text;
  for (std::size_t i = 0; i < body.size(); ++i) {
    if (body[i] == u'\r' && i + 1 < body.size() && body[i + 1] == u'\n') continue;
    if (body[i] == u'\r' || body[i] == u'\n')
      text += u"\r\n";
    else
      text += body[i];
  }
  return text;
}

void ReadingPane::attach(HWND frame, int id) {
  subject_ = makeControl(frame, WC_STATICW, L"", SS_LEFT | SS_NOPREFIX | SS_ENDELLIPSIS, id + 1);
  SendMessageW(subject_, WM_SETFONT, reinterpret_cast<WPARAM>(boldFont()), FALSE);
  header_ = makeControl(frame, WC_STATICW, L"", SS_LEFTNOWORDWRAP | SS_NOPREFIX, id + 2);
  body_ = makeControl(frame, WC_EDITW, L"", WS_TABSTOP | WS_VSCROLL | ES_MULTILINE | ES_READONLY | ES_NOHIDESEL, id,
                      WS_EX_CLIENTEDGE);
  SendMessageW(body_, EM_SETMARGINS, EC_LEFTMARGIN | EC_RIGHTMARGIN, MAKELPARAM(scaled(6), scaled(6)));
}

void ReadingPane::layout(const RECT& area) {
  const int margin = scaled(6);
  area_ = area;
  const int header = headerLines_ * lineHeight();
  int top = area.top + margin;
  place(subject_, area.left + margin, top, widthOf(area) - 2 * margin, lineHeight());
  top += lineHeight() + scaled(3);
  place(header_, area.left + margin, top, widthOf(area) - 2 * margin, header);
  top += header + scaled(4);
  place(body_, area.left, top, widthOf(area), area.bottom - top);
}

void ReadingPane::setVisible(bool visible) {
  for (const HWND part : {subject_, header_, body_}) ShowWindow(part, visible ? SW_SHOWNA : SW_HIDE);
}

// Room for the usual three lines, and for a fourth when there is one: the pane does not jump from item to item.
void ReadingPane::setHeader(const String& text) {
  setText(header_, text);
  const auto lines = static_cast<int>(std::count(text.begin(), text.end(), u'\n')) + 1;
  if (std::exchange(headerLines_, std::max(usualLines, lines)) != headerLines_) layout(area_);
}

void ReadingPane::show(const MessagePtr& message, const String& why) {
  if (!message) {
    setText(subject_, why);
    setHeader({});
    setText(body_, {});
    return;
  }
  const bool isContact = kindOf((*message)[Text::MessageClass]) == contactKind;
  setText(subject_, oneLine((*message)[isContact ? Text::FullName : Text::Subject]));
  setHeader(headerOf(*message, [this](Date utc) { return shell_.timeText(utc); }));
  setText(body_, editText((*message)[Text::Body]));
}

}  // namespace mailclient::win
