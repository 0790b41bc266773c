// Start-up and tear-down.

#include "addin/host/OutAddIn.h"

#include "addin/common/basapi.h"
#include "addin/diag/basDbgOut.h"
#include "addin/diag/basDebug.h"
#include "addin/host/basOutlook.h"
#include "addin/settings/basresourceid.h"
#include "addin/settings/options.h"

namespace addin {
namespace {

constexpr std::int32_t defaultInterval = 2;  // minutes
constexpr std::int32_t pollInterval = 60000;
constexpr std::int32_t pollResolution = 1000;

// Deletes one of our buttons from its menu; that it was ours is all that the line says.
void removeButton(const office::CommandBarButton& button, StringView line) {
  if (!button) return;
  onErrorResumeNext([&] { button.Delete(); });
  DbgOut(2, line);
}

}  // namespace

void OutAddIn::InitHandler(const outlook::Application& Application, StringView ProgId) {
  onErrorLog(
      [&] {
        m_bUnInitialised = false;
        objOutlook = Application;
        SetModuleApplication(Application);
        objNS = objOutlook->GetNamespace(u"MAPI");
        colExpl = objOutlook->Explorers();
        colInsp = objOutlook->Inspectors();
        objExpl = objOutlook->ActiveExplorer();
        m_objMenuBar = objOutlook->ActiveExplorer().CommandBars().Item(u"Menu Bar");
        InstallButtons(ProgId);
      },
      u"InitHandler Error:");
}

bool OutAddIn::StartUpCompleted() {
  return onErrorLog<bool>([&](bool& result) {
    const auto fail = [](StringView description) { raiseError(-1, u"StartUpCompleted", description); };
    if (WizardDone() != 1 && !ShowWizard(FormModality::Modal)) return;  // the program ends
    // Messages are served while the wizard is open and while the phone server starts. When the mail client has gone
    // meanwhile, there is nobody left to serve.
    if (m_bUnInitialised) return;
    if (!SetupSMSHandler()) fail(u"Failed to setup sms handler");
    if (m_bUnInitialised) return;
    if (!SetupTimer()) fail(u"Failed to setup timer");
    if (!PublishForm()) fail(u"Failed to publish form");
    result = true;
  });
}

std::int32_t OutAddIn::WizardDone() const {
  return onErrorLog<std::int32_t>([&](std::int32_t& result) { result = OptionNumber(u"WizardDone", 0); });
}

localizer::Localizer OutAddIn::Localizer() {
  return onErrorLog<localizer::Localizer>([&](localizer::Localizer& result) {
    if (!m_objLocalizer) m_objLocalizer = as<localizer::Localizer>(CreateObject(localizer::progIdLocalizer));
    result = m_objLocalizer;
  });
}

bool OutAddIn::SetupSMSHandler() {
  return onErrorLog<bool>([&](bool& result) {
    if (m_objSMSHandler) m_objSMSHandler = nullptr;
    onErrorResumeNext([&] { m_objSMSHandler = make<clsSMSHandler>(); });
    if (!m_objSMSHandler) raiseError(-1, u"SetupSMSHandler", u"Failed to create smshandler object");
    m_objSMSHandler->InitCAPIObjects();  // not looked at: a machine without a phone gets an engine too

    if (objNS) {
      m_objSMSHandler->Inbox(objNS.GetDefaultFolder(outlook::olFolderInbox));
      m_objSMSHandler->DeletedItems(objNS.GetDefaultFolder(outlook::olFolderDeletedItems));
      m_objSMSHandler->Outbox(objNS.GetDefaultFolder(outlook::olFolderOutbox));
      m_objSMSHandler->SentMail(objNS.GetDefaultFolder(outlook::olFolderSentMail));
      m_objSMSHandler->Contacts(objNS.GetDefaultFolder(outlook::olFolderContacts));
      m_objSMSHandler->OutlookApplication(objOutlook);
    }

    if (const auto texts = Localizer()) {
      m_objSMSHandler->SetAssistantTitle(texts.getlocalizedresstring(IDS_ASSISTANT_TITLE, u"Text Message Service"));
      m_objSMSHandler->SetAssistantHeading(
          texts.getlocalizedresstring(IDS_ASSISTANT_HEADING, u"No phone is available to send text messages."));
      m_objSMSHandler->SetAssistantLabel(
          texts.getlocalizedresstring(IDS_ASSISTANT_LABEL, u"The text message has been put in your outbox."));
    }
    result = true;
  });
}

bool OutAddIn::SetupTimer() {
  return onErrorLog<bool>([&](bool& result) {
    const String useAuto = OptionText(u"SendReceive_UseAuto");
    const bool automatic = useAuto.empty() || CBool(useAuto);
    m_nInterval = OptionNumber(u"SendReceive_AutoIntervall", defaultInterval);
    if (automatic) {
      if (m_nInterval < 1) m_nInterval = defaultInterval;
      m_nMinutesLeft = m_nInterval;
      StopTimer();
      m_objTimer = as<timermm::Timer>(CreateObject(timermm::progIdTimer));
      m_objTimer->Resolution(pollResolution);
      m_objTimer->Interval(pollInterval);
      m_objTimer->Periodic(1);
      m_objTimer->Enabled(true);
    }
    result = true;
  });
}

void OutAddIn::StopTimer() {
  if (!m_objTimer) return;
  m_objTimer->Enabled(false);
  m_objTimer = nullptr;
}

void OutAddIn::UnInitHandler() {
  m_bUnInitialised = true;
  removeButton(objCBNewButton, u"Removed new button");
  removeButton(objCBSRButton, u"Removed send&receive button");
  removeButton(objCBAboutButton, u"Removed delete button");  // this wording for the About button is kept
  removeButton(objCBHelpButton, u"Removed Help button");
  onErrorResumeNext(
      [&] {
        if (m_objTimer) m_objTimer->Enabled(false);
      },
      [&] { m_objTimer = nullptr; }, [&] { m_objSMSHandler = nullptr; }, [&] { m_objMailItem = nullptr; },
      [&] { objInsp = nullptr; }, [&] { objExpl = nullptr; }, [&] { colInsp = nullptr; }, [&] { colExpl = nullptr; },
      [&] { objNS = nullptr; }, [&] { SetModuleApplication({}); }, [&] { objOutlook = nullptr; });
  UnloadForms();
}

void OutAddIn::terminate() noexcept {
  m_bUnInitialised = true;
  onErrorResumeNext([&] { Class_Terminate(); },
                    // The rest goes with the object. It goes here already, because memory may be held by a wait or a
                    // message box further down the stack while the mail client must not be.
                    [&] { objCBNewButton = nullptr; }, [&] { objCBSRButton = nullptr; },
                    [&] { objCBAboutButton = nullptr; }, [&] { objCBHelpButton = nullptr; },
                    [&] { m_objMenu = nullptr; }, [&] { m_objMenuBar = nullptr; }, [&] { m_objLocalizer = nullptr; },
                    [&] { m_objTimer = nullptr; }, [&] { m_objSMSHandler = nullptr; }, [&] { m_objMailItem = nullptr; },
                    [&] { objInsp = nullptr; }, [&] { objExpl = nullptr; }, [&] { colInsp = nullptr; },
                    [&] { colExpl = nullptr; }, [&] { objNS = nullptr; }, [&] { objOutlook = nullptr; });
  UnloadForms();
}

void OutAddIn::Class_Terminate() { StopTimer(); }

}  // namespace addin
