// What is known of the memories when reading them fails, and when they change meanwhile.
#include <set>

#include <gtest/gtest.h>

#include "servers/modem/message_copy.h"
#include "servers/modem/modem_phone.h"
#include "unit/modem_phone/modem_phone_fixture.h"

namespace {

using namespace modem_testing;
using phone::Memory;
using phone::Milliseconds;
using servers::modem::MessageCopy;

class MemoriesTest : public ModemPhoneTest {
 protected:
  // As hello, but from +46701234568.
  static inline const std::string other = "07916407058099F9040B916407214365F80000102030405060000AE8329BFD4697D9EC37";
  // A listing is asked for twice before it has failed.
  static inline const std::string broken =
      "on SM: AT+CMGL=4\n  say +CMS ERROR: 500\non SM: AT+CMGL=4\n  say +CMS ERROR: 500\n"
      "on SM: AT+CMGR=*\n  say +CMS ERROR: 500\n";
  static inline const Lines bothOnTheSim{"1 1 +46701234567 010203040506 hellohello",
                                         "3 0 +46701234567 010203040516 Hej", "end 0"};

  // Deletions and failures are looked into a moment later.
  void lookAgain(std::int32_t after = 400) {
    rig.time.run(after);
    rig.work();
  }
};

TEST_F(MemoriesTest, NewMessageInTheSlotOfOneThatIsToBeDeleted_Stays) {
  begin("like plain\n" + listingOf("SM", {{1, hello}}, 1) + listingOf("SM", {{1, other}}, 1) +
        readingOf("SM", 1, other) + readingOf("SM", 1, other, 1) + "at 2000\n  say +CMTI: \"SM\",1");
  rig.step();  // it is to be read, and before that the old one is to be deleted
  EXPECT_EQ(removed(Store::Sim, 1), hex(emptySlot));
  lookAgain();
  lookAgain();
  EXPECT_EQ(heardOf("AT+CMGD"), Lines());
  EXPECT_EQ(listed(Store::Sim, 0), (Lines{"1 0 +46701234568 010203040506 hellohello", "end 0"}));
}

TEST_F(MemoriesTest, MemoryThatCannotBeReadWhenThePhoneIsBack_IsAsItWasAndReadAgainSoon) {
  begin("like plain");
  rig.unplug();
  rig.step();
  begin("like plain\n" + broken + "on SM: AT+CMGL=4\n  say OK\n");
  EXPECT_EQ(told, (std::vector{true, false, true}));
  EXPECT_EQ(phone->storageUsed(Store::Sim), 2);
  EXPECT_EQ(listed(Store::Sim), bothOnTheSim);
  lookAgain();
  EXPECT_EQ(listed(Store::Sim), Lines{"end 0"});
}

TEST_F(MemoriesTest, MemoryThatCannotBeReadWhole_ShowsWhatCouldBeRead) {
  begin("like plain\non SM: AT+CMGL=4\n  say +CMGL: 2,0,,28\n  say " + hello +
        "\n  say +CMS ERROR: 500\non SM: AT+CMGR=*\n  say +CMS ERROR: 500\n");
  EXPECT_EQ(listed(Store::Sim), (Lines{"2 0 +46701234567 010203040506 hellohello", "end 0"}));
}

TEST_F(MemoriesTest, ListingThatFails_ForgetsNothingAndIsRepeated) {
  begin("like plain\nat 2000\n  say +CMTI: \"XX\",1\n" + listingOf("SM", {{1, hello}}, 1) + broken +
        "on SM: AT+CMGL=4\n  say OK\n");
  rig.step();
  lookAgain();
  EXPECT_EQ(listed(Store::Sim).size(), 2u);
  lookAgain(29000);
  EXPECT_EQ(listed(Store::Sim).size(), 2u);
  lookAgain(1000);
  EXPECT_EQ(listed(Store::Sim), Lines{"end 0"});
}

TEST_F(MemoriesTest, AnnouncedMessageThatWasReadInVain_IsUnreadAllTheSameOnce) {
  begin("like plain\non ME: AT+CMGL=4\n  say OK\n" + listingOf("ME", {{4, other}}, 1) +
        "on ME: AT+CMGR=4\n  say +CMS ERROR: 500\nat 2000\n  say +CMTI: \"ME\",4");
  rig.step();
  rig.work();
  lookAgain();
  EXPECT_EQ(listed(Store::Phone, 0), (Lines{"4 0 +46701234568 010203040506 hellohello", "end 0"}));
  EXPECT_EQ(listed(Store::Phone), (Lines{"4 1 +46701234568 010203040506 hellohello", "end 0"}));
}

TEST_F(MemoriesTest, Announcement_IsAboutTheNextMessageThereAlone) {
  MessageCopy copy;
  const auto statuses = [&copy] {
    std::vector<phone::Status> result;
    for (const auto& message : copy.messages(Memory::Phone, allStatuses, {})) result.push_back(message.status);
    return result;
  };
  using phone::Status;
  copy.announced({Memory::Phone, 4});
  copy.announced({Memory::Phone, 5});
  copy.takeOne({Memory::Phone, 4}, {4, Status::ReceivedRead, hello}, {});
  EXPECT_EQ(statuses(), std::vector{Status::ReceivedUnread});
  // The one in slot 5 has gone before anybody saw it; what lies there later is as the phone says.
  copy.take(Memory::Phone, {}, {});
  copy.takeOne({Memory::Phone, 4}, {4, Status::ReceivedRead, hello}, {});
  copy.takeOne({Memory::Phone, 5}, {5, Status::ReceivedRead, other}, {});
  EXPECT_EQ(statuses(), (std::vector{Status::ReceivedRead, Status::ReceivedRead}));
  // A draft is none.
  copy.announced({Memory::Phone, 6});
  copy.takeOne({Memory::Phone, 6}, {6, Status::StoredUnsent, "0001000B916407214365F700000AE8329BFD4697D9EC37"}, {});
  EXPECT_EQ(statuses().back(), Status::StoredUnsent);
}

TEST_F(MemoriesTest, ManyNotices_AreReadOnceEachAndMoreOfThemByAListing) {
  std::string flood = "like plain\nat 2000\n";
  for (int i = 0; i < 50; ++i) flood += "  say +CMTI: \"ME\",4\n";
  for (int i = 10; i < 60; ++i) flood += "  say +CMTI: \"ME\"," + std::to_string(i) + '\n';
  begin(flood);
  while (rig.letters.empty()) rig.step();
  rig.work();
  const Lines asked = heardOf("AT+CMGR");
  std::set<std::string> slots(asked.begin(), asked.end());
  EXPECT_EQ(slots.size(), 16u);
  EXPECT_TRUE(slots.contains("AT+CMGR=4"));
  EXPECT_LE(asked.size(), 2u * 17u);  // slot 4 again for what came while it was read; each twice: nothing is there
  rig.modem->heard.clear();
  lookAgain();
  EXPECT_EQ(heardOf("AT+CMGL").size(), 1u);
}

TEST_F(MemoriesTest, MessageAnnouncedWhileTheSlotIsRead_IsReadToo) {
  begin("like plain\n" + readingOf("ME", 4, hello) + readingOf("ME", 4, other) +
        "at 2000\n  say +CMTI: \"ME\",4\n  say +CMTI: \"ME\",4");
  rig.step();
  rig.work();
  EXPECT_EQ(listed(Store::Phone, 0), (Lines{"4 0 +46701234568 010203040506 hellohello", "end 0"}));
}

TEST_F(MemoriesTest, NoticeThatCameWhileThePhoneWasFound_IsNotForgotten) {
  begin("like plain\non ME: AT+CMGL=4\n  say OK\n  say +CMTI: \"ME\",4\n" + readingOf("ME", 4, other));
  rig.work();
  EXPECT_EQ(listed(Store::Phone, 0), (Lines{"4 0 +46701234568 010203040506 hellohello", "end 0"}));
}

TEST_F(MemoriesTest, MessageStoredNowhere_OutlivesAnotherLookAtTheMemory) {
  begin("like plain\nat 2000\n  say +CMT: ,28\n  say " + other + "\nat 3000\n  say +CMTI: \"XX\",1");
  for (int i = 0; i < 3; ++i) rig.step();
  lookAgain();
  EXPECT_EQ(heardOf("AT+CMGL").size(), 2u);
  EXPECT_EQ(listed(Store::Sim).size(), 4u);
}

TEST_F(MemoriesTest, MessageStoredNowhereOnAPhoneWithoutASim_LiesInThePhone) {
  begin(
      "like plain\non AT+CPMS=?\n  say +CPMS: (\"ME\"),(\"ME\"),(\"ME\")\n  say OK\non AT+CPMS=\"ME\"*\n  "
      "say +CPMS: 0,100,0,100,0,100\n  say OK\nat 2000\n  say +CMT: ,28\n  say " +
      other);
  EXPECT_FALSE(phone->isStorageSupported(Store::Sim));
  rig.step();
  rig.step();
  EXPECT_EQ(listed(Store::Phone, 0), (Lines{"30000 0 +46701234568 010203040506 hellohello", "end 0"}));
}

TEST_F(MemoriesTest, PlacesOfMessagesStoredNowhere_AreUsedAgain) {
  MessageCopy copy;
  const auto lyingAt = [&copy](int index) {
    const auto deletions = copy.toDelete({Memory::Sim, index});
    return deletions.empty() ? "" : deletions.front().pdu;
  };
  copy.keep(hello, Memory::Sim, {});
  copy.keep(other, Memory::Sim, {});
  copy.takeOne({Memory::Sim, 30000}, {30000, phone::Status::ReceivedRead, other}, {});  // no phone means it
  EXPECT_EQ(lyingAt(30000), hello);
  EXPECT_EQ(lyingAt(30001), other);
  EXPECT_EQ(copy.used(Memory::Sim), 0u);
  copy.deleted({{Memory::Sim, 30000}, hello});
  EXPECT_EQ(lyingAt(30000), "");
  copy.keep(hello, Memory::Sim, {});
  EXPECT_EQ(lyingAt(30000), hello);
}

TEST_F(MemoriesTest, ModemThatAnnouncesMessages_IsLookedAtNowAndThenAllTheSame) {
  begin("like plain");
  rig.clock.pass(Milliseconds(599000));
  listed(Store::Sim);
  lookAgain();
  EXPECT_EQ(heardOf("AT+CMGL"), Lines());
  rig.clock.pass(Milliseconds(1000));
  listed(Store::Sim);
  lookAgain();
  EXPECT_EQ(heardOf("AT+CMGL").size(), 1u);
}

TEST_F(MemoriesTest, LongMessageWhoseFirstDeletionIsRefused_StaysWhole) {
  // Parts 1 and 2 of 2, "hello" each, in slots 5 and 6.
  const std::string head =
      "07916407058099F9440B916407214365F7000010203040506000"
      "0C"
      "0500032A02";
  const std::string first = head +
                            "01"
                            "D06536FB0D",
                    second = head +
                             "02"
                             "D06536FB0D";
  begin("like plain\n" + listingOf("SM", {{5, first}, {6, second}}) + readingOf("SM", 5, first) +
        readingOf("SM", 6, second) + "on AT+CMGD=6\n  say +CMS ERROR: 313\n");
  const Lines whole{"5 0 +46701234567 010203040506 hellohello", "end 0"};
  EXPECT_EQ(listed(Store::Sim, 0), whole);
  EXPECT_EQ(removed(Store::Sim, 5), "88881139");
  EXPECT_EQ(heardOf("AT+CMGD"), Lines{"AT+CMGD=6"});
  EXPECT_EQ(listed(Store::Sim), (Lines{"5 1 +46701234567 010203040506 hellohello", "end 0"}));
}

TEST_F(MemoriesTest, TextWithAnEndInIt_IsShownBehindItToo) {
  // UCS-2: A, U+0000, B.
  begin(
      "like plain\non SM: AT+CMGL=4\n  say +CMGL: 1,0,,25\n  say "
      "07916407058099F9040B916407214365F70008102030405060000600410000"
      "0042\n  say OK");
  EXPECT_EQ(listed(Store::Sim, 0), (Lines{"1 0 +46701234567 010203040506 A\uFFFDB", "end 0"}));
}

TEST_F(MemoriesTest, NameInAnotherAlphabet_IsShownAsItCame) {
  begin(
      "like plain\non AT+CGMM\n  say M\xF6"
      "del\n  say OK");
  EXPECT_EQ(phone->name(), u"Maker M\u00F6del");
}

}  // namespace
