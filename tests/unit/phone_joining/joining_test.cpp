// Messages in parts: which belong together, how long an incomplete one waits, and what it looks like.

#include "phone/joining/joining.h"

#include <algorithm>

#include "unit/phone_joining/joining_fixture.h"

namespace phone {
namespace {

TEST_F(JoiningTest, ShortMessages_AreThereAtOnceInTheOrderOfTheirPlaces) {
  put(sim(1), {.text = u"on the SIM"});
  put(me(7), {.text = u"seven", .sent = 1s});
  put(me(0), {.text = u"zero", .sent = 2s}, Status::ReceivedRead);
  list();
  const auto messages = joining.messages(now);
  ASSERT_EQ(messages.size(), 3U);
  EXPECT_EQ(messages[0], (JoinedMessage{.handle = me(0),
                                        .slots = {me(0)},
                                        .contents = messages[0].contents,
                                        .status = Status::ReceivedRead,
                                        .kind = PduKind::Deliver,
                                        .peer = *parseNumber(u"+46701234567"),
                                        .timeStamp = stampAt(2s),
                                        .text = u"zero"}));
  EXPECT_EQ(messages[1].handle, me(7));
  EXPECT_EQ(messages[2].handle, sim(1));
  EXPECT_EQ(joining.nextDue(now), std::nullopt);
}

TEST_F(JoiningTest, PartsInEveryOrderInBothMemories_AreOneMessage) {
  std::vector<int> order{1, 2, 3, 4};
  do {
    for (unsigned memories = 0; memories < 16; ++memories) {
      phone.clear();
      joining = Joining();
      for (int at = 0; at < 4; ++at) {
        EXPECT_EQ(texts(), Texts{});
        const int part = order[static_cast<std::size_t>(at)];
        put({memories >> at & 1 ? Memory::Sim : Memory::Phone, at + 1},
            {.text = std::u16string(1, static_cast<char16_t>(u'a' + part)), .part = part, .total = 4});
        list();
      }
      ASSERT_EQ(only().text, u"bcde");
      EXPECT_TRUE(only().complete);
    }
  } while (std::ranges::next_permutation(order).found);
}

TEST_F(JoiningTest, JoinedMessage_StandsInTheSlotOfItsFirstPart) {
  put(me(1), {.text = u"three", .part = 3, .total = 3, .sent = 3s});
  put(me(2), {.text = u"one ", .part = 1, .total = 3, .sent = 5s}, Status::ReceivedRead);
  put(sim(1), {.text = u"two ", .part = 2, .total = 3, .sent = 4s}, Status::ReceivedRead);
  list();
  EXPECT_EQ(only(), (JoinedMessage{.handle = me(2),
                                   .slots = {me(1), sim(1), me(2)},
                                   .status = Status::ReceivedUnread,
                                   .kind = PduKind::Deliver,
                                   .peer = *parseNumber(u"+46701234567"),
                                   .timeStamp = stampAt(5s),
                                   .text = u"one two three"}));
}

TEST_F(JoiningTest, IncompleteMessage_WaitsUntilItsNewestPartIsTenMinutesOld) {
  put(me(1), {.text = u"one ", .part = 1, .total = 3});
  list();
  const auto first = now;
  EXPECT_EQ(joining.nextDue(now), first + 10min);
  now += 9min;
  put(me(2), {.text = u"three", .part = 3, .total = 3});
  list();
  EXPECT_EQ(joining.nextDue(now), first + 19min);
  now += 10min - 1ms;
  list();
  EXPECT_EQ(texts(), Texts{});
  now += 1ms;  // without another look at the phone
  EXPECT_EQ(only().text, u"one [part 2 of 3 is missing]three");
  EXPECT_FALSE(only().complete);
  EXPECT_EQ(joining.nextDue(now), std::nullopt);
}

TEST_F(JoiningTest, PartThatCompletesAMessageWhileItWaits_EndsTheWait) {
  put(me(1), {.text = u"one ", .part = 1, .total = 2});
  list();
  now += 9min;
  put(me(2), {.text = u"two", .part = 2, .total = 2, .sent = 540s});
  list();
  EXPECT_EQ(only().text, u"one two");
}

TEST_F(JoiningTest, Gaps_AreMarkedWhereTheyAre) {
  put(me(1), {.text = u"2", .part = 2, .total = 7, .reference = 1});
  put(me(2), {.text = u"5", .part = 5, .total = 7, .reference = 1});
  put(me(3), {.text = u"only the first", .part = 1, .total = 2, .reference = 2});
  put(me(4), {.text = u"255", .part = 255, .total = 255, .reference = 3});
  list();
  now += 10min;
  EXPECT_EQ(texts(), (Texts{u"[part 1 of 7 is missing]2[parts 3 to 4 of 7 are missing]5[parts 6 to 7 of 7 are missing]",
                            u"only the first[part 2 of 2 is missing]", u"[parts 1 to 254 of 255 are missing]255"}));
}

TEST_F(JoiningTest, RepeatedParts_CountOnceAndProlongNothing) {
  put(me(1), {.text = u"one ", .part = 1, .total = 2});
  list();
  now += 5min;
  put(me(2), {.text = u"one ", .part = 1, .total = 2});               // the very same
  put(sim(1), {.text = u"one ", .part = 1, .total = 2, .sent = 5s});  // sent again
  list();
  now += 5min;
  EXPECT_EQ(only().text, u"one [part 2 of 2 is missing]");
  EXPECT_EQ(only().slots, (Slots{sim(1), me(2), me(1)}));
  put(me(3), {.text = u"two", .part = 2, .total = 2, .sent = 6s});
  list();
  EXPECT_EQ(only().text, u"one two");
  EXPECT_EQ(only().slots, (Slots{me(3), sim(1), me(2), me(1)}));
  EXPECT_EQ(only().handle, me(1));
}

TEST_F(JoiningTest, OneMemoryUnderTwoNames_ShowsEachMessageOnce) {
  const Piece short1{.text = u"short"};
  const Piece long1{.text = u"one ", .part = 1, .total = 2};
  const Piece long2{.text = u"two", .part = 2, .total = 2};  // at the same second
  const std::string draft = toHex(encodeSubmit({.destination = *parseNumber(u"123")}, u"draft", 0)[0].octets);
  for (const Memory memory : {Memory::Phone, Memory::Sim}) {
    put({memory, 1}, short1);
    put({memory, 2}, long1);
    put({memory, 3}, long2);
    put({memory, 4}, draft, Status::StoredUnsent);
    put({memory, 5}, "nonsense");
  }
  list();
  EXPECT_EQ(texts(), (Texts{u"short", u"one two", u"draft",
                            u"This message cannot be decoded: it is not hexadecimal. PDU: nonsense"}));
  EXPECT_EQ(joining.messages(now)[1].slots, (Slots{sim(3), me(3), sim(2), me(2)}));
}

TEST_F(JoiningTest, SameMessageStoredTwice_IsOneUnlessAnOctetDiffers) {
  put(me(1), {.text = u"hello"});
  put(me(5), {.text = u"hello"});
  put(sim(9), {.text = u"hello"});
  put(me(6), {.text = u"hello", .sent = 1s});
  list();
  EXPECT_EQ(texts(), (Texts{u"hello", u"hello"}));
  EXPECT_EQ(joining.messages(now)[0].slots, (Slots{sim(9), me(5), me(1)}));
}

TEST_F(JoiningTest, EqualMessagesThatWereWrittenHere_StaySeveral) {
  const std::string sent = toHex(encodeSubmit({.destination = *parseNumber(u"123")}, u"yes", 0)[0].octets);
  put(me(1), sent, Status::StoredSent);
  put(me(2), sent, Status::StoredSent);
  put(sim(3), sent, Status::StoredSent);
  list();
  EXPECT_EQ(texts(), (Texts{u"yes", u"yes", u"yes"}));
}

TEST_F(JoiningTest, OtherSendersReferencesTotalsOrWidths_DoNotBelongTogether) {
  put(me(1), {.text = u"1", .part = 1, .total = 2});
  put(me(2), {.text = u"2", .part = 2, .total = 2, .sender = u"+46701234568"});
  put(me(3), {.text = u"2", .part = 2, .total = 2, .sender = u"46701234567"});
  put(me(4), {.text = u"2", .part = 2, .total = 2, .reference = 43});
  put(me(5), {.text = u"2", .part = 2, .total = 3});
  put(me(6), {.text = u"2", .part = 2, .total = 2, .wide = true});
  const auto submits = encodeSubmit({.destination = *parseNumber(u"+46701234567")}, std::u16string(161, u'2'), 42);
  put(me(7), toHex(submits[1].octets), Status::StoredSent);
  list();
  EXPECT_EQ(texts(), Texts{});
  now += 10min;
  EXPECT_EQ(texts().size(), 7U);
}

TEST_F(JoiningTest, WideReferences_JoinToo) {
  put(me(1), {.text = u"1", .part = 1, .total = 2, .reference = 0x1234, .wide = true});
  put(me(2), {.text = u"x", .part = 1, .total = 2, .reference = 0x5634, .wide = true});
  put(me(3), {.text = u"2", .part = 2, .total = 2, .reference = 0x1234, .wide = true});
  list();
  EXPECT_EQ(texts(), Texts{u"12"});
}

TEST_F(JoiningTest, ReferenceZero_IsAReference) {
  put(me(1), {.text = u"2", .part = 2, .total = 2, .reference = 0});
  put(me(2), {.text = u"1", .part = 1, .total = 2, .reference = 0});
  list();
  EXPECT_EQ(texts(), Texts{u"12"});
}

TEST_F(JoiningTest, SenselessNumbers_MakeSingleMessages) {
  put(me(1), {.text = u"a", .part = 1, .total = 0});
  put(me(2), {.text = u"b", .part = 0, .total = 2});
  put(me(3), {.text = u"c", .part = 3, .total = 2});
  list();
  EXPECT_EQ(texts(), (Texts{u"a", u"b", u"c"}));
}

TEST_F(JoiningTest, StoredSubmits_AreJoinedWithTheirOwnStatus) {
  const auto submits = encodeSubmit({.destination = *parseNumber(u"0701")}, std::u16string(200, u'x'), 1);
  put(me(2), toHex(submits[0].octets), Status::StoredSent);
  put(me(1), toHex(submits[1].octets), Status::StoredUnsent);
  list();
  EXPECT_EQ(only(), (JoinedMessage{.handle = me(2),
                                   .slots = {me(1), me(2)},
                                   .status = Status::StoredUnsent,
                                   .kind = PduKind::Submit,
                                   .peer = *parseNumber(u"0701"),
                                   .text = std::u16string(200, u'x')}));
}

TEST_F(JoiningTest, StatusReports_AreSkipped_AndTheUndecodableIsShown) {
  put(me(1), toHex(encodeStatusReport({.recipient = *parseNumber(u"123")}).octets));
  put(me(2), "0791");
  list();
  EXPECT_EQ(only().text, u"This message cannot be decoded: it ends too early. PDU: 0791");
  EXPECT_EQ(only().handle, me(2));
  EXPECT_EQ(only().kind, PduKind::Undecodable);
  EXPECT_EQ(joining.slotsToDelete(me(1)), Slots{});
}

TEST_F(JoiningTest, SurrogatePairThatASenderCut_IsWholeAgain) {
  put(me(1), {.text = u"Ж" + std::u16string(1, char16_t{0xD83D}), .part = 1, .total = 2});
  put(me(2), {.text = std::u16string(1, char16_t{0xDE00}) + u"Ж", .part = 2, .total = 2});
  list();
  EXPECT_EQ(only().text, u"Ж\U0001F600Ж");
}

TEST_F(JoiningTest, PartsInDifferentAlphabets_AreJoined) {
  put(me(1), {.text = u"plain ", .part = 1, .total = 2});
  put(me(2), {.text = u"Жирный", .part = 2, .total = 2});
  list();
  EXPECT_EQ(only().text, u"plain Жирный");
}

TEST_F(JoiningTest, DataInParts_IsShownAsAWhole) {
  const auto data = [](int part, Octets octets) {
    const UserDataHeader header{
        .elements = {elementOf({.reference = 1, .wide = false, .total = 2, .part = static_cast<std::uint8_t>(part)})}};
    return toHex(
        encodeDeliver({.originator = *parseNumber(u"123"), .dataCoding = 0x04, .data = writeUserData(header, octets)})
            .octets);
  };
  put(me(1), data(1, {'H', 'i'}));
  put(me(2), data(2, {0x00, 0x1B}));
  list();
  EXPECT_EQ(only().text, u"[8-bit data: 48 69 00 1B]");
  take(me(2));
  list();
  now += 10min;
  EXPECT_EQ(only().text, u"Hi[part 2 of 2 is missing]");
}

TEST_F(JoiningTest, BadTimeStamps_DoNotHinder) {
  std::string first = pduOf({.text = u"1", .part = 1, .total = 2});
  const std::string stamp = "42014000000000";  // 2024-10-04, day 20000
  ASSERT_NE(first.find(stamp), std::string::npos);
  first.replace(first.find(stamp), stamp.size(), "00000000000000");
  put(me(1), first);
  put(me(2), {.text = u"2", .part = 2, .total = 2, .sent = 7s});
  list();
  EXPECT_EQ(only().text, u"12");
  EXPECT_EQ(only().timeStamp, stampAt(7s));
}

// The reference was used again.

TEST_F(JoiningTest, ReusedReference_TwoCompleteMessages) {
  put(me(1), {.text = u"A1", .part = 1, .total = 2, .sent = 0s});
  put(me(2), {.text = u"A2", .part = 2, .total = 2, .sent = 2s});
  put(me(3), {.text = u"B1", .part = 1, .total = 2, .sent = 3600s});
  put(me(4), {.text = u"B2", .part = 2, .total = 2, .sent = 3602s});
  list();
  EXPECT_EQ(texts(), (Texts{u"A1A2", u"B1B2"}));
}

TEST_F(JoiningTest, ReusedReference_InAnyOrderOnThePhone) {
  std::vector<int> order{0, 1, 2, 3};
  const Piece pieces[] = {{.text = u"A1", .part = 1, .total = 2, .sent = 0s},
                          {.text = u"A2", .part = 2, .total = 2, .sent = 2s},
                          {.text = u"B1", .part = 1, .total = 2, .sent = 600s},
                          {.text = u"B2", .part = 2, .total = 2, .sent = 602s}};
  do {
    phone.clear();
    joining = Joining();
    for (int at = 0; at < 4; ++at) put(me(at), pieces[order[static_cast<std::size_t>(at)]]);
    list();
    Texts sorted = texts();
    std::ranges::sort(sorted);
    ASSERT_EQ(sorted, (Texts{u"A1A2", u"B1B2"}));
  } while (std::ranges::next_permutation(order).found);
}

TEST_F(JoiningTest, ReusedReference_OldPartWithoutItsOther) {
  put(me(1), {.text = u"A1", .part = 1, .total = 2, .sent = 0s});
  put(me(2), {.text = u"B2", .part = 2, .total = 2, .sent = 3601s});
  put(me(3), {.text = u"B1", .part = 1, .total = 2, .sent = 3600s});
  list();
  EXPECT_EQ(texts(), Texts{u"B1B2"});
  now += 10min;
  EXPECT_EQ(texts(), (Texts{u"A1[part 2 of 2 is missing]", u"B1B2"}));
}

TEST_F(JoiningTest, ReusedReference_AfterADay) {
  put(me(1), {.text = u"A1", .part = 1, .total = 2, .sent = 0s});
  put(me(2), {.text = u"B2", .part = 2, .total = 2, .sent = 24h});
  list();
  EXPECT_EQ(texts(), Texts{});
  put(me(2), {.text = u"B2", .part = 2, .total = 2, .sent = 24h - 1s});
  list();
  EXPECT_EQ(texts(), Texts{u"A1B2"});
}

TEST_F(JoiningTest, ReusedReference_WithEqualTimeStamps_GoesByArrival) {
  put(me(1), {.text = u"A1", .part = 1, .total = 2});
  list();
  put(me(2), {.text = u"B1", .part = 1, .total = 2});
  list();
  put(me(3), {.text = u"B2", .part = 2, .total = 2});
  list();
  EXPECT_EQ(texts(), Texts{u"B1B2"});
}

TEST_F(JoiningTest, EqualPartMuchLater_IsNoRepetition) {
  put(me(1), {.text = u"1", .part = 1, .total = 2, .sent = 0s});
  put(me(2), {.text = u"1", .part = 1, .total = 2, .sent = 601s});
  put(me(3), {.text = u"2", .part = 2, .total = 2, .sent = 602s});
  list();
  EXPECT_EQ(texts(), Texts{u"12"});
  EXPECT_EQ(only().slots, (Slots{me(3), me(2)}));
  put(me(1), {.text = u"1", .part = 1, .total = 2, .sent = 1s});
  list();
  EXPECT_EQ(only().slots, (Slots{me(3), me(1), me(2)}));
}

TEST_F(JoiningTest, SameLongTextSentAgain_IsASecondMessage) {
  for (int copy = 0; copy < 2; ++copy) {
    put(me(2 * copy), {.text = u"1", .part = 1, .total = 2, .sent = copy * 60s});
    put(me(2 * copy + 1), {.text = u"2", .part = 2, .total = 2, .sent = copy * 60s + 1s});
  }
  list();
  EXPECT_EQ(texts(), (Texts{u"12", u"12"}));
}

}  // namespace
}  // namespace phone
