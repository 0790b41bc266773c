// What can be done to the handset from outside.
#include "phonesim/console/console.h"

#include "unit/phonesim/fixture.h"

namespace phonesim {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ConsoleTest : public DialogueTest, public ConsoleHost {
 protected:
  std::vector<std::string> say(const std::string& line) {
    console.receive(line + '\n');
    console.advance(now);
    return std::exchange(answers, {});
  }

  void setPlugged(bool plugged) override { plugged_ = plugged; }
  bool isPlugged() const override { return plugged_; }
  bool hasHost() const override { return host; }
  void quit() override { hasQuit = true; }
  const std::vector<Submission>& sent() const override { return network.taken; }
  void clearSent() override { network.taken.clear(); }

  bool plugged_ = true;
  bool host = false;
  bool hasQuit = false;
  std::vector<std::string> answers;
  Console console{handset, *this, [this](const std::string& line) { answers.push_back(line); }};
};

TEST_F(ConsoleTest, Deliver_ArrivesFromANumberOrAName) {
  EXPECT_THAT(say("deliver +46708251358 hellohello"), ElementsAre("ok stored"));
  EXPECT_THAT(say("deliver Marrick \"two words, \\\"quoted\\\"\\n\\u20AC\""), ElementsAre("ok stored"));
  EXPECT_THAT(say("list"),
              ElementsAre("- SM 1 unread \"+46708251358\" 260203040506 \"hellohello\"",
                          "- SM 2 unread \"Marrick\" 260203040506 \"two words, \\\"quoted\\\"\\n€\"", "ok 2"));
  EXPECT_EQ(phone::toHex(handset.memories().at(Place::Sim).slots.at(1).pdu),
            "07916407000000F0040B916407281553F8000062203040506040"
            "0AE8329BFD4697D9EC37");
}

TEST_F(ConsoleTest, Deliver_CutsALongText) {
  EXPECT_THAT(say("deliver +46708251358 " + std::string(200, 'x')), ElementsAre("ok stored"));
  EXPECT_THAT(
      say("list SM"),
      ElementsAre("- SM 1 unread \"+46708251358\" 260203040506 part 1/2 \"" + std::string(153, 'x') + '"',
                  "- SM 2 unread \"+46708251358\" 260203040506 part 2/2 \"" + std::string(47, 'x') + '"', "ok 2"));
}

TEST_F(ConsoleTest, Emoji_StayWholeInUtf8) {
  say("deliver +46708251358 \"😀 åäö\"");
  EXPECT_THAT(say("list"), ElementsAre("- SM 1 unread \"+46708251358\" 260203040506 \"😀 åäö\"", "ok 1"));
}

TEST_F(ConsoleTest, FillAndDeliver_WaitsForRoom) {
  EXPECT_THAT(say("fill SM 1"), ElementsAre("ok 2"));
  EXPECT_THAT(say("fill ME"), ElementsAre("ok 5"));
  EXPECT_THAT(say("deliver +4670 a"), ElementsAre("ok stored"));
  EXPECT_THAT(say("deliver +4670 b"), ElementsAre("ok waiting"));
  EXPECT_THAT(say("status"), ElementsAre("- number +46700000001", "- centre +46700000000", "- memory ME 5 of 5",
                                         "- memory SM 3 of 3", "- waiting 1", "- travelling 0", "- sent 0",
                                         "- network home", "- plugged in", "- ports 1", "ok"));
  EXPECT_THAT(say("take SM 2"), ElementsAre("ok"));
  EXPECT_TRUE(handset.state().waiting.empty());
  EXPECT_THAT(say("take ME 9"), ElementsAre("error that slot is empty"));
  EXPECT_THAT(say("clear ME"), ElementsAre("ok 5"));
}

TEST_F(ConsoleTest, Store_PutsAnyPdu) {
  EXPECT_THAT(say(std::string("store ME unsent ") + submitPdu), ElementsAre("ok 1"));
  EXPECT_THAT(say("list ME"), ElementsAre("- ME 1 unsent \"+46708251358\" \"hellohello\"", "ok 1"));
  EXPECT_THAT(say("store ME unsent XY"), ElementsAre("error \"XY\" is no PDU in hexadecimal"));
  EXPECT_THAT(say("store XX unsent 00"), ElementsAre("error \"XX\" is none of: ME, SM"));
  EXPECT_THAT(say(std::string("deliver-pdu ") + deliverPdu), ElementsAre("ok stored"));
  EXPECT_EQ(handset.memories().at(Place::Sim).slots.at(1).pdu, octets(deliverPdu));
}

TEST_F(ConsoleTest, Contacts_AreWhatAHostReads) {
  EXPECT_THAT(say("contact SM +4670-1 \"Anna B\""), ElementsAre("ok SM 1"));
  EXPECT_THAT(say("contact ME 0702 Bo"), ElementsAre("ok ME 1"));
  EXPECT_TRUE(handset.takeChanged());
  EXPECT_EQ(ask("AT+CPBR=1"), "+CPBR: 1,\"+46701\",145,\"Anna B\"|OK|");
  EXPECT_THAT(say("contacts"), ElementsAre("- ME 1 0702 \"Bo\"", "- SM 1 +46701 \"Anna B\"", "ok 2"));
  EXPECT_THAT(say("contact SM x Anna"), ElementsAre("error \"x\" is no number"));
  EXPECT_THAT(say("contact SM 1 1234567890123456789"), ElementsAre("error \"1234567890123456789\" is too long"));
  EXPECT_THAT(say("contact SM 1"), ElementsAre("error contact: wrong number of words; try help"));
}

TEST_F(ConsoleTest, Capacity_DoesNotCutMessagesOff) {
  say("fill SM");
  EXPECT_THAT(say("capacity SM 2"), ElementsAre("error there is a message in slot 3"));
  EXPECT_THAT(say("capacity SM 50"), ElementsAre("ok"));
  EXPECT_EQ(ask("AT+CPMS=\"SM\""), "+CPMS: 3,50,3,50,3,55|OK|");
}

TEST_F(ConsoleTest, Faults_ReachTheDialogue) {
  EXPECT_THAT(say("fail send 3"), ElementsAre("ok"));
  for (int i = 0; i < 3; ++i) {
    type("AT+CMGS=23\r");
    EXPECT_EQ(answerPrompt(submitPdu), "+CMS ERROR: 38|");
  }
  type("AT+CMGS=23\r");
  EXPECT_EQ(answerPrompt(submitPdu), "+CMGS: 1|OK|");
  type("AT+CMGS=23\r");
  EXPECT_EQ(answerPrompt("07916407058099F9" + std::string(submitPdu).substr(2)), "+CMGS: 2|OK|");
  EXPECT_THAT(say("sent"), ElementsAre("- +46708251358 \"+46708251358\" \"hellohello\"",
                                       "- +46708251358 \"+46708251358\" \"hellohello\" by +46705008999", "ok 2"));
  say("late 100");
  EXPECT_EQ(ask("AT"), "");
  now += Time{100};
  EXPECT_EQ(lines(heard()), "OK|");
  say("garble");
  EXPECT_EQ(ask("AT+CSQ"), "+~SQ~ 2~,0|OK|");
  say("speed 300");  // 33 milliseconds for each octet
  EXPECT_EQ(ask("AT"), "");
  now += Time{100};
  EXPECT_EQ(heard(), "");
  now += Time{200};
  EXPECT_EQ(heard(), "\r\nOK\r\n");
  say("speed 0");
  say("silent");
  EXPECT_EQ(ask("AT"), "");
  say("speak");
  EXPECT_EQ(ask("AT"), "OK|");
  say("noise \"^BOOT: 1\"");
  EXPECT_EQ(lines(heard()), "^BOOT: 1|");
  say("network off");
  EXPECT_EQ(ask("AT+CREG?"), "+CREG: 0,0|OK|");
  say("network home");
  say("signal 5");
  EXPECT_EQ(ask("AT+CSQ"), "+CSQ: 5,0|OK|");
  say("sim out");
  EXPECT_EQ(ask("AT+CMGL"), "+CMS ERROR: 310|");
  say("sim in 1234");
  EXPECT_EQ(ask("AT+CMGL"), "+CMS ERROR: 311|");
  say("restart");
  EXPECT_EQ(lines(heard()), "RDY|+CFUN: 1|");
}

TEST_F(ConsoleTest, Cable_IsTheProgramsMatter) {
  EXPECT_THAT(say("unplug"), ElementsAre("ok"));
  EXPECT_FALSE(plugged_);
  EXPECT_THAT(say("plug"), ElementsAre("ok"));
  EXPECT_TRUE(plugged_);
  EXPECT_THAT(say("quit"), ElementsAre("ok"));
  EXPECT_TRUE(hasQuit);
}

TEST_F(ConsoleTest, Wait_HoldsBackWhatFollows) {
  EXPECT_THAT(say("wait 500\nsignal 7"), ElementsAre("ok"));
  EXPECT_EQ(console.nextWork(), now + Time{500});
  now += Time{499};
  EXPECT_THAT(say("signal 8"), IsEmpty());
  now += Time{1};
  EXPECT_THAT(say(""), ElementsAre("ok", "ok"));
  EXPECT_EQ(handset.signal(), 8);
  EXPECT_THAT(say("wait sent"), ElementsAre("ok"));
  EXPECT_THAT(say("signal 9"), IsEmpty());
  type("AT+CMGS=23\r" + std::string(submitPdu) + "\x1A");
  EXPECT_THAT(say("wait host"), ElementsAre("ok", "ok"));
  EXPECT_THAT(say("signal 10"), IsEmpty());
  host = true;
  EXPECT_THAT(say(""), ElementsAre("ok"));
  EXPECT_TRUE(console.isIdle());
}

TEST_F(ConsoleTest, WrongLines_AreExplained) {
  EXPECT_THAT(say("dance"), ElementsAre("error no command \"dance\"; try help"));
  EXPECT_THAT(say("deliver +4670"), ElementsAre("error deliver: wrong number of words; try help"));
  EXPECT_THAT(say("deliver \"+4670"), ElementsAre("error the quotes stay open"));
  EXPECT_THAT(say("deliver +4670 \"\\q\""), ElementsAre("error unknown escape"));
  EXPECT_THAT(say("deliver +4670 \"\\u12\""), ElementsAre("error four hexadecimal digits are missing"));
  EXPECT_THAT(say("deliver twelveletters x"),
              ElementsAre("error \"twelveletters\" is neither a number nor a name of at most eleven letters"));
  EXPECT_THAT(say("signal 32"), ElementsAre("error \"32\" is not a number from 0 to 31"));
  EXPECT_THAT(say("network maybe"), ElementsAre("error \"maybe\" is none of: off, home, searching, denied, roaming"));
  EXPECT_THAT(say("# nothing"), IsEmpty());
  EXPECT_THAT(say(""), IsEmpty());
}

TEST_F(ConsoleTest, Help_NamesEveryCommandThatTheConsoleHas) {
  const auto help = say("help");
  EXPECT_GT(help.size(), 20u);
  EXPECT_EQ(help.back(), "ok");
  for (const char* const word : {"deliver", "fill", "fail", "lose", "late", "silent", "unplug", "garble", "wait"})
    EXPECT_NE(Console::helpText().find(word), std::string_view::npos) << word;
}

TEST_F(ConsoleTest, PiecesOfLines_AreJoined) {
  console.receive("sig");
  console.receive("nal 3\r\nsignal 4");
  console.advance(now);
  EXPECT_THAT(answers, ElementsAre("ok"));
  EXPECT_EQ(handset.signal(), 3);
}

TEST(WordsTest, Utf8_ComesBackTheSameAndWrongOctetsAreReplaced) {
  EXPECT_EQ(toUtf8(fromUtf8("aé€😀")), "aé€😀");
  EXPECT_EQ(fromUtf8("a\xC3(\xFF\xED\xA0\x80"), u"a\xFFFD(\xFFFD\xFFFD\xFFFD\xFFFD");
  EXPECT_EQ(fromUtf8("\xC0\x80\xE2\x82"), u"\xFFFD\xFFFD\xFFFD\xFFFD");
  EXPECT_EQ(toUtf8(std::u16string(1, u'\xD800')), "\xEF\xBF\xBD");
}

}  // namespace
}  // namespace phonesim
