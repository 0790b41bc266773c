// Messages in text mode.
#include "unit/phonesim/fixture.h"

namespace phonesim {
namespace {

using testing::SizeIs;

class TextModeTest : public DialogueTest {
 protected:
  void SetUp() override {
    DialogueTest::SetUp();
    EXPECT_EQ(ask("AT+CMGF=1"), "OK|");
  }
  // A command with a prompt, or its refusal.
  std::string give(const std::string& command, const std::string& text) {
    const std::string prompt = type(command + '\r');
    return prompt == "\r\n> " ? answerPrompt(text) : lines(prompt);
  }
  std::string send(const std::string& text) { return give("AT+CMGS=\"+46708251358\"", text); }
};

constexpr char stamp[] = "\"26/02/03,04:05:06+04\"";
// As submitPdu with the usual validity, 167.
constexpr char typedPdu[] = "0011000B916407281553F80000A70AE8329BFD4697D9EC37";

TEST_F(TextModeTest, List_TellsWordsAndMakesThemRead) {
  put(Place::Sim, 1, Status::ReceivedUnread, deliverPdu);
  put(Place::Sim, 3, Status::StoredUnsent, submitPdu);
  const std::string received = std::string(R"("+46700000001",,)") + stamp + "\r\nhellohello|";
  const std::string draft = "+CMGL: 3,\"STO UNSENT\",\"+46708251358\",,\r\nhellohello|";
  EXPECT_EQ(ask("AT+CMGL=\"STO UNSENT\""), draft + "OK|");
  EXPECT_EQ(ask("AT+CMGL"), "+CMGL: 1,\"REC UNREAD\"," + received + "OK|");
  EXPECT_EQ(ask("AT+CMGL"), "OK|");
  EXPECT_EQ(ask("AT+CMGL=ALL"), "+CMGL: 1,\"REC READ\"," + received + draft + "OK|");
  EXPECT_EQ(ask("AT+CMGL=\"STO SENT\""), "OK|");
  EXPECT_EQ(ask("AT+CMGL=?"), R"(+CMGL: ("REC UNREAD","REC READ","STO UNSENT","STO SENT","ALL")|OK|)");
  for (const char* const wrong : {"AT+CMGL=4", "AT+CMGL=\"all\"", "AT+CMGL=\"ALL\",1"})
    EXPECT_EQ(ask(wrong), "+CMS ERROR: 305|") << wrong;
}

TEST_F(TextModeTest, Details_ShowTheHeaderToo) {
  put(Place::Sim, 1, Status::ReceivedRead, deliverPdu);
  put(Place::Sim, 3, Status::StoredSent, submitPdu);
  EXPECT_EQ(ask("AT+CSDH=?;+CSDH?;+CSDH=1"), "+CSDH: (0,1)|+CSDH: 0|OK|");
  EXPECT_EQ(ask("AT+CMGL=\"ALL\""), std::string("+CMGL: 1,\"REC READ\",\"+46700000001\",,") + stamp +
                                        ",145,10\r\nhellohello|" +
                                        "+CMGL: 3,\"STO SENT\",\"+46708251358\",,,145,10\r\nhellohello|OK|");
  EXPECT_EQ(ask("AT+CMGR=1"), std::string("+CMGR: \"REC READ\",\"+46700000001\",,") + stamp +
                                  ",145,4,0,0,\"+46700000000\",145,10\r\nhellohello|OK|");
  EXPECT_EQ(ask("AT+CMGR=3"),
            "+CMGR: \"STO SENT\",\"+46708251358\",,145,17,0,0,170,\"+46700000000\",145,10\r\nhellohello|OK|");
  EXPECT_EQ(ask("AT+CSDH=0;+CMGR=3"), "+CMGR: \"STO SENT\",\"+46708251358\",\r\nhellohello|OK|");
  EXPECT_EQ(ask("AT+CSDH=2"), "+CMS ERROR: 305|");
}

TEST_F(TextModeTest, Texts_ComeInTheCharacterSetThatWasChosen) {
  put(Place::Sim, 1, Status::ReceivedRead, deliverPdu);
  EXPECT_EQ(ask("AT+CSCS=\"UCS2\";+CMGR=1"),
            "+CMGR: \"REC READ\",\"002B00340036003700300030003000300030003000300031\",," + std::string(stamp) +
                "\r\n00680065006C006C006F00680065006C006C006F|OK|");
  EXPECT_EQ(ask("AT+CSCS=\"HEX\";+CMGR=1"),
            "+CMGR: \"REC READ\",\"2B3436373030303030303031\",," + std::string(stamp) + "\r\n68656C6C6F68656C6C6F|OK|");
  // "@" is 0 in the alphabet, "å" is F, "€" is an escape and 65: six septets 00 0F 1B 65 61 0A.
  put(Place::Sim, 1, Status::ReceivedRead,
      "00040B916407000000F1000062203040506040"
      "0680C7A61C5600");
  const std::string head = std::string("+CMGR: \"REC READ\",\"+46700000001\",,") + stamp + "\r\n";
  EXPECT_EQ(ask("AT+CSCS=\"GSM\";+CMGR=1"), head + std::string("\x00\x0F\x1B", 3) + "ea\n|OK|");
  EXPECT_EQ(ask("AT+CSCS=\"IRA\";+CMGR=1"), head + "@??a\n|OK|");
}

// Everything that is not text of the 7-bit alphabet is told in hexadecimal.
TEST_F(TextModeTest, Ucs2AndHeaders_AreTheirOctets) {
  put(Place::Sim, 1, Status::ReceivedRead, "00040B916407000000F100086220304050604004041F0440");
  put(Place::Sim, 2, Status::ReceivedRead,
      "00440B916407000000F1000062203040506040"
      "0C0500032A0201D06536FB0D");
  put(Place::Sim, 3, Status::ReceivedRead, "0011");  // no message at all
  EXPECT_EQ(ask("AT+CMGR=1"), std::string("+CMGR: \"REC READ\",\"+46700000001\",,") + stamp + "\r\n041F0440|OK|");
  EXPECT_EQ(ask("AT+CMGR=2"),
            std::string("+CMGR: \"REC READ\",\"+46700000001\",,") + stamp + "\r\n0500032A0201D06536FB0D|OK|");
  EXPECT_EQ(ask("AT+CMGR=3"), "+CMGR: \"REC READ\",\"\",,\r\n0011|OK|");
}

TEST_F(TextModeTest, Senders_MayBeNames) {
  // "hello" in nine semi-octets, and an empty text, which has its line nevertheless.
  put(Place::Sim, 1, Status::ReceivedRead, "000409D0E8329BFD0600006220304050604000");
  EXPECT_EQ(type("AT+CSDH=1;+CMGR=1\r"), std::string("\r\n+CMGR: \"REC READ\",\"hello\",,") + stamp +
                                             ",208,4,0,0,\"+46700000000\",145,0\r\n\r\n\r\nOK\r\n");
}

TEST_F(TextModeTest, Send_WritesThePdu) {
  EXPECT_EQ(send("hellohello"), "+CMGS: 1|OK|");
  ASSERT_THAT(network.taken, SizeIs(1));
  EXPECT_EQ(network.taken[0].destination, "+46708251358");
  EXPECT_EQ(phone::toHex(network.taken[0].submit), typedPdu);
  EXPECT_EQ(phone::toHex(network.taken[0].deliver), deliverPdu);
  EXPECT_EQ(give("AT+CMGS=\"0708251358\",129", "x"), "+CMGS: 2|OK|");
  EXPECT_EQ(network.taken[1].destination, "0708251358");
  EXPECT_EQ(give("AT+CMGS=+46708251358", ""), "+CMGS: 3|OK|");  // not in quotes, and no text
  EXPECT_EQ(network.taken[2].text, u"");
}

TEST_F(TextModeTest, Lines_AreKeptAndCorrectedAsTheyAreTyped) {
  EXPECT_EQ(type("AT+CMGS=\"+46708251358\"\r\n"), "\r\n> ");
  EXPECT_EQ(answerPrompt("one\rtwo\r\nthree\nfour"), "+CMGS: 1|OK|");
  EXPECT_EQ(network.taken.at(0).text, u"one\ntwo\nthree\nfour");
  ask("AT+CSCS=\"IRA\"");
  EXPECT_EQ(send("helk\blo"), "+CMGS: 2|OK|");
  EXPECT_EQ(network.taken.at(1).text, u"hello");
  EXPECT_EQ(type("ATE1\r"), "\r\nOK\r\n");
  EXPECT_EQ(type("AT+CMGS=\"1\"\rab\rc"), "AT+CMGS=\"1\"\r\r\n> ab\r\n> c");
  EXPECT_EQ(type("\x1B"), "\r\nOK\r\n");
  EXPECT_THAT(network.taken, SizeIs(2));
}

TEST_F(TextModeTest, Characters_AreThoseOfTheSetThatWasChosen) {
  EXPECT_EQ(send(std::string("\x00\x08\x1F", 3)), "+CMGS: 1|OK|");  // the alphabet's own codes
  EXPECT_EQ(network.taken.at(0).text, u"@\u00F2\u00C9");
  EXPECT_EQ(send("\x80"), "+CMS ERROR: 305|");
  ask("AT+CSCS=\"IRA\"");
  EXPECT_EQ(send("a@_{`"), "+CMGS: 2|OK|");
  EXPECT_EQ(network.taken.at(1).text, u"a@_{?");  // the alphabet has no "`"
  EXPECT_EQ(send("\xE5"), "+CMS ERROR: 305|");
  ask("AT+CSCS=\"UCS2\"");
  EXPECT_EQ(give("AT+CMGS=\"002B0034003600370030\"", "00E520AC"), "+CMGS: 3|OK|");
  EXPECT_EQ(network.taken.at(2).destination, "+4670");
  EXPECT_EQ(network.taken.at(2).text, u"\u00E5\u20AC");
  EXPECT_EQ(send("00E"), "+CMS ERROR: 305|");
  ask("AT+CSCS=\"HEX\"");
  EXPECT_EQ(send("0F1B65"), "+CMGS: 4|OK|");
  EXPECT_EQ(network.taken.at(3).text, u"\u00E5\u20AC");
  EXPECT_EQ(send("80"), "+CMS ERROR: 305|");
}

TEST_F(TextModeTest, TextsThatAreTooLong_AreRefused) {
  ask("AT+CSCS=\"IRA\"");
  EXPECT_EQ(send(std::string(160, 'x')), "+CMGS: 1|OK|");
  EXPECT_EQ(send(std::string(161, 'x')), "+CMS ERROR: 305|");
  EXPECT_EQ(send(std::string(80, '{')), "+CMGS: 2|OK|");
  EXPECT_EQ(send(std::string(80, '{') + 'x'), "+CMS ERROR: 305|");
  EXPECT_EQ(send(std::string(60000, 'x')), "+CMS ERROR: 305|");
  ask("AT+CSMP=17,167,0,8");
  EXPECT_EQ(send(std::string(280, '0')), "+CMGS: 3|OK|");
  EXPECT_EQ(send(std::string(282, '0')), "+CMS ERROR: 305|");
  EXPECT_THAT(network.taken, SizeIs(3));
}

TEST_F(TextModeTest, Parameters_ShapeWhatIsTyped) {
  EXPECT_EQ(ask("AT+CSMP?"), "+CSMP: 17,167,0,0|OK|");
  EXPECT_EQ(ask("AT+CSMP=1;+CSMP?"), "+CSMP: 1,167,0,0|OK|");
  EXPECT_EQ(send("hellohello"), "+CMGS: 1|OK|");
  EXPECT_EQ(phone::toHex(network.taken.at(0).submit), shortSubmitPdu);
  // UCS-2, in hexadecimal.
  EXPECT_EQ(ask("AT+CSMP=17,,,8"), "OK|");
  EXPECT_EQ(send("041F0440D83DDE00"), "+CMGS: 2|OK|");
  EXPECT_EQ(network.taken.at(1).text, u"\u041F\u0440\U0001F600");
  EXPECT_EQ(send("hello"), "+CMS ERROR: 305|");
  // A header, and "hello" behind it.
  EXPECT_EQ(ask("AT+CSMP=81,167,0,0"), "OK|");
  EXPECT_EQ(send("0500032A0201D06536FB0D"), "+CMGS: 3|OK|");
  EXPECT_EQ(network.taken.at(2).text, u"hello");
  EXPECT_EQ(send("0900032A0201D06536FB0D"), "+CMGS: 4|OK|");  // one that makes no sense is still a header
  EXPECT_EQ(send("FF"), "+CMS ERROR: 305|");                  // longer than everything
  // What is no Submit, and what is no parameter.
  EXPECT_EQ(ask("AT+CSMP=4"), "OK|");
  EXPECT_EQ(send("x"), "+CMS ERROR: 305|");
  EXPECT_EQ(ask("AT+CSMP=25"), "+CMS ERROR: 303|");
  for (const char* const wrong : {"AT+CSMP=256", "AT+CSMP=17,x", "AT+CSMP=17,167,0,0,0", "AT+CSMP"})
    EXPECT_EQ(ask(wrong), "+CMS ERROR: 305|") << wrong;
  EXPECT_EQ(ask("AT+CSMP?"), "+CSMP: 4,167,0,0|OK|");
}

TEST_F(TextModeTest, Destinations_MustBeNumbers) {
  for (const char* const wrong :
       {"AT+CMGS", "AT+CMGS=", "AT+CMGS=\"\"", "AT+CMGS=\"Anna\"", "AT+CMGS=\"+4670\",208", "AT+CMGS=\"+4670\",1",
        "AT+CMGS=\"+4670\",145,1", "AT+CMGS?", "AT+CMGS=\"+467012345678901234567\""})
    EXPECT_EQ(ask(wrong), "+CMS ERROR: 305|") << wrong;
  EXPECT_EQ(ask("AT"), "OK|");
}

TEST_F(TextModeTest, Write_KeepsDraftsAndReceivedMessages) {
  EXPECT_EQ(give("AT+CMGW=\"+46708251358\"", "hellohello"), "+CMGW: 1|OK|");
  EXPECT_EQ(give("AT+CMGW=\"+46700000001\",145,\"REC UNREAD\"", "hellohello"), "+CMGW: 2|OK|");
  EXPECT_EQ(give("AT+CMGW", "To nobody"), "+CMGW: 3|OK|");
  EXPECT_EQ(give("AT+CMGW=\"+4670\",,\"STO SENT\"", "No room"), "+CMS ERROR: 322|");
  const auto& slots = handset.memories().at(Place::Sim).slots;
  EXPECT_EQ(slots.at(1), (StoredPdu{Status::StoredUnsent, octets(typedPdu)}));
  EXPECT_EQ(slots.at(2), (StoredPdu{Status::ReceivedUnread, octets(deliverPdu)}));
  EXPECT_EQ(ask("AT+CMGR=3"), "+CMGR: \"STO UNSENT\",\"\",\r\nTo nobody|OK|");
  EXPECT_EQ(ask("AT+CMSS=3"), "+CMS ERROR: 1|");
  EXPECT_EQ(ask("AT+CMSS=3,\"+46701111111\""), "+CMSS: 1|OK|");
  EXPECT_EQ(network.taken.at(0).text, u"To nobody");
  for (const char* const wrong : {"AT+CMGW=\"Anna\"", "AT+CMGW=\"1\",129,2", "AT+CMGW=\"1\",129,\"ALL\"", "AT+CMGW?"})
    EXPECT_EQ(ask(wrong), "+CMS ERROR: 305|") << wrong;
}

TEST_F(TextModeTest, Write_OfAReceivedMessageTakesTheFirstOctetOfOne) {
  EXPECT_EQ(ask("AT+CSMP=12,,5,240"), "OK|");  // whose fourth bit is no validity
  EXPECT_EQ(give("AT+CMGW=\"+46700000001\",145,\"REC READ\"", "hellohello"), "+CMGW: 1|OK|");
  EXPECT_EQ(phone::toHex(handset.memories().at(Place::Sim).slots.at(1).pdu),
            "07916407000000F0040B916407000000F105F0622030405060400AE8329BFD4697D9EC37");
  EXPECT_EQ(give("AT+CMGW=\"+46700000001\",145,\"STO SENT\"", "hellohello"), "+CMS ERROR: 305|");
  ask("AT+CSMP=2");  // a report
  EXPECT_EQ(give("AT+CMGW=\"+46700000001\",145,\"REC READ\"", "hellohello"), "+CMS ERROR: 305|");
}

TEST_F(TextModeTest, Sender_WithAQuotationMarkStaysOneParameter) {
  // From "a"b".
  put(Place::Sim, 1, Status::ReceivedRead,
      "000406D0619118"
      "0000"
      "622030405060400AE8329BFD4697D9EC37");
  EXPECT_EQ(ask("AT+CMGR=1"), "+CMGR: \"REC READ\",\"a\\22b\",," + std::string(stamp) + "\r\nhellohello|OK|");
}

TEST_F(TextModeTest, Arriving_ComesInWordsToo) {
  ask("AT+CNMI=2,2,0,1");
  EXPECT_EQ(handset.deliver(octets(deliverPdu)), Handset::Arrival::Direct);
  EXPECT_EQ(heard(), std::string("\r\n+CMT: \"+46700000001\",,") + stamp + "\r\nhellohello\r\n");
  ask("AT+CSDH=1");
  handset.deliver(octets(deliverPdu));
  EXPECT_EQ(heard(), std::string("\r\n+CMT: \"+46700000001\",,") + stamp +
                         ",145,4,0,0,\"+46700000000\",145,10\r\nhellohello\r\n");
  ask("AT+CSMP=49");  // with a report
  EXPECT_EQ(send("hellohello"),
            std::string("+CMGS: 1|OK|+CDS: 6,1,\"+46708251358\",145,") + stamp + ',' + stamp + ",0|");
}

TEST_F(TextModeTest, Acknowledgement_HasNoWords) {
  ask("AT+CSMS=1;+CNMI=2,2");
  handset.deliver(octets(deliverPdu));
  heard();
  EXPECT_EQ(ask("AT+CNMA=1"), "+CMS ERROR: 305|");
  EXPECT_EQ(ask("AT+CNMA"), "OK|");
  EXPECT_EQ(ask("AT+CNMA=?"), "OK|");
}

TEST_F(TextModeTest, Format_IsEachPortsOwnAndForgottenByARestart) {
  EXPECT_EQ(ask("AT+CMGF?"), "+CMGF: 1|OK|");
  Port other(handset);
  other.receive("ATE0\rAT+CMGF?\r", now);
  EXPECT_THAT(other.take(now), testing::HasSubstr("+CMGF: 0\r\n"));
  ask("AT+CFUN=1,1");
  heard();
  EXPECT_THAT(type("AT+CMGF?\r"), testing::HasSubstr("+CMGF: 0\r\n"));
}

TEST_F(TextModeTest, Errors_AreInTheStyleThatWasChosen) {
  EXPECT_EQ(ask("AT+CMEE=2;+CMGL=\"X\""), "+CMS ERROR: Invalid text mode parameter|");
  EXPECT_EQ(ask("AT+CMEE=0;+CMGL=\"X\""), "ERROR|");
}

}  // namespace
}  // namespace phonesim
