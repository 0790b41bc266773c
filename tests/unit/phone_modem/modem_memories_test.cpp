// What lies in the memories, on lines that damage what is said, in modems that are busy, that begin anew or that have
// no such slots: nothing is forgotten, nothing becomes read that nobody has read, nothing else is deleted.
#include <algorithm>

#include "unit/phone_modem/modem_fixture.h"

namespace phone {
namespace {

using ModemMemories = ModemTest;
using Messages = std::vector<StoredPdu>;

std::string reading(const std::string& header, const std::string& pdu, const std::string& result = "OK") {
  return "  say " + header + "\n  say " + pdu + "\n  say " + result + "\n";
}

TEST_F(ModemMemories, DamagedAnswerToAReading_IsNoEmptySlot) {
  connectTo("on SM: AT+CMGR=4\n" + reading("+CM#R: 0,,28", hello));
  EXPECT_EQ(modem_->read({Memory::Sim, 4}).outcome, Outcome{Kind::NoAnswer});
  EXPECT_EQ(script_->heardOf("AT+CMGR"), (Heard{"AT+CMGR=4", "AT+CMGR=4"}));

  connectTo("on SM: AT+CMGR=4\n" + reading("+CM#R: 0,,28", hello) + "on SM: AT+CMGR=4\n" +
            reading("+CMGR: 1,,28", hello));
  const Reading second = modem_->read({Memory::Sim, 4});
  EXPECT_EQ(second.outcome, Outcome());
  EXPECT_EQ(second.message, (StoredPdu{4, Status::ReceivedRead, hello}));

  // Header and message both damaged, and the next answer whole.
  connectTo("on SM: AT+CMGR=4\n" + reading("+CM#R: 0,,28", "07916?") + "on SM: AT+CMGR=4\n" +
            reading("+CMGR: 1,,28", hello));
  EXPECT_EQ(modem_->read({Memory::Sim, 4}).outcome, Outcome());
}

TEST_F(ModemMemories, EmptySlotOfAModemThatTalks_IsEmpty) {
  for (const char* result : {"+CMS ERROR: 321", "OK"}) {
    SCOPED_TRACE(result);
    connectTo("on SM: AT+CMGR=4\n  say SIM Tray Closed\n  say " + std::string(result));
    EXPECT_EQ(modem_->read({Memory::Sim, 4}).outcome, Outcome{Kind::Empty});
  }
}

TEST_F(ModemMemories, DamagedMessage_StaysThoughItsReadingIsDamagedToo) {
  const std::string damaged = hello.substr(0, 30);
  connectTo("on SM: AT+CMGL=4\n  say +CMGL: 1,0,,28\n  say " + damaged + "\n" + reading("+CMGL: 3,1,,25", hej) +
            "on SM: AT+CMGR=1\n" + reading("+CM#R: 1,,28", hello));
  const Listing listing = modem_->list(Memory::Sim);
  EXPECT_EQ(listing.outcome, Outcome{Kind::NoAnswer});  // to be listed again
  EXPECT_EQ(listing.messages, (Messages{{1, Status::ReceivedUnread, damaged}, {3, Status::ReceivedRead, hej}}));
  EXPECT_EQ(modem_->remove({Memory::Sim, 1}, hello), Outcome{Kind::NoAnswer});
  EXPECT_EQ(script_->heardOf("AT+CMGD"), Heard());
}

TEST_F(ModemMemories, DamagedMessage_StaysThoughItsSlotReadsAsEmpty) {
  const std::string damaged = hello.substr(0, 30);
  connectTo("on SM: AT+CMGL=4\n" + reading("+CMGL: 1,0,,28", damaged) + "on SM: AT+CMGR=1\n  say OK");
  EXPECT_EQ(listed(Memory::Sim), (Messages{{1, Status::ReceivedUnread, damaged}}));
}

TEST_F(ModemMemories, MessageThatWasUnreadWhenFirstRead_StaysUnread) {
  connectTo("on SM: AT+CMGR=4\n" + reading("+CMGR: 0,,28", hello.substr(0, 20)) + "on SM: AT+CMGR=4\n" +
            reading("+CMGR: 1,,28", hello));
  const Reading reading = modem_->read({Memory::Sim, 4});
  EXPECT_TRUE(reading.whole);
  EXPECT_EQ(reading.message, (StoredPdu{4, Status::ReceivedUnread, hello}));
}

TEST_F(ModemMemories, ListingThatABusySimBreaksOff_KeepsWhatWasUnread) {
  connectTo("on SM: AT+CMGL=4\n" + reading("+CMGL: 3,0,,28", hello, "+CMS ERROR: 314") + "on SM: AT+CMGL=4\n" +
            reading("+CMGL: 3,1,,28", hello));
  EXPECT_EQ(listed(Memory::Sim), (Messages{{3, Status::ReceivedUnread, hello}}));
}

TEST_F(ModemMemories, ReadingWithAnErrorOfABusySimBehindIt_IsNotRepeated) {
  connectTo("on SM: AT+CMGR=4\n" + reading("+CMGR: 0,,28", hello, "+CMS ERROR: 314") + "on SM: AT+CMGR=4\n" +
            reading("+CMGR: 1,,28", hello));
  const Reading reading = modem_->read({Memory::Sim, 4});
  EXPECT_EQ(reading.outcome, Outcome());
  EXPECT_EQ(reading.message, (StoredPdu{4, Status::ReceivedUnread, hello}));
}

TEST_F(ModemMemories, ListingThatCannotBeRepeated_GivesWhatItHadRead) {
  connectTo("on SM: AT+CMGL=4\n" + reading("+CMGL: 3,0,,28", hello, "ERROR") +
            "on AT+CPMS=\"SM\",\"SM\",\"SM\"\n  say OK\n"
            "on AT+CPMS=\"SM\",\"SM\",\"SM\"\n  say +CMS ERROR: 313");
  script_->heard.clear();
  const Listing listing = modem_->list(Memory::Sim);
  EXPECT_EQ(listing.outcome, refused(313));
  EXPECT_EQ(listing.messages, (Messages{{3, Status::ReceivedUnread, hello}}));
}

TEST_F(ModemMemories, SimThatBecomesUsableLater_IsFoundByACheck) {
  connectTo(
      "on AT+CPMS=\"SM\"*\n  say +CMS ERROR: 313\n"
      "on AT+CPMS=\"SM\"*\n  say +CMS ERROR: 314\n"
      "on AT+CPMS=\"SM\"*\n  say +CPMS: 2,20,2,20,2,20\n  say OK");
  EXPECT_TRUE(modem_->isSupported(Memory::Phone));
  EXPECT_FALSE(modem_->isSupported(Memory::Sim));
  const Instant begin = script_->now();
  modem_->check();
  // Nobody waits for a SIM that is busy: the next check is soon enough.
  EXPECT_EQ(script_->heard, (Heard{"AT", "AT+CPMS=\"SM\",\"SM\",\"SM\"", "AT", "AT+CMEE?"}));
  EXPECT_LT(script_->now() - begin, Milliseconds(1000));
  EXPECT_FALSE(modem_->isSupported(Memory::Sim));
  EXPECT_TRUE(modem_->isSupported(Memory::Phone));
  modem_->check();
  EXPECT_TRUE(modem_->isSupported(Memory::Phone));
  ASSERT_TRUE(modem_->isSupported(Memory::Sim));
  EXPECT_EQ(modem_->memory(Memory::Sim).capacity, 20);
  script_->heard.clear();
  modem_->check();
  EXPECT_EQ(script_->heard, Heard{"AT+CMEE?"});
  expectWorking();
}

TEST_F(ModemMemories, SimThatIsUnlockedLater_IsFoundThoughItWasNotOffered) {
  connectTo(
      "on AT+CPIN?\n  say +CPIN: SIM PIN\n  say OK\n"
      "on AT+CPMS=?\n  say +CPMS: (\"ME\"),(\"ME\"),(\"ME\")\n  say OK");
  EXPECT_FALSE(modem_->isSupported(Memory::Sim));
  modem_->check();
  EXPECT_TRUE(modem_->isSupported(Memory::Sim));
  expectWorking();
}

TEST_F(ModemMemories, BothMemoriesMissing_AreFoundByACheck) {
  connectTo(
      "on AT+CPMS*\n  say +CMS ERROR: 311\n"
      "on AT+CPMS=\"ME\"*\n  say +CMS ERROR: 310\non AT+CPMS=\"ME\"*\n  say +CMS ERROR: 310\n"
      "on AT+CPMS=\"ME\"*\n  say +CMS ERROR: 310\n"
      "on AT+CPMS=\"ME\"*\n  say +CPMS: 0,100,0,100,2,20\n  say OK\n"
      "on AT+CPMS=\"SM\"*\n  say +CMS ERROR: 311\non AT+CPMS=\"SM\"*\n  say +CMS ERROR: 311\n"
      "on AT+CPMS=\"SM\"*\n  say +CMS ERROR: 311\n"
      "on AT+CPMS=\"SM\"*\n  say +CPMS: 2,20,2,20,2,20\n  say OK");
  EXPECT_FALSE(modem_->isSupported(Memory::Phone));
  EXPECT_FALSE(modem_->isSupported(Memory::Sim));
  modem_->check();
  expectWorking();
}

TEST_F(ModemMemories, MemoryThatIsNotOffered_IsNotLookedFor) {
  connect("mt-only");
  modem_->check();
  EXPECT_EQ(script_->heard, Heard{"AT+CMEE?"});
}

TEST_F(ModemMemories, DeletionByABusyModemThatBeginsAnew_IsOfTheMemoryThatWasMeant) {
  connectTo("on ME: AT+CMGR=4\n" + reading("+CMGR: 0,,28", hello) +
            "on ME: AT+CMGD=4\n  begin\n  say +CMS ERROR: 515\n  pause 500\n  say RDY\non ME: AT+CMGD=4\n  say OK");
  EXPECT_EQ(modem_->remove({Memory::Phone, 4}, hello), Outcome());
  Heard messages;
  for (const std::string& text : script_->heard)
    if (text.starts_with("AT+CPMS") || text.starts_with("AT+CMG")) messages.push_back(text);
  EXPECT_EQ(messages, (Heard{"AT+CPMS=\"ME\",\"ME\",\"SM\"", "AT+CMGR=4", "AT+CMGD=4", "AT+CMGF=0",
                             "AT+CPMS=\"ME\",\"ME\",\"SM\"", "AT+CMGR=4", "AT+CMGD=4"}));
}

TEST_F(ModemMemories, DeletionByABusyModem_IsRepeatedForAWhile) {
  const std::string there = "on ME: AT+CMGR=4\n" + reading("+CMGR: 0,,28", hello);
  connectTo(there + "on AT+CMGD=4\n  say +CMS ERROR: 515\non AT+CMGD=4\n  say +CMS ERROR: 515\non AT+CMGD=4\n  say OK");
  EXPECT_EQ(modem_->remove({Memory::Phone, 4}, hello), Outcome());
  EXPECT_EQ(script_->heardOf("AT+CMGD").size(), 3u);
  connectTo(there + "on AT+CMGD=4\n  say +CMS ERROR: 515");
  const Instant begin = script_->now();
  EXPECT_EQ(modem_->remove({Memory::Phone, 4}, hello), refused(515));
  EXPECT_GT(script_->now() - begin, Milliseconds(15000));
  EXPECT_LE(script_->now() - begin, Milliseconds(25000));
}

TEST_F(ModemMemories, ListingOfABusyModemThatBeginsAnew_IsOfTheMemoryThatWasMeant) {
  // Once it has begun anew, the SIM is what commands are about.
  connectTo("on ME: AT+CMGL=4\n  begin\n  say +CMS ERROR: 515\n  pause 500\n  say RDY\non ME: AT+CMGL=4\n" +
            reading("+CMGL: 4,0,,28", hello) + "on AT+CMGL=4\n" + reading("+CMGL: 3,1,,25", hej) +
            "on ME: AT+CMGR=6\n  begin\n  say +CMS ERROR: 515\n  pause 500\n  say RDY\non ME: AT+CMGR=6\n" +
            reading("+CMGR: 0,,28", hello) + "on AT+CMGR=6\n" + reading("+CMGR: 1,,25", hej));
  EXPECT_EQ(listed(Memory::Phone), (Messages{{4, Status::ReceivedUnread, hello}}));
  const Reading reading = modem_->read({Memory::Phone, 6});
  EXPECT_EQ(reading.outcome, Outcome());
  EXPECT_EQ(reading.message, (StoredPdu{6, Status::ReceivedUnread, hello}));
}

TEST_F(ModemMemories, SlotNumbersThatAreTooLarge_AreNone) {
  connectTo("on SM: AT+CMGL=4\n" + reading("+CMGL: 29999,1,,28", hello, "+CMGL: 30000,1,,28") + "  say " + hello +
            "\n  say +CMGL: 70000,1,,28\n  say " + hello + "\n  say OK\non SM: AT+CMGR=*\n  say +CMS ERROR: 321");
  EXPECT_EQ(listed(Memory::Sim), (Messages{{29999, Status::ReceivedRead, hello}}));
  modem_->takeNotices();
  for (const char* line : {"+CMTI: \"SM\",29999", "+CMTI: \"SM\",30000", "+CMTI: \"SM\",70000"}) script_->say(line);
  for (int i = 0; i < 3; ++i) modem_->listen(script_->now() + Milliseconds(10));
  EXPECT_EQ(modem_->takeNotices(), (std::vector<Notice>{{Notice::Kind::Stored, Slot{Memory::Sim, 29999}, {}},
                                                        {Notice::Kind::Stored, {}, {}},
                                                        {Notice::Kind::Stored, {}, {}}}));
}

TEST_F(ModemMemories, CapacityWithoutMeasure_IsCut) {
  connectTo(
      "echo off\n"
      "on AT+CPMS=\"SM\",\"SM\",\"SM\"\n  say +CPMS: 2,2147483647,2,2147483647,2,2147483647\n  say OK\n"
      "on SM: AT+CMGL=4\n" +
      reading("+CMGL: 1,1,,28", hello, "ERROR"));
  EXPECT_EQ(modem_->memory(Memory::Sim).capacity, 30000);
  const Listing listing = modem_->list(Memory::Sim);
  EXPECT_EQ(listing.outcome, Outcome{Kind::NoAnswer});  // not every slot was looked at
  EXPECT_EQ(listing.messages, (Messages{{1, Status::ReceivedRead, hello}, {3, Status::ReceivedRead, hej}}));
  EXPECT_EQ(script_->heard.back(), "AT+CMGR=2000");
}

TEST_F(ModemMemories, ModemThatIsSilentToEverySlot_IsNotAskedForAllOfThem) {
  connectTo(
      "on AT+CPMS=\"SM\",\"SM\",\"SM\"\n  say +CPMS: 2,5000,2,5000,2,5000\n  say OK\n"
      "on SM: AT+CMGL=4\n" +
      reading("+CMGL: 1,0,,28", hello, "ERROR") + "on SM: AT+CMGR=*\n  pause 1");
  const Listing listing = modem_->list(Memory::Sim);
  EXPECT_EQ(listing.outcome, Outcome{Kind::NoAnswer});
  EXPECT_EQ(listing.messages, (Messages{{1, Status::ReceivedUnread, hello}}));
  EXPECT_EQ(script_->heardOf("AT+CMGR").size(), 20u);  // ten slots, twice
}

TEST_F(ModemMemories, ModemThatBeginsAnewWhileIdle_IsSetUpAtOnceAndLookedAt) {
  connectTo("at 60000\n  begin\n  say RDY");
  EXPECT_EQ(modem_->takeNotices(), std::vector<Notice>());
  modem_->listen(script_->now() + Milliseconds(90000));
  EXPECT_EQ(script_->heard, (Heard{"ATE0", "ATV1", "AT+CMEE=1", "AT+CPIN?", "AT+CSMS=0", "AT+CMGF=0", "AT+CSCS=\"GSM\"",
                                   "AT+CNMI=2,1,0,0,0"}));
  // Nobody announced what arrived in the meantime.
  EXPECT_EQ(modem_->takeNotices(), (std::vector<Notice>{{Notice::Kind::Stored, {}, {}}}));
  modem_->check();
  EXPECT_EQ(modem_->takeNotices(), std::vector<Notice>());
}

TEST_F(ModemMemories, ModemThatForgotItsSettings_IsLookedAt) {
  connect("forgetful");
  modem_->check();
  EXPECT_EQ(modem_->takeNotices(), (std::vector<Notice>{{Notice::Kind::Stored, {}, {}}}));
  modem_->check();
  EXPECT_EQ(modem_->takeNotices(), std::vector<Notice>());
}

// It would be listed again, and be set up again, for ever.
TEST_F(ModemMemories, ModemThatIsSetUpOnlyToMakeSure_IsNotLookedAt) {
  for (const char* name : {"plain", "halved-line", "listing-cut", "just-on"}) {
    SCOPED_TRACE(name);
    connect(name);
    modem_->list(Memory::Sim);
    EXPECT_EQ(modem_->takeNotices(), std::vector<Notice>());
  }
}

}  // namespace
}  // namespace phone
