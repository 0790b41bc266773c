#include "addin/settings/frmabout.h"

#include <gtest/gtest.h>

#include "addin/diag/basDbgOut.h"
#include "support/fake_object.h"
#include "support/native_system.h"
#include "support/seam_recorder.h"
#include "support/text.h"

namespace addin {
namespace {

using namespace testing_support;
using Lines = std::vector<std::string>;

class About : public testing::Test {
 protected:
  About() {
    dbgChannel = {};
    dbgChannel.Level = 2;
    system.windows.openViewer();
    system.module.versionNumber = {2, 10, 345};
  }
  ~About() override {
    EXPECT_EQ(system.trace(), Lines{});
    dbgChannel = {};
    system.ui.closeAll();
  }
  FakeObject& provideLocalizer() {
    localizer->method(u"getlocalizedresstring", [](Args a) { return Variant(concat(u"L", CLng(a[0]))); });
    system.objects.provide(u"mrktxtmsgres.localizer", [this] { return localizer->object(); });
    return *localizer;
  }
  ScriptedView& open() {
    about->Show(FormModality::Modeless);
    return system.ui.view(u"frmabout");
  }
  static Lines captions(const ScriptedView& view) {
    Lines texts{view.caption()};
    for (const char* name : {"lblTopTitle", "lblTitle", "lblVersion", "lblCopyright", "cmdOK"})
      texts.push_back(view.caption(name));
    return texts;
  }

  NativeSystem system;
  Census census;
  Ref<FakeObject> localizer = fake("Localizer");
  Ref<frmabout> about = make<frmabout>();
};

const std::string copyright = "Copyright (c) 2026 Marrick Text Message Add-In contributors";

TEST_F(About, WithLocalizer_ShowsItsTextsAndTheVersion) {
  provideLocalizer();
  EXPECT_EQ(captions(open()), (Lines{"L307", "L101", "L101", "L308 2.10.345", "L310", "L416"}));
  EXPECT_EQ(localizer->calls(),
            (Lines{"getlocalizedresstring(307, \"About Text Message Add-In\")",
                   "getlocalizedresstring(101, \"Marrick Text Message Add-In For Outlook\")",
                   "getlocalizedresstring(308, \"Version\")", "getlocalizedresstring(310, \"" + copyright + "\")",
                   "getlocalizedresstring(416, \"OK\")"}));
}

TEST_F(About, WithoutLocalizer_ShowsItsDesign) {
  EXPECT_EQ(captions(open()), (Lines{"About Text Message Add-In", "Marrick Text Message Add-In For Outlook",
                                     "Marrick Text Message Add-In For Outlook", "Version 1.0.0", copyright, "OK"}));
}

TEST_F(About, LocalizerFailingOnOneText_SkipsThatOne) {
  const std::string title = "Marrick Text Message Add-In For Outlook";
  const std::vector<std::pair<std::int32_t, Lines>> cases{
      {307, {"About Text Message Add-In", "L101", "L101", "L308 2.10.345", "L310", "L416"}},
      {101, {"L307", title, title, "L308 2.10.345", "L310", "L416"}},
      {308, {"L307", "L101", "L101", "Version 1.0.0", "L310", "L416"}},
      {310, {"L307", "L101", "L101", "L308 2.10.345", copyright, "L416"}},
      {416, {"L307", "L101", "L101", "L308 2.10.345", "L310", "OK"}}};
  for (const auto& [failing, expected] : cases) {
    provideLocalizer().method(u"getlocalizedresstring", [id = failing](Args a) {
      if (CLng(a[0]) == id) raiseError(70);
      return Variant(concat(u"L", CLng(a[0])));
    });
    about = make<frmabout>();
    ScriptedView& view = open();
    EXPECT_EQ(captions(view), expected) << failing;
    view.close();
  }
}

TEST_F(About, VersionThatCannotBeRead_LeavesTheLineOfTheDesign) {
  provideLocalizer();
  system.module.hasNoVersion = true;
  EXPECT_EQ(captions(open()), (Lines{"L307", "L101", "L101", "Version 1.0.0", "L310", "L416"}));
}

TEST_F(About, Controls_AreABannerThreeLinesOfTextAndAButton) {
  Lines names;
  for (const Control* control : about->Controls()) names.push_back(utf8(control->Name()));
  EXPECT_EQ(names, (Lines{"frameTop", "lblTopTitle", "lineTop", "lblTitle", "lblVersion", "lblCopyright",
                          "lineCopyright", "cmdOK"}));
}

TEST_F(About, OkClick_UnloadsIt) {
  for (const bool localized : {false, true}) {
    if (localized) provideLocalizer();
    about = make<frmabout>();
    open().click("cmdOK");
    EXPECT_FALSE(about->IsLoaded());
    EXPECT_FALSE(system.ui.isOpen(u"frmabout"));
  }
}

TEST_F(About, EnterAndEsc_AreOk) {
  ScriptedView& view = open();
  EXPECT_TRUE(view.control("cmdOK").isDefault);
  EXPECT_TRUE(view.control("cmdOK").isCancel);
}

TEST_F(About, Lines_RunUnderBannerAndCopyrightOverTheWholeWidth) {
  ScriptedView& view = open();
  const Place& banner = view.control("frameTop").place;
  const Place& text = view.control("lblCopyright").place;
  const Place& lower = view.control("lineCopyright").place;
  EXPECT_EQ(view.control("lineTop").place, (Place{0, banner.height, banner.width, 1}));
  EXPECT_EQ(banner.width, about->width);
  EXPECT_EQ(lower.width, banner.width);
  EXPECT_GT(lower.top, text.top + text.height);
  EXPECT_LT(lower.top, view.control("cmdOK").place.top);
}

TEST_F(About, Localizer_IsNotKept) {
  bool released = false;
  system.objects.provide(u"mrktxtmsgres.localizer", [&released] {
    const auto own = fake("Localizer");
    own->method(u"getlocalizedresstring", [](Args a) { return a[1]; });
    own->whenTerminated = [&released] { released = true; };
    return own->object();
  });
  open();
  EXPECT_TRUE(released);
}

}  // namespace
}  // namespace addin
