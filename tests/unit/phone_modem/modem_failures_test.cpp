// What is tried again, how often, and what is made of it then.
#include "unit/phone_modem/modem_fixture.h"

namespace phone {
namespace {

using ModemFailures = ModemTest;
using Messages = std::vector<StoredPdu>;

const std::string readsHello = "\n  say +CMGR: 1,,28\n  say " + hello + "\n  say OK\n";

TEST_F(ModemFailures, DeletionWithoutAnAnswer_IsDoneWhenTheMessageIsGone) {
  connectTo("on SM: AT+CMGR=1" + readsHello + "on SM: AT+CMGR=1\n  say +CMS ERROR: 321\non AT+CMGD=1\n  pause 1");
  EXPECT_EQ(modem_->remove({Memory::Sim, 1}, hello), Outcome());
  EXPECT_EQ(script_->heardOf("AT+CMGR").size(), 2u);
  EXPECT_EQ(script_->heardOf("AT+CMGD").size(), 1u);
}

TEST_F(ModemFailures, DeletionWithoutAnAnswer_IsRepeatedWhenTheMessageIsThere) {
  connectTo("on AT+CMGD=1\n  pause 1\non AT+CMGD=1\n  say OK");
  EXPECT_EQ(modem_->remove({Memory::Sim, 1}, hello), Outcome());
  EXPECT_EQ(script_->heardOf("AT+CMGD").size(), 2u);
  connectTo("on AT+CMGD=1\n  pause 1");
  EXPECT_EQ(modem_->remove({Memory::Sim, 1}, hello), Outcome{Kind::NoAnswer});
  EXPECT_EQ(script_->heardOf("AT+CMGD").size(), 2u);
}

TEST_F(ModemFailures, DeletionOfWhatVanishedJustNow_FindsAnEmptySlot) {
  for (const char* error : {"+CMS ERROR: 321", "+CME ERROR: 21", "+CME ERROR: 22"}) {
    SCOPED_TRACE(error);
    connectTo("on AT+CMGD=1\n  say " + std::string(error));
    EXPECT_EQ(modem_->remove({Memory::Sim, 1}, hello), Outcome{Kind::Empty});
    EXPECT_EQ(script_->heardOf("AT+CMGD").size(), 1u);
  }
}

TEST_F(ModemFailures, DeletionOfWhatCannotBeReadForSure_IsNotDone) {
  connectTo("on SM: AT+CMGR=1\n  say +CMGR: 1,,28\n  say " + hello.substr(0, 40) + "\n  say OK");
  EXPECT_EQ(modem_->remove({Memory::Sim, 1}, hello), Outcome{Kind::NoAnswer});
  EXPECT_EQ(script_->heardOf("AT+CMGR").size(), 4u);
  EXPECT_EQ(script_->heardOf("AT+CMGD"), Heard());
}

TEST_F(ModemFailures, SlotWithoutAnAnswer_IsReadOnceMore) {
  connectTo("on SM: AT+CMGL=4\n  say ERROR\non SM: AT+CMGR=1\n  pause 1\non SM: AT+CMGR=1" + readsHello);
  EXPECT_EQ(listed(Memory::Sim), (Messages{{1, Status::ReceivedRead, hello}, {3, Status::ReceivedRead, hej}}));
  EXPECT_EQ(script_->heardOf("AT+CMGR=1"),
            (Heard{"AT+CMGR=1", "AT+CMGR=1", "AT+CMGR=10", "AT+CMGR=11", "AT+CMGR=12", "AT+CMGR=13", "AT+CMGR=14",
                   "AT+CMGR=15", "AT+CMGR=16", "AT+CMGR=17", "AT+CMGR=18", "AT+CMGR=19"}));
}

TEST_F(ModemFailures, MessageForABusyModem_IsRepeatedTwice) {
  connectTo(
      "on message *\n  say +CMS ERROR: 515\non message *\n  say +CMS ERROR: 314\non message *\n"
      "  say +CMGS: 7\n  say OK");
  EXPECT_EQ(send(u"hellohello"), Outcome());
  EXPECT_EQ(script_->heardOf("message"), Heard(3, "message " + helloOut));
  connectTo("on message *\n  say +CMS ERROR: 515");
  EXPECT_EQ(send(u"hellohello"), refused(515));
  EXPECT_EQ(script_->heardOf("message").size(), 3u);
}

TEST_F(ModemFailures, NetworkWithoutRoom_IsTriedAgainOnlyOnTheWay) {
  for (const int cause : {41, 42, 47}) {
    SCOPED_TRACE(cause);
    const std::string refusal = "on message *\n  say +CMS ERROR: " + std::to_string(cause) + "\n";
    const std::string taken = "on message *\n  say +CMGS: 7\n  say OK\n";
    connectTo(refusal + taken);
    EXPECT_EQ(send(u"hellohello"), refused(cause));
    EXPECT_EQ(script_->heardOf("message").size(), 1u);

    connectTo(taken + refusal + refusal + taken);
    const Instant begin = script_->now();
    EXPECT_EQ(send(std::u16string(200, u'x')), Outcome());
    const Heard parts = script_->heardOf("message");
    ASSERT_EQ(parts.size(), 4u);
    EXPECT_EQ(parts[1], parts[2]);
    EXPECT_EQ(parts[2], parts[3]);
    EXPECT_GE(script_->now() - begin, Milliseconds(2 * 5000));

    connectTo(taken + refusal);
    EXPECT_EQ(send(std::u16string(200, u'x')), refused(cause));
    EXPECT_EQ(script_->heardOf("message").size(), 4u);
  }
}

TEST_F(ModemFailures, PauseThatDidNotHelp_IsNotKept) {
  connectTo(
      "on message *\n  say +CMS ERROR: 304\non message *\n  say +CMS ERROR: 304\non message *\n"
      "  say +CMGS: 7\n  say OK");
  EXPECT_EQ(send(u"hellohello"), refused(304));
  EXPECT_EQ(script_->heardOf("message").size(), 2u);
  // What follows an error is waited for, so the time of the one behind that counts.
  EXPECT_EQ(send(u"hellohello"), Outcome());
  const Instant begin = script_->now();
  EXPECT_EQ(send(u"hellohello"), Outcome());
  EXPECT_EQ(script_->now() - begin, Milliseconds(0));
}

TEST_F(ModemFailures, MessageWithoutAnAnswer_IsFollowedByASetUp) {
  connect("silent-send");
  EXPECT_EQ(send(u"hellohello"), Outcome{Kind::Unknown});
  EXPECT_EQ(script_->heardOf("AT+CNMI"), Heard());
  listed(Memory::Phone);
  EXPECT_EQ(script_->heardOf("AT+CNMI"), Heard{"AT+CNMI=2,1,0,0,0"});
}

TEST_F(ModemFailures, ModemWithoutPduMode_IsNone) {
  begin(ScriptedModem("like plain\non AT+CMGF=0\n  say ERROR\non AT+CMGF?\n  say +CMGF: 1\n  say OK"));
  EXPECT_THROW(modem_->connect(), at::NotAnswering);
  begin(ScriptedModem("like plain\non AT+CMGF=0\n  say ERROR"));
  EXPECT_THROW(modem_->connect(), at::NotAnswering);
}

TEST_F(ModemFailures, ModemWithPduModeAlone_NeedNotTakeTheCommand) {
  connectTo("on AT+CMGF=0\n  say ERROR\non AT+CMGF?\n  say +CMGF: 0\n  say OK");
  expectWorking();
}

TEST_F(ModemFailures, ModemWithoutNumbersForErrors_IsAskedWhetherItIsThere) {
  connect("cmee-refused");
  modem_->check();
  EXPECT_EQ(script_->heard, Heard{"AT"});
}

TEST_F(ModemFailures, CharacterSet_IsTheNextBest) {
  begin(ScriptedModem("like plain\non AT+CSCS=\"GSM\"\n  say ERROR\non AT+CSCS=\"IRA\"\n  say OK"));
  modem_->connect();
  EXPECT_EQ(script_->heardOf("AT+CSCS"), (Heard{"AT+CSCS=\"GSM\"", "AT+CSCS=\"IRA\""}));
}

TEST_F(ModemFailures, MemoriesInOneMorePairOfBrackets_AreThose) {
  begin(
      ScriptedModem("like plain\non AT+CPMS=?\n  say +CPMS: ((\"SM\",\"MT\"),(\"ME\",\"SM\"))\n  say OK\n"
                    "on AT+CPMS=\"MT\",\"MT\",\"SM\"\n  say +CPMS: 1,120,1,120,1,120\n  say OK"));
  modem_->connect();
  EXPECT_EQ(modem_->memory(Memory::Phone).name, "MT");
  EXPECT_EQ(modem_->memory(Memory::Sim).name, "SM");
}

}  // namespace
}  // namespace phone
