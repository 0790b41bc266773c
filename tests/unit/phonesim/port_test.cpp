// The line discipline: what a host types and what comes back, octet by octet.
#include "unit/phonesim/fixture.h"

namespace phonesim {
namespace {

using PortTest = HandsetTest;

TEST_F(PortTest, Attention_IsEchoedAndAnswered) {
  EXPECT_EQ(type("AT\r"), "AT\r\r\nOK\r\n");
  EXPECT_EQ(type("at\r"), "at\r\r\nOK\r\n");
}

TEST_F(PortTest, EchoOff_StillEchoesTheLineThatSwitchesIt) {
  EXPECT_EQ(type("ATE0\r"), "ATE0\r\r\nOK\r\n");
  EXPECT_EQ(type("AT\r"), "\r\nOK\r\n");
  EXPECT_EQ(type("ATE1\r"), "\r\nOK\r\n");
  EXPECT_EQ(type("AT\r"), "AT\r\r\nOK\r\n");
}

TEST_F(PortTest, CharacterByCharacter_IsEchoedAtOnceAndAnsweredAtTheEnd) {
  EXPECT_EQ(type("A"), "A");
  EXPECT_EQ(type("T"), "T");
  EXPECT_EQ(type("\r"), "\r\r\nOK\r\n");
}

TEST_F(PortTest, Burst_IsAnsweredInOrder) {
  quiet();
  EXPECT_EQ(type("AT+CGMI\rAT+CGMM\rAT"), "\r\nMarrick\r\n\r\nOK\r\n\r\nSimulated handset\r\n\r\nOK\r\n");
  EXPECT_EQ(type("\r"), "\r\nOK\r\n");
}

TEST_F(PortTest, EscapeLineFeedAndNul_AreNoCommandAndNotEchoed) {
  EXPECT_EQ(type("\x1B\r"), "\r");
  quiet();
  EXPECT_EQ(type("\x1B\r"), "");
  EXPECT_EQ(type("gar\x1B"
                 "AT\r\n"),
            "\r\nOK\r\n");
  EXPECT_EQ(type(std::string_view("\nAT+CSQ\0\r", 9)), "\r\n+CSQ: 23,0\r\n\r\nOK\r\n");
  EXPECT_EQ(type("AT+CSQ \r"), "\r\n+CSQ: 23,0\r\n\r\nOK\r\n");
}

TEST_F(PortTest, Backspace_TakesTheLastCharacterBack) {
  quiet();
  EXPECT_EQ(type("ATX9\b\b+CSQX\b\r"), "\r\n+CSQ: 23,0\r\n\r\nOK\r\n");
}

TEST_F(PortTest, LineWithoutPrefix_IsNotAnswered) {
  quiet();
  EXPECT_EQ(type("hello\r\r\n0791FF\x1A\r"), "");
  EXPECT_EQ(type("AT\r"), "\r\nOK\r\n");
}

TEST_F(PortTest, LineTooLong_IsAnErrorAndTheNextOneIsWhole) {
  quiet();
  EXPECT_EQ(type("AT+CSCA=\"" + std::string(5000, '1') + "\"\r"), "\r\nERROR\r\n");
  EXPECT_EQ(type("AT\r"), "\r\nOK\r\n");
}

TEST_F(PortTest, SeveralCommands_HaveOneResultAndStopAtTheFirstFailure) {
  quiet();
  EXPECT_EQ(ask("AT+CMEE=1;+CREG=2"), "OK|");
  EXPECT_EQ(ask("AT+CGMI;+CSQ"), "Marrick|+CSQ: 23,0|OK|");
  EXPECT_EQ(ask("AT+CGMI;+NONE;+CSQ"), "Marrick|+CME ERROR: 4|");
  EXPECT_EQ(ask("ATE0V1+CSQ"), "+CSQ: 23,0|OK|");
}

TEST_F(PortTest, Repeat_RunsTheLastLineAgain) {
  quiet();
  EXPECT_EQ(ask("AT+CSQ"), "+CSQ: 23,0|OK|");
  EXPECT_EQ(type("A/"), "\r\n+CSQ: 23,0\r\n\r\nOK\r\n");
}

TEST_F(PortTest, ResultsAsDigits) {
  quiet();
  EXPECT_EQ(type("ATV0\r"), "0\r");
  EXPECT_EQ(type("AT+CSQ\r"), "+CSQ: 23,0\r\n0\r");
  EXPECT_EQ(type("ATX\r"), "0\r");
  EXPECT_EQ(type("ATY\r"), "4\r");
  EXPECT_EQ(type("ATD112\r"), "3\r");
  EXPECT_EQ(type("ATV1\r"), "\r\nOK\r\n");
}

TEST_F(PortTest, Quiet_HasNoResults) {
  quiet();
  EXPECT_EQ(type("ATQ1\r"), "");
  EXPECT_EQ(type("AT+CSQ\r"), "\r\n+CSQ: 23,0\r\n");
  EXPECT_EQ(type("ATQ0\r"), "\r\nOK\r\n");
}

TEST_F(PortTest, Errors_ComeInTheStyleAskedFor) {
  quiet();
  EXPECT_EQ(ask("AT+CMGR=1"), "ERROR|");
  EXPECT_EQ(ask("AT+NONE"), "ERROR|");
  EXPECT_EQ(ask("AT+CMEE=1"), "OK|");
  EXPECT_EQ(ask("AT+CMGR=1"), "+CMS ERROR: 321|");
  EXPECT_EQ(ask("AT+NONE"), "+CME ERROR: 4|");
  EXPECT_EQ(ask("AT+CMEE=2"), "OK|");
  EXPECT_EQ(ask("AT+CMGR=1"), "+CMS ERROR: Invalid memory index|");
  EXPECT_EQ(ask("AT+NONE"), "+CME ERROR: operation not supported|");
  EXPECT_EQ(ask("AT+CMEE=3"), "+CME ERROR: incorrect parameters|");
  EXPECT_EQ(ask("AT+CMEE?"), "+CMEE: 2|OK|");
  EXPECT_EQ(ask("AT+CMEE=?"), "+CMEE: (0-2)|OK|");
}

TEST_F(PortTest, VendorProbesAndUnknownCommands_AreRefusedAtOnce) {
  quiet();
  ask("AT+CMEE=1");
  for (const char* const probe : {"AT+MODE=2", "AT*CNTI=2", "AT$TSSPCSW=?", "AT^SYSCFG?", "AT+CPROT=?", "AT%X", "AT#X"})
    EXPECT_EQ(ask(probe), "+CME ERROR: 4|") << probe;
  for (const char* const wrong : {"ATY", "AT\\Q3", "AT=", "AT+", "AT&", "ATS99?", "ATS3=10", "ATE2"})
    EXPECT_EQ(ask(wrong), "ERROR|") << wrong;
}

TEST_F(PortTest, BasicCommands_ThatDoNoHarmAreAccepted) {
  quiet();
  for (const char* const command :
       {"ATX4", "AT&C1", "AT&D2", "AT&K0", "AT&S0", "AT&W", "ATH", "ATL0", "ATM1", "ATS0=0"})
    EXPECT_EQ(ask(command), "OK|") << command;
  EXPECT_EQ(ask("ATS3?"), "013|OK|");
  EXPECT_EQ(ask("ATI"), "Marrick|Simulated handset|Revision: 1.0.0|OK|");
  EXPECT_EQ(ask("ATD+4670;"), "NO CARRIER|");
}

TEST_F(PortTest, Reset_PutsTheSettingsBack) {
  quiet();
  ask("AT+CMEE=1;+CSCS=\"UCS2\";+CPMS=\"ME\",\"ME\"");
  EXPECT_EQ(ask("ATZ"), "OK|");
  EXPECT_EQ(type("AT+CMEE?\r"), "AT+CMEE?\r\r\n+CMEE: 0\r\n\r\nOK\r\n");
  quiet();
  EXPECT_EQ(ask("AT+CSCS?;+CPMS?"), "+CSCS: \"GSM\"|+CPMS: \"SM\",0,3,\"SM\",0,3,\"MT\",0,8|OK|");
}

TEST_F(PortTest, Prompt_HasNoLineEndAndWaitsForAnyTime) {
  quiet();
  EXPECT_EQ(type("AT+CMGS=23\r"), "\r\n> ");
  now += Time{3600000};
  EXPECT_EQ(heard(), "");
  EXPECT_EQ(type(submitPdu), "");
  EXPECT_EQ(type("\x1A"), "\r\n+CMGS: 1\r\n\r\nOK\r\n");
}

TEST_F(PortTest, Data_IsEchoedToo) {
  EXPECT_EQ(type("AT+CMGS=22\r"), "AT+CMGS=22\r\r\n> ");
  EXPECT_EQ(type(shortSubmitPdu), shortSubmitPdu);
  EXPECT_EQ(type("\x1A"), "\r\n+CMGS: 1\r\n\r\nOK\r\n");
}

TEST_F(PortTest, EscapeAtThePrompt_SendsNothing) {
  quiet();
  EXPECT_EQ(type("AT+CMGS=23\r"), "\r\n> ");
  EXPECT_EQ(type(std::string(submitPdu) + '\x1B'), "\r\nOK\r\n");
  EXPECT_EQ(ask("AT"), "OK|");
  EXPECT_TRUE(network.taken.empty());
}

TEST_F(PortTest, LineEndsBlanksAndNulInTheData_AreIgnored) {
  quiet();
  const std::string pdu = submitPdu;
  type("AT+CMGS=23\r\n");
  EXPECT_EQ(type("\n" + pdu.substr(0, 10) + "\r\n " + pdu.substr(10) + std::string(1, '\0') + "\x1A\r\n"),
            "\r\n+CMGS: 1\r\n\r\nOK\r\n");
  EXPECT_EQ(ask("AT"), "OK|");
}

TEST_F(PortTest, CommandsBehindASend_RunWhenItIsDone) {
  quiet();
  EXPECT_EQ(type("AT+CMGS=23;+CSQ\r"), "\r\n> ");
  EXPECT_EQ(answerPrompt(submitPdu), "+CMGS: 1|+CSQ: 23,0|OK|");
}

TEST_F(PortTest, LateAnswer_ComesLateAndHoldsBackTheNextCommand) {
  quiet();
  handset.faults().lateAnswers = 1;
  handset.faults().lateness = Time{500};
  EXPECT_EQ(type("AT+CSQ\rAT+CGMI\r"), "\r\n+CSQ: 23,0\r\n");
  EXPECT_EQ(port.nextOutput(), now + Time{500});
  now += Time{499};
  EXPECT_EQ(heard(), "");
  now += Time{1};
  EXPECT_EQ(heard(), "\r\nOK\r\n\r\nMarrick\r\n\r\nOK\r\n");
  EXPECT_EQ(port.nextOutput(), std::nullopt);
}

TEST_F(PortTest, SlowListing_ComesMessageByMessage) {
  quiet();
  put(Place::Sim, 1, Status::ReceivedRead, deliverPdu);
  put(Place::Sim, 2, Status::ReceivedRead, deliverPdu);
  handset.faults().listingTime = Time{100};
  EXPECT_EQ(type("AT+CMGL=4\r"), "");
  now += Time{100};
  EXPECT_EQ(heard(), "\r\n+CMGL: 1,1,,28\r\n" + std::string(deliverPdu) + "\r\n");
  now += Time{100};
  EXPECT_EQ(heard(), "\r\n+CMGL: 2,1,,28\r\n" + std::string(deliverPdu) + "\r\n\r\nOK\r\n");
}

TEST_F(PortTest, Noise_ComesEvenIntoAnAnswer) {
  quiet();
  put(Place::Sim, 1, Status::ReceivedRead, deliverPdu);
  handset.faults().listingTime = Time{100};
  type("AT+CMGL=4\r");
  port.interject("^RSSI:12");
  EXPECT_EQ(heard(), "\r\n^RSSI:12\r\n");
  now += Time{100};
  EXPECT_EQ(lines(heard()), "+CMGL: 1,1,,28\r\n" + std::string(deliverPdu) + "|OK|");
}

TEST_F(PortTest, GarbledAndHalvedLines_AreDamagedOnceEach) {
  quiet();
  handset.faults().garbledLines = 1;
  EXPECT_EQ(type("AT+CSQ\r"), "\r\n+~SQ~ 2~,0\r\n\r\nOK\r\n");
  handset.faults().halvedLines = 1;
  EXPECT_EQ(type("AT+CSQ\r"), "\r\n+CSQ:\r\nOK\r\n");
  EXPECT_EQ(type("AT+CSQ\r"), "\r\n+CSQ: 23,0\r\n\r\nOK\r\n");
}

TEST_F(PortTest, Silence_SwallowsCommandsAndAnswers) {
  quiet();
  type("AT+CS");
  handset.faults().silent = true;
  EXPECT_EQ(type("Q\rAT\r"), "");
  handset.faults().silent = false;
  EXPECT_EQ(heard(), "");
  EXPECT_EQ(type("Q\r"), "\r\n+CSQ: 23,0\r\n\r\nOK\r\n");
}

TEST_F(PortTest, Restart_LosesSettingsAndWhatWasHalfDone) {
  quiet();
  type("AT+CMGS=23\r");
  port.restart();
  EXPECT_EQ(heard(), "\r\nRDY\r\n\r\n+CFUN: 1\r\n\r\n+CPIN: READY\r\n");
  EXPECT_EQ(type("AT\r"), "AT\r\r\nOK\r\n");
}

TEST_F(PortTest, Restart_ForgetsALineThatWasTooLong) {
  quiet();
  EXPECT_EQ(type(std::string(2000, 'x')), "");
  port.restart();
  heard();
  EXPECT_EQ(type("AT\r"), "AT\r\r\nOK\r\n");
}

TEST_F(PortTest, Restart_LeavesWhatWasNotAcknowledgedForTheMemory) {
  quiet();
  EXPECT_EQ(ask("AT+CSMS=1;+CNMI=2,2"), "+CSMS: 1,1,0|OK|");
  EXPECT_EQ(handset.deliver(octets(deliverPdu)), Handset::Arrival::Direct);
  heard();
  port.restart();
  EXPECT_EQ(handset.memories().used(View::Sim), 1);
  heard();
  EXPECT_EQ(port.nextOutput(), std::nullopt);
  EXPECT_EQ(type("AT+CNMA\r"), "AT+CNMA\r\r\nERROR\r\n");
}

TEST_F(PortTest, FloodWhileBusy_IsBounded) {
  quiet();
  handset.faults().lateAnswers = 1;
  handset.faults().lateness = Time{500};
  EXPECT_EQ(type("AT\r"), "");
  for (int i = 0; i < 1000; ++i) port.receive(std::string(1000, 'x'), now);
  now += Time{500};
  EXPECT_EQ(heard(), "\r\nOK\r\n");
  EXPECT_EQ(type("\r"), "\r\nERROR\r\n");
  EXPECT_EQ(ask("AT"), "OK|");
}

// 9600 bits per second are 1.04 milliseconds for an octet.
TEST_F(PortTest, LineWithASpeed_TakesItsTimeForEachOctetBothWays) {
  quiet();
  handset.faults().lineSpeed = 9600;
  EXPECT_EQ(type("AT\r"), "");
  EXPECT_EQ(port.nextOutput(), Time{1002});
  now = Time{1003};
  EXPECT_EQ(heard(), "");
  EXPECT_EQ(port.nextOutput(), Time{1004});
  now = Time{1004};
  EXPECT_EQ(heard(), "");
  EXPECT_EQ(port.nextOutput(), Time{1006});
  now = Time{1009};
  EXPECT_EQ(heard(), "\r\nOK");
  now = Time{1010};
  EXPECT_EQ(heard(), "\r");
  now = Time{1011};
  EXPECT_EQ(heard(), "\n");
  EXPECT_EQ(port.nextOutput(), std::nullopt);
  handset.faults().lineSpeed = 0;
  EXPECT_EQ(type("AT\r"), "\r\nOK\r\n");
}

TEST_F(PortTest, FloodOnASlowLine_IsBounded) {
  quiet();
  handset.faults().lineSpeed = 300;
  for (int i = 0; i < 100; ++i) port.receive(std::string(10000, 'x'), now);
  now += std::chrono::hours(1);
  EXPECT_EQ(heard(), "");
  EXPECT_EQ(type("\r"), "");
  now += Time{34};
  EXPECT_EQ(heard(), "");
  now += Time{300};
  EXPECT_EQ(heard(), "\r\nERROR\r\n");  // too long
}

TEST_F(PortTest, Ports_HaveSettingsOfTheirOwn) {
  quiet();
  Port other(handset);
  other.receive("AT\r", now);
  EXPECT_EQ(other.take(now), "AT\r\r\nOK\r\n");
  EXPECT_EQ(ask("AT"), "OK|");
}

}  // namespace
}  // namespace phonesim
