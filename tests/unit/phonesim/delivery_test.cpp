// Messages that arrive: where they go, who is told, and what waits.
#include "unit/phonesim/fixture.h"

namespace phonesim {
namespace {

using testing::ElementsAre;

class DeliveryTest : public DialogueTest {
 protected:
  Handset::Arrival deliver(std::string_view hex = deliverPdu) { return handset.deliver(octets(hex)); }
};

TEST_F(DeliveryTest, Stored_SilentlyUntilSomebodyWantsToKnow) {
  EXPECT_EQ(deliver(), Handset::Arrival::Stored);
  EXPECT_EQ(heard(), "");
  EXPECT_EQ(ask("AT+CNMI=2,1"), "OK|");
  EXPECT_EQ(heard(), "");
  deliver();
  EXPECT_EQ(heard(), "\r\n+CMTI: \"SM\",2\r\n");
  EXPECT_TRUE(handset.takeChanged());
  EXPECT_THAT(network.said, ElementsAre("SM 1", "SM 2"));
}

TEST_F(DeliveryTest, FullSim_SendsTheNextOneToThePhone) {
  ask("AT+CNMI=2,1");
  for (int i = 0; i < 3; ++i) deliver();
  heard();
  deliver();
  EXPECT_EQ(heard(), "\r\n+CMTI: \"ME\",1\r\n");
}

TEST_F(DeliveryTest, Indications_AreWithheldInModeZeroAndFlushedOrClearedThen) {
  EXPECT_EQ(ask("AT+CNMI=0,1"), "OK|");
  deliver();
  EXPECT_EQ(heard(), "");
  EXPECT_EQ(type("AT+CNMI=1,1,0,0,0\r"), "\r\nOK\r\n\r\n+CMTI: \"SM\",1\r\n");
  ask("AT+CNMI=0,1");
  deliver();
  EXPECT_EQ(type("AT+CNMI=1,1,0,0,1\r"), "\r\nOK\r\n");
}

TEST_F(DeliveryTest, Indication_WaitsForTheEndOfACommand) {
  ask("AT+CNMI=2,1");
  type("AT+C");
  deliver();
  EXPECT_EQ(heard(), "");
  EXPECT_EQ(type("SQ\r"), "\r\n+CSQ: 23,0\r\n\r\nOK\r\n\r\n+CMTI: \"SM\",1\r\n");
  type("AT+CMGS=23\r");
  deliver();
  EXPECT_EQ(heard(), "");
  EXPECT_EQ(type("\x1B"), "\r\nOK\r\n\r\n+CMTI: \"SM\",2\r\n");
}

TEST_F(DeliveryTest, Direct_GoesToTheHostAndIsNotStored) {
  ask("AT+CNMI=2,2");
  EXPECT_EQ(deliver(), Handset::Arrival::Direct);
  EXPECT_EQ(heard(), "\r\n+CMT: ,28\r\n" + std::string(deliverPdu) + "\r\n");
  EXPECT_EQ(handset.memories().used(View::Both), 0);
  EXPECT_THAT(network.said, ElementsAre("direct"));
}

TEST_F(DeliveryTest, Direct_LeavesMessagesForTheSimToTheSim) {
  ask("AT+CNMI=2,2");
  EXPECT_EQ(deliver(deliverClass2), Handset::Arrival::Stored);
  EXPECT_EQ(heard(), "\r\n+CMTI: \"SM\",1\r\n");
  ask("AT+CPMS=\"ME\",\"ME\",\"ME\"");
  deliver(deliverClass2);
  EXPECT_EQ(heard(), "\r\n+CMTI: \"SM\",2\r\n");
}

TEST_F(DeliveryTest, Routing3_GivesOnlyClass3Directly) {
  ask("AT+CNMI=2,3");
  EXPECT_EQ(deliver(), Handset::Arrival::Stored);
  EXPECT_EQ(deliver(deliverClass3), Handset::Arrival::Direct);
  EXPECT_EQ(lines(heard()), "+CMTI: \"SM\",1|+CMT: ,28\r\n" + std::string(deliverClass3) + "|");
}

TEST_F(DeliveryTest, Service1_GivesTheNextOneWhenTheFirstIsAcknowledged) {
  ask("AT+CSMS=1;+CNMI=2,2");
  EXPECT_EQ(deliver(), Handset::Arrival::Direct);
  EXPECT_EQ(deliver(deliverClass3), Handset::Arrival::Waiting);
  EXPECT_EQ(lines(heard()), "+CMT: ,28\r\n" + std::string(deliverPdu) + "|");
  EXPECT_EQ(ask("AT+CNMA"), "OK|+CMT: ,28\r\n" + std::string(deliverClass3) + "|");
  EXPECT_EQ(ask("AT+CNMA=1"), "OK|");
  EXPECT_EQ(ask("AT+CNMA"), "+CMS ERROR: 340|");
}

TEST_F(DeliveryTest, Acknowledgement_NeedsService1AndAMessage) {
  ask("AT+CNMI=2,2");
  deliver();
  heard();
  EXPECT_EQ(ask("AT+CNMA"), "+CMS ERROR: 340|");
  ask("AT+CSMS=1");
  EXPECT_EQ(ask("AT+CNMA=0"), "+CMS ERROR: 340|");
  EXPECT_EQ(ask("AT+CNMA=3"), "+CMS ERROR: 304|");
  EXPECT_EQ(ask("AT+CNMA=?"), "+CNMA: (0-2)|OK|");
}

TEST_F(DeliveryTest, RefusedByTheHost_ItWaitsForTheNextOccasion) {
  ask("AT+CSMS=1;+CNMI=2,2");
  deliver();
  heard();
  EXPECT_EQ(type("AT+CNMA=2,4\r"), "\r\n> ");
  EXPECT_EQ(answerPrompt("00D30000"), "OK|");
  EXPECT_EQ(handset.state().waiting.size(), 1u);
  EXPECT_EQ(ask("AT+CSMS=0;+CNMI=2,1"), "+CSMS: 1,1,0|OK|+CMTI: \"SM\",1|");
  EXPECT_EQ(handset.state().waiting.size(), 0u);
}

TEST_F(DeliveryTest, NotAcknowledgedInTime_IsStoredAndNoneComesDirectlyAnyMore) {
  ask("AT+CSMS=1;+CNMI=2,2,0,1");
  deliver();
  EXPECT_EQ(lines(heard()), "+CMT: ,28\r\n" + std::string(deliverPdu) + "|");
  EXPECT_EQ(deliver(), Handset::Arrival::Waiting);
  EXPECT_EQ(port.nextOutput(), now + Time{15000});
  now += Time{14999};
  EXPECT_EQ(heard(), "");
  EXPECT_EQ(handset.memories().used(View::Sim), 0);
  now += Time{1};
  EXPECT_EQ(heard(), "");
  EXPECT_EQ(handset.memories().used(View::Sim), 2);
  EXPECT_EQ(port.nextOutput(), std::nullopt);
  EXPECT_EQ(ask("AT+CNMI?"), "+CNMI: 2,0,0,0,0|OK|");
  EXPECT_EQ(ask("AT+CNMA"), "+CMS ERROR: 340|");
}

TEST_F(DeliveryTest, HostThatGoesWithoutAcknowledging_LeavesTheMessageForTheMemory) {
  {
    Port other(handset);
    other.settings.smsService = 1;
    other.setRouting({.mode = 2, .messages = 2});
    EXPECT_EQ(deliver(), Handset::Arrival::Direct);
    EXPECT_THAT(toText(handset.state()), testing::HasSubstr("\nwaiting " + std::string(deliverPdu) + '\n'));
  }
  EXPECT_EQ(handset.memories().used(View::Sim), 1);
}

TEST_F(DeliveryTest, NoRoom_WaitsInOrderForADeletion) {
  ask("AT+CPMS=\"SM\",\"SM\",\"SM\";+CNMI=2,1");
  for (int i = 0; i < 3; ++i) EXPECT_EQ(deliver(), Handset::Arrival::Stored);
  EXPECT_EQ(deliver(deliverClass3), Handset::Arrival::Waiting);
  EXPECT_EQ(deliver(), Handset::Arrival::Waiting);
  heard();
  EXPECT_EQ(ask("AT+CMGD=2"), "OK|+CMTI: \"SM\",2|");
  EXPECT_EQ(handset.memories().at(Place::Sim).slots.at(2).pdu, octets(deliverClass3));
  EXPECT_EQ(ask("AT+CMGD=1,4"), "OK|+CMTI: \"SM\",1|");
  EXPECT_TRUE(handset.state().waiting.empty());
}

TEST_F(DeliveryTest, NoNetwork_WaitsUntilThereIsOne) {
  ask("AT+CNMI=2,1;+CREG=1");
  handset.setRegistration(Registration::Searching);
  EXPECT_EQ(deliver(), Handset::Arrival::Waiting);
  EXPECT_EQ(heard(), "\r\n+CREG: 2\r\n");
  EXPECT_EQ(ask("AT+CSQ"), "+CSQ: 99,99|OK|");
  handset.setRegistration(Registration::Home);
  EXPECT_EQ(lines(heard()), "+CREG: 1|+CMTI: \"SM\",1|");
}

TEST_F(DeliveryTest, EveryPort_IsToldOfAStoredMessage) {
  Port other(handset);
  other.setRouting({.mode = 1, .messages = 1});
  ask("AT+CNMI=2,1");
  deliver();
  EXPECT_EQ(heard(), "\r\n+CMTI: \"SM\",1\r\n");
  EXPECT_EQ(other.take(now), "\r\n+CMTI: \"SM\",1\r\n");
}

TEST_F(DeliveryTest, StatusReport_GoesToTheHostThatWantsThem) {
  ask("AT+CNMI=2,1,0,1");
  // As submitPdu, with the bit that asks for a report.
  type("AT+CMGS=23\r");
  EXPECT_EQ(answerPrompt("0031000B916407281553F80000AA0AE8329BFD4697D9EC37"),
            "+CMGS: 1|OK|+CDS: 25\r\n07916407000000F006010B916407281553F8622030405060406220304050604000|");
}

TEST_F(DeliveryTest, StatusReport_IsStoredForAHostThatReadsItLater) {
  const std::string reported = "0031000B916407281553F80000AA0AE8329BFD4697D9EC37";
  const std::string report = "07916407000000F006010B916407281553F8622030405060406220304050604000";
  ask("AT+CNMI=2,1,0,2");
  type("AT+CMGS=23\r");
  EXPECT_EQ(answerPrompt(reported), "+CMGS: 1|OK|+CDSI: \"SM\",1|");
  EXPECT_THAT(network.said, ElementsAre("SM 1"));
  EXPECT_EQ(ask("AT+CMGR=1"), "+CMGR: 0,,25\r\n" + report + "|OK|");
  // Without the request there is none.
  type("AT+CMGS=23\r");
  EXPECT_EQ(answerPrompt(submitPdu), "+CMGS: 2|OK|");
  EXPECT_EQ(ask("AT+CPMS=\"SM\",\"SM\",\"SM\""), "+CPMS: 1,3,1,3,1,3|OK|");
  // In a full memory there is no place for it; the message is sent all the same.
  deliver();
  deliver();
  heard();
  type("AT+CMGS=23\r");
  EXPECT_EQ(answerPrompt(reported), "+CMGS: 3|OK|");
  EXPECT_TRUE(handset.state().waiting.empty());
  // A host that takes reports directly is told, and then nothing is stored.
  EXPECT_EQ(ask("AT+CMGD=1,4"), "OK|");
  Port other(handset);
  other.setRouting({.mode = 2, .reports = Routing::directReports});
  type("AT+CMGS=23\r");
  EXPECT_EQ(answerPrompt(reported), "+CMGS: 4|OK|");
  EXPECT_EQ(lines(other.take(now)), "+CDS: 25\r\n07916407000000F006040B916407281553F8622030405060406220304050604000|");
  EXPECT_EQ(handset.memories().used(View::Both), 0);
}

TEST_F(DeliveryTest, MarkedTwice_IsTakenOnce) {
  handset.deliverMarked("A1", octets(deliverPdu));
  handset.deliverMarked("A1", octets(deliverPdu));
  handset.deliverMarked("A2", octets(deliverPdu));
  EXPECT_EQ(handset.memories().used(View::Sim), 2);
  for (int i = 0; i < 1000; ++i) handset.deliverMarked("B" + std::to_string(i), octets(deliverPdu));
  EXPECT_EQ(handset.state().taken.size(), State::mostTaken);
}

TEST_F(DeliveryTest, Routing_TellsAndRefuses) {
  EXPECT_EQ(ask("AT+CNMI=?"), "+CNMI: (0-3),(0-3),(0,2),(0-2),(0,1)|OK|");
  EXPECT_EQ(ask("AT+CNMI=3,1,0,1,1"), "OK|");
  EXPECT_EQ(ask("AT+CNMI=,2"), "OK|");
  EXPECT_EQ(ask("AT+CNMI?"), "+CNMI: 3,2,0,1,1|OK|");
  EXPECT_EQ(ask("AT+CNMI=2,1,1"), "+CMS ERROR: 303|");
  EXPECT_EQ(ask("AT+CNMI=2,1,3"), "+CMS ERROR: 303|");
  EXPECT_EQ(ask("AT+CNMI=2,1,0,3"), "+CMS ERROR: 303|");
  EXPECT_EQ(ask("AT+CNMI=4"), "+CMS ERROR: 304|");
  EXPECT_EQ(ask("AT+CNMI=1,2,0,0,0,0"), "+CMS ERROR: 304|");
  EXPECT_EQ(ask("AT+CNMI?"), "+CNMI: 3,2,0,1,1|OK|");
}

TEST_F(DeliveryTest, Pin_KeepsMessagesOutUntilItIsEntered) {
  handset.insertSim("1234");
  ask("AT+CNMI=2,1");
  EXPECT_EQ(deliver(), Handset::Arrival::Waiting);
  EXPECT_EQ(ask("AT+CPIN?"), "+CPIN: SIM PIN|OK|");
  EXPECT_EQ(ask("AT+CMGL=4"), "+CMS ERROR: 311|");
  EXPECT_EQ(ask("AT+CIMI"), "+CME ERROR: 11|");
  EXPECT_EQ(ask("AT+CMGF=0"), "OK|");
  EXPECT_EQ(ask("AT+CPIN=\"1111\""), "+CME ERROR: 16|");
  EXPECT_EQ(ask("AT+CPIN=\"1234\""), "OK|");
  EXPECT_EQ(ask("AT+CPIN?"), "+CPIN: READY|OK|");
  EXPECT_EQ(ask("AT+CPIN=\"1234\""), "+CME ERROR: 3|");
  EXPECT_EQ(ask("AT+CPMS?"), "+CPMS: \"SM\",1,3,\"SM\",1,3,\"MT\",1,8|OK|");
}

TEST_F(DeliveryTest, PinThreeTimesWrong_AsksForThePuk) {
  handset.insertSim("1234");
  for (int i = 0; i < 3; ++i) EXPECT_EQ(ask("AT+CPIN=1111"), "+CME ERROR: 16|");
  EXPECT_EQ(ask("AT+CPIN?"), "+CPIN: SIM PUK|OK|");
  EXPECT_EQ(ask("AT+CMGL"), "+CMS ERROR: 316|");
  EXPECT_EQ(ask("AT+CPIN=\"1234\""), "+CME ERROR: 12|");
  EXPECT_EQ(ask("AT+CPIN=\"00000000\",\"5555\""), "+CME ERROR: 16|");
  EXPECT_EQ(ask("AT+CPIN=\"12345678\",\"5555\""), "OK|");
  EXPECT_EQ(ask("AT+CPIN?"), "+CPIN: READY|OK|");
}

TEST_F(DeliveryTest, NoSim_IsSaidToBeNone) {
  handset.removeSim();
  EXPECT_EQ(ask("AT+CPIN?"), "+CME ERROR: 10|");
  EXPECT_EQ(ask("AT+CMGR=1"), "+CMS ERROR: 310|");
  EXPECT_EQ(ask("AT+CPMS=?"), "+CPMS: (\"SM\",\"ME\",\"MT\"),(\"SM\",\"ME\",\"MT\"),(\"SM\",\"ME\",\"MT\")|OK|");
}

}  // namespace
}  // namespace phonesim
