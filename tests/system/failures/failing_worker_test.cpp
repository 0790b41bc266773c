// A worker server that is there and does not do its work: every call of every object fails.

#include "failing_worker.h"

#include "product_test.h"

namespace failures_tests {
namespace {

class FailingCalls : public ProductTest {
 protected:
  // One server for all these tests: Wine is not at its best when a class is offered, withdrawn and offered again.
  static void SetUpTestSuite() {
    worker_ = std::make_unique<FailingWorker>(Fails::Nothing);
    ASSERT_TRUE(worker_->isServing());
  }
  static void TearDownTestSuite() { worker_ = nullptr; }
  void SetUp() override { testing_support::setOption(L"Sim_Full_Warning", 0u); }

  void expectMessageWaits() {
    EXPECT_EQ(ask(sendReceive).result, "ignored") << "the button is disabled";
    const std::size_t from = mark();
    compose(addressOfBo, "Later");
    EXPECT_EQ(traced(from), Lines{"m_objOutboxItems_ItemAdd, trigger a sendall"});
    EXPECT_EQ(items(), Lines{"Outbox: Later"});
  }
  // Up to the line that the engine's start ends with.
  static Lines startUntilTheWorker() {
    return connectingLines(Start::OfTheMailClient) +
           Lines{"Inside Function InitCAPIObjects", "Create timer",
                 "Create timeout object",           "Create transaction collection",
                 "Create MAPI helper object",       "Create CAPI objects"};
  }

  static inline std::unique_ptr<FailingWorker> worker_;
};

// A receive with a worker that does not even say whether a phone is connected.
Lines failedReceive() {
  return Lines{"Inside Function ReceiveAll", "Create m_smsToDelete collection",
               "Inside ReceiveAll Function - m_bReceiveAll = True", failedCall} +
         storeListed("ME", false) + Lines{"Error:3, Error during ListMessage, Store:1, ReceiveAll"};
}
Lines failedCommand() {
  return failedReceive() + Lines{"Error: 1, Error during Receive All, SendAndReceive"} + sendTimerArmed() +
         Lines{"Check in the registry if a warning should be displayed, if the SIM card is full",
               "Don't show warning - SIM card is full: 0"};
}

TEST_F(FailingCalls, FromTheStart_LeaveAnAddInWithoutAPhone) {
  worker_->fail(Fails::Calls);
  startClient();
  EXPECT_EQ(traced(0), startUntilTheWorker() + Lines{failedCall} + noLocalizer + Lines{"OnStartupComplete"});
  expectMessageWaits();
  worker_->fail(Fails::Nothing);
  const std::size_t from = mark();
  disconnectAddIn();
  connectAddIn();
  EXPECT_EQ(traced(from), disconnectedByUserLines() + startLines(Start::ByTheUser));
}

TEST_F(FailingCalls, WorkerWithoutEvents_IsNotTaken) {
  worker_->fail(Fails::Notices);
  startClient();
  EXPECT_EQ(traced(0), startUntilTheWorker() +
                           Lines{"Error:459, Object or class does not support the set of events, mrktxtmsg"} +
                           noLocalizer + Lines{"OnStartupComplete"});
  expectMessageWaits();
}

TEST_F(FailingCalls, FromSomeMomentOn_CountAsFailuresOfTheMessage) {
  worker_->fail(Fails::Nothing);
  startClient();
  EXPECT_EQ(traced(0), startLines(Start::OfTheMailClient));
  EXPECT_TRUE(isSendReceiveEnabled());

  worker_->fail(Fails::Calls);
  const auto failed = [](int before) {
    return Lines{"m_objTimer_Timer: #", "Inside Function SendMessage", failedCall,
                 "Failed count:" + std::to_string(before)};
  };
  std::size_t from = mark();
  compose(addressOfBo, "Reported");
  ASSERT_TRUE(waitForTrace("Failed count:0", from));
  EXPECT_EQ(traced(from), Lines{"m_objOutboxItems_ItemAdd, trigger a sendall"} + sendTimerArmed() + failed(0));
  from = mark();
  clickSendReceive();
  ASSERT_TRUE(waitForTrace("Failed count:1", from));
  EXPECT_EQ(traced(from), failedCommand() + failed(1));
  EXPECT_EQ(items(), Lines{"Outbox: Reported"});

  from = mark();
  clickSendReceive();
  ASSERT_TRUE(waitForTrace("ReceiveAll function called.", from));
  EXPECT_EQ(traced(from), failedCommand() + failed(2) + Lines{"m_objOutboxItems_ItemAdd, trigger a sendall"} +
                              sendTimerArmed() + reportMovedAndItemDeleted() + failedReceive() +
                              Lines{"ReceiveAll function called."});
  EXPECT_EQ(items(), (Lines{"Inbox: The TextMessage Service was unable to deliver the following message."
                            "\\u000d\\u000a\\u000d\\u000aReported",
                            "Deleted Items: Reported"}));
}

// A failing look at the SIM counts as a full one.
TEST_F(FailingCalls, OfTheSimCheck_ShowTheWarning) {
  testing_support::removeOption(L"Sim_Full_Warning");
  worker_->fail(Fails::Nothing);
  startClient();
  worker_->fail(Fails::Calls);
  const std::size_t from = mark();
  const int click = client_->send(sendReceive);
  ASSERT_TRUE(testing_support::closeWindow(L"Marrick Text Message Add-In For Outlook", patience));
  EXPECT_EQ(client_->answerTo(click, patience).result, "clicked");
  EXPECT_EQ(traced(from),
            (failedReceive() + Lines{"Error: 1, Error during Receive All, SendAndReceive"} + sendTimerArmed() +
             Lines{"Check in the registry if a warning should be displayed, if the SIM card is full",
                   "Show warning - SIM card is full", "Inside Function isSimFull", failedCall,
                   "simWarning <> 0, localize SIM Full strings"} +
             noLocalizer + Lines{"Show message SIM card is full"}));
  EXPECT_EQ(items(), Lines{});
}

}  // namespace
}  // namespace failures_tests
