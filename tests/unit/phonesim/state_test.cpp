// Memories and their file.
#include "phonesim/handset/state.h"

#include <random>

#include "unit/phonesim/fixture.h"

namespace phonesim {
namespace {

using testing::ElementsAre;

constexpr char full[] =
    "phonesim-memory 1\n"
    "centre +46700000000\n"
    "reference 255\n"
    "memory ME 5\n"
    "memory SM 3\n"
    "message ME 4 2 AABB\n"
    "message SM 1 0 01\n"
    "message SM 3 3 0203\n"
    "contact ME 100 0701/161 \n"
    "contact SM 2 +46701234567 0041006E006E0061\n"
    "waiting 0405\n"
    "travelling +46701 8C5B 0607\n"
    "taken 77A0\n";

State read(std::string_view text, int passedOver) {
  State defaults;
  defaults.centre = "+1";
  ReadState result = fromText(text, std::move(defaults));
  EXPECT_EQ(result.passedOver, passedOver) << text;
  return std::move(result.state);
}

TEST(StateTest, Text_ComesBackTheSame) {
  const State state = read(full, 0);
  EXPECT_EQ(toText(state), full);
  EXPECT_EQ(state.reference, 255);
  EXPECT_EQ(state.memories.at(Place::Sim).slots.at(3), (StoredPdu{Status::StoredSent, {2, 3}}));
  EXPECT_EQ(state.contacts.at(Place::Sim).entries().at(2), (Contact{number(u"+46701234567"), u"Anna"}));
  EXPECT_EQ(state.contacts.at(Place::Phone).entries().at(100),
            (Contact{{phone::NumberType::National, phone::planTelephone, u"0701"}, u""}));
  EXPECT_THAT(state.travelling, ElementsAre(Travelling{"+46701", "8C5B", {6, 7}}));
}

TEST(StateTest, WindowsLineEnds_AreAccepted) {
  std::string text = full;
  for (std::size_t at = 0; (at = text.find('\n', at)) != text.npos; at += 2) text.insert(at, "\r");
  EXPECT_EQ(toText(read(text, 0)), full);
}

TEST(StateTest, Nothing_IsTheDefaults) {
  const State state = read("", 0);
  EXPECT_EQ(state.centre, "+1");
  EXPECT_EQ(state.memories.capacity(View::Both), 120);
}

TEST(StateTest, HostileLines_ArePassedOver) {
  for (const char* const line : {"message SM 0 0 01",
                                 "message SM 21 0 01",
                                 "message SM -1 0 01",
                                 "message SM 1 4 01",
                                 "message SM 1 -1 01",
                                 "message SM 1 0 0",
                                 "message SM 1 0 0G",
                                 "message SM 1 0 ",
                                 "message SM 1 0",
                                 "message MT 1 0 01",
                                 "message",
                                 "contact SM 0 +4670 0041",
                                 "contact SM 101 +4670 0041",
                                 "contact SM 1 x 0041",
                                 "contact SM 1 +4670/ 0041",
                                 "contact SM 1 +4670/127 0041",
                                 "contact SM 1 +4670/256 0041",
                                 "contact SM 1 4670/209 0041",
                                 "contact SM 1 4670/129/1 0041",
                                 "contact SM 1 +4670 00",
                                 "contact SM 1 +4670 x",
                                 "contact MT 1 +4670 0041",
                                 "contact SM 1",
                                 "memory SM",
                                 "memory SM 10001",
                                 "memory SM -1",
                                 "memory SM 99999999999999999999",
                                 "memory XX 5",
                                 "centre a\"b",
                                 "centre a b",
                                 "reference 256",
                                 "reference x",
                                 "travelling +46 01",
                                 "travelling  x 01",
                                 "waiting",
                                 "waiting x",
                                 "taken",
                                 "taken a b",
                                 "unknown 1",
                                 "\x01\xFF",
                                 "message SM 1 0 01 02"}) {
    const State state = read(std::string("phonesim-memory 1\n") + line + '\n', 1);
    EXPECT_EQ(toText(state), toText(read("phonesim-memory 1\n", 0))) << line;
  }
  read("message SM 1 0 " + std::string(100000, 'A'), 1);                            // and no first line
  read("phonesim-memory 1\ncontact SM 1 +4670 " + std::string(76, '0') + '\n', 1);  // 19 letters
  read("phonesim-memory 1\ncontact SM 1 +4670 0041\ncontact SM 1 +4671 0041\n", 1);
  EXPECT_EQ(read("phonesim-memory 1\nmessage SM 1 0 01\nmessage SM 1 0 02\n", 1).memories.used(View::Sim), 1);
}

TEST(StateTest, RubbishOfAnyKind_IsSurvived) {
  std::mt19937 random(1);
  for (int i = 0; i < 2000; ++i) {
    std::string text = full;
    for (int changes = static_cast<int>(random() % 8); changes >= 0; --changes)
      text[random() % text.size()] = static_cast<char>(random());
    const State state = fromText(text, {}).state;
    // What was read can be written and read again.
    EXPECT_EQ(toText(read(toText(state), 0)), toText(state));
  }
}

TEST(MemoriesTest, Add_TakesTheFirstFreeSlot) {
  Memories memories(2, 2);
  EXPECT_EQ(memories.add(View::Both, {Status::ReceivedRead, {1}}), (Slot{Place::Sim, 1}));
  EXPECT_EQ(memories.add(View::Both, {Status::ReceivedRead, {2}}), (Slot{Place::Sim, 2}));
  EXPECT_EQ(memories.add(View::Both, {Status::ReceivedRead, {3}}), (Slot{Place::Phone, 1}));
  EXPECT_EQ(memories.add(View::Sim, {Status::ReceivedRead, {4}}), std::nullopt);
  memories.remove({Place::Sim, 1});
  EXPECT_EQ(memories.add(View::Sim, {Status::ReceivedRead, {5}}), (Slot{Place::Sim, 1}));
  EXPECT_THAT(memories.occupied(View::Both),
              ElementsAre(Slot{Place::Sim, 1}, Slot{Place::Sim, 2}, Slot{Place::Phone, 1}));
}

TEST(MemoriesTest, Index_AndSlotAreEachOthersInverse) {
  const Memories memories(5, 3);
  for (const View view : {View::Phone, View::Sim, View::Both}) {
    for (int index = 1; index <= memories.capacity(view); ++index) {
      const auto slot = memories.slotOf(view, index);
      ASSERT_TRUE(slot);
      EXPECT_EQ(memories.indexOf(view, *slot), index);
    }
    EXPECT_EQ(memories.slotOf(view, 0), std::nullopt);
    EXPECT_EQ(memories.slotOf(view, memories.capacity(view) + 1), std::nullopt);
  }
}

// A port that is fed with anything neither stops nor loses its step for good.
TEST_F(DialogueTest, RandomInput_LeavesTheDialogueAlive) {
  const std::string_view pieces[] = {"AT",         "+CMGS=23",     "+CMGL=4", "\r", "\x1A",    "\x1B", submitPdu,
                                     deliverPdu,   "\"",           ",",       ";",  "=?",      "?",    "+",
                                     "+CMGW=28,1", "+CPMS=\"ME\"", "\xFF",    "A/", "+CMGD=1", "1234", "ATZ",
                                     "\b",         "+CFUN=1,1",    "ATE0"};
  std::mt19937 random(2);
  for (int i = 0; i < 20000; ++i) {
    std::string text;
    for (int count = static_cast<int>(random() % 6); count >= 0; --count) text += pieces[random() % std::size(pieces)];
    if (random() % 8 == 0) text[random() % text.size()] = static_cast<char>(random());
    type(text);
  }
  type("\x1B\r");
  type("\x1B\rATZE0V1Q0\r");
  EXPECT_EQ(type("AT\r"), "\r\nOK\r\n");
}

}  // namespace
}  // namespace phonesim
