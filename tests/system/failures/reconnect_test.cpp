// The add-in is switched off and on again, many times, in one process.

#include "com/windows.h"
#include "product_test.h"

namespace failures_tests {
namespace {

using Reconnect = ProductTest;

TEST_F(Reconnect, TwentyTimes_LeavesNoReferenceNoButtonAndNoListenerBehind) {
  startHandset();
  startClient();
  for (int round = 0; round < 20; ++round) {
    SCOPED_TRACE(round);
    std::size_t from = mark();
    disconnectAddIn();
    ASSERT_EQ(traced(from), disconnectedByUserLines());
    ASSERT_EQ(references(), Lines{});
    ASSERT_EQ(ask("buttons").lines, Lines{});
    from = mark();
    connectAddIn();
    ASSERT_EQ(traced(from), startLines(Start::ByTheUser));
    ASSERT_EQ(ask("buttons").lines.size(), 4u);
  }
  EXPECT_EQ(ask("form").lines.size(), 1u);

  // Whatever happens is heard once.
  std::size_t from = mark();
  handset_.Unplug();
  ASSERT_TRUE(waitForTrace("m_objSMSHandler_OnPhoneConnected: False", from));
  handset_.Plug();
  ASSERT_TRUE(waitForTrace("m_objSMSHandler_OnPhoneConnected: True", from));
  EXPECT_EQ(traced(from), (Lines{"m_bPhoneConnected = 0", "Phone disconnected!",
                                 "m_objSMSHandler_OnPhoneConnected: False", "m_bPhoneConnected = 1",
                                 "New phone connected!", "Use new phone", "m_objSMSHandler_OnPhoneConnected: True"}));
  from = mark();
  handset_.Deliver(u"+46701112233", u"Hello", u"261120080000");
  clickSendReceive();
  compose(addressOfBo, "Good-bye");
  EXPECT_TRUE(waitForItems("Sent Items", 1));
  EXPECT_EQ(trace_->count("trigger a sendall", from), 1u);
  EXPECT_EQ(trace_->count("Inside Function SendMessage", from), 1u);
  EXPECT_EQ(handset_.SentCount(), 1);
  EXPECT_EQ(items(), (Lines{"Inbox: Hello", "Sent Items: Good-bye"}));

  disconnectAddIn();
  from = mark();
  compose(addressOfBo, "Unheard");
  handset_.Unplug();
  handset_.Plug();
  EXPECT_EQ(ask("idle 300").ok, true);
  EXPECT_EQ(traced(from), Lines{}) << "nobody listens";
  connectAddIn();
  clickSendReceive();
  EXPECT_TRUE(waitForItems("Sent Items", 2));
}

// A server ends when nobody holds anything of it any more.
TEST_F(Reconnect, FiveTimes_LeavesNothingOfThePhoneServerHeld) {
  startHandset();
  startClient();
  for (int round = 0; round < 5; ++round) {
    disconnectAddIn();
    connectAddIn();
    clickSendReceive();
  }
  disconnectAddIn();
  const HANDLE server = OpenProcess(SYNCHRONIZE, FALSE, static_cast<DWORD>(handset_.ProcessId()));
  ASSERT_NE(server, nullptr);
  handset_ = nullptr;
  EXPECT_TRUE(testing_support::waitUntil([&] { return WaitForSingleObject(server, 0) == WAIT_OBJECT_0; }, patience));
  CloseHandle(server);
  EXPECT_EQ(items(), Lines{});
}

}  // namespace
}  // namespace failures_tests
