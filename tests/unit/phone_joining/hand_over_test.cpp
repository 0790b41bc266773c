// Messages handed over and deleted: nothing is lost, and nothing is shown twice.

#include <algorithm>

#include "phone/joining/joining.h"
#include "unit/phone_joining/joining_fixture.h"

namespace phone {
namespace {

class HandOverTest : public JoiningTest {
 protected:
  void putLong(int firstSlot, std::chrono::seconds sent = 0s) {
    put(me(firstSlot), {.text = u"one ", .part = 1, .total = 2, .sent = sent});
    put(sim(firstSlot), {.text = u"two", .part = 2, .total = 2, .sent = sent + 1s});
  }
};

TEST_F(HandOverTest, Message_IsUnreadWhileAnyPartIs) {
  putLong(1);
  changeStatus(me(1), Status::ReceivedRead);
  list();
  EXPECT_EQ(only().status, Status::ReceivedUnread);
}

TEST_F(HandOverTest, ReadPartsOnly_AreARead) {
  putLong(1);
  changeStatus(me(1), Status::ReceivedRead);
  changeStatus(sim(1), Status::ReceivedRead);
  list();
  EXPECT_EQ(only().status, Status::ReceivedRead);
}

TEST_F(HandOverTest, ReadingItFromThePhone_DoesNotMakeItRead) {
  putLong(1);
  list();
  changeStatus(me(1), Status::ReceivedRead);
  changeStatus(sim(1), Status::ReceivedRead);
  list();
  EXPECT_EQ(only().status, Status::ReceivedUnread);
}

TEST_F(HandOverTest, HandingItOver_MakesItReadWhateverThePhoneSays) {
  putLong(1);
  list();
  handOver(me(1));
  EXPECT_EQ(only().status, Status::ReceivedRead);
  EXPECT_TRUE(only().handedOver);
  list();  // the phone still says unread
  EXPECT_EQ(only().status, Status::ReceivedRead);
}

TEST_F(HandOverTest, TakingItBack_MakesItUnreadWhateverThePhoneSays) {
  putLong(1);
  list();
  handOver(me(1));
  joining.takeBack(only());
  EXPECT_EQ(only().status, Status::ReceivedUnread);
  EXPECT_FALSE(only().handedOver);
  EXPECT_TRUE(joining.slotsToDelete(me(1)).empty()) << "a long message that nobody has seen";
  changeStatus(me(1), Status::ReceivedRead);
  changeStatus(sim(1), Status::ReceivedRead);
  list();
  EXPECT_EQ(only().status, Status::ReceivedUnread);
  handOver(me(1));
  EXPECT_EQ(only().status, Status::ReceivedRead);
}

TEST_F(HandOverTest, TakingBackWhatIsBeingDeleted_ChangesNothing) {
  putLong(1);
  list();
  handOver(me(1));
  const JoinedMessage message = only();
  joining.deleted(sim(1));
  joining.takeBack(message);
  EXPECT_EQ(joining.leftovers(now), Slots{me(1)});
  EXPECT_TRUE(joining.messages(now).empty());
}

TEST_F(HandOverTest, AnyOfItsSlots_StandsForTheMessage) {
  putLong(1);
  list();
  handOver(sim(1));
  EXPECT_TRUE(only().handedOver);
  EXPECT_EQ(joining.slotsToDelete(sim(1)), (Slots{sim(1), me(1)}));
  EXPECT_EQ(joining.slotsToDelete(me(1)), (Slots{sim(1), me(1)}));
}

TEST_F(HandOverTest, WaitingMessage_CannotBeHandedOverOrDeleted) {
  put(me(1), {.text = u"one ", .part = 1, .total = 2});
  list();
  handOver(me(1));
  EXPECT_EQ(joining.slotsToDelete(me(1)), Slots{});
  now += 10min;
  EXPECT_EQ(joining.slotsToDelete(me(1)), Slots{});
  EXPECT_FALSE(only().handedOver);
  handOver(me(1));
  EXPECT_EQ(joining.slotsToDelete(me(1)), Slots{me(1)});
}

TEST_F(HandOverTest, LongMessage_IsNotDeletedBeforeItWasHandedOver) {
  putLong(1);
  list();
  EXPECT_EQ(joining.slotsToDelete(me(1)), Slots{});
  handOver(me(1));
  EXPECT_EQ(joining.slotsToDelete(me(1)), (Slots{sim(1), me(1)}));
}

TEST_F(HandOverTest, ShortMessage_CanBeDeletedUnseen) {
  put(me(1), {.text = u"short"});
  list();
  EXPECT_EQ(joining.slotsToDelete(me(1)), Slots{me(1)});
  EXPECT_EQ(joining.slotsToDelete(me(2)), Slots{});
  remove(me(1));
  EXPECT_EQ(texts(), Texts{});
  EXPECT_EQ(joining.slotsToDelete(me(1)), Slots{});
}

TEST_F(HandOverTest, Deletion_TakesAllSlots) {
  putLong(1);
  put(me(5), {.text = u"one ", .part = 1, .total = 2});  // came twice
  list();
  handOver(me(1));
  remove(me(1));
  EXPECT_TRUE(phone.empty());
  EXPECT_EQ(texts(), Texts{});
  EXPECT_EQ(joining.leftovers(now), Slots{});
}

TEST_F(HandOverTest, DeletionThatFailsHalfWay_ShowsNothingAgainAndCanBeFinished) {
  putLong(1);
  list();
  handOver(me(1));
  ASSERT_EQ(joining.slotsToDelete(me(1)), (Slots{sim(1), me(1)}));
  take(sim(1));
  joining.deleted(sim(1));
  // The rest fails.
  EXPECT_EQ(texts(), Texts{});
  EXPECT_EQ(joining.leftovers(now), Slots{me(1)});
  list();
  now += 1h;
  EXPECT_EQ(texts(), Texts{});
  EXPECT_EQ(joining.leftovers(now), Slots{me(1)});
  EXPECT_EQ(joining.slotsToDelete(me(1)), Slots{me(1)});  // asked for again under the same index
  remove(me(1));
  EXPECT_EQ(joining.leftovers(now), Slots{});
  EXPECT_EQ(joining.slotsToDelete(me(1)), Slots{});
}

TEST_F(HandOverTest, DeletionThatFailsAtOnce_LeavesTheMessage) {
  putLong(1);
  list();
  handOver(me(1));
  ASSERT_EQ(joining.slotsToDelete(me(1)).size(), 2U);
  list();
  EXPECT_EQ(texts(), Texts{u"one two"});
  EXPECT_EQ(joining.slotsToDelete(me(1)).size(), 2U);
}

TEST_F(HandOverTest, ContentsOfASlot_AreKnownUntilItIsDeleted) {
  put(me(1), "0791");
  list();
  EXPECT_EQ(joining.pdu(me(1)), "0791");
  EXPECT_EQ(joining.pdu(sim(1)), "");
  joining.deleted(me(1));
  EXPECT_EQ(joining.pdu(me(1)), "");
}

TEST_F(HandOverTest, MessageThatComesBackAfterItsDeletion_IsNotShownAgain) {
  put(me(1), {.text = u"short"});
  list();
  handOver(me(1));
  joining.deleted(me(1));  // says the phone
  list();
  EXPECT_EQ(texts(), Texts{});
  EXPECT_EQ(joining.leftovers(now), Slots{me(1)});
}

TEST_F(HandOverTest, MessageThatIsSentAgainAfterItsDeletion_IsANewOne) {
  put(me(1), {.text = u"short"});
  putLong(2);
  list();
  handOver(me(1));
  handOver(me(2));
  remove(me(1));
  remove(me(2));
  EXPECT_EQ(texts(), Texts{});
  put(me(1), {.text = u"short"});
  putLong(2);
  list();
  EXPECT_EQ(texts(), (Texts{u"short", u"one two"}));
  for (const JoinedMessage& message : joining.messages(now)) EXPECT_EQ(message.status, Status::ReceivedUnread);
}

TEST_F(HandOverTest, LongMessageThatIsSentAgain_AfterADeletionInTwoSteps_IsANewOne) {
  putLong(1);
  list();
  handOver(me(1));
  take(sim(1));
  joining.deleted(sim(1));
  list();
  remove(me(1));
  putLong(1);
  list();
  EXPECT_EQ(texts(), Texts{u"one two"});
}

TEST_F(HandOverTest, SlotThatIsUsedAgain_HoldsANewMessage) {
  putLong(1);
  list();
  handOver(me(1));
  put(me(1), {.text = u"another"});
  list();
  EXPECT_EQ(texts(), (Texts{u"another", u"[part 1 of 2 is missing]two"}));
  EXPECT_EQ(joining.messages(now)[0].status, Status::ReceivedUnread);
  EXPECT_FALSE(joining.messages(now)[0].handedOver);
  EXPECT_TRUE(joining.messages(now)[1].handedOver);
}

TEST_F(HandOverTest, SlotThatIsUsedAgain_IsNotDeletedForWhatWasThereBefore) {
  put(me(1), {.text = u"first"});
  list();
  handOver(me(1));
  put(me(1), {.text = u"second"});  // somebody else deleted the first
  list();
  EXPECT_EQ(joining.slotsToDelete(me(1)), Slots{});
  joining.deleted(me(1));
  EXPECT_EQ(texts(), Texts{u"second"});
  handOver(me(1));
  EXPECT_EQ(joining.slotsToDelete(me(1)), Slots{me(1)});
  remove(me(1));
  put(me(1), {.text = u"third"});
  list();
  EXPECT_EQ(joining.slotsToDelete(me(1)), Slots{me(1)});
}

TEST_F(HandOverTest, PartThatComesWhileItIsHandedOver_WasNotHandedOver) {
  put(me(1), {.text = u"one ", .part = 1, .total = 2});
  list();
  now += 10min;
  const auto given = joining.messages(now);
  ASSERT_EQ(given.size(), 1U);
  put(me(2), {.text = u"two", .part = 2, .total = 2});
  list();
  joining.handedOver(given[0]);
  EXPECT_EQ(texts(), Texts{u"one [part 2 of 2 is missing]"});
  EXPECT_EQ(joining.slotsToDelete(me(1)), Slots{me(1)});
  EXPECT_EQ(joining.slotsToDelete(me(2)), Slots{});
  now += 10min;
  EXPECT_EQ(texts(), (Texts{u"one [part 2 of 2 is missing]", u"[part 1 of 2 is missing]two"}));
}

TEST_F(HandOverTest, SlotThatIsUsedAgainWhileItIsHandedOver_WasNotHandedOver) {
  put(me(1), {.text = u"first"});
  list();
  const auto given = joining.messages(now);
  put(me(1), {.text = u"second"});
  list();
  joining.handedOver(given.at(0));
  EXPECT_FALSE(only().handedOver);
  EXPECT_EQ(only().status, Status::ReceivedUnread);
}

TEST_F(HandOverTest, LatePart_IsAMessageOfItsOwn) {
  put(me(1), {.text = u"one ", .part = 1, .total = 3});
  put(me(3), {.text = u"three", .part = 3, .total = 3});
  list();
  now += 10min;
  handOver(me(1));
  EXPECT_EQ(texts(), Texts{u"one [part 2 of 3 is missing]three"});
  put(me(2), {.text = u"two", .part = 2, .total = 3});
  list();
  EXPECT_EQ(texts(), Texts{u"one [part 2 of 3 is missing]three"});
  EXPECT_EQ(joining.slotsToDelete(me(1)), (Slots{me(3), me(1)}));
  now += 10min;
  EXPECT_EQ(texts(),
            (Texts{u"one [part 2 of 3 is missing]three", u"[part 1 of 3 is missing]two[part 3 of 3 is missing]"}));
  EXPECT_EQ(joining.slotsToDelete(me(2)), Slots{});
}

TEST_F(HandOverTest, LatePart_BeforeTheIncompleteMessageWasHandedOver_CompletesIt) {
  put(me(1), {.text = u"one ", .part = 1, .total = 2});
  list();
  now += 10min;
  EXPECT_EQ(texts(), Texts{u"one [part 2 of 2 is missing]"});  // could have been, but nobody asked
  put(me(2), {.text = u"two", .part = 2, .total = 2});
  list();
  EXPECT_EQ(texts(), Texts{u"one two"});
}

TEST_F(HandOverTest, RepeatedPart_AfterTheHandOver_GoesWithTheMessage) {
  putLong(1);
  list();
  handOver(me(1));
  now += 1min;
  put(me(8), {.text = u"one ", .part = 1, .total = 2});              // the very same
  put(me(9), {.text = u"two", .part = 2, .total = 2, .sent = 60s});  // sent again
  list();
  EXPECT_EQ(only().text, u"one two");
  EXPECT_EQ(only().status, Status::ReceivedRead);
  EXPECT_EQ(only().handle, me(1));
  EXPECT_EQ(joining.slotsToDelete(me(1)), (Slots{me(9), sim(1), me(8), me(1)}));
  now += 1h;
  EXPECT_EQ(texts(), Texts{u"one two"});
  handOver(me(1));  // once more, as a listing of all messages does
  list();
  EXPECT_EQ(texts(), Texts{u"one two"});
}

TEST_F(HandOverTest, EqualBeginning_WithAnotherEnd_IsAnotherMessage) {
  putLong(1);
  list();
  handOver(me(1));
  put(me(8), {.text = u"one ", .part = 1, .total = 2, .sent = 60s});
  list();
  put(me(9), {.text = u"another", .part = 2, .total = 2, .sent = 61s});
  list();
  EXPECT_EQ(texts(), (Texts{u"one two", u"one another"}));
}

TEST_F(HandOverTest, RepeatedPart_AfterTheDeletion_IsCleanedUpAndNotShown) {
  putLong(1);
  list();
  handOver(me(1));
  remove(me(1));
  put(me(4), {.text = u"one ", .part = 1, .total = 2});
  list();
  EXPECT_EQ(texts(), Texts{});
  EXPECT_EQ(joining.leftovers(now), Slots{});  // the other part may follow
  now += 10min;
  EXPECT_EQ(texts(), Texts{});
  EXPECT_EQ(joining.leftovers(now), Slots{me(4)});
}

TEST_F(HandOverTest, RepeatedPart_AfterTheDeletion_CompletesNoOtherMessage) {
  putLong(1);
  list();
  handOver(me(1));
  remove(me(1));
  put(me(4), {.text = u"other ", .part = 1, .total = 2, .sent = 60s});
  put(me(5), {.text = u"two", .part = 2, .total = 2, .sent = 1s});  // the old message's
  list();
  EXPECT_EQ(texts(), Texts{});
  put(me(6), {.text = u"end", .part = 2, .total = 2, .sent = 61s});
  list();
  EXPECT_EQ(texts(), Texts{u"other end"});
}

TEST_F(HandOverTest, AfterARestart_PartsThatAreStillThereAreSeenAgain) {
  put(me(1), {.text = u"one ", .part = 1, .total = 3});
  put(me(3), {.text = u"three", .part = 3, .total = 3});
  list();
  now += 10min;
  handOver(me(1));
  joining = Joining();
  put(me(2), {.text = u"two ", .part = 2, .total = 3});
  list();
  EXPECT_EQ(texts(), Texts{u"one two three"});
}

TEST_F(HandOverTest, AfterARestart_IncompleteMessagesWaitAgain) {
  put(me(1), {.text = u"one ", .part = 1, .total = 2});
  list();
  now += 9min;
  joining = Joining();
  list();
  now += 9min;
  EXPECT_EQ(texts(), Texts{});
  now += 1min;
  EXPECT_EQ(texts(), Texts{u"one [part 2 of 2 is missing]"});
}

TEST_F(HandOverTest, PartThatVanishes_LetsTheMessageWaitAgain) {
  putLong(1);
  list();
  EXPECT_EQ(texts(), Texts{u"one two"});
  take(sim(1));
  list();
  EXPECT_EQ(texts(), Texts{});
  EXPECT_EQ(joining.nextDue(now), now + 10min);
}

TEST_F(HandOverTest, UnknownSlots_AreNothing) {
  handOver(me(1));
  joining.deleted(me(1));
  EXPECT_EQ(joining.slotsToDelete(me(1)), Slots{});
  EXPECT_EQ(texts(), Texts{});
  putLong(1);
  list();
  joining.deleted(me(1));  // nobody may: it was not handed over
  EXPECT_EQ(texts(), Texts{u"one two"});
}

TEST_F(HandOverTest, IndexListedTwice_CountsOnce) {
  const StoredPdu first{.index = 1, .status = Status::ReceivedUnread, .pdu = pduOf({.text = u"first"})};
  const StoredPdu last{.index = 1, .status = Status::ReceivedRead, .pdu = pduOf({.text = u"last"})};
  joining.update(Memory::Phone, std::vector{first, last}, now);
  EXPECT_EQ(texts(), Texts{u"last"});
}

}  // namespace
}  // namespace phone
