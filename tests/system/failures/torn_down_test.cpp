// The add-in is disconnected, or the mail client quits, while the add-in waits further down the stack.

#include "com/windows.h"
#include "product_test.h"

namespace failures_tests {
namespace {

constexpr const wchar_t* warningTitle = L"Marrick Text Message Add-In For Outlook";
const std::string nothingThere = "Error:91, Object variable or With block variable not set, mrktxtmsg";
const std::string receiveFailed = "Error: 1, Error during Receive All, SendAndReceive";

class TornDown : public ProductTest {
 protected:
  void SetUp() override {
    startHandset();
    startClient();
  }

  // Clicks, and comes back when the trace has come to this line; the click's answer is still due.
  void clickUntil(const std::string& line) {
    const std::size_t from = mark();
    click_ = client_->send(sendReceive);
    ASSERT_TRUE(waitForTrace(line, from));
    begun_ = mark();
  }
  void clickUntilListing() {
    handset_.SilenceNext(u"list");
    clickUntil("Wait for async operation to complete");
  }
  void clickUntilDeleting() {
    testing_support::setOption(L"SendReceive_AutoRemove", 1);
    handset_.Deliver(u"+46701112233", u"Read and gone", u"261120080000");
    handset_.SilenceNext(u"delete");
    clickUntil("Delete SMS in phone: transaction id: ");
  }
  void clickUntilWarned() {
    handset_.SetCapacity(sim, 1);
    handset_.Deliver(u"+46701112233", u"The only one", u"261120080000");
    clickUntil("simWarning <> 0, localize SIM Full strings");
    ASSERT_TRUE(testing_support::waitUntil([] { return FindWindowW(nullptr, warningTitle) != nullptr; }, patience));
    begun_ = mark();
  }
  void expectClickEnds() { EXPECT_EQ(client_->answerTo(click_, patience).result, "clicked"); }
  void quit() {
    quitsByItself_ = true;
    client_->send("quit");
    ASSERT_TRUE(client_->waitForEnd(patience)) << "the mail client does not quit";
  }

  // The last window closes, and then the add-in is told: the buttons are removed twice.
  static Lines quitLines() {
    const Lines removed{"Removed new button", "Removed send&receive button", "Removed delete button",
                        "Removed Help button"};
    return removed + Lines{"OnBeginShutdown", "OnDisconnection"} + removed;
  }
  // By error 3; the listing's own time-out is error 6.
  static Lines listingEnds() {
    return storeListed("ME", false) +
           Lines{"Error:3, Error during ListMessage, Store:1, ReceiveAll", receiveFailed, nothingThere};
  }
  static Lines deletingEnds() {
    return {"DeleteSMSFromPhone = False", "Delete from SIM - index = 1", "Delete from SIM - storage = 2",
            "Clear the m_smsToDelete collection", nothingThere};
  }

  int click_ = 0;
  std::size_t begun_ = 0;
};

TEST_F(TornDown, DisconnectInsideTheListingWait_EndsItAtOnce) {
  clickUntilListing();
  disconnectAddIn();
  expectClickEnds();
  EXPECT_EQ(references(), Lines{});
  EXPECT_EQ(traced(begun_), disconnectedByUserLines() + listingEnds());

  connectAddIn();
  handset_.Deliver(u"+46701112233", u"Hello", u"261120080000");
  clickSendReceive();
  EXPECT_EQ(items(), Lines{"Inbox: Hello"});
}

TEST_F(TornDown, DisconnectInsideTheDeletingWait_EndsItAtOnce) {
  clickUntilDeleting();
  disconnectAddIn();
  expectClickEnds();
  EXPECT_EQ(references(), Lines{});
  EXPECT_EQ(traced(begun_), disconnectedByUserLines() + deletingEnds());
  EXPECT_EQ(items(), Lines{"Inbox: Read and gone"});
}

TEST_F(TornDown, DisconnectInsideTheWarningBox_LetsEverythingGoWhileTheBoxIsOpen) {
  clickUntilWarned();
  disconnectAddIn();
  EXPECT_EQ(references(), Lines{"CommandBarButton 1"}) << "what the click that is still running was called with";
  EXPECT_EQ(ask("buttons").lines, Lines{});
  EXPECT_EQ(traced(begun_), disconnectedByUserLines());
  EXPECT_NE(FindWindowW(nullptr, warningTitle), nullptr);
  ASSERT_TRUE(testing_support::closeWindow(warningTitle, patience));
  expectClickEnds();
  EXPECT_EQ(references(), Lines{});
  EXPECT_EQ(traced(begun_), disconnectedByUserLines() + Lines{"Show message SIM card is full"});
  EXPECT_EQ(items(), Lines{"Inbox: The only one"});
}

TEST_F(TornDown, QuitInsideTheListingWait_EndsTheMailClient) {
  clickUntilListing();
  quit();
  EXPECT_EQ(traced(begun_), quitLines() + listingEnds());
}

TEST_F(TornDown, QuitInsideTheDeletingWait_EndsTheMailClient) {
  clickUntilDeleting();
  quit();
  EXPECT_EQ(traced(begun_), quitLines() + deletingEnds());
  EXPECT_EQ(handset_.StoredCount(sim), 1);
}

TEST_F(TornDown, QuitInsideTheWarningBox_EndsTheMailClient) {
  clickUntilWarned();
  quit();
  EXPECT_EQ(traced(begun_), quitLines() + Lines{"Show message SIM card is full"});
}

}  // namespace
}  // namespace failures_tests
