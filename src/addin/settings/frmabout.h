// The About box: the product's name, its version and a copyright line. Without a localizer it shows the texts that it
// was designed with.
#pragma once

#include "addin/common/basGlobal.h"
#include "addin/platform/form.h"
#include "addin/platform/localizer.h"

namespace addin {

class frmabout final : public Form {
 public:
  frmabout();

 protected:
  void Form_Load() override;

 private:
  void LayoutLines();
  void LoadTexts();
  void cmdOK_Click();

  Control frameTop{*this, u"frameTop", ControlKind::Frame};
  Control lblTopTitle{*this, u"lblTopTitle", ControlKind::Label, &frameTop};
  Control lineTop{*this, u"lineTop", ControlKind::Line};
  Control lblTitle{*this, u"lblTitle", ControlKind::Label};
  Control lblVersion{*this, u"lblVersion", ControlKind::Label};
  Control lblCopyright{*this, u"lblCopyright", ControlKind::Label};
  Control lineCopyright{*this, u"lineCopyright", ControlKind::Line};
  Control cmdOK{*this, u"cmdOK", ControlKind::Button};
};

}  // namespace addin
