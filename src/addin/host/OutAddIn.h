// The add-in's main object inside the mail client: it holds every reference into the object model, installs the menu
// buttons, owns the transport engine and the polling timer, and lets go of everything at the end.
//
// Sources: OutAddIn.cpp (start-up and tear-down), OutAddIn_commands.cpp (buttons, send and receive),
// OutAddIn_events.cpp (the mail client's events, form and options page), OutAddIn_forms.cpp (wizard and About box).
#pragma once

#include "addin/common/basGlobal.h"
#include "addin/platform/localizer.h"
#include "addin/platform/office.h"
#include "addin/platform/outlook.h"
#include "addin/platform/timermm.h"
#include "addin/platform/with_events.h"
#include "addin/settings/frmabout.h"
#include "addin/settings/frmwizard.h"
#include "addin/sms/clsSMSHandler.h"

namespace addin {

class OutAddIn final : public Counted {
 public:
  // Takes the object-model references and installs the buttons; stops at the first step that fails.
  void InitHandler(const outlook::Application& Application, StringView ProgId);
  // The rest of the start-up: wizard, engine, polling timer, form. True when every step succeeded; a failed one is
  // logged and the later ones are skipped.
  bool StartUpCompleted();
  // Removes the buttons and drops every reference. Never fails.
  void UnInitHandler();

  // 1 once the setup wizard has been completed.
  std::int32_t WizardDone() const;
  // The resource localizer, created when first asked for; Nothing, and one error line, when it cannot be.
  localizer::Localizer Localizer();

  bool SetupSMSHandler();
  bool SetupTimer();
  bool PublishForm();
  // Receives, then sends, then warns when the phone's memory is full.
  void SendAndReceive();

 protected:
  void terminate() noexcept override;

 private:
  struct ButtonTexts;
  enum class Placed : std::uint8_t { No, Yes };

  void Class_Terminate();
  void StopTimer();

  // Forms. There is one of each at a time; showing it again brings it to the front.
  bool ShowWizard(FormModality modality);  // false when a quit message ended the waiting for a modal one
  void ShowAbout();
  void UnloadForms() noexcept;

  // Buttons.
  ButtonTexts LocalizedButtonTexts();
  void InstallButtons(StringView ProgId);
  bool FindMenu(std::int32_t controlId);
  Placed AddToNewMenu(StringView ProgId, const ButtonTexts& texts);
  void AddToToolsMenu(StringView ProgId, const ButtonTexts& texts, Placed newButton);
  void AddToHelpMenu(StringView ProgId, const ButtonTexts& texts);
  void AddNewButton(StringView ProgId, const ButtonTexts& texts);
  void WarnIfSimIsFull();

  // Events.
  void objOutlook_OptionsPagesAdd(const Object& Pages);
  void colExpl_NewExplorer(const Object& Explorer);
  void colInsp_NewInspector(const Object& Inspector);
  void objExpl_Close();
  void objExpl_SelectionChange();
  void objInsp_Close();
  void m_objMailItem_Forward(const Object& Forward, bool& Cancel);
  void m_objMailItem_Reply(const Object& Response, bool& Cancel);
  void m_objMailItem_ReplyAll(const Object& Response, bool& Cancel);
  void m_objSMSHandler_OnPhoneConnected(bool bConnected);
  void m_objTimer_Timer(std::int32_t Milliseconds);
  void objCBNewButton_Click(const Object& ctrl, bool& CancelDefault);
  void objCBSRButton_Click(const Object& ctrl, bool& CancelDefault);
  void objCBAboutButton_Click(const Object& ctrl, bool& CancelDefault);
  void objCBHelpButton_Click(const Object& ctrl, bool& CancelDefault);

  outlook::NameSpace objNS;
  office::CommandBar m_objMenuBar;
  office::CommandBarPopup m_objMenu;  // the menu that was looked up last
  localizer::Localizer m_objLocalizer;
  std::int32_t m_nInterval = 0;     // minutes between automatic runs
  std::int32_t m_nMinutesLeft = 0;  // until the next one
  Ref<frmwizard> m_frmwizard;       // while it is open
  Ref<frmabout> m_frmabout;
  bool m_bUnInitialised = false;  // since the tear-down: a start-up that is still on the stack goes no further

  WithEvents<outlook::Application> objOutlook{
      this, on<outlook::ApplicationEvents::OptionsPagesAdd, &OutAddIn::objOutlook_OptionsPagesAdd>};
  WithEvents<outlook::Explorers> colExpl{this,
                                         on<outlook::ExplorersEvents::NewExplorer, &OutAddIn::colExpl_NewExplorer>};
  WithEvents<outlook::Inspectors> colInsp{this,
                                          on<outlook::InspectorsEvents::NewInspector, &OutAddIn::colInsp_NewInspector>};
  WithEvents<outlook::Explorer> objExpl{
      this, on<outlook::ExplorerEvents::Close, &OutAddIn::objExpl_Close>,
      on<outlook::ExplorerEvents::SelectionChange, &OutAddIn::objExpl_SelectionChange>};
  WithEvents<outlook::Inspector> objInsp{this, on<outlook::InspectorEvents::Close, &OutAddIn::objInsp_Close>};
  WithEvents<outlook::MailItem> m_objMailItem{this, on<outlook::ItemEvents::Forward, &OutAddIn::m_objMailItem_Forward>,
                                              on<outlook::ItemEvents::Reply, &OutAddIn::m_objMailItem_Reply>,
                                              on<outlook::ItemEvents::ReplyAll, &OutAddIn::m_objMailItem_ReplyAll>};
  WithEvents<Ref<clsSMSHandler>> m_objSMSHandler{
      this, on<clsSMSHandler::Events::OnPhoneConnected, &OutAddIn::m_objSMSHandler_OnPhoneConnected>};
  WithEvents<timermm::Timer> m_objTimer{this, on<timermm::TimerEvents::Timer, &OutAddIn::m_objTimer_Timer>};
  WithEvents<office::CommandBarButton> objCBNewButton{
      this, on<office::CommandBarButtonEvents::Click, &OutAddIn::objCBNewButton_Click>};
  WithEvents<office::CommandBarButton> objCBSRButton{
      this, on<office::CommandBarButtonEvents::Click, &OutAddIn::objCBSRButton_Click>};
  WithEvents<office::CommandBarButton> objCBAboutButton{
      this, on<office::CommandBarButtonEvents::Click, &OutAddIn::objCBAboutButton_Click>};
  WithEvents<office::CommandBarButton> objCBHelpButton{
      this, on<office::CommandBarButtonEvents::Click, &OutAddIn::objCBHelpButton_Click>};
};

}  // namespace addin
