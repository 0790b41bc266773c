// The menu buttons, what their clicks do, and the send-and-receive command with its polling timer.

#include "addin/common/basapi.h"
#include "addin/diag/basDbgOut.h"
#include "addin/diag/basDebug.h"
#include "addin/host/OutAddIn.h"
#include "addin/host/basCommandBars.h"
#include "addin/platform/arithmetic.h"
#include "addin/settings/bashelp.h"
#include "addin/settings/basresourceid.h"
#include "addin/settings/options.h"

namespace addin {
namespace {

// Built-in menus of the mail client.
constexpr std::int32_t newMenu = 30037;
constexpr std::int32_t toolsMenu = 30007;
constexpr std::int32_t helpMenu = 30010;

constexpr std::int16_t textMessageFace = 1757;  // one face for all that have one
constexpr std::int16_t noGroup = 0;

// Tags stay English: a button installed under one language is found again under another.
constexpr StringView newTag = u"New Text Message";
constexpr StringView sendReceiveTag = u"Send & Receive Text Message";
constexpr StringView aboutTag = u"About Text Message Add-In";
constexpr StringView helpTag = u"Text Message Add-In Help";

constexpr std::int32_t warnByDefault = 1;

}  // namespace

struct OutAddIn::ButtonTexts {
  String newCaption = u"Text Message";
  String newTooltip = u"Create a new Text Message";
  String sendReceiveCaption = u"Send && Receive Text Messages";  // "&&" shows as one "&" in a menu
  String sendReceiveTooltip = u"Send & Receive Text Messages";
  String aboutCaption = u"About Text Message Add-In";
  String aboutTooltip = u"About Text Message Add-In";
  String helpCaption = u"Text Message Add-In Help";
  String helpTooltip = u"Text Message Add-In Help";
};

OutAddIn::ButtonTexts OutAddIn::LocalizedButtonTexts() {
  ButtonTexts texts;
  const auto source = Localizer();
  if (!source) return texts;
  const auto localize = [&](std::int16_t id, String& text) { text = source.getlocalizedresstring(id, text); };
  localize(IDS_NEW_CAPTION, texts.newCaption);
  localize(IDS_NEW_TOOLTIP, texts.newTooltip);
  localize(IDS_SENDRECEIVE_CAPTION, texts.sendReceiveCaption);
  localize(IDS_SENDRECEIVE_TOOLTIP, texts.sendReceiveTooltip);
  localize(IDS_ABOUT_CAPTION, texts.aboutCaption);
  localize(IDS_ABOUT_TOOLTIP, texts.aboutTooltip);
  localize(IDS_HELP_CAPTION, texts.helpCaption);
  localize(IDS_HELP_TOOLTIP, texts.helpTooltip);
  return texts;
}

void OutAddIn::InstallButtons(StringView ProgId) {
  const ButtonTexts texts = LocalizedButtonTexts();
  const Placed newButton = AddToNewMenu(ProgId, texts);
  AddToToolsMenu(ProgId, texts, newButton);
  AddToHelpMenu(ProgId, texts);
}

bool OutAddIn::FindMenu(std::int32_t controlId) {
  m_objMenu = as<office::CommandBarPopup>(m_objMenuBar.FindControl(missing, controlId, missing, missing, true));
  return bool(m_objMenu);
}

void OutAddIn::AddNewButton(StringView ProgId, const ButtonTexts& texts) {
  objCBNewButton = AddCommandBarButton(ProgId, m_objMenu.CommandBar(), texts.newCaption, newTag, texts.newTooltip,
                                       textMessageFace, noGroup, office::msoButtonIconAndCaption);
}

OutAddIn::Placed OutAddIn::AddToNewMenu(StringView ProgId, const ButtonTexts& texts) {
  if (!FindMenu(newMenu)) return Placed::No;
  AddNewButton(ProgId, texts);
  DbgOut(2, u"Added textmessage to new menu");
  return Placed::Yes;
}

void OutAddIn::AddToToolsMenu(StringView ProgId, const ButtonTexts& texts, Placed newButton) {
  if (!FindMenu(toolsMenu)) return;
  objCBSRButton =
      AddCommandBarButton(ProgId, m_objMenu.CommandBar(), texts.sendReceiveCaption, sendReceiveTag,
                          texts.sendReceiveTooltip, textMessageFace, noGroup, office::msoButtonIconAndCaption);
  DbgOut(2, u"Added send&receive to tools menu");
  if (newButton == Placed::No) {
    AddNewButton(ProgId, texts);
    DbgOut(2, u"Added textmessage to tools menu");
  }
  objCBSRButton->Enabled(false);  // until the engine reports a phone
}

void OutAddIn::AddToHelpMenu(StringView ProgId, const ButtonTexts& texts) {
  if (FindMenu(helpMenu)) {
    objCBAboutButton =
        AddCommandBarButton(ProgId, m_objMenu.CommandBar(), texts.aboutCaption, aboutTag, texts.aboutTooltip,
                            textMessageFace, noGroup, office::msoButtonIconAndCaption);
    DbgOut(2, u"Added about to help menu");
  }
  if (FindMenu(helpMenu)) {
    objCBHelpButton = AddCommandBarButton(ProgId, m_objMenu.CommandBar(), texts.helpCaption, helpTag, texts.helpTooltip,
                                          textMessageFace, noGroup, office::msoButtonCaption);
    DbgOut(2, u"Added Help button to Help menu");
  }
}

void OutAddIn::objCBNewButton_Click(const Object& /*ctrl*/, bool& /*CancelDefault*/) {
  onErrorLog([&] {
    if (WizardDone() != 1) {
      ShowWizard(FormModality::Modeless);
      return;
    }
    const outlook::MailItem item = objExpl->CurrentFolder().Items().Add(MESSAGE_CLASS);
    item.Display();
  });
}

void OutAddIn::objCBAboutButton_Click(const Object& /*ctrl*/, bool& /*CancelDefault*/) {
  onErrorLog([&] { ShowAbout(); });
}

void OutAddIn::objCBHelpButton_Click(const Object& /*ctrl*/, bool& /*CancelDefault*/) {
  onErrorLog([] { ShowHelp(); });
}

void OutAddIn::objCBSRButton_Click(const Object& /*ctrl*/, bool& /*CancelDefault*/) {
  onErrorLog([&] { SendAndReceive(); });
}

void OutAddIn::SendAndReceive() {
  onErrorLog([&] {
    if (WizardDone() != 1) {
      ShowWizard(FormModality::Modeless);
      return;
    }
    if (m_objSMSHandler) {
      // A failed receive does not stop the send; a failed send ends the command. The blank behind the first "Error:" is
      // deliberate.
      if (!m_objSMSHandler->ReceiveAll()) DbgOut(2, u"Error: ", 1, u", Error during Receive All, SendAndReceive");
      if (!m_objSMSHandler->SendAll()) raiseError(2, u"SendAndReceive", u"Error during Send All");
    }
    WarnIfSimIsFull();
  });
}

void OutAddIn::WarnIfSimIsFull() {
  DbgOut(2, u"Check in the registry if a warning should be displayed, if the SIM card is full");
  const String setting = OptionText(u"Sim_Full_Warning");
  std::int32_t simWarning = warnByDefault;
  if (!setting.empty()) {
    simWarning = CLng(setting);
    DbgOut(2, u"Don't show warning - SIM card is full: ", simWarning);  // said whatever the number is
  } else {
    DbgOut(2, u"Show warning - SIM card is full");
  }
  if (simWarning == 0) return;
  if (m_objSMSHandler->isSimFull() == 0) return;  // -1, no SMS object, counts as full

  DbgOut(2, u"simWarning <> 0, localize SIM Full strings");
  String title = u"Marrick Text Message Add-In For Outlook";
  String heading = u"The text message memory is full!";
  String body = u"It is necessary to delete text message(s) from the Inbox to be able to receive new text messages.";
  if (const auto texts = Localizer()) {
    title = texts.getlocalizedresstring(IDS_ADDIN_TITLE, title);
    heading = texts.getlocalizedresstring(IDS_SIM_FULL_HEADING, heading);
    body = texts.getlocalizedresstring(IDS_SIM_FULL_BODY, body);
  }
  system().ui.messageBox(concat(heading, CRLF, CRLF, body), MSGBOX_INFORMATION, title);
  DbgOut(2, u"Show message SIM card is full");
}

void OutAddIn::m_objTimer_Timer(std::int32_t Milliseconds) {
  onErrorLog([&] {
    DbgOut(2, u"Poll timer: ", Milliseconds);
    m_nMinutesLeft = checkedAdd(m_nMinutesLeft, -1);
    if (m_nMinutesLeft >= 1) return;
    m_nMinutesLeft = m_nInterval;
    m_objTimer->Enabled(false);  // no tick while a run may have a message box open
    if (m_objSMSHandler && m_objSMSHandler->IsPhoneConnected()) SendAndReceive();
    m_objTimer->Enabled(true);
  });
}

// No handler of its own: without a Send & Receive button the error goes back to the engine that raised the event.
void OutAddIn::m_objSMSHandler_OnPhoneConnected(bool bConnected) {
  objCBSRButton->Enabled(bConnected);
  DbgOut(2, u"m_objSMSHandler_OnPhoneConnected: ", bConnected);
}

}  // namespace addin
