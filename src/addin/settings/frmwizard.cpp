// Pages, texts and the user's doings.

#include "addin/settings/frmwizard.h"

#include "addin/common/basapi.h"
#include "addin/platform/on_error.h"
#include "addin/settings/bashelp.h"
#include "addin/settings/basresourceid.h"

namespace addin {
namespace {

constexpr std::int32_t keyBackspace = 8;
constexpr std::int32_t keyTab = 9;
constexpr std::int32_t swallowed = 0;
// Phone numbers swallow in their own way: with a code that no text box inserts.
constexpr std::int32_t notInserted = 1;

constexpr std::size_t longestPhoneNo = 15;
constexpr std::size_t longestInterval = 3;

bool isDigit(std::int32_t key) { return key >= u'0' && key <= u'9'; }

}  // namespace

void frmwizard::Form_Load() {
  onErrorResumeNext([&] { LayoutLines(); }, [&] { txtPhoneNo.MaxLength(longestPhoneNo); },
                    [&] { txtPollIntervall.MaxLength(longestInterval); }, [&] { LoadTexts(); }, [&] { LoadSettings(); },
                    [&] { LayoutPages(); }, [&] { m_nPage = 1; }, [&] { ShowPage(m_nPage, true); });
}

void frmwizard::Form_Unload() { m_objLocalizer = nullptr; }

localizer::Localizer frmwizard::GetLocalizer() {
  onErrorResumeNext([&] {
    if (!m_objLocalizer) m_objLocalizer = as<localizer::Localizer>(CreateObject(localizer::progIdLocalizer));
  });
  return m_objLocalizer;
}

// Without a localizer the English captions of the design stay, and so does each one that the localizer fails to give.
void frmwizard::LoadTexts() {
  if (const auto texts = GetLocalizer()) {
    onErrorResumeNext([&] {
      Caption(texts.getlocalizedresstring(IDS_ADDIN_TITLE, Caption()));
      lblTitle.Caption(Caption());
    });
    const auto localize = [&](std::int16_t id, Control& control) {
      onErrorResumeNext([&] { control.Caption(texts.getlocalizedresstring(id, control.Caption())); });
    };
    localize(IDS_WELCOME, lblWelcome);
    localize(IDS_SERVICE_CENTRE, lblServiceCentre);
    localize(IDS_DIFFERENT_NUMBER, chkOwnSCAddress);
    localize(IDS_SEND_AND_RECEIVE, lblSendAndReceive);
    localize(IDS_AUTO_POLL, chkAutoPoll);
    localize(IDS_MINUTES, lblMinutes);
    localize(IDS_AUTO_REMOVE, chkAutoRemove);
    localize(IDS_USER_INFORMATION, lblPersonalize);
    localize(IDS_FULL_NAME, lblName);
    localize(IDS_PHONE_NUMBER, lblPhoneNo);
    localize(IDS_BACK, btnBack);
    localize(IDS_NEXT, btnNext);
    localize(IDS_CANCEL, btnCancel);
    localize(IDS_HELP_BUTTON, btnHelp);
  }
  // These two have no label in front; what is written around them says what they are.
  txtOwnSCAddress.accessibleName = chkOwnSCAddress.Caption();
  txtPollIntervall.accessibleName = concat(chkAutoPoll.Caption(), u" ", lblMinutes.Caption());
}

// Unlike the other captions this one stands for two texts, so when the localizer fails the English one is set: the
// caption that is there may be that of another page.
void frmwizard::SetNextCaption(std::int16_t id, StringView englishText) {
  String text(englishText);
  onErrorResumeNext([&] {
    if (const auto texts = GetLocalizer()) text = texts.getlocalizedresstring(id, englishText);
  });
  btnNext.Caption(text);
}

void frmwizard::ShowPage(std::int32_t page, bool visible) {
  if (page < 1 || page > lastPage) return;
  const auto index = static_cast<std::size_t>(page - 1);
  pages[index]->Visible(visible);
  pictures[index]->Visible(visible);
  if (!visible) return;
  btnHelp.Enabled(true);
  onErrorResumeNext([&] {
    if (page == 1) {
      btnBack.Enabled(false);
      btnNext.Enabled(true);
    } else if (page == 2) {
      PrepareServiceCentrePage();
    } else if (page == 3) {
      PrepareSendReceivePage();
    } else {
      PrepareUserInformationPage();
    }
  });
}

void frmwizard::PrepareServiceCentrePage() {
  btnBack.Enabled(true);
  if (cboSCAddress.ListCount() == 0) {  // nothing to choose from: a number must be typed
    chkOwnSCAddress.Value(true);
    chkOwnSCAddress.Enabled(false);
    cboSCAddress.Enabled(false);
  }
  // Without an own number the button stays as it was, even when another page has left it disabled.
  if (chkOwnSCAddress.Value()) btnNext.Enabled(!txtOwnSCAddress.Text().empty());
  if (cboSCAddress.Enabled()) {
    cboSCAddress.SetFocus();
  } else if (chkOwnSCAddress.Enabled()) {
    chkOwnSCAddress.SetFocus();
  } else {
    txtOwnSCAddress.SetFocus();
  }
}

void frmwizard::PrepareSendReceivePage() {
  SetNextCaption(IDS_NEXT, u"Next >");
  btnNext.Enabled(!chkAutoPoll.Value() || !txtPollIntervall.Text().empty());
  chkAutoPoll.SetFocus();
}

void frmwizard::PrepareUserInformationPage() {
  SetNextCaption(IDS_FINISH, u"Finish");
  btnNext.Enabled(IsUserKnown());
  txtName.SetFocus();
}

void frmwizard::GoToPage(std::int32_t page) {
  ShowPage(m_nPage, false);
  m_nPage = page;
  ShowPage(m_nPage, true);
}

void frmwizard::EnableOwnSCAddress(bool enable) {
  txtOwnSCAddress.Enabled(enable);
  txtOwnSCAddress.BackColor(enable ? colorWhite : colorButtonFace);
  cboSCAddress.Enabled(!enable);
  cboSCAddress.BackColor(enable ? colorButtonFace : colorWhite);
}

void frmwizard::EnablePolling(bool enable) {
  txtPollIntervall.Enabled(enable);
  txtPollIntervall.BackColor(enable ? colorWhite : colorButtonFace);
}

// The user's doings ---------------------------------------------------------------------------------------------------

void frmwizard::btnBack_Click() { GoToPage(m_nPage - 1); }

void frmwizard::btnNext_Click() {
  if (m_nPage < lastPage) {
    GoToPage(m_nPage + 1);
    return;
  }
  SaveSettings();
  Unload();
}

void frmwizard::btnCancel_Click() { Unload(); }

void frmwizard::btnHelp_Click() {
  onErrorResumeNext([] { ShowHelp(); });
}

void frmwizard::chkOwnSCAddress_Click() {
  EnableOwnSCAddress(chkOwnSCAddress.Value());
  btnNext.Enabled(!chkOwnSCAddress.Value() || !txtOwnSCAddress.Text().empty());
}

void frmwizard::chkAutoPoll_Click() {
  EnablePolling(chkAutoPoll.Value());
  btnNext.Enabled(!chkAutoPoll.Value() || !txtPollIntervall.Text().empty());
}

void frmwizard::txtName_Change() { btnNext.Enabled(IsUserKnown()); }

void frmwizard::txtOwnSCAddress_Change() { btnNext.Enabled(!txtOwnSCAddress.Text().empty()); }

void frmwizard::txtPollIntervall_Change() { btnNext.Enabled(!txtPollIntervall.Text().empty()); }

std::int32_t frmwizard::txtPollIntervall_KeyPress(std::int32_t KeyAscii) {
  return isDigit(KeyAscii) || KeyAscii == keyBackspace || KeyAscii == keyTab ? KeyAscii : swallowed;
}

std::int32_t frmwizard::FilterPhoneKey(std::int32_t KeyAscii) {
  return isDigit(KeyAscii) || KeyAscii == u'+' || KeyAscii == keyBackspace ? KeyAscii : notInserted;
}

// Looks at the text as it was before this key: the button lags one key behind, on purpose.
std::int32_t frmwizard::txtPhoneNo_KeyPress(std::int32_t KeyAscii) {
  const std::int32_t key = FilterPhoneKey(KeyAscii);
  btnNext.Enabled(IsUserKnown());
  return key;
}

}  // namespace addin
