#include <gtest/gtest.h>

#include "servers/handset/simulated_phone.h"
#include "support/errors.h"
#include "support/native_time.h"

namespace {

using namespace handset;
using platform::Counted;
using platform::Ref;
using testing_support::errorNumberOf;

class HandsetTest : public testing::Test {
 protected:
  ~HandsetTest() override {
    phone = nullptr;
    EXPECT_EQ(Counted::census, census);
    EXPECT_EQ(time.pendingWork(), 0u);
  }

  const std::int32_t census = Counted::census;
  testing_support::Journal journal;
  testing_support::NativeTime time{journal};
  Ref<SimulatedPhone> phone = platform::make<SimulatedPhone>(time);
};

StoredMessage message(Store store, std::int16_t index, Status status, platform::StringView text) {
  return {store, index, status, u"+4670", platform::String(text), u"010203040506"};
}

TEST_F(HandsetTest, DeliveredMessage_LiesUnreadOnTheSim) {
  const auto arrived = phone->deliver(u"+4670", u"Hi", u"010203040506");
  EXPECT_EQ(arrived, message(Store::Sim, 1, Status::ReceivedUnread, u"Hi"));
  EXPECT_EQ(phone->stored(Store::Sim), (std::vector{arrived}));
  EXPECT_EQ(phone->stored(Store::Phone), std::vector<StoredMessage>{});
}

TEST_F(HandsetTest, DeliveredMessage_GoesToThePhoneMemoryWhenTheSimIsFullOrAbsent) {
  phone->setCapacity(Store::Sim, 2);
  EXPECT_EQ(phone->fill(Store::Sim), 2);
  EXPECT_EQ(phone->deliver(u"+4670", u"Hi", u"010203040506"), message(Store::Phone, 1, Status::ReceivedUnread, u"Hi"));
  phone->clear(Store::Sim);
  phone->setSupported(Store::Sim, false);
  EXPECT_EQ(phone->deliver(u"+4670", u"Ho", u"010203040506"), message(Store::Phone, 2, Status::ReceivedUnread, u"Ho"));
  phone->setCapacity(Store::Phone, 2);
  EXPECT_EQ(phone->deliver(u"+4670", u"Hu", u"010203040506").index, 0);
}

TEST_F(HandsetTest, NewMessage_TakesTheFirstFreeSlot) {
  for (int i = 0; i < 3; ++i) phone->deliver(u"+4670", u"Hi", u"010203040506");
  EXPECT_TRUE(phone->take(Store::Sim, 2));
  EXPECT_FALSE(phone->take(Store::Sim, 2));
  EXPECT_EQ(phone->deliver(u"+4670", u"Ho", u"010203040506").index, 2);
  EXPECT_EQ(phone->deliver(u"+4670", u"Ho", u"010203040506").index, 4);
}

TEST_F(HandsetTest, Store_OfTheGreatestCapacity_TakesSoMany) {
  phone->setCapacity(Store::Phone, INT16_MAX);
  EXPECT_EQ(phone->fill(Store::Phone), INT16_MAX);
  EXPECT_EQ(phone->storageUsed(Store::Phone), INT16_MAX);
}

TEST_F(HandsetTest, UnplugAndPlug_TellWhoWatches) {
  std::vector<bool> told;
  auto watching = phone->watch([&](bool connected) { told.push_back(connected); });
  phone->plug();
  phone->unplug();
  phone->unplug();
  phone->plug();
  EXPECT_EQ(told, (std::vector{false, true}));
  watching = nullptr;
  phone->unplug();
  EXPECT_EQ(told.size(), 2u);
}

TEST_F(HandsetTest, Watcher_ThatLeavesWhileOthersAreTold_HearsNothing) {
  Ref<Counted> second;
  int heard = 0;
  const auto first = phone->watch([&](bool) { second = nullptr; });
  second = phone->watch([&](bool) { ++heard; });
  phone->unplug();
  EXPECT_EQ(heard, 0);
}

TEST_F(HandsetTest, ForgottenRequest_IsStillDone) {
  auto request = phone->send({u"", u"+4670", u"Hi"}, [](std::int32_t) { ADD_FAILURE() << "not wanted any more"; });
  request = nullptr;
  time.run(10);
  EXPECT_EQ(phone->sent().size(), 1u);
}

TEST_F(HandsetTest, Listing_ForgottenInItsFirstMessage_StopsTelling) {
  phone->deliver(u"+4670", u"one", u"010203040506");
  phone->deliver(u"+4670", u"two", u"010203040506");
  int messages = 0;
  Phone::Request request;
  request = phone->list(
      Store::Sim, allStatuses,
      [&](const StoredMessage&) {
        ++messages;
        request = nullptr;
      },
      [](std::int32_t) { ADD_FAILURE() << "not wanted any more"; });
  time.run(10);
  EXPECT_EQ(messages, 1);
}

TEST_F(HandsetTest, Unplugged_WhileItTellsTheEnd_IsFine) {
  std::vector<std::int32_t> results;
  const auto a = phone->send({u"", u"+4670", u"a"}, [&](std::int32_t result) {
    results.push_back(result);
    phone->unplug();
  });
  const auto b = phone->send({u"", u"+4670", u"b"}, [&](std::int32_t result) { results.push_back(result); });
  time.run(10);
  EXPECT_EQ(results, std::vector<std::int32_t>{0});
}

TEST_F(HandsetTest, Memories_AreSavedAfterEveryChange) {
  int saved = 0;
  phone->memoriesChanged = [&] { ++saved; };
  phone->deliver(u"+4670", u"one", u"010203040506");
  EXPECT_EQ(saved, 1);
  const auto listing = phone->list(
      Store::Sim, allStatuses, [](const StoredMessage&) {}, [](std::int32_t) {});
  time.run(10);
  EXPECT_EQ(saved, 2);  // it is read now
  const auto again = phone->list(
      Store::Sim, allStatuses, [](const StoredMessage&) {}, [](std::int32_t) {});
  const auto removal = phone->remove(Store::Sim, 1, [](std::int32_t) {});
  time.run(10);
  EXPECT_EQ(saved, 3);
  const auto nothing = phone->remove(Store::Sim, 1, [](std::int32_t) {});
  time.run(10);
  EXPECT_EQ(saved, 3);
}

TEST(HandsetMemories, Text_ComesBackAsItWas) {
  Memories memories;
  memories.sim().capacity = 5;
  memories.sim().supported = false;
  memories.sim().add(message(Store::Sim, 0, Status::ReceivedRead, u"tab\t line\r\n back\\slash å \xD800 \U0001F600"));
  memories.phone().add(message(Store::Phone, 0, Status::StoredUnsent, u""));
  const std::string text = memories.toText();
  EXPECT_EQ(text,
            "memory\t1\t100\t1\n"
            "message\t1\t1\t2\t+4670\t010203040506\t\n"
            "memory\t2\t5\t0\n"
            "message\t2\t1\t1\t+4670\t010203040506\ttab\\u0009 line\\u000D\\u000A back\\\\slash \\u00E5 \\uD800 "
            "\\uD83D\\uDE00\n");
  Memories again = Memories::fromText(text);
  EXPECT_EQ(again.toText(), text);
  EXPECT_EQ(again.sim().slots, memories.sim().slots);
  EXPECT_EQ(again.phone().slots, memories.phone().slots);
}

TEST(HandsetMemories, Text_OfWindowsLines_IsReadToo) {
  Memories memories = Memories::fromText("memory\t2\t7\t1\r\nmessage\t2\t3\t0\t1\t2\tHi\r\n");
  EXPECT_EQ(memories.sim().capacity, 7);
  ASSERT_TRUE(memories.sim().slots.contains(3));
  EXPECT_EQ(memories.sim().slots[3].text, u"Hi");
}

TEST(HandsetMemories, Text_ThatMakesNoSense_IsSkipped) {
  const std::string sound = Memories().toText();
  for (const char* nonsense : {"",
                               "\n\n",
                               "memory",
                               "memory\t3\t5\t1",
                               "memory\t2\t99999\t1",
                               "memory\t2\t\t1",
                               "memory\t2\t5",
                               "message",
                               "message\t2\t0\t0\t1\t2\tHi",
                               "message\t2\t-1\t0\t1\t2\tHi",
                               "message\t2\t1\t4\t1\t2\tHi",
                               "message\t2\t1\t0\t1\t2\tHi\tmore",
                               "message\t9\t1\t0\t1\t2\tHi",
                               "message\t2\t1\t0\t1\t2\t\\",
                               "message\t2\t1\t0\t1\t2\t\\u12",
                               "message\t2\t1\t0\t1\t2\t\\u12G4",
                               "message\t2\t1\t0\t1\t2\t\\x1234",
                               "message\t2\t1\t0\t1\t2\t\\u",
                               "message\t40000\t1\t0\t1\t2\tHi",
                               "message\t2\t1x\t0\t1\t2\tHi",
                               "\t\t\t\t\t\t"}) {
    EXPECT_EQ(Memories::fromText(nonsense).toText(), sound) << nonsense;
  }
  const std::string nul("message\0\t2\t1", 12);
  EXPECT_EQ(Memories::fromText(nul).toText(), sound);
}

}  // namespace
