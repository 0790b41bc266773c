// Modems that are not where they should be: at the prompt of somebody else's message, or behind by an answer.
#include "unit/phone_at/dialogue_fixture.h"

namespace phone::at {
namespace {

using AtRecovery = AtDialogue;

TEST_F(AtRecovery, ModemThatWasLeftAtAPrompt_IsGreetedAllTheSame) {
  modem("echo off\nat 0\n  prompt <CR><LF>><SP>\non escape\n  say OK\non AT+CSQ\n  say +CSQ: 17,99\n  say OK");
  dialogue_->greet(3);
  EXPECT_EQ(modem_->heard, (Heard{"escape", "AT", "AT"}));  // the first could not be told from the answer to ESC
  EXPECT_EQ(run({"AT+CSQ", "+CSQ"}).information, (Infos{{"17,99", {}}}));
}

TEST_F(AtRecovery, CommandIntoAPrompt_IsRecoveredFromWithEscape) {
  modem("echo off\nat 0\n  prompt <CR><LF>><SP>\non escape\n  say OK\non AT+CSQ\n  say +CSQ: 17,99\n  say OK");
  EXPECT_FALSE(run({"AT+CSQ", "+CSQ"}).result);
  EXPECT_EQ(modem_->heard, (Heard{"escape", "AT"}));
  EXPECT_EQ(run({"AT+CSQ", "+CSQ"}).information, (Infos{{"17,99", {}}}));
}

TEST_F(AtRecovery, SecondStrayResult_IsNotTakenForTheNextCommands) {
  modem(R"(
echo off
on AT+CMGD=1
  say ERROR
  pause 50
  say OK
  pause 120
  say OK
on AT
  pause 30
  say OK
on AT+CMGD=2
  say +CMS ERROR: 321
)");
  EXPECT_EQ(run({"AT+CMGD=1", {}}).result, (Result{Kind::Error, 0, "ERROR"}));
  EXPECT_TRUE(run({"AT+CMGD=2", {}}).result->isCms(321));
  EXPECT_EQ(modem_->heard, (Heard{"AT+CMGD=1", "AT", "AT", "AT+CMGD=2"}));
}

TEST_F(AtRecovery, CellBroadcastInAListing_KeepsItsMessage) {
  modem(R"(
echo off
on AT+CMGL=4
  say +CMGL: 1,1,,2
  say +CBM: 3
  say 00FFFF
  say 00AB
  say OK
)");
  EXPECT_EQ(run(listing()).information, (Infos{{"1,1,,2", "00AB"}}));
  EXPECT_EQ(unsolicited_, (std::vector<Unsolicited>{{"+CBM: 3", "00FFFF"}}));
}

TEST_F(AtRecovery, ListingWithoutEnd_IsCut) {
  std::string script = "echo off\non AT+CMGL=4\n";
  for (int i = 0; i < 10010; ++i) script += "  raw +CMGL: 1,1,,2<CR><LF>\n";
  modem(script + "  say OK");
  const Answer answer = run(listing());
  EXPECT_TRUE(answer.ok());
  EXPECT_EQ(answer.information.size(), 10000u);
}

}  // namespace
}  // namespace phone::at
