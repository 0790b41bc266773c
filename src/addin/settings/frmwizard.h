// The setup wizard: four pages that collect what the add-in needs before it can send text messages. Finish writes every
// value and marks the setup as done; leaving in any other way writes nothing. No error ever leaves it, and none is
// logged: a step that fails is skipped and the dialog stays usable.
#pragma once

#include <array>

#include "addin/common/basGlobal.h"
#include "addin/platform/form.h"
#include "addin/platform/localizer.h"

namespace addin {

class frmwizard final : public Form {
 public:
  frmwizard();

 protected:
  void Form_Load() override;
  void Form_Unload() override;

 private:
  static constexpr std::int32_t lastPage = 4;

  void Design();
  void DesignPages();
  void DesignButtons();
  void ConnectHandlers();

  localizer::Localizer GetLocalizer();
  void LoadTexts();
  void LayoutLines();
  void LayoutPages();
  void ShowPage(std::int32_t page, bool visible);
  void PrepareServiceCentrePage();
  void PrepareSendReceivePage();
  void PrepareUserInformationPage();
  void SetNextCaption(std::int16_t id, StringView englishText);
  void GoToPage(std::int32_t page);

  void LoadServiceCentreList();
  void SelectServiceCentre(StringView text);
  void LoadSettings();
  void SaveSettings();
  void EnableOwnSCAddress(bool enable);
  void EnablePolling(bool enable);
  static std::int32_t FilterPhoneKey(std::int32_t KeyAscii);
  static String GetRegisteredOwner();
  bool IsUserKnown() const { return !txtName.Text().empty() && !txtPhoneNo.Text().empty(); }

  void btnBack_Click();
  void btnNext_Click();
  void btnCancel_Click();
  void btnHelp_Click();
  void chkAutoPoll_Click();
  void chkOwnSCAddress_Click();
  void txtName_Change();
  void txtOwnSCAddress_Change();
  std::int32_t txtPhoneNo_KeyPress(std::int32_t KeyAscii);
  void txtPollIntervall_Change();
  std::int32_t txtPollIntervall_KeyPress(std::int32_t KeyAscii);

  // In the order of the Tab key.
  Control frameTop{*this, u"frameTop", ControlKind::Frame};
  Control lblTitle{*this, u"lblTitle", ControlKind::Label, &frameTop};
  Control lineTop{*this, u"lineTop", ControlKind::Line};
  Control imgWizard1{*this, u"imgWizard1", ControlKind::Picture};
  Control imgWizard2{*this, u"imgWizard2", ControlKind::Picture};
  Control imgWizard3{*this, u"imgWizard3", ControlKind::Picture};
  Control imgWizard4{*this, u"imgWizard4", ControlKind::Picture};

  Control pageWelcome{*this, u"pageWelcome", ControlKind::Frame};
  Control lblWelcome{*this, u"lblWelcome", ControlKind::Label, &pageWelcome};

  Control pageServiceCentre{*this, u"pageServiceCentre", ControlKind::Frame};
  Control lblServiceCentre{*this, u"lblServiceCentre", ControlKind::Label, &pageServiceCentre};
  Control cboSCAddress{*this, u"cboSCAddress", ControlKind::DropDownList, &pageServiceCentre};
  Control chkOwnSCAddress{*this, u"chkOwnSCAddress", ControlKind::CheckBox, &pageServiceCentre};
  Control txtOwnSCAddress{*this, u"txtOwnSCAddress", ControlKind::TextBox, &pageServiceCentre};

  Control pageSendReceive{*this, u"pageSendReceive", ControlKind::Frame};
  Control lblSendAndReceive{*this, u"lblSendAndReceive", ControlKind::Label, &pageSendReceive};
  Control chkAutoPoll{*this, u"chkAutoPoll", ControlKind::CheckBox, &pageSendReceive};
  Control txtPollIntervall{*this, u"txtPollIntervall", ControlKind::TextBox, &pageSendReceive};
  Control lblMinutes{*this, u"lblMinutes", ControlKind::Label, &pageSendReceive};
  Control chkAutoRemove{*this, u"chkAutoRemove", ControlKind::CheckBox, &pageSendReceive};

  Control pageUserInformation{*this, u"pageUserInformation", ControlKind::Frame};
  Control lblPersonalize{*this, u"lblPersonalize", ControlKind::Label, &pageUserInformation};
  Control lblName{*this, u"lblName", ControlKind::Label, &pageUserInformation};
  Control txtName{*this, u"txtName", ControlKind::TextBox, &pageUserInformation};
  Control lblPhoneNo{*this, u"lblPhoneNo", ControlKind::Label, &pageUserInformation};
  Control txtPhoneNo{*this, u"txtPhoneNo", ControlKind::TextBox, &pageUserInformation};

  Control linePicture{*this, u"linePicture", ControlKind::Line};
  Control btnBack{*this, u"btnBack", ControlKind::Button};
  Control btnNext{*this, u"btnNext", ControlKind::Button};
  Control btnCancel{*this, u"btnCancel", ControlKind::Button};
  Control btnHelp{*this, u"btnHelp", ControlKind::Button};

  const std::array<Control*, lastPage> pages{&pageWelcome, &pageServiceCentre, &pageSendReceive, &pageUserInformation};
  const std::array<Control*, lastPage> pictures{&imgWizard1, &imgWizard2, &imgWizard3, &imgWizard4};

  std::int32_t m_nPage = 1;  // 1 to 4
  localizer::Localizer m_objLocalizer;
};

}  // namespace addin
