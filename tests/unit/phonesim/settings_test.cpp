// Identity, SIM, radio and the other commands that are not about messages.
#include "phonesim/handset/commands.h"
#include "unit/phonesim/fixture.h"

namespace phonesim {
namespace {

using SettingsTest = DialogueTest;

TEST_F(SettingsTest, Identity_IsOneBareLine) {
  for (const char* const command : {"AT+CGMI", "AT+GMI"}) EXPECT_EQ(ask(command), "Marrick|OK|");
  for (const char* const command : {"AT+CGMM", "AT+GMM"}) EXPECT_EQ(ask(command), "Simulated handset|OK|");
  for (const char* const command : {"AT+CGMR", "AT+GMR"}) EXPECT_EQ(ask(command), "1.0.0|OK|");
  for (const char* const command : {"AT+CGSN", "AT+GSN"}) EXPECT_EQ(ask(command), "004999010640000|OK|");
  EXPECT_EQ(ask("AT+CIMI"), "001010123456789|OK|");
  EXPECT_EQ(ask("AT+CGMI=?"), "OK|");
  EXPECT_EQ(ask("AT+CGMI?"), "+CME ERROR: 4|");
  EXPECT_EQ(ask("AT+CGMI=1"), "+CME ERROR: 4|");
  EXPECT_EQ(ask("AT+CNUM"), "+CNUM: ,\"+46700000001\",145|OK|");
}

TEST_F(SettingsTest, Radio_TellsSignalRegistrationAndOperator) {
  EXPECT_EQ(ask("AT+CSQ"), "+CSQ: 23,0|OK|");
  EXPECT_EQ(ask("AT+CSQ=?"), "+CSQ: (0-31,99),(0-7,99)|OK|");
  EXPECT_EQ(ask("AT+CREG?"), "+CREG: 0,1|OK|");
  EXPECT_EQ(ask("AT+CREG=2;+CREG?"), "+CREG: 2,1,\"0001\",\"0001\"|OK|");
  EXPECT_EQ(ask("AT+CREG=3"), "+CME ERROR: 50|");
  EXPECT_EQ(ask("AT+COPS?"), "+COPS: 0,0,\"Simulated network\"|OK|");
  EXPECT_EQ(ask("AT+COPS=3,2;+COPS?"), "+COPS: 0,2,\"00101\"|OK|");
  EXPECT_EQ(ask("AT+COPS=?"), "+COPS: (2,\"Simulated network\",\"SimNet\",\"00101\",0),,(0-3),(0-2)|OK|");
  EXPECT_EQ(ask("AT+COPS=1,2,\"24405\""), "+CME ERROR: 30|");
  EXPECT_EQ(ask("AT+COPS=2;+CREG?"), "+CREG: 2,0|OK|+CREG: 0|");
  EXPECT_EQ(ask("AT+COPS?"), "+COPS: 0|OK|");
  EXPECT_EQ(ask("AT+COPS=1,2,\"00101\";+CREG?"), "+CREG: 2,1,\"0001\",\"0001\"|OK|+CREG: 1,\"0001\",\"0001\"|");
}

TEST_F(SettingsTest, PacketRegistration_IsReportedByItself) {
  EXPECT_EQ(ask("AT+CGREG=?;+CGREG?"), "+CGREG: (0-2)|+CGREG: 0,1|OK|");
  EXPECT_EQ(ask("AT+CGREG=3"), "+CME ERROR: 50|");
  EXPECT_EQ(ask("AT+CGREG=2;+CGREG?;+CREG?"), "+CGREG: 2,1,\"0001\",\"0001\"|+CREG: 0,1|OK|");
  handset.setRegistration(Registration::Searching);
  EXPECT_EQ(lines(heard()), "+CGREG: 2|");
  EXPECT_EQ(ask("AT+CGATT=?;+CGATT?"), "+CGATT: (0,1)|+CGATT: 0|OK|");
  EXPECT_EQ(ask("AT+CGATT=1"), "+CME ERROR: 3|");
  EXPECT_EQ(ask("AT+CREG=1;+CGREG=1"), "OK|");
  handset.setRegistration(Registration::Home);
  EXPECT_EQ(lines(heard()), "+CREG: 1|+CGREG: 1|");
  EXPECT_EQ(ask("AT+CGATT?;+CGATT=1"), "+CGATT: 1|OK|");
  EXPECT_EQ(ask("AT+CGATT=2"), "+CME ERROR: 50|");
}

TEST_F(SettingsTest, Strings_WearTheCharacterSetThatWasChosen) {
  EXPECT_EQ(ask("AT+CSCS=?"), "+CSCS: (\"GSM\",\"IRA\",\"UCS2\",\"HEX\")|OK|");
  EXPECT_EQ(ask("AT+COPS=3,1;+CSCS=\"HEX\";+COPS?"), "+COPS: 0,1,\"53696D4E6574\"|OK|");
  EXPECT_EQ(ask("AT+CSCS=\"UCS2\";+COPS?"), "+COPS: 0,1,\"00530069006D004E00650074\"|OK|");
  EXPECT_EQ(ask("AT+CSCS?"), "+CSCS: \"UCS2\"|OK|");
  // Digits are digits.
  EXPECT_EQ(ask("AT+COPS=3,2;+COPS?"), "+COPS: 0,2,\"00101\"|OK|");
  EXPECT_EQ(ask("AT+COPS=1,2,\"00101\";+COPS=1,2,\"00300030003100300031\""), "OK|");
  EXPECT_EQ(ask("AT+COPS=1,1,\"00530069006D004E00650074\""), "OK|");
  EXPECT_EQ(ask("AT+COPS=1,2,\"00102\""), "+CME ERROR: 30|");
}

TEST_F(SettingsTest, Functionality_SwitchesTheRadioAndRestarts) {
  EXPECT_EQ(ask("AT+CFUN=?;+CFUN?"), "+CFUN: (0,1,4),(0,1)|+CFUN: 1|OK|");
  EXPECT_EQ(ask("AT+CFUN=0;+CFUN?;+CREG?"), "+CFUN: 0|+CREG: 0,0|OK|");
  EXPECT_EQ(ask("AT+CFUN=2"), "+CME ERROR: 50|");
  EXPECT_EQ(ask("AT+CFUN=1,1"), "OK|RDY|+CFUN: 1|+CPIN: READY|");
  EXPECT_EQ(type("AT+CMEE?\r"), "AT+CMEE?\r\r\n+CMEE: 0\r\n\r\nOK\r\n");
}

TEST_F(SettingsTest, SmallThings) {
  EXPECT_EQ(ask("AT+CBC;+CPAS"), "+CBC: 0,100|+CPAS: 0|OK|");
  EXPECT_EQ(ask("AT+CCLK?"), "+CCLK: \"26/02/03,04:05:06+04\"|OK|");
  EXPECT_EQ(ask("AT+CCLK=\"26/02/03,04:05:06+04\""), "+CME ERROR: 3|");
  EXPECT_EQ(ask("AT+CGREG?;+GCAP;+IPR=9600"), "+CGREG: 0,1|+GCAP: +CGSM|OK|");
}

TEST_F(SettingsTest, CommandList_IsWhatIsUnderstood) {
  const std::string list = ask("AT+CLAC");
  EXPECT_NE(list.find("+CMGS|"), std::string::npos);
  EXPECT_TRUE(list.ends_with("|OK|"));
  for (const auto name : commandNames()) EXPECT_EQ(findCommand(name)->name, name);
}

// Whatever a command is asked in whatever form, it has exactly one answer: a result or a prompt.
TEST_F(SettingsTest, EveryCommandInEveryForm_HasOneResult) {
  for (const auto name : commandNames()) {
    for (const char* const form :
         {"", "?", "=?", "=", "=0", "=1", "=99999", "=\"\"", "=,,,,,,,", "=\"x\",\"y\",\"z\""}) {
      Port fresh(handset);
      fresh.receive("ATE0+CMEE=1\r", now);
      fresh.take(now);
      fresh.receive("AT" + std::string(name) + form + '\r', now);
      const std::string answer = fresh.take(now);
      if (name == "E" || name == "V" || name == "Q" || name == "Z" || name == "&F" || name == "+CFUN") continue;
      const bool result = answer.ends_with("\r\nOK\r\n") || answer.ends_with("\r\nERROR\r\n") ||
                          answer.ends_with("\r\nNO CARRIER\r\n") || answer.find("\r\n+CM") != answer.npos;
      EXPECT_TRUE(result || answer == "\r\n> ") << name << form << ": " << answer;
    }
  }
}

}  // namespace
}  // namespace phonesim
