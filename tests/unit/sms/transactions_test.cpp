// Transactions: the record, and how the engine keeps them.
#include "support/errors.h"
#include "unit/sms/engine_fixture.h"

namespace sms_tests {
namespace {

using testing_support::errorOf;

class Transactions : public EngineFixture {
 protected:
  Transactions() { start(); }
};

TEST_F(Transactions, Record_StartsEmptyAndKeepsWhatItIsGiven) {
  const auto transaction = make<clsTransaction>();
  EXPECT_EQ(transaction->TransactionID, 0);
  EXPECT_EQ(transaction->EntryID, u"");
  EXPECT_EQ(static_cast<std::int32_t>(transaction->TransactionType), 0);
  transaction->TransactionID = -2147483647 - 1;
  transaction->EntryID = u"00ab \x01 å";
  transaction->TransactionType = enTransactionType::Read;
  EXPECT_EQ(transaction->TransactionID, -2147483647 - 1);
  EXPECT_EQ(transaction->EntryID, u"00ab \x01 å");
  EXPECT_EQ(transaction->TransactionType, enTransactionType::Read);
}

TEST_F(Transactions, TypesAndStates_HaveTheirNumbers) {
  EXPECT_EQ((std::vector<std::int32_t>{enTransactionType::Send, enTransactionType::Read, enTransactionType::List}),
            (std::vector<std::int32_t>{1, 2, 3}));
  EXPECT_EQ((std::vector<std::int32_t>{IDLE, STATE_LIST, STATE_SEND, STATE_DELETE}),
            (std::vector<std::int32_t>{0, 1, 2, 3}));
}

TEST_F(Transactions, Add_TracesAndKeepsUnderItsKey) {
  probe().AddTransaction(17, u"ID-1", enTransactionType::Send);
  EXPECT_EQ(trace(), (Lines{"Add transaction, tranid: 17 type: 1", "Transaction ID = 17", "strEntryID = ID-1",
                            "Transaction type = 1"}));
  const Ref<clsTransaction> kept = probe().transactions()->Item(u"Key:17");
  EXPECT_EQ(kept->TransactionID, 17);
  EXPECT_EQ(kept->EntryID, u"ID-1");
  EXPECT_EQ(kept->TransactionType, enTransactionType::Send);
  EXPECT_EQ(probe().transactions()->Count(), 1);
}

TEST_F(Transactions, KeyOfANegativeId_HasItsSign) {
  probe().AddTransaction(-5, u"ID-1", enTransactionType::List);
  EXPECT_EQ(trace(), (Lines{"Add transaction, tranid: -5 type: 3", "Transaction ID = -5", "strEntryID = ID-1",
                            "Transaction type = 3"}));
  EXPECT_EQ(probe().transactions()->Item(u"Key:-5")->TransactionID, -5);
}

TEST_F(Transactions, AddWithoutCollection_WritesOnlyTheFirstLine) {
  probe().transactions() = nullptr;
  probe().AddTransaction(17, u"ID-1", enTransactionType::Send);
  EXPECT_EQ(trace(), Lines{"Add transaction, tranid: 17 type: 1"});
  EXPECT_FALSE(probe().transactions());
}

TEST_F(Transactions, SameIdTwice_FailsInTheCollectionAndGoesToTheCaller) {
  probe().AddTransaction(17, u"ID-1", enTransactionType::Send);
  clear();
  const auto error = errorOf([&] { probe().AddTransaction(17, u"ID-2", enTransactionType::Send); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number, 457);
  EXPECT_EQ(error->description, u"This key is already associated with an element of this collection");
  EXPECT_EQ(trace(), (Lines{"Add transaction, tranid: 17 type: 1", "Transaction ID = 17", "strEntryID = ID-2",
                            "Transaction type = 1"}));
  EXPECT_EQ(probe().transactions()->Item(u"Key:17")->EntryID, u"ID-1");
}

TEST_F(Transactions, FailedSendAndGuard_LeaveTheTransaction) {
  addItem(outbox, u"Anna [1]", u"Hello");
  tick(sendTimer(), 500);
  answer(17, 1);
  EXPECT_EQ(probe().transactions()->Count(), 1);
  tick(sendTimer(), 500);
  tick(guardTimer(), 25000);
  EXPECT_EQ(probe().transactions()->Count(), 2);
}

}  // namespace
}  // namespace sms_tests
