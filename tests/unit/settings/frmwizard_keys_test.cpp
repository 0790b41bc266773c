// The key filters of the wizard's number fields.

#include "unit/settings/frmwizard_fixture.h"

namespace addin {
namespace {

class WizardKeys : public WizardFixture {
 protected:
  // The codes that the field goes on with, for every character code up to 255.
  static void expectFiltered(Control& field, const std::u16string& passing, std::int32_t others) {
    for (std::int32_t code = 1; code < 256; ++code) {
      const bool passes = passing.find(static_cast<char16_t>(code)) != std::u16string::npos;
      EXPECT_EQ(field.userPresses(code), passes ? code : others) << code;
    }
  }
};

TEST_F(WizardKeys, Interval_TakesDigitsBackspaceAndTab) {
  expectFiltered(openPage(3).control("txtPollIntervall"), u"0123456789\b\t", 0);
}

TEST_F(WizardKeys, PhoneNumber_TakesDigitsPlusAndBackspaceAndTurnsTheRestInto1) {
  expectFiltered(openPage(4).control("txtPhoneNo"), u"0123456789+\b", 1);
}

TEST_F(WizardKeys, OtherScripts_AreNoDigits) {
  EXPECT_EQ(openPage(4).control("txtPhoneNo").userPresses(0x0661), 1);        // ARABIC-INDIC DIGIT ONE
  EXPECT_EQ(openPage(3).control("txtPollIntervall").userPresses(0xFF11), 0);  // FULLWIDTH DIGIT ONE
}

TEST_F(WizardKeys, Interval_HoldsThreeDigits) {
  ScriptedView& view = openPage(3);
  view.erase("txtPollIntervall").type("txtPollIntervall", u"1x2 -3.4");
  EXPECT_EQ(view.text("txtPollIntervall"), "123");
}

TEST_F(WizardKeys, PhoneNumber_HoldsFifteenCharactersAndNeverLettersOrBlanks) {
  ScriptedView& view = openPage(4);
  view.type("txtPhoneNo", u"a+4 6(70)-+17 40 699 12 34 56");
  EXPECT_EQ(view.text("txtPhoneNo"), "+4670+174069912");
}

TEST_F(WizardKeys, PhoneNumber_NextLagsOneKeyBehind) {
  setOption("My_FullName", "Anna");
  ScriptedView& view = openPage(4);
  EXPECT_FALSE(view.enabled("btnNext"));
  view.type("txtPhoneNo", u"4");
  EXPECT_FALSE(view.enabled("btnNext"));  // the text was still empty when the key came
  view.type("txtPhoneNo", u"6");
  EXPECT_TRUE(view.enabled("btnNext"));
  view.erase("txtPhoneNo", 2);
  EXPECT_EQ(view.text("txtPhoneNo"), "");
  EXPECT_TRUE(view.enabled("btnNext"));
  view.erase("txtPhoneNo");
  EXPECT_FALSE(view.enabled("btnNext"));
}

TEST_F(WizardKeys, PhoneNumber_RefusedKeyMovesTheLagOnToo) {
  setOption("My_FullName", "Anna");
  ScriptedView& view = openPage(4);
  view.type("txtPhoneNo", u"4");
  EXPECT_FALSE(view.enabled("btnNext"));
  view.type("txtPhoneNo", u"x");
  EXPECT_EQ(view.text("txtPhoneNo"), "4");
  EXPECT_TRUE(view.enabled("btnNext"));
}

TEST_F(WizardKeys, PhoneNumber_WithoutChangeHandler_AnyOtherEditLeavesNext) {
  setOption("My_FullName", "Anna");
  ScriptedView& view = openPage(4);
  view.control("txtPhoneNo").userEdits(u"+46701");  // dropped onto the field, say
  EXPECT_FALSE(view.enabled("btnNext"));
}

TEST_F(WizardKeys, OwnNumber_HasNoFilter) {
  ScriptedView& view = openPage(2);
  view.click("chkOwnSCAddress").type("txtOwnSCAddress", u"+46 (0)70 abc");
  EXPECT_EQ(view.text("txtOwnSCAddress"), "+46 (0)70 abc");
}

}  // namespace
}  // namespace addin
