#include "mailclient/win/mail_form.h"

#include "mailclient/win/reading_pane.h"
#include "mailclient/win/text_message_form.h"

namespace mailclient::win {
namespace {

constexpr int idFirst = 10;
constexpr int idBody = 50;

}  // namespace

void FieldsForm::createFields() {
  int id = idFirst;
  for (const Line& line : lines()) {
    const Field field = addField(line.label, oneLine(message()[line.text]), isReadOnly(), id++);
    edits_.emplace_back(line.text, field.control);
  }
  body_ = addBody(editText(message()[Text::Body]), isReadOnly(), idBody);
  ready_ = true;
}

void FieldsForm::layoutBelow(const RECT& area) {
  const int margin = scaled(8);
  place(body_, area.left + margin, area.top, widthOf(area) - 2 * margin, heightOf(area) - margin);
}

void FieldsForm::changed(int, int what) {
  if (ready_ && what == EN_CHANGE) changed_ = true;
}

HWND FieldsForm::firstFocus() const {
  if (isReadOnly() || edits_.empty()) return body_;
  return textOf(edits_.front().second).empty() ? edits_.front().second : body_;
}

void FieldsForm::take() {
  for (const auto& [text, edit] : edits_)
    if (text != Text::Subject) message()[text] = textOf(edit);
  for (const auto& [text, edit] : edits_)
    if (text == Text::Subject) setSubject(message(), textOf(edit));
  message()[Text::Body] = textOf(body_);
  message().changed = true;
}

void FieldsForm::save() {
  take();
  shell().client().store().save(messagePtr());
  noteSaved();
  retitle();
}

// ---- mail
// -----------------------------------------------------------------------------------------------------------------

String MailForm::title() const {
  const String& subject = message()[Text::Subject];
  return (subject.empty() ? String(u"Untitled") : oneLine(subject)) + u" - Message";
}

std::vector<InspectorFrame::Tool> MailForm::tools() const {
  if (isReadOnly())
    return {{toolReply, L"Reply", Art::Reply, L"Answer the sender (Ctrl+R)"},
            {toolReplyAll, L"Reply to All", Art::ReplyAll, L"Answer the sender and all recipients"},
            {toolForward, L"Forward", Art::Forward, L"Send the item on to somebody else (Ctrl+F)"},
            {toolDelete, L"Delete", Art::Delete, L"Delete the item"}};
  return {{toolSend, L"Send", Art::Send, L"Send the item (Ctrl+Enter)"},
          {toolSave, L"Save", Art::Save, L"Keep the item without sending it (Ctrl+S)"}};
}

std::vector<FieldsForm::Line> MailForm::lines() const {
  if (isReadOnly())
    return {{Text::SenderName, L"From:"}, {Text::To, L"To:"}, {Text::Cc, L"Cc:"}, {Text::Subject, L"Subject:"}};
  return {{Text::To, L"&To:"}, {Text::Cc, L"&Cc:"}, {Text::Subject, L"S&ubject:"}};
}

// A reply stays in the conversation that it answers while its subject does.
void MailForm::take() {
  const String topic = message()[Text::ConversationTopic];
  const String subject = message()[Text::Subject];
  FieldsForm::take();
  if (message()[Text::Subject] == subject) message()[Text::ConversationTopic] = topic;
}

bool MailForm::run(int id) {
  if (id != toolSend) return FieldsForm::run(id);
  take();
  sendItem();
  return true;
}

// ---- contact
// ----------------------------------------------------------------------------------------------------------------

String ContactForm::title() const {
  const String& name = message()[Text::FullName];
  return (name.empty() ? String(u"Untitled") : oneLine(name)) + u" - Contact";
}

std::vector<InspectorFrame::Tool> ContactForm::tools() const {
  return {{toolSave, L"Save and Close", Art::Save, L"Keep the contact (Ctrl+S)"},
          {toolDelete, L"Delete", Art::Delete, L"Delete the contact"}};
}

std::vector<FieldsForm::Line> ContactForm::lines() const {
  return {{Text::FullName, L"Full &name:"},
          {Text::CompanyName, L"&Company:"},
          {Text::MobileTelephoneNumber, L"&Mobile phone:"},
          {Text::BusinessTelephoneNumber, L"&Business phone:"},
          {Text::HomeTelephoneNumber, L"&Home phone:"}};
}

// A contact is filed under its name.
void ContactForm::take() {
  FieldsForm::take();
  message()[Text::FileAs] = message()[Text::FullName];
  setSubject(message(), message()[Text::FullName]);
}

bool ContactForm::run(int id) {
  if (!FieldsForm::run(id)) return false;
  if (id == toolSave) shell().client().windows().closeInspectorsOf(messagePtr());
  return true;
}

std::unique_ptr<InspectorFrame> makeInspector(Shell& shell, const InspectorPtr& window) {
  constexpr std::int32_t contactKind = 40;  // olContact
  if (opensAsTextMessage(shell.client().store(), *window->message))
    return std::make_unique<TextMessageForm>(shell, window);
  if (kindOf((*window->message)[Text::MessageClass]) == contactKind)
    return std::make_unique<ContactForm>(shell, window);
  return std::make_unique<MailForm>(shell, window);
}

}  // namespace mailclient::win
