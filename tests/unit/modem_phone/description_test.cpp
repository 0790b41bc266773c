// What a trace says of a modem that was found.
#include <gtest/gtest.h>

#include "servers/modem/modem_phone.h"
#include "unit/modem_phone/modem_phone_fixture.h"

namespace {

using namespace modem_testing;
using phone::Milliseconds;

class Description : public ModemPhoneTest {
 protected:
  Description() { rig.isTraced = true; }

  // What is noted of such a modem while nothing else is to be done.
  Lines notesOf(const std::string& script) {
    begin(script);
    rig.traced.clear();
    for (int i = 0; i < 4; ++i) EXPECT_TRUE(rig.step());
    Lines notes;
    for (const std::string& line : rig.traced)
      if (line.starts_with("- ")) notes.push_back(line);
    return notes;
  }
};

TEST_F(Description, ModemThatWasFound_IsAskedOnceWhenNobodyWaits) {
  EXPECT_EQ(notesOf("like plain"), (Lines{"- SIM: ready", "- network: the SIM's own", "- signal: -79 dBm",
                                          "- service centre on the SIM: \"***\""}));
  const Lines asked{"AT+CREG?", "AT+CSQ", "AT+CSCA?"};
  EXPECT_EQ(rig.modem->heard, asked);
  // From then on it is only made sure of.
  rig.step();
  rig.step();
  EXPECT_EQ(rig.modem->heard, (Lines{"AT+CREG?", "AT+CSQ", "AT+CSCA?", "AT+CMEE?"}));
}

TEST_F(Description, WithTextsInTheTrace_TheServiceCentreHasItsNumber) {
  rig.trace = phone::at::Trace([this](std::string_view line) { rig.traced.emplace_back(line); }, true);
  EXPECT_EQ(notesOf("like plain").back(), "- service centre on the SIM: \"+46705008999\"");
}

TEST_F(Description, WithoutATrace_NothingIsAsked) {
  rig.isTraced = false;
  begin("like plain");
  rig.step();
  rig.step();
  EXPECT_EQ(rig.modem->heard, Lines{"AT+CMEE?"});
}

TEST_F(Description, WhatIsAskedOfThePhone_ComesFirst) {
  begin("like plain");
  EXPECT_TRUE(phone->isConnected());
  const auto handed = hand(u"hellohello");
  rig.work();
  EXPECT_EQ(handed->result, "0");
  EXPECT_EQ(heardOf("AT+C"), Lines{"AT+CMGS=22"});
}

TEST_F(Description, NetworkThatIsNotThere_AndSimWithoutAServiceCentre) {
  const std::string script =
      "like plain\non AT+CPIN?\n  say +CME ERROR: 10\non AT+CREG?\n  say +CREG: 0,3\n  say OK\n"
      "on AT+CSQ\n  say +CSQ: 0,0\n  say OK\non AT+CSCA?\n  say +CMS ERROR: 330\n";
  EXPECT_EQ(notesOf(script), (Lines{"- SIM: none", "- network: it refuses the SIM", "- signal: -113 dBm or less",
                                    "- service centre on the SIM: none"}));
}

TEST_F(Description, LockedSim_AndAModemThatSaysNothingOfIt) {
  EXPECT_EQ(notesOf("like needs-pin").front(), "- SIM: wants its PIN");
  EXPECT_TRUE(phone->isConnected());
}

TEST_F(Description, WhatIsRefused_IsSaidAndNothingElseHappens) {
  EXPECT_EQ(notesOf("like without-information"),
            (Lines{"- SIM: ready", "- network: the modem does not tell", "- signal: the modem does not tell",
                   "- service centre on the SIM: the modem does not tell"}));
  EXPECT_TRUE(phone->isConnected());
  EXPECT_EQ(listed(Store::Sim).size(), 3u);
}

TEST_F(Description, NoAnswerToAQuestion_IsSaidAndTheDialogueGoesOn) {
  const Lines notes = notesOf("like plain\non AT+CREG?\n");
  EXPECT_EQ(notes, (Lines{"- SIM: ready", "- no answer", "- network: the modem does not tell", "- signal: -79 dBm",
                          "- service centre on the SIM: \"***\""}));
  EXPECT_TRUE(phone->isConnected());
}

TEST_F(Description, ModemThatFallsSilentWhenAsked_IsFoundAgainAndNotAskedAnew) {
  begin("like plain\non AT+CREG?\non AT\n  say OK\non AT\n");
  EXPECT_TRUE(rig.step());
  EXPECT_FALSE(rig.step());
  EXPECT_EQ(told, (std::vector{true, false}));
  begin("like plain");
  EXPECT_EQ(told, (std::vector{true, false, true}));
  rig.step();
  rig.step();
  EXPECT_EQ(rig.modem->heard, Lines{"AT+CMEE?"});
}

TEST_F(Description, LineThatBreaksMeanwhile_IsLostLikeAnyOtherAndAskedAnewWhenItIsBack) {
  begin("like plain\non AT+CREG?\n  lose\n");
  EXPECT_TRUE(rig.step());
  EXPECT_FALSE(rig.step());
  EXPECT_EQ(told, (std::vector{true, false}));
  EXPECT_EQ(notesOf("like plain").size(), 4u);
  EXPECT_EQ(told, (std::vector{true, false, true}));
}

}  // namespace
