// One server after the other is not there: the add-in does what it can without it.

#include "product_test.h"

namespace failures_tests {
namespace {

// A file of the product that is not registered for a while.
class Missing {
 public:
  explicit Missing(const wchar_t* file) : file_(file) { EXPECT_TRUE(testing_support::unregisterServer(file_)); }
  Missing(const Missing&) = delete;
  Missing& operator=(const Missing&) = delete;
  ~Missing() { EXPECT_TRUE(testing_support::registerServer(file_)); }

 private:
  const wchar_t* file_;
};

const Lines failedStart{"Error:-1, Failed to setup timer, StartUpCompleted",
                        "Error:-1, Failed in baseclass.StartUpCompleted, IDTExtensibility2_OnConnection"};

class MissingServer : public ProductTest {
 protected:
  // What a user does with an add-in that has found no phone.
  void expectMessageWaits() {
    EXPECT_EQ(ask(sendReceive).result, "ignored") << "the button is disabled";
    const std::size_t from = mark();
    compose(addressOfBo, "Later");
    EXPECT_EQ(traced(from), Lines{"m_objOutboxItems_ItemAdd, trigger a sendall"});
    EXPECT_EQ(items(), Lines{"Outbox: Later"});
  }
};

TEST_F(MissingServer, Timer_StartsWithoutEngineAndPolling) {
  testing_support::removeOption(L"SendReceive_UseAuto");
  startHandset();
  const Missing missing(L"timermm.dll");
  startClient();
  EXPECT_EQ(traced(0), (connectingLines(Start::OfTheMailClient) +
                        Lines{"Inside Function InitCAPIObjects", "Create timer", cannotCreate} + noLocalizer +
                        Lines{cannotCreate} + failedStart + Lines{"OnStartupComplete"}));
  EXPECT_EQ(ask("form").lines, Lines{}) << "publishing the form comes after the timer";
  expectMessageWaits();
  const std::size_t from = mark();
  EXPECT_TRUE(ask("delete " + MailClientProcess::field(itemOf("Outbox"), "id")).ok);
  EXPECT_EQ(traced(from),
            (Lines{"Item added to Deleted Items folder", "YES, the item is our mail item - check if phone connected",
                   "m_bPhoneConnected = 0"}));
  EXPECT_EQ(items(), Lines{"Deleted Items: Later"});
}

TEST_F(MissingServer, ItemHelper_StartsWithoutAPhone) {
  startHandset();
  const Missing missing(L"mrktxtmsghelper.dll");
  startClient();
  EXPECT_EQ(traced(0), (connectingLines(Start::OfTheMailClient) +
                        Lines{"Inside Function InitCAPIObjects", "Create timer", "Create timeout object",
                              "Create transaction collection", "Create MAPI helper object", cannotCreate} +
                        noLocalizer + Lines{"OnStartupComplete"}));
  EXPECT_EQ(ask("form").lines.size(), 1u);
  expectMessageWaits();
}

TEST_F(MissingServer, PhoneWorker_CountsAsAMachineWithoutAPhone) {
  const Missing missing(L"dvmworker.exe");
  startClient();
  EXPECT_EQ(traced(0), (connectingLines(Start::OfTheMailClient) +
                        Lines{"Inside Function InitCAPIObjects", "Create timer", "Create timeout object",
                              "Create transaction collection", "Create MAPI helper object", "Create CAPI objects"} +
                        noLocalizer + Lines{"OnStartupComplete"}));
  EXPECT_EQ(ask("form").lines.size(), 1u);
  expectMessageWaits();
}

TEST_F(MissingServer, SmsObject_LeavesAConnectedPhoneThatCanDoNothing) {
  const Missing missing(L"sms_object.dll");
  startHandset();
  handset_.Deliver(u"+46701112233", u"Stays here", u"261120080000");
  startClient();
  EXPECT_EQ(traced(0), startLines(Start::OfTheMailClient));
  std::size_t from = mark();
  compose(addressOfBo, "Later");
  EXPECT_EQ(traced(from), Lines{"m_objOutboxItems_ItemAdd, trigger a sendall"});
  from = mark();
  clickSendReceive();
  EXPECT_EQ(traced(from), (Lines{"Inside Function ReceiveAll", "Create m_smsToDelete collection",
                                 "Inside ReceiveAll Function - m_bReceiveAll = True"} +
                           storeListed("ME", false) +
                           Lines{"Error:3, Error during ListMessage, Store:1, ReceiveAll",
                                 "Error: 1, Error during Receive All, SendAndReceive", "Inside Function SendAll",
                                 "Error:-1, No phone connected, SetupSendMessage",
                                 "Error:2, Error during Send All, SendAndReceive"}));
  EXPECT_EQ(items(), Lines{"Outbox: Later"});
  EXPECT_EQ(handset_.StoredCount(sim), 1);
}

// ---- the viewer -----------------------------------------------------------------------------------------------------

class MissingViewer : public ProductTest {
 protected:
  void setPath(const std::wstring& text) const {
    const auto* const bytes = reinterpret_cast<const std::byte*>(text.c_str());
    trace_->endViewer();
    TraceLog::set(TraceLog::Where::Channel, L"Path", 1, {bytes, bytes + (text.size() + 1) * sizeof(wchar_t)});
  }
  void sendAndReceiveOne() {
    startHandset();
    handset_.Deliver(u"+46701112233", u"Coming in", u"261120080000");
    startClient();
    clickSendReceive();
    compose(addressOfBo, "Going out");
    EXPECT_TRUE(waitForItems("Sent Items", 1));
    EXPECT_EQ(items(), (Lines{"Inbox: Coming in", "Sent Items: Going out"}));
  }
};

TEST_F(MissingViewer, ThatCannotBeStarted_LosesTheLinesAndNothingElse) {
  setPath(testing_support::productFolder() + L"\\there is no such viewer.exe");
  sendAndReceiveOne();
  EXPECT_EQ(traced(0), Lines{});
  // The initialisation ended at the viewer: the name of the writer was not set any more.
  ASSERT_TRUE(trace_->startViewer());
  disconnectAddIn();
  Lines expected = disconnectedByUserLines();
  for (std::string& line : expected) line.insert(0, "? (2) :");
  EXPECT_EQ(traced(0), expected);
}

TEST_F(MissingViewer, ThatShowsNoWindow_IsFoundWhenItComesLater) {
  setPath(L"\"" + testing_support::productFolder() + L"\\dvmworker.exe\" /Nonsense");
  sendAndReceiveOne();
  EXPECT_EQ(traced(0), Lines{});
  ASSERT_TRUE(trace_->startViewer());
  disconnectAddIn();
  EXPECT_EQ(traced(0), disconnectedByUserLines());
}

}  // namespace
}  // namespace failures_tests
