#include "mailclient/win/text_message_form.h"

#include <algorithm>

#include "mailclient/view/message_parts.h"
#include "mailclient/win/reading_pane.h"

namespace mailclient::win {
namespace {

enum ControlId : int { idTo = 10, idBody = 11, idCount = 12, idMatches = 13, idFrom = 14, idTime = 15 };
constexpr int mostMatches = 8;

}  // namespace

String TextMessageForm::title() const {
  const String& subject = message()[Text::Subject];
  return (subject.empty() ? String(u"Untitled") : subject) + u" - Text Message";
}

std::vector<InspectorFrame::Tool> TextMessageForm::tools() const {
  if (isRead())
    return {{toolReply, L"Reply", Art::Reply, L"Answer with a text message (Ctrl+R)"},
            {toolForward, L"Forward", Art::Forward, L"Send the text on to somebody else (Ctrl+F)"},
            {toolDelete, L"Delete", Art::Delete, L"Delete the message"}};
  return {{toolSend, L"Send", Art::Send, L"Send the message (Ctrl+Enter)"},
          {toolSave, L"Save", Art::Save, L"Keep the message without sending it (Ctrl+S)"}};
}

void TextMessageForm::createFields() {
  if (isRead()) {
    const Date time = timeOf(message(), Column::Received);
    addField(L"From:", message()[Text::SenderName], true, idFrom);
    to_ = addField(L"To:", message()[Text::To], true, idTo).control;
    if (time != Date{}) addField(L"Sent:", shell().timeText(time), true, idTime);
  } else {
    savedTo_ = recipientOf(message());
    to_ = addField(L"&To:", savedTo_, false, idTo).control;
    SendMessageW(to_, EM_SETLIMITTEXT, 300, 0);
  }
  body_ = addBody(editText(message()[Text::Body]), isRead(), idBody);
  savedBody_ = textOf(body_);
  count_ = makeControl(handle(), WC_STATICW, L"", SS_LEFT | SS_NOPREFIX, idCount);
  if (!isRead()) {
    matches_ = makeControl(handle(), WC_LISTBOXW, L"Matching contacts", WS_BORDER | WS_VSCROLL | LBS_NOTIFY, idMatches);
    hideMatches();
  }
  showCount();
}

HWND TextMessageForm::firstFocus() const { return isRead() || !textOf(to_).empty() ? body_ : to_; }

void TextMessageForm::layoutBelow(const RECT& area) {
  const int margin = scaled(8);
  const int countTop = isRead() ? area.bottom : area.bottom - margin / 2 - lineHeight();
  place(body_, area.left + margin, area.top, widthOf(area) - 2 * margin, countTop - scaled(5) - area.top);
  place(count_, area.left + margin, countTop, widthOf(area) - 2 * margin, lineHeight());
}

// ---- the recipient
// ----------------------------------------------------------------------------------------------------

std::vector<AddressEntry> TextMessageForm::book() const {
  auto& client = const_cast<TextMessageForm*>(this)->shell().client();
  return addressBook(*client.store().defaultFolder(DefaultFolder::Contacts));
}

void TextMessageForm::showMatches() {
  const String typed = textOf(to_);
  found_ = typed.find(u'[') == String::npos ? complete(book(), typed) : std::vector<AddressEntry>();
  if (found_.empty()) {
    hideMatches();
    return;
  }
  SendMessageW(matches_, LB_RESETCONTENT, 0, 0);
  for (const AddressEntry& entry : found_)
    SendMessageW(matches_, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(wide(displayAddress(entry))));
  if (const auto first = preselected(found_, typed)) SendMessageW(matches_, LB_SETCURSEL, *first, 0);
  RECT r{};
  GetWindowRect(to_, &r);
  MapWindowPoints(nullptr, handle(), reinterpret_cast<POINT*>(&r), 2);
  const auto lines = static_cast<int>(std::min<std::size_t>(found_.size(), mostMatches));
  const auto item = static_cast<int>(SendMessageW(matches_, LB_GETITEMHEIGHT, 0, 0));
  SetWindowPos(matches_, HWND_TOP, r.left, r.bottom, widthOf(r), lines * item + 2 * GetSystemMetrics(SM_CYBORDER),
               SWP_NOACTIVATE | SWP_SHOWWINDOW);
}

void TextMessageForm::takeMatch() {
  const auto at = static_cast<std::size_t>(SendMessageW(matches_, LB_GETCURSEL, 0, 0));
  hideMatches();
  if (at >= found_.size()) return;
  fillRecipient(displayAddress(found_[at]));
  SendMessageW(to_, EM_SETSEL, 1000, 1000);
  SetFocus(to_);
}

// Not the user's typing: nothing is to be completed.
void TextMessageForm::fillRecipient(const String& address) {
  completing_ = true;
  setText(to_, address);
  completing_ = false;
}

bool TextMessageForm::onKey(WPARAM key, bool control) {
  if (!matchesShown() || GetFocus() != to_) return InspectorFrame::onKey(key, control);
  if (key == VK_ESCAPE) {
    hideMatches();
    return true;
  }
  if ((key == VK_RETURN || key == VK_TAB) && !control) {
    takeMatch();
    return key == VK_RETURN;  // Tab goes on to the next field as well
  }
  if (key != VK_DOWN && key != VK_UP) return InspectorFrame::onKey(key, control);
  const auto at = static_cast<int>(SendMessageW(matches_, LB_GETCURSEL, 0, 0)) + (key == VK_DOWN ? 1 : -1);
  const auto last = static_cast<int>(found_.size()) - 1;
  SendMessageW(matches_, LB_SETCURSEL, static_cast<WPARAM>(std::clamp(at, 0, last)), 0);
  return true;
}

void TextMessageForm::changed(int id, int what) {
  if (!body_) return;  // still being made
  if (id == idBody && what == EN_CHANGE) showCount();
  if (id == idTo && what == EN_CHANGE && !completing_ && !isRead() && GetFocus() == to_) showMatches();
  if (id == idTo && what == EN_KILLFOCUS && matches_) {
    if (GetFocus() == matches_) return;
    hideMatches();
    const auto address = isRead() ? std::nullopt : resolveRecipient(book(), textOf(to_));
    if (address) fillRecipient(*address);
  }
  if (id == idMatches && what == LBN_SELCHANGE) takeMatch();
  if (id == idMatches && what == LBN_KILLFOCUS) hideMatches();
}

// ---- text and item
// ------------------------------------------------------------------------------------------------------

// What is read has been sent, in whatever parts.
void TextMessageForm::showCount() {
  if (isRead()) return;
  const PartCount count = countParts(textOf(body_));
  String text = describe(count);
  if (!count.defaultAlphabet) text += u", special characters";
  setText(count_, text);
}

bool TextMessageForm::isChanged() const {
  return !isRead() && (textOf(to_) != savedTo_ || textOf(body_) != savedBody_);
}

// As it was typed, when it means nobody yet.
void TextMessageForm::save() {
  if (const auto address = resolveRecipient(book(), textOf(to_))) fillRecipient(*address);
  const String recipient = textOf(to_);
  writeTextMessage(message(), recipient, textOf(body_));
  shell().client().store().save(messagePtr());
  savedTo_ = recipient;
  savedBody_ = textOf(body_);
  retitle();
}

void TextMessageForm::send() {
  const auto address = resolveRecipient(book(), textOf(to_));
  if (!address) {
    MessageBoxW(handle(), L"Please enter one recipient: a mobile phone number, or the name of a contact who has one.",
                wide(title()), MB_OK | MB_ICONINFORMATION);
    if (handle()) SetFocus(to_);
    return;
  }
  const String text = textOf(body_);
  if (text.empty() && MessageBoxW(handle(), L"The message has no text. Do you want to send it all the same?",
                                  wide(title()), MB_YESNO | MB_ICONQUESTION) != IDYES)
    return;
  if (!handle()) return;  // closed by a program meanwhile
  writeTextMessage(message(), *address, text);
  sendItem();
}

bool TextMessageForm::run(int id) {
  if (id != toolSend) return InspectorFrame::run(id);
  send();
  return true;
}

}  // namespace mailclient::win
