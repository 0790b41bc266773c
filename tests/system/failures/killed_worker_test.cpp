// dvmworker.exe is killed in the middle of its work. The mail client lives on, and when the add-in is connected again
// a new server goes on where the old one was killed.

#include "com/errors.h"
#include "product_test.h"
#include "support/text.h"

namespace failures_tests {
namespace {

// The system's own words: they differ between Windows and Wine.
const std::string serverIsGone =
    "Error:-2147023174, " +
    testing_support::utf8(com::errorOf(HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE)).description) + ", mrktxtmsg";
const Lines refusedSend{"Inside Function SendAll", "mrktxtmsg (0) :SendAll - Not Idle",
                        "Error:2, Error during Send All, SendAndReceive"};
const std::string receiveFailed = "Error: 1, Error during Receive All, SendAndReceive";

class KilledWorker : public ProductTest {
 protected:
  void SetUp() override {
    startHandset();
    startClient();
  }
  // A new start of the add-in finds a new server.
  void connectAgain() {
    const std::size_t from = mark();
    disconnectAddIn();
    EXPECT_EQ(traced(from), disconnectedByUserLines());
    connectAddIn();
    EXPECT_EQ(traced(from), disconnectedByUserLines() + startLines(Start::ByTheUser));
    restartHandset();
  }
  void expectAnswers() { EXPECT_TRUE(ask("status").ok) << "the mail client hangs"; }
};

TEST_F(KilledWorker, WhileListing_TimesOutAndLosesAndDoublesNothing) {
  handset_.Put(phoneMemory, 0, u"+46701112233", u"One", u"261120080000");
  handset_.Put(phoneMemory, 1, u"+46701112233", u"Two", u"261120080100");
  handset_.Put(sim, 0, u"+46701112233", u"Three", u"261120080200");
  handset_.AnswerNext(u"list", 0);
  handset_.SilenceNext(u"list");
  const std::size_t from = mark();
  const int click = client_->send(sendReceive);
  // The phone memory has been listed, the listing of the SIM has begun.
  const auto listings = [&] { return trace_->count("Wait for async operation to complete", from); };
  ASSERT_TRUE(testing_support::waitUntil([&] { return listings() == 2; }, patience));
  const std::size_t killed = mark();
  killWorker();
  expectAnswers();
  EXPECT_EQ(items(), (Lines{"Inbox: One", "Inbox: Two"}));
  EXPECT_EQ(client_->answerTo(click, patience).result, "clicked");
  EXPECT_EQ(traced(killed),
            (Lines{"Error:6, Operation Timed Out, ListMessage"} + storeListed("SIM", false) +
             Lines{"Error:3, Error during ListMessage, Store:2, ReceiveAll", receiveFailed} + refusedSend));
  connectAgain();
  clickSendReceive();
  EXPECT_EQ(items(), (Lines{"Inbox: One", "Inbox: Two", "Inbox: Three"}));
}

TEST_F(KilledWorker, WhileSending_GivesUpByTheGuardAndTheMessageGoesOutLater) {
  handset_.SilenceNext(u"send");
  std::size_t from = mark();
  compose(addressOfBo, "Only once");
  ASSERT_TRUE(waitForTrace("Inside SendMessage Function - AddTransaction called", from));
  EXPECT_EQ(traced(from), Lines{"m_objOutboxItems_ItemAdd, trigger a sendall"} + sendTimerArmed() +
                              messageHandedOver("+46707778899", "Only once"));
  from = mark();
  killWorker();
  clickSendReceive();
  EXPECT_EQ(traced(from), Lines({"Inside Function ReceiveAll", "Create m_smsToDelete collection",
                                 "Error:-1, Not idle!, ReceiveAll", receiveFailed}) +
                              refusedSend);
  from = mark();
  constexpr std::uint32_t guardTime = 25000;
  ASSERT_TRUE(trace_->waitFor("Failed count:0", from, guardTime + patience));
  EXPECT_EQ(traced(from),
            (Lines{"Guard time passed! #", "Guard time passed ms: 25000", "Number of parts left:0", "Failed count:0"}));
  EXPECT_EQ(MailClientProcess::field(itemOf("Outbox"), "mileage"), "1");
  EXPECT_EQ(items(), Lines{"Outbox: Only once"});
  connectAgain();
  clickSendReceive();
  EXPECT_TRUE(waitForItems("Sent Items", 1));
  EXPECT_EQ(items(), Lines{"Sent Items: Only once"});
  EXPECT_EQ(handset_.SentCount(), 1);
}

TEST_F(KilledWorker, WhileDeleting_WaitsWithoutHangingUntilTheAddInIsDisconnected) {
  testing_support::setOption(L"SendReceive_AutoRemove", 1);
  handset_.Deliver(u"+46701112233", u"Read and gone", u"261120080000");
  handset_.SilenceNext(u"delete");
  std::size_t from = mark();
  const int click = client_->send(sendReceive);
  ASSERT_TRUE(waitForTrace("Delete SMS in phone: transaction id: ", from));
  from = mark();
  killWorker();
  expectAnswers();
  EXPECT_EQ(client_->answerTo(click, 1000).result, "no answer") << "only the phone's answer would end the wait";
  EXPECT_EQ(traced(from), Lines{});
  disconnectAddIn();
  EXPECT_EQ(client_->answerTo(click, patience).result, "clicked");
  EXPECT_EQ(traced(from), (disconnectedByUserLines() +
                           Lines{"DeleteSMSFromPhone = False", "Delete from SIM - index = 1", serverIsGone,
                                 "Error:91, Object variable or With block variable not set, mrktxtmsg"}));
  EXPECT_EQ(references(), Lines{});
  EXPECT_EQ(items(), Lines{"Inbox: Read and gone"});

  connectAddIn();
  restartHandset();
  EXPECT_EQ(handset_.StoredCount(sim), 1) << "the request was never carried out";
  clickSendReceive();
  EXPECT_EQ(items(), Lines{"Inbox: Read and gone"});
}

// Each of them leaves a worker on offer that nobody has asked for.
TEST_F(KilledWorker, ThreeInARow_DoNotKeepTheNextOneFromServing) {
  disconnectAddIn();
  for (int i = 0; i < 3; ++i) {
    killWorker();
    restartHandset();
  }
  const std::size_t from = mark();
  connectAddIn();
  EXPECT_EQ(traced(from), startLines(Start::ByTheUser));
}

// The add-in is not told. It finds out when it asks.
TEST_F(KilledWorker, WhileIdle_FailsTheNextCommandAndTheNextMessage) {
  testing_support::setOption(L"Sim_Full_Warning", 0u);
  killWorker();
  std::size_t from = mark();
  clickSendReceive();
  EXPECT_EQ(traced(from),
            (Lines({"Inside Function ReceiveAll", "Create m_smsToDelete collection",
                    "Inside ReceiveAll Function - m_bReceiveAll = True", serverIsGone}) +
             storeListed("ME", false) + Lines{"Error:3, Error during ListMessage, Store:1, ReceiveAll", receiveFailed} +
             sendTimerArmed() +
             Lines{"Check in the registry if a warning should be displayed, if the SIM card is full",
                   "Don't show warning - SIM card is full: 0"}));
  from = mark();
  compose(addressOfBo, "Later");
  ASSERT_TRUE(waitForTrace("Failed count:", from));
  EXPECT_EQ(traced(from),
            (Lines{"m_objOutboxItems_ItemAdd, trigger a sendall"} + sendTimerArmed() +
             Lines{"m_objTimer_Timer: #", "Inside Function SendMessage", serverIsGone, "Failed count:0"}));
  EXPECT_EQ(items(), Lines{"Outbox: Later"});
  connectAgain();
  clickSendReceive();
  EXPECT_TRUE(waitForItems("Sent Items", 1));
  EXPECT_EQ(items(), Lines{"Sent Items: Later"});
}

}  // namespace
}  // namespace failures_tests
