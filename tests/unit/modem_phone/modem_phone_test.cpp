#include "servers/modem/modem_phone.h"

#include <gtest/gtest.h>

#include "phone/pdu/deliver.h"
#include "phone/pdu/hex.h"
#include "support/errors.h"
#include "unit/modem_phone/modem_phone_fixture.h"

namespace {

using namespace modem_testing;
using phone::Milliseconds;
using testing_support::errorNumberOf;

const std::string hej = "07916407058099F9040B916407214365F70008102030405061000600480065006A";

// A long message from +46701234567.
Lines partsOf(std::u16string_view text) {
  phone::Deliver like;
  like.originator = *phone::parseNumber(u"+46701234567");
  like.timeStamp = {2001, 2, 3, 4, 5, 6, 0};
  Lines parts;
  for (const phone::EncodedPdu& part : phone::encodeDeliver(like, text, 3)) parts.push_back(phone::toHex(part.octets));
  return parts;
}

TEST_F(ModemPhoneTest, Found_IsConnectedAndAnswersAtOnce) {
  begin("like plain");
  EXPECT_EQ(told, std::vector{true});
  EXPECT_TRUE(phone->isConnected());
  EXPECT_EQ(phone->name(), u"Maker Model 7");
  EXPECT_TRUE(phone->isStorageSupported(Store::Phone));
  EXPECT_FALSE(phone->isStorageSupported(static_cast<Store>(3)));
  EXPECT_EQ(phone->storageCapacity(Store::Sim), 20);
  EXPECT_EQ(phone->storageUsed(Store::Sim), 2);
  EXPECT_EQ(phone->storageUsed(Store::Phone), 0);
  EXPECT_EQ(listed(Store::Sim),
            (Lines{"1 1 +46701234567 010203040506 hellohello", "3 0 +46701234567 010203040516 Hej", "end 0"}));
  EXPECT_EQ(listed(Store::Phone), Lines{"end 0"});
  EXPECT_EQ(rig.letters.size(), 0u);
  EXPECT_EQ(rig.modem->heard, Lines());
}

TEST_F(ModemPhoneTest, CompressedText_IsListedInHexadecimalAndSaysWhatItIs) {
  // Alone, and as the second of two parts (05 00 03 2A 02 02 in front) of which the first is plain.
  const std::string head = "07916407058099F9440B916407214365F700", time = "10203040506000";
  const std::string alone = "07916407058099F9040B916407214365F70020" + time + "04DEADBEEF";
  const std::string first = head + "08" + time + "08" + "0500032A0201" + "0041";
  const std::string second = head + "28" + time + "08" + "0500032A0202" + "C0DE";
  begin("like plain\n" + listingOf("SM", {{2, alone}, {4, first}, {5, second}}));
  EXPECT_EQ(listed(Store::Sim), (Lines{"2 0 +46701234567 010203040506 [Compressed text: DE AD BE EF]",
                                       "4 0 +46701234567 010203040506 A[Compressed text: C0 DE]", "end 0"}));
}

TEST_F(ModemPhoneTest, NotFoundYet_IsAnErrorToAsk) {
  rig.plug("echo off\non AT");
  phone = newPhone();
  EXPECT_FALSE(rig.step());
  EXPECT_FALSE(phone->isConnected());
  EXPECT_EQ(errorNumberOf([&] { phone->storageUsed(Store::Sim); }), notConnected);
  EXPECT_EQ(errorNumberOf([&] { listed(Store::Sim); }), notConnected);
  EXPECT_EQ(errorNumberOf([&] { hand(u"x"); }), notConnected);
  EXPECT_EQ(errorNumberOf([&] { removed(Store::Sim, 1); }), notConnected);
  EXPECT_EQ(told, std::vector<bool>());
}

TEST_F(ModemPhoneTest, UnreadMessage_IsUnreadUntilItWasHandedOver) {
  begin("like plain");
  EXPECT_EQ(listed(Store::Sim, 0), (Lines{"3 0 +46701234567 010203040516 Hej", "end 0"}));
  EXPECT_EQ(listed(Store::Sim, 0), Lines{"end 0"});
  EXPECT_EQ(listed(Store::Sim, 1).size(), 3u);
}

TEST_F(ModemPhoneTest, UnreadMessageThatIsGivenBack_IsUnreadAgain_AlsoAfterAReturn) {
  begin("like plain");
  listed(Store::Sim);
  const StoredMessage message{Store::Sim, 3, Status::ReceivedUnread, u"+46701234567", u"Hej", u"010203040516"};
  StoredMessage another = message;
  another.text = u"Hopp";
  phone->giveBack(another);
  another = message;
  another.status = Status::ReceivedRead;
  phone->giveBack(another);
  EXPECT_EQ(listed(Store::Sim, 0), Lines{"end 0"});
  rig.unplug();
  rig.step();
  phone->giveBack(message);
  begin("like plain");
  EXPECT_EQ(listed(Store::Sim, 0), (Lines{"3 0 +46701234567 010203040516 Hej", "end 0"}));
  EXPECT_EQ(listed(Store::Sim, 0), Lines{"end 0"});
}

TEST_F(ModemPhoneTest, ListingThatNobodyWantsAnyMore_HandsNothingOver) {
  begin("like plain");
  phone->list(
      Store::Sim, 0, [](const StoredMessage&) { ADD_FAILURE(); }, [](std::int32_t) { ADD_FAILURE(); });
  rig.time.runDue();
  EXPECT_EQ(listed(Store::Sim, 0), (Lines{"3 0 +46701234567 010203040516 Hej", "end 0"}));
}

TEST_F(ModemPhoneTest, MissingMemory_IsAnInvalidStore) {
  begin("like one-memory");
  EXPECT_FALSE(phone->isStorageSupported(Store::Phone));
  EXPECT_EQ(listed(Store::Phone), Lines{"end " + hex(invalidStore)});
  EXPECT_EQ(removed(Store::Phone, 1), hex(invalidStore));
  EXPECT_EQ(errorNumberOf([&] { phone->storageCapacity(static_cast<Store>(3)); }), 5);
}

TEST_F(ModemPhoneTest, AnnouncedMessage_IsReadAndUnread) {
  begin("like plain\n" + listingOf("SM", {}) + readingOf("ME", 4, hello) + "at 2000\n  say +CMTI: \"ME\",4");
  rig.step();
  EXPECT_EQ(listed(Store::Phone, 0), Lines{"end 0"});
  rig.work();
  EXPECT_EQ(rig.modem->heard, (Lines{"AT+CPMS=\"ME\",\"ME\",\"SM\"", "AT+CMGR=4"}));
  EXPECT_EQ(listed(Store::Phone, 0), (Lines{"4 0 +46701234567 010203040506 hellohello", "end 0"}));
  EXPECT_EQ(phone->storageUsed(Store::Phone), 1);
}

TEST_F(ModemPhoneTest, MessageAnnouncedInAnUnknownMemory_IsLookedForInBoth) {
  begin("like plain\nat 2000\n  say +CMTI: \"XX\",4");
  rig.step();
  rig.time.run(400);
  rig.work();
  EXPECT_EQ(heardOf("AT+CMGL").size(), 2u);
}

TEST_F(ModemPhoneTest, MessageStoredNowhere_IsKeptUntilDeleted) {
  // Not the one that lies in slot 1: it has another sender.
  std::string other = hello;
  other.replace(other.find("407214365F7"), 11, "407214365F8");
  begin("like plain\nat 2000\n  say +CMT: ,28\n  say " + other);
  rig.step();
  rig.step();
  EXPECT_EQ(listed(Store::Sim, 0),
            (Lines{"3 0 +46701234567 010203040516 Hej", "30000 0 +46701234568 010203040506 hellohello", "end 0"}));
  EXPECT_EQ(phone->storageUsed(Store::Sim), 2);
  EXPECT_EQ(removed(Store::Sim, 30000), "0");
  EXPECT_EQ(heardOf("AT+CMG"), Lines());
  EXPECT_EQ(listed(Store::Sim, 0), Lines{"end 0"});
}

TEST_F(ModemPhoneTest, Deleting_RemovesFromThePhoneAndLooksAgain) {
  begin("like plain\n" + listingOf("SM", {{1, hello}, {3, hej}}) + listingOf("SM", {{3, hej}}));
  listed(Store::Sim);
  EXPECT_EQ(removed(Store::Sim, 1), "0");
  EXPECT_EQ(rig.modem->heard, (Lines{"AT+CMGR=1", "AT+CMGD=1"}));
  EXPECT_EQ(phone->storageUsed(Store::Sim), 1);
  const Lines rest{"3 1 +46701234567 010203040516 Hej", "end 0"};
  EXPECT_EQ(listed(Store::Sim), rest);
  rig.time.run(400);
  rig.work();
  EXPECT_EQ(rig.modem->heard, (Lines{"AT+CMGR=1", "AT+CMGD=1", "AT+CMGL=4"}));
  EXPECT_EQ(listed(Store::Sim), rest);
}

TEST_F(ModemPhoneTest, PhoneThatOnlySaysThatItDeletes_IsAskedOnceMoreAndTheMessageIsNotShownAgain) {
  begin("like plain");
  listed(Store::Sim);
  EXPECT_EQ(removed(Store::Sim, 1), "0");
  for (int i = 0; i < 3; ++i) {
    rig.time.run(1000);
    rig.work();
  }
  EXPECT_EQ(rig.modem->heard, (Lines{"AT+CMGR=1", "AT+CMGD=1", "AT+CMGL=4", "AT+CMGR=1", "AT+CMGD=1"}));
  EXPECT_EQ(listed(Store::Sim), (Lines{"3 1 +46701234567 010203040516 Hej", "end 0"}));
}

TEST_F(ModemPhoneTest, DeletingWhereNothingIs_IsAnsweredWithoutTheLine) {
  begin("like plain");
  EXPECT_EQ(removed(Store::Sim, 2), hex(emptySlot));
  EXPECT_EQ(rig.modem->heard, Lines());
}

TEST_F(ModemPhoneTest, PartThatStillWaitsForOthers_IsNeitherListedNorDeleted) {
  const std::string first = partsOf(std::u16string(200, u'x'))[0];
  begin("like plain\n" + listingOf("SM", {{8, first}}) + readingOf("SM", 8, first));
  EXPECT_EQ(listed(Store::Sim), Lines{"end 0"});
  EXPECT_EQ(phone->storageUsed(Store::Sim), 1);
  EXPECT_EQ(removed(Store::Sim, 8), hex(emptySlot));
  EXPECT_EQ(rig.modem->heard, Lines());
  // After ten minutes it is handed over as it stands.
  rig.clock.pass(std::chrono::minutes(10));
  EXPECT_EQ(listed(Store::Sim, 0).size(), 2u);
  EXPECT_EQ(removed(Store::Sim, 8), "0");
}

TEST_F(ModemPhoneTest, DeletingThatThePhoneRefuses_FailsAndTheMessageStays) {
  begin("like plain\non AT+CMGD=*\n  say +CMS ERROR: 313");
  listed(Store::Sim);
  EXPECT_EQ(removed(Store::Sim, 1), "88881139");
  EXPECT_EQ(listed(Store::Sim).size(), 3u);
}

TEST_F(ModemPhoneTest, LongMessageInBothMemories_IsOneMessageAndGoesAsOne) {
  const Lines parts = partsOf(std::u16string(200, u'x'));
  ASSERT_EQ(parts.size(), 2u);
  const std::string &first = parts[0], &second = parts[1];
  begin("like plain\n" + listingOf("ME", {{2, second}}) + listingOf("SM", {{8, first}}) + readingOf("ME", 2, second) +
        readingOf("SM", 8, first));
  EXPECT_EQ(listed(Store::Phone, 0), Lines{"end 0"});
  EXPECT_EQ(listed(Store::Sim, 0), (Lines{"8 0 +46701234567 010203040506 " + std::string(200, 'x'), "end 0"}));
  EXPECT_EQ(removed(Store::Sim, 8), "0");
  EXPECT_EQ(heardOf("AT+CMGD"), (Lines{"AT+CMGD=2", "AT+CMGD=8"}));
  EXPECT_EQ(phone->storageUsed(Store::Phone), 0);
}

TEST_F(ModemPhoneTest, ModemThatAnnouncesNothing_IsLookedAtWhenSomebodyAsks) {
  begin("like plain\non AT+CNMI=*\n  say ERROR");
  listed(Store::Sim, 0);
  rig.time.run(400);
  rig.work();
  EXPECT_EQ(rig.modem->heard, Lines());
  rig.clock.pass(Milliseconds(60000));
  listed(Store::Sim, 0);
  rig.time.run(400);
  rig.work();
  EXPECT_EQ(heardOf("AT+CMGL").size(), 1u);
}

TEST_F(ModemPhoneTest, WhatWasAskedOfAModemThatIsGone_IsNotDoneByTheNext) {
  begin("like plain");
  rig.unplug();
  rig.worker->step();  // the phone's thread has not heard of it yet
  const auto handed = hand(u"hellohello");
  rig.plug("like plain");
  rig.worker->step();
  rig.step();
  EXPECT_EQ(told, (std::vector{true, false, true}));
  rig.work();
  EXPECT_EQ(heardOf("message"), Lines());
  EXPECT_EQ(handed->result, "");
}

TEST_F(ModemPhoneTest, MessagesOfAPhoneThatCameBack_AreNotUnreadAgain) {
  begin("like plain");
  listed(Store::Sim);
  rig.unplug();
  rig.step();
  begin("like plain");
  EXPECT_EQ(listed(Store::Sim, 0), Lines{"end 0"});
  EXPECT_EQ(listed(Store::Sim).size(), 3u);
}

TEST_F(ModemPhoneTest, IdleModem_IsCheckedEachMinute) {
  begin("like plain");
  rig.step();
  EXPECT_EQ(rig.modem->heard, Lines());
  rig.step();
  EXPECT_EQ(rig.modem->heard, Lines{"AT+CMEE?"});
  rig.step();
  EXPECT_EQ(rig.modem->heard, Lines{"AT+CMEE?"});
  rig.step();
  EXPECT_EQ(rig.modem->heard, (Lines{"AT+CMEE?", "AT+CMEE?"}));
}

TEST_F(ModemPhoneTest, SimThatIsUnlockedLater_MakesAnotherPhoneOfIt) {
  begin(
      "like plain\non AT+CPIN?\n  say +CPIN: SIM PIN\n  say OK\non AT+CPMS=?\n  say +CMS ERROR: 311\non AT+CPMS=?\n  "
      "say "
      "+CPMS: (\"ME\",\"SM\"),(\"ME\",\"SM\"),(\"ME\",\"SM\")\n  say OK\non AT+CPMS=\"ME\"*\n  say +CMS ERROR: 311\n"
      "on AT+CPMS=\"SM\",\"SM\",\"SM\"\n  say +CMS ERROR: 311\non AT+CPMS=\"SM\",\"SM\",\"SM\"\n  say +CPMS: "
      "2,20,2,20,2,20\n  say OK\non AT+CPMS=\"SM\"*\n  say +CMS ERROR: 311\n");
  EXPECT_TRUE(phone->isConnected());
  EXPECT_FALSE(phone->isStorageSupported(Store::Sim));
  rig.step();
  EXPECT_FALSE(rig.step());
  EXPECT_TRUE(rig.step());
  EXPECT_EQ(told, (std::vector{true, false, true}));
  EXPECT_EQ(listed(Store::Sim).size(), 3u);
}

TEST_F(ModemPhoneTest, NothingPluggedIn_IsTriedAgain) {
  phone = newPhone();
  EXPECT_FALSE(rig.step());
  EXPECT_FALSE(rig.step());
  rig.plug("like plain");
  EXPECT_TRUE(rig.step());
  EXPECT_TRUE(phone->isConnected());
}

TEST_F(ModemPhoneTest, Trace_SaysOnceWhyThereIsNoModem) {
  rig.isTraced = true;
  phone = newPhone();
  const Lines missing{"- nothing is plugged in"};
  for (int i = 0; i < 3; ++i) EXPECT_FALSE(rig.step());
  EXPECT_EQ(rig.traced, missing);
  begin("like plain");
  EXPECT_GT(rig.traced.size(), 10u);
  rig.unplug();
  while (rig.step()) {
  }
  rig.traced.clear();
  rig.clock.follow(nullptr);
  rig.modem = nullptr;
  for (int i = 0; i < 3; ++i) EXPECT_FALSE(rig.step());
  EXPECT_EQ(rig.traced, missing);
}

TEST_F(ModemPhoneTest, ReleasedWithEverythingUnderWay_LeavesNothing) {
  begin("like plain");
  listed(Store::Sim);
  const auto handed = hand(u"hellohello");
  const auto request = phone->remove(Store::Sim, 1, [](std::int32_t) { ADD_FAILURE(); });
  watching = nullptr;
  phone = nullptr;
  rig.record = nullptr;
  EXPECT_EQ(rig.time.pendingWork(), 0u);
}

}  // namespace
