// What the wizard looks like before it is loaded: captions in English, places, and who handles what.

#include "addin/settings/frmwizard.h"

namespace addin {
namespace {

// In dialog units. The banner over the whole width, below it the picture and beside it the page, then the buttons.
constexpr std::int32_t formWidth = 308;
constexpr std::int32_t formHeight = 206;
constexpr std::int32_t bannerHeight = 32;
constexpr std::int32_t fieldHeight = 14;
constexpr std::int32_t pageWidth = 196;
constexpr std::int32_t buttonTop = 184;
constexpr std::int32_t buttonWidth = 52;

void design(Control& control, StringView caption, const Place& place) {
  control.Caption(caption);
  control.place = place;
}

void heading(Control& label, StringView caption) {
  design(label, caption, {0, 0, pageWidth, 10});
  label.bold = true;
}

void field(Control& control, const Place& place) {
  control.BackColor(colorWhite);
  control.place = place;
}

}  // namespace

frmwizard::frmwizard() : Form(u"frmwizard") {
  Design();
  DesignPages();
  DesignButtons();
  ConnectHandlers();
}

void frmwizard::Design() {
  constexpr StringView title = u"Marrick Text Message Add-In for Outlook 2000";
  Caption(title);
  width = formWidth;
  height = formHeight;
  frameTop.place = {0, 0, formWidth, bannerHeight};
  frameTop.BackColor(colorWhite);
  frameTop.picture = u"banner";
  design(lblTitle, title, {10, 11, 214, 10});  // beside the banner's picture
  lblTitle.BackColor(colorWhite);
  lblTitle.bold = true;
  lblTitle.noMnemonic = true;
  imgWizard1.picture = u"wizard1";
  imgWizard2.picture = u"wizard2";
  imgWizard3.picture = u"wizard3";
  imgWizard4.picture = u"wizard4";
  for (Control* const control : pages) control->Visible(false);
  for (Control* const control : pictures) control->Visible(false);
  for (Control* const line : {&lineTop, &linePicture}) line->Visible(false);
}

void frmwizard::DesignPages() {
  design(lblWelcome,
         u"Welcome to Marrick Text Message Setup Wizard\r\n\r\n"
         u"This Wizard will collect some information needed to send Text Messages in Microsoft Outlook 2000.",
         {0, 0, pageWidth, 90});
  lblWelcome.noMnemonic = true;

  heading(lblServiceCentre, u"Service Centre Number");
  field(cboSCAddress, {0, 16, pageWidth, fieldHeight});
  design(chkOwnSCAddress, u"I want to use a different number.", {0, 42, pageWidth, 20});
  field(txtOwnSCAddress, {12, 64, 120, fieldHeight});

  heading(lblSendAndReceive, u"Send and Receive");
  lblSendAndReceive.noMnemonic = true;
  design(chkAutoPoll, u"I want to send and receive text messages every", {0, 16, pageWidth, 20});
  field(txtPollIntervall, {12, 38, 26, fieldHeight});
  design(lblMinutes, u"minutes.", {43, 40, 150, 10});
  lblMinutes.noMnemonic = true;
  design(chkAutoRemove, u"Remove text messages from the SIM card when retrieved in the Inbox.", {0, 64, pageWidth, 20});

  heading(lblPersonalize, u"User Information");
  lblPersonalize.noMnemonic = true;
  design(lblName, u"Full Name:", {0, 18, pageWidth, 10});
  field(txtName, {0, 30, pageWidth, fieldHeight});
  design(lblPhoneNo, u"Mobile Phone Number:", {0, 54, pageWidth, 10});
  field(txtPhoneNo, {0, 66, 110, fieldHeight});
}

void frmwizard::DesignButtons() {
  design(btnBack, u"< Back", {76, buttonTop, buttonWidth, fieldHeight});
  design(btnNext, u"Next >", {76 + buttonWidth, buttonTop, buttonWidth, fieldHeight});
  design(btnCancel, u"Cancel", {188, buttonTop, buttonWidth, fieldHeight});
  design(btnHelp, u"Help", {248, buttonTop, buttonWidth, fieldHeight});
  btnNext.isDefault = true;
  btnCancel.isCancel = true;
}

void frmwizard::ConnectHandlers() {
  btnBack.Click = [this] { btnBack_Click(); };
  btnNext.Click = [this] { btnNext_Click(); };
  btnCancel.Click = [this] { btnCancel_Click(); };
  btnHelp.Click = [this] { btnHelp_Click(); };
  chkAutoPoll.Click = [this] { chkAutoPoll_Click(); };
  chkOwnSCAddress.Click = [this] { chkOwnSCAddress_Click(); };
  txtName.Change = [this] { txtName_Change(); };
  txtOwnSCAddress.Change = [this] { txtOwnSCAddress_Change(); };
  txtPhoneNo.KeyPress = [this](std::int32_t code) { return txtPhoneNo_KeyPress(code); };
  txtPollIntervall.Change = [this] { txtPollIntervall_Change(); };
  txtPollIntervall.KeyPress = [this](std::int32_t code) { return txtPollIntervall_KeyPress(code); };
}

// The lines run over the whole width of the banner, under it and under the picture.
void frmwizard::LayoutLines() {
  lineTop.place = {0, bannerHeight, frameTop.place.width, 1};
  linePicture.place = {0, 177, frameTop.place.width, 1};
}

void frmwizard::LayoutPages() {
  for (Control* const picture : pictures) picture->place = {0, bannerHeight + 1, 88, 144};
  for (Control* const page : pages) page->place = {100, 44, pageWidth, 128};
  for (Control* const line : {&lineTop, &linePicture}) line->Visible(true);
}

}  // namespace addin
