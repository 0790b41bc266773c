#include "addin/settings/frmabout.h"

#include "addin/common/basapi.h"
#include "addin/platform/on_error.h"
#include "addin/settings/basresourceid.h"

namespace addin {
namespace {

constexpr std::int32_t formWidth = 270;  // dialog units
constexpr std::int32_t bannerHeight = 32;
constexpr std::int32_t margin = 12;
constexpr std::int32_t textWidth = formWidth - 2 * margin;

void design(Control& control, StringView caption, const Place& place) {
  control.Caption(caption);
  control.place = place;
  control.noMnemonic = control.Kind() == ControlKind::Label;
}

}  // namespace

frmabout::frmabout() : Form(u"frmabout") {
  // Not the wizard's title: this one has its capital "For" and no year.
  constexpr StringView title = u"Marrick Text Message Add-In For Outlook";
  Caption(u"About Text Message Add-In");
  width = formWidth;
  height = 128;
  frameTop.place = {0, 0, formWidth, bannerHeight};
  frameTop.BackColor(colorWhite);
  frameTop.picture = u"banner";
  design(lblTopTitle, title, {10, 11, 176, 10});  // beside the banner's picture
  lblTopTitle.BackColor(colorWhite);
  lblTopTitle.bold = true;
  design(lblTitle, title, {margin, 44, textWidth, 10});
  design(lblVersion, u"Version 1.0.0", {margin, 58, textWidth, 10});
  design(lblCopyright, u"Copyright (c) 2026 Marrick Text Message Add-In contributors", {margin, 72, textWidth, 20});
  design(cmdOK, u"OK", {formWidth - margin - 52, 106, 52, 14});
  cmdOK.isDefault = true;
  cmdOK.isCancel = true;
  cmdOK.Click = [this] { cmdOK_Click(); };
}

void frmabout::Form_Load() {
  onErrorResumeNext([&] { LayoutLines(); }, [&] { LoadTexts(); });
}

void frmabout::LayoutLines() {
  const auto lineUnder = [&](Control& line, const Control& control, std::int32_t distance) {
    line.place = {0, control.place.top + control.place.height + distance, frameTop.place.width, 1};
  };
  lineUnder(lineTop, frameTop, 0);
  lineUnder(lineCopyright, lblCopyright, 6);
}

void frmabout::LoadTexts() {
  const auto texts = as<localizer::Localizer>(CreateObject(localizer::progIdLocalizer));
  if (!texts) return;
  const auto text = [&](std::int16_t id, StringView englishText) {
    return texts.getlocalizedresstring(id, englishText);
  };
  onErrorResumeNext([&] { Caption(text(IDS_ABOUT_FORM, Caption())); },
                    [&] {
                      lblTopTitle.Caption(text(IDS_ADDIN_TITLE, lblTopTitle.Caption()));
                      lblTitle.Caption(lblTopTitle.Caption());
                    },
                    [&] {
                      const Version version = system().module.version();
                      lblVersion.Caption(concat(text(IDS_ABOUT_VERSION, u"Version"), u" ", version.major, u".",
                                                version.minor, u".", version.revision));
                    },
                    [&] { lblCopyright.Caption(text(IDS_ABOUT_COPYRIGHT, lblCopyright.Caption())); },
                    [&] { cmdOK.Caption(text(IDS_OK, cmdOK.Caption())); });
}

void frmabout::cmdOK_Click() { Unload(); }

}  // namespace addin
