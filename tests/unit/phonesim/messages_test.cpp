// The message commands, and what is refused.
#include "unit/phonesim/fixture.h"

namespace phonesim {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

class MessagesTest : public DialogueTest {
 protected:
  std::string send(int length, const std::string& data) {
    const std::string prompt = type("AT+CMGS=" + std::to_string(length) + '\r');
    return prompt == "\r\n> " ? answerPrompt(data) : lines(prompt);
  }
  std::string write(const std::string& arguments, const std::string& data) {
    const std::string prompt = type("AT+CMGW=" + arguments + '\r');
    return prompt == "\r\n> " ? answerPrompt(data) : lines(prompt);
  }
};

TEST_F(MessagesTest, List_TellsSlotStatusLengthAndPduAndMakesThemRead) {
  put(Place::Sim, 1, Status::ReceivedUnread, deliverPdu);
  put(Place::Sim, 3, Status::StoredUnsent, submitPdu);
  const std::string first = std::string(",,28\r\n") + deliverPdu, second = std::string(",,23\r\n") + submitPdu;
  EXPECT_EQ(ask("AT+CMGL=2"), "+CMGL: 3,2" + second + "|OK|");
  EXPECT_FALSE(handset.takeChanged());
  EXPECT_EQ(ask("AT+CMGL=4"), "+CMGL: 1,0" + first + "|+CMGL: 3,2" + second + "|OK|");
  EXPECT_TRUE(handset.takeChanged());
  EXPECT_EQ(ask("AT+CMGL"), "OK|");  // unread ones
  EXPECT_EQ(ask("AT+CMGL=1"), "+CMGL: 1,1" + first + "|OK|");
  EXPECT_EQ(ask("AT+CMGL=3"), "OK|");
}

TEST_F(MessagesTest, List_RefusesWhatIsNoStatus) {
  for (const char* const wrong : {"AT+CMGL=5", "AT+CMGL=\"ALL\"", "AT+CMGL=-1", "AT+CMGL=4,1"})
    EXPECT_EQ(ask(wrong), "+CMS ERROR: 304|") << wrong;
  EXPECT_EQ(ask("AT+CMGL?"), "+CMS ERROR: 303|");
  EXPECT_EQ(ask("AT+CMGL=?"), "+CMGL: (0-4)|OK|");
}

TEST_F(MessagesTest, Read_TellsStatusAndMakesItRead) {
  put(Place::Sim, 2, Status::ReceivedUnread, deliverPdu);
  EXPECT_EQ(ask("AT+CMGR=2"), "+CMGR: 0,,28\r\n" + std::string(deliverPdu) + "|OK|");
  EXPECT_EQ(ask("AT+CMGR=2"), "+CMGR: 1,,28\r\n" + std::string(deliverPdu) + "|OK|");
}

TEST_F(MessagesTest, BadIndices_AreRefused) {
  put(Place::Sim, 2, Status::ReceivedRead, deliverPdu);
  for (const char* const command : {"AT+CMGR=", "AT+CMGD=", "AT+CMSS="}) {
    for (const char* const index : {"0", "1", "3", "4", "99999", "-2", "", "x", "\"2\"", "1234567890123"})
      EXPECT_EQ(ask(std::string(command) + index), "+CMS ERROR: 321|") << command << index;
  }
  EXPECT_EQ(ask("AT+CMGR"), "+CMS ERROR: 303|");
  EXPECT_EQ(ask("AT+CMGD"), "+CMS ERROR: 303|");
  EXPECT_EQ(handset.memories().used(View::Sim), 1);
}

TEST_F(MessagesTest, Delete_RemovesOneOrAllOfAKind) {
  const auto fill = [this] {
    put(Place::Phone, 1, Status::ReceivedUnread, deliverPdu);
    put(Place::Phone, 2, Status::ReceivedRead, deliverPdu);
    put(Place::Phone, 3, Status::StoredUnsent, submitPdu);
    put(Place::Phone, 5, Status::StoredSent, submitPdu);
  };
  EXPECT_EQ(ask("AT+CPMS=\"ME\""), "+CPMS: 0,5,0,3,0,8|OK|");
  const std::pair<const char*, const char*> cases[] = {
      {"AT+CMGD=2", "(1,3,5)"}, {"AT+CMGD=5,0", "(1,2,3)"}, {"AT+CMGD=1,1", "(1,3,5)"},
      {"AT+CMGD=1,2", "(1,3)"}, {"AT+CMGD=1,3", "(1)"},     {"AT+CMGD=4,4", "()"},
  };
  for (const auto& [command, left] : cases) {
    fill();
    EXPECT_EQ(ask(command), "OK|") << command;
    EXPECT_EQ(ask("AT+CMGD=?"), std::string("+CMGD: ") + left + ",(0-4)|OK|") << command;
  }
  EXPECT_EQ(ask("AT+CMGD=1,5"), "+CMS ERROR: 304|");
}

TEST_F(MessagesTest, Send_HandsThePduToTheNetworkAsADeliver) {
  EXPECT_EQ(send(23, submitPdu), "+CMGS: 1|OK|");
  ASSERT_THAT(network.taken, SizeIs(1));
  EXPECT_EQ(network.taken[0].destination, "+46708251358");
  EXPECT_EQ(network.taken[0].text, u"hellohello");
  EXPECT_EQ(phone::toHex(network.taken[0].submit), submitPdu);
  EXPECT_EQ(phone::toHex(network.taken[0].deliver), deliverPdu);
  EXPECT_EQ(handset.memories().used(View::Both), 0);
}

TEST_F(MessagesTest, Send_KeepsTheServiceCentreAndTheHeaderOfALongMessage) {
  // Part 1 of 2 with reference 42, by way of +46705; "hello" behind a fill bit.
  EXPECT_EQ(send(24,
                 "04916407F5"
                 "4101"
                 "0B916407281553F8"
                 "0000"
                 "0C"
                 "0500032A0201"
                 "D06536FB0D"),
            "+CMGS: 1|OK|");
  ASSERT_THAT(network.taken, SizeIs(1));
  EXPECT_EQ(network.taken[0].text, u"hello");
  EXPECT_EQ(phone::toHex(network.taken[0].deliver),
            "04916407F5"
            "44"
            "0B916407000000F1"
            "0000"
            "62203040506040"
            "0C"
            "0500032A0201"
            "D06536FB0D");
}

TEST_F(MessagesTest, Send_AcceptsLowerCaseDigits) {
  EXPECT_EQ(send(23, "0011000b916407281553f80000aa0ae8329bfd4697d9ec37"), "+CMGS: 1|OK|");
}

TEST_F(MessagesTest, Reference_CountsUpAndWraps) {
  for (int i = 1; i <= 255; ++i) ASSERT_EQ(send(23, submitPdu), "+CMGS: " + std::to_string(i) + "|OK|");
  EXPECT_EQ(send(23, submitPdu), "+CMGS: 0|OK|");
}

TEST_F(MessagesTest, Send_RefusesWrongLengthsAndPdus) {
  const std::string pdu = submitPdu;
  EXPECT_EQ(send(22, pdu), "+CMS ERROR: 304|");
  EXPECT_EQ(send(24, pdu), "+CMS ERROR: 304|");
  EXPECT_EQ(send(23, pdu.substr(1)), "+CMS ERROR: 304|");        // an odd digit
  EXPECT_EQ(send(23, "G" + pdu.substr(1)), "+CMS ERROR: 304|");  // no digit
  EXPECT_EQ(send(23, ""), "+CMS ERROR: 304|");
  EXPECT_EQ(send(23, "FF" + pdu.substr(2)), "+CMS ERROR: 304|");  // the centre longer than everything
  EXPECT_EQ(send(28, deliverPdu), "+CMS ERROR: 304|");            // nothing to send
  EXPECT_EQ(send(23, std::string(5000, 'A')), "+CMS ERROR: 304|");
  // The user data ends before the announced ten septets do.
  EXPECT_EQ(send(22, pdu.substr(0, pdu.size() - 2)), "+CMS ERROR: 304|");
  EXPECT_THAT(network.taken, SizeIs(0));
  EXPECT_EQ(ask("AT"), "OK|");
}

TEST_F(MessagesTest, Send_RefusesBeforeThePromptWhatCannotBeALength) {
  for (const char* const wrong : {"AT+CMGS", "AT+CMGS=", "AT+CMGS=0", "AT+CMGS=6", "AT+CMGS=165", "AT+CMGS=x",
                                  "AT+CMGS=\"+4670\"", "AT+CMGS=23,1", "AT+CMGS?"})
    EXPECT_EQ(ask(wrong), "+CMS ERROR: 304|") << wrong;
  EXPECT_EQ(ask("AT+CMGS=?"), "OK|");
}

TEST_F(MessagesTest, Send_NeedsACentreANetworkAndANumber) {
  ask("AT+CSCA=\"\"");
  EXPECT_EQ(send(23, submitPdu), "+CMS ERROR: 330|");
  EXPECT_EQ(send(23, "04916407F5" + std::string(submitPdu).substr(2)), "+CMGS: 1|OK|");
  ask("AT+CSCA=\"+46700000000\"");
  handset.setRegistration(Registration::Searching);
  EXPECT_EQ(send(23, submitPdu), "+CMS ERROR: 331|");
  handset.setRegistration(Registration::Roaming);
  EXPECT_EQ(send(23, submitPdu), "+CMGS: 2|OK|");
  ask("AT+CFUN=4");
  EXPECT_EQ(send(23, submitPdu), "+CMS ERROR: 331|");
  ask("AT+CFUN=1");
  // A name is no number.
  EXPECT_EQ(send(15,
                 "00"
                 "0100"
                 "09D0E8329BFD06"
                 "0000"
                 "03"
                 "E8321B"),
            "+CMS ERROR: 1|");
  EXPECT_THAT(network.taken, SizeIs(2));
}

TEST_F(MessagesTest, Failures_LastAsOftenAsTheyWerePrepared) {
  handset.faults().failures[Operation::Send] = {2, 38};
  EXPECT_EQ(send(23, submitPdu), "+CMS ERROR: 38|");
  EXPECT_EQ(send(23, submitPdu), "+CMS ERROR: 38|");
  EXPECT_EQ(send(23, submitPdu), "+CMGS: 1|OK|");
  put(Place::Sim, 1, Status::ReceivedRead, deliverPdu);
  handset.faults().failures[Operation::List] = {1, 320};
  handset.faults().failures[Operation::Read] = {1, 313};
  handset.faults().failures[Operation::Delete] = {1, 500};
  handset.faults().failures[Operation::Write] = {1, 320};
  EXPECT_EQ(ask("AT+CMGL=4"), "+CMS ERROR: 320|");
  EXPECT_EQ(ask("AT+CMGR=1"), "+CMS ERROR: 313|");
  EXPECT_EQ(ask("AT+CMGD=1"), "+CMS ERROR: 500|");
  EXPECT_EQ(write("23", submitPdu), "+CMS ERROR: 320|");
  EXPECT_EQ(handset.memories().used(View::Sim), 1);
}

TEST_F(MessagesTest, LostAnswer_SendsAndSaysNothing) {
  handset.faults().lostAnswers = 1;
  EXPECT_EQ(send(23, submitPdu), "");
  EXPECT_THAT(network.taken, SizeIs(1));
  EXPECT_EQ(ask("AT"), "OK|");
  EXPECT_EQ(send(23, submitPdu), "+CMGS: 2|OK|");
}

TEST_F(MessagesTest, SlowSend_AnswersWhenTheTimeIsOver) {
  handset.faults().sendTime = Time{3000};
  EXPECT_EQ(send(23, submitPdu), "");
  EXPECT_THAT(network.taken, SizeIs(1));
  now += Time{3000};
  EXPECT_EQ(lines(heard()), "+CMGS: 1|OK|");
}

TEST_F(MessagesTest, Write_PutsIntoTheFirstFreeSlotOfTheWritingMemory) {
  put(Place::Sim, 1, Status::ReceivedRead, deliverPdu);
  EXPECT_EQ(write("23", submitPdu), "+CMGW: 2|OK|");
  EXPECT_EQ(write("28,1", deliverPdu), "+CMGW: 3|OK|");
  EXPECT_EQ(write("23,3", submitPdu), "+CMS ERROR: 322|");
  EXPECT_EQ(handset.memories().at(Place::Sim).slots.at(2), (StoredPdu{Status::StoredUnsent, octets(submitPdu)}));
  EXPECT_EQ(handset.memories().at(Place::Sim).slots.at(3), (StoredPdu{Status::ReceivedRead, octets(deliverPdu)}));
  ask("AT+CPMS=\"SM\",\"ME\"");
  EXPECT_EQ(write("23,3", submitPdu), "+CMGW: 1|OK|");
  EXPECT_EQ(handset.memories().at(Place::Phone).slots.at(1), (StoredPdu{Status::StoredSent, octets(submitPdu)}));
}

TEST_F(MessagesTest, Write_RefusesAStatusThatDoesNotSuit) {
  EXPECT_EQ(write("23,0", submitPdu), "+CMS ERROR: 304|");
  EXPECT_EQ(write("28,2", deliverPdu), "+CMS ERROR: 304|");
  EXPECT_EQ(write("28", deliverPdu), "+CMS ERROR: 304|");
  EXPECT_EQ(write("23,4", submitPdu), "+CMS ERROR: 304|");
  EXPECT_EQ(write("23,\"STO SENT\"", submitPdu), "+CMS ERROR: 304|");
  EXPECT_EQ(write("22", submitPdu), "+CMS ERROR: 304|");
  EXPECT_EQ(handset.memories().used(View::Both), 0);
}

TEST_F(MessagesTest, SendStored_SendsAndMarksItSent) {
  put(Place::Sim, 1, Status::StoredUnsent, submitPdu);
  put(Place::Sim, 2, Status::ReceivedRead, deliverPdu);
  EXPECT_EQ(ask("AT+CMSS=1"), "+CMSS: 1|OK|");
  EXPECT_EQ(handset.memories().at(Place::Sim).slots.at(1).status, Status::StoredSent);
  EXPECT_EQ(ask("AT+CMSS=2"), "+CMS ERROR: 302|");
  EXPECT_EQ(ask("AT+CMSS=1,\"+46701111111\",145"), "+CMSS: 2|OK|");
  EXPECT_EQ(ask("AT+CMSS=1,\"Name\""), "+CMS ERROR: 304|");
  ASSERT_THAT(network.taken, SizeIs(2));
  EXPECT_EQ(network.taken[0].destination, "+46708251358");
  EXPECT_EQ(network.taken[1].destination, "+46701111111");
  EXPECT_EQ(network.taken[1].text, u"hellohello");
}

TEST_F(MessagesTest, SendStored_ToAnotherNumberChangesNothingElse) {
  // By way of +46705, with a report and a validity until a point in time, protocol 0x41, class 1.
  const std::string before =
                        "04916407F5"
                        "39"
                        "00",
                    behind =
                        "41"
                        "F1"
                        "62203040506040"
                        "0AE8329BFD4697D9EC37";
  put(Place::Sim, 1, Status::StoredUnsent, before + "0B916407281553F8" + behind);
  EXPECT_EQ(ask("AT+CMSS=1,\"0701\",129"), "+CMSS: 1|OK|");
  ASSERT_THAT(network.taken, SizeIs(1));
  EXPECT_EQ(phone::toHex(network.taken[0].submit), before + "04817010" + behind);
  EXPECT_EQ(network.taken[0].destination, "0701");
}

TEST_F(MessagesTest, TextParameters_AreOnesOfTextModeInEitherFormat) {
  for (const char* const wrong : {"AT+CSMP=256", "AT+CSMP", "AT+CSDH=2", "AT+CSDH=0,1"})
    EXPECT_EQ(ask(wrong), "+CMS ERROR: 305|") << wrong;
}

TEST_F(MessagesTest, Memories_AreChosenWithOneToThreeNamesAndAlwaysSixNumbersAnswer) {
  put(Place::Phone, 1, Status::ReceivedRead, deliverPdu);
  EXPECT_EQ(ask("AT+CPMS=?"), "+CPMS: (\"SM\",\"ME\",\"MT\"),(\"SM\",\"ME\",\"MT\"),(\"SM\",\"ME\",\"MT\")|OK|");
  EXPECT_EQ(ask("AT+CPMS=\"ME\""), "+CPMS: 1,5,0,3,1,8|OK|");
  EXPECT_EQ(ask("AT+CPMS=\"SM\",\"ME\""), "+CPMS: 0,3,1,5,1,8|OK|");
  EXPECT_EQ(ask("AT+CPMS=\"MT\",\"SM\",\"SM\""), "+CPMS: 1,8,0,3,0,3|OK|");
  EXPECT_EQ(ask("AT+CPMS?"), "+CPMS: \"MT\",1,8,\"SM\",0,3,\"SM\",0,3|OK|");
  EXPECT_EQ(ask("AT+CPMS=\"SR\""), "+CMS ERROR: 303|");
  EXPECT_EQ(ask("AT+CPMS="), "+CMS ERROR: 303|");
  EXPECT_EQ(ask("AT+CPMS=\"SM\",\"SM\",\"SM\",\"SM\""), "+CMS ERROR: 304|");
  EXPECT_EQ(ask("AT+CPMS?"), "+CPMS: \"MT\",1,8,\"SM\",0,3,\"SM\",0,3|OK|");
}

TEST_F(MessagesTest, BothMemoriesAsOne_CountTheSimFirst) {
  put(Place::Sim, 2, Status::ReceivedRead, deliverPdu);
  put(Place::Phone, 2, Status::StoredUnsent, submitPdu);
  ask("AT+CPMS=\"MT\",\"MT\"");
  EXPECT_EQ(ask("AT+CMGD=?"), "+CMGD: (2,5),(0-4)|OK|");
  EXPECT_EQ(ask("AT+CMGR=5"), "+CMGR: 2,,23\r\n" + std::string(submitPdu) + "|OK|");
  EXPECT_EQ(ask("AT+CMSS=5"), "+CMSS: 1|OK|");
  EXPECT_EQ(write("23", submitPdu), "+CMGW: 1|OK|");
  EXPECT_EQ(write("23", submitPdu), "+CMGW: 3|OK|");
  EXPECT_EQ(write("23", submitPdu), "+CMGW: 4|OK|");
  EXPECT_EQ(handset.memories().at(Place::Phone).used(), 2);
}

TEST_F(MessagesTest, MissingMemory_IsNotOfferedAndTheOtherOneTakesItsPlace) {
  handset.memories().at(Place::Sim).capacity = 0;
  EXPECT_EQ(ask("AT+CPMS=?"), "+CPMS: (\"ME\"),(\"ME\"),(\"ME\")|OK|");
  EXPECT_EQ(ask("AT+CPMS?"), "+CPMS: \"ME\",0,5,\"ME\",0,5,\"ME\",0,5|OK|");
  EXPECT_EQ(ask("AT+CPMS=\"SM\""), "+CMS ERROR: 303|");
  EXPECT_EQ(ask("AT+CPMS=\"MT\""), "+CMS ERROR: 303|");
  EXPECT_EQ(write("23", submitPdu), "+CMGW: 1|OK|");
  EXPECT_EQ(ask("AT+CMGR=1"), "+CMGR: 2,,23\r\n" + std::string(submitPdu) + "|OK|");
  handset.deliver(octets(deliverPdu));
  EXPECT_EQ(handset.memories().at(Place::Phone).used(), 2);
}

TEST_F(MessagesTest, ServiceCentre_IsToldAndSet) {
  EXPECT_EQ(ask("AT+CSCA?"), "+CSCA: \"+46700000000\",145|OK|");
  EXPECT_EQ(ask("AT+CSCA=\"46705\",145"), "OK|");
  EXPECT_EQ(ask("AT+CSCA?"), "+CSCA: \"+46705\",145|OK|");
  EXPECT_EQ(ask("AT+CSCA=\"0705\",129"), "OK|");
  EXPECT_EQ(ask("AT+CSCA?"), "+CSCA: \"0705\",129|OK|");
  EXPECT_TRUE(handset.takeChanged());
  EXPECT_EQ(ask("AT+CSCA=\"x\""), "+CMS ERROR: 304|");
  EXPECT_EQ(ask("AT+CSCA=\"+46705\",1"), "+CMS ERROR: 304|");
  EXPECT_EQ(ask("AT+CSCA?"), "+CSCA: \"0705\",129|OK|");
}

TEST_F(MessagesTest, ServiceCentre_ComesInTheCharacterSetThatWasChosen) {
  ask("AT+CSCA=\"+46705\";+CSCS=\"HEX\"");
  EXPECT_EQ(ask("AT+CSCA?"), "+CSCA: \"2B3436373035\",145|OK|");
  EXPECT_EQ(ask("AT+CSCA=\"2B34363730\""), "OK|");
  EXPECT_EQ(handset.state().centre, "+4670");
  EXPECT_EQ(ask("AT+CSCA=\"+46701\""), "OK|");  // as it would be without
  EXPECT_EQ(handset.state().centre, "+46701");
  ask("AT+CSCS=\"UCS2\"");
  EXPECT_EQ(ask("AT+CSCA?"), "+CSCA: \"002B00340036003700300031\",145|OK|");
  EXPECT_EQ(ask("AT+CSCS=\"KLINGON\""), "+CME ERROR: 50|");
}

TEST_F(MessagesTest, Format_IsPduAtFirst) {
  EXPECT_EQ(ask("AT+CMGF=?"), "+CMGF: (0,1)|OK|");
  EXPECT_EQ(ask("AT+CMGF=0"), "OK|");
  EXPECT_EQ(ask("AT+CMGF=2"), "+CMS ERROR: 304|");
  EXPECT_EQ(ask("AT+CMGF?"), "+CMGF: 0|OK|");
  EXPECT_EQ(ask("AT+CMGF=1;+CMGF?"), "+CMGF: 1|OK|");
  EXPECT_EQ(ask("AT+CMGF;+CMGF?"), "+CMGF: 0|OK|");
}

TEST_F(MessagesTest, Broadcasts_CanBeChosenAndCommandsToTheCentreAreRefused) {
  EXPECT_EQ(ask("AT+CSCB?"), "+CSCB: 0,\"\",\"\"|OK|");
  EXPECT_EQ(ask("AT+CSCB=0,\"0,1,300-450\",\"0-3\";+CSCB?"), "+CSCB: 0,\"0,1,300-450\",\"0-3\"|OK|");
  EXPECT_EQ(ask("AT+CSCB=1;+CSCB?"), "+CSCB: 1,\"\",\"\"|OK|");
  EXPECT_EQ(ask("AT+CSCB=2"), "+CMS ERROR: 304|");
  EXPECT_EQ(ask("AT+CSCB=0,\"x\""), "+CMS ERROR: 304|");
  EXPECT_EQ(ask("AT+CMGC=10"), "+CMS ERROR: 303|");
}

TEST_F(MessagesTest, HarmlessSettings) {
  EXPECT_EQ(ask("AT+CSMS?"), "+CSMS: 0,1,1,0|OK|");
  EXPECT_EQ(ask("AT+CSMS=1"), "+CSMS: 1,1,0|OK|");
  EXPECT_EQ(ask("AT+CSMS?"), "+CSMS: 1,1,1,0|OK|");
  EXPECT_EQ(ask("AT+CSMS=2"), "+CMS ERROR: 304|");
  EXPECT_EQ(ask("AT+CMMS=2;+CMMS?"), "+CMMS: 2|OK|");
  for (const char* const wrong : {"AT+CMMS=3", "AT+CMMS=1,2", "AT+CMMS="})
    EXPECT_EQ(ask(wrong), "+CMS ERROR: 304|") << wrong;
  EXPECT_EQ(ask("AT+CMMS"), "+CMS ERROR: 303|");
  EXPECT_EQ(ask("AT+CSAS;+CRES;+CSAS=1"), "OK|");
}

}  // namespace
}  // namespace phonesim
