// The phone goes and comes back: pulled out, or killed and started again with what it remembers.

#include <algorithm>

#include "phone_test.h"

namespace phone_tests {
namespace {

constexpr auto unknownOutcome = static_cast<std::int32_t>(0x888800D2);

class LostPhone : public PhoneTest {
 protected:
  void killPhone() {
    const std::size_t from = mark();
    phone_->kill();
    awaitGone(from);
  }
  void restartPhone() {
    const std::size_t from = mark();
    phone_->start();
    awaitBack(from);
    EXPECT_TRUE(isSendReceiveEnabled());
  }
  void unplug() {
    const std::size_t from = mark();
    phone("unplug");
    awaitGone(from);
  }
  void plug() {
    const std::size_t from = mark();
    phone("plug");
    awaitBack(from);
  }
  // A message that is in the phone's hands, and the phone does not say more.
  void composeUntilHandedOver(const std::string& text) {
    const std::size_t from = mark();
    compose(addressOfBo, text);
    ASSERT_TRUE(waitForTrace("Inside SendMessage Function - AddTransaction called", from));
  }
  // Each of them ends with this failure.
  void expectFailures(int first, int last) {
    for (int failure = first; failure <= last; ++failure) {
      const std::size_t from = mark();
      clickSendReceive();
      ASSERT_TRUE(waitForTrace("Failed count:" + std::to_string(failure), from));
      EXPECT_EQ(tracedOf(from, {"SendMessage Failed!!!", "Failed count:"}),
                (Lines{"SendMessage Failed!!! TransactionID: # Status: " + std::to_string(unknownOutcome),
                       "Failed count:" + std::to_string(failure)}));
    }
  }
  static std::string reportOf(const std::string& text) {
    return "The TextMessage Service was unable to deliver the following message.\\u000d\\u000a\\u000d\\u000a" + text;
  }
};

TEST_F(LostPhone, WhileIdle_TellsInOrderAndTheAddInGoesOn) {
  start();
  const std::size_t from = mark();
  unplug();
  EXPECT_FALSE(isSendReceiveEnabled());
  // Somebody else had it in the hand.
  for (const std::string& command :
       ServedPhone::commands("store SM read", "+46701112233", u"Read elsewhere", "261120080000"))
    phone(command);
  plug();
  EXPECT_TRUE(isSendReceiveEnabled());
  EXPECT_EQ(traced(from), goneLines + backLines);
  clickSendReceive();
  compose(addressOfBo, "Written afterwards");
  ASSERT_TRUE(waitForItems("Sent Items", 1));
  EXPECT_EQ(items(), (Lines{"Inbox: Read elsewhere", "Sent Items: Written afterwards"}));
  EXPECT_EQ(sent().size(), 1u);
}

// The phone has not got the message yet.
TEST_F(LostPhone, BeforeAMessageIsInItsHands_SendsItWhenItIsBack) {
  start();
  phone("silent");
  composeUntilHandedOver("Only once");
  const std::size_t from = mark();
  unplug();
  phone("speak");
  plug();
  EXPECT_EQ(traced(from), goneLines + backLines);
  EXPECT_EQ(items(), Lines{"Outbox: Only once"});
  EXPECT_EQ(sent().size(), 0u);
  clickSendReceive();
  ASSERT_TRUE(waitForItems("Sent Items", 1));
  EXPECT_EQ(items(), Lines{"Sent Items: Only once"});
  EXPECT_EQ(sent().size(), 1u);
}

TEST_F(LostPhone, KilledWhileItSends_IsReportedAndNeverRepeated) {
  start();
  phone("slow send 20000");
  composeUntilHandedOver("Perhaps sent");
  ASSERT_TRUE(awaitSent(1));
  const std::size_t from = mark();
  killPhone();
  EXPECT_EQ(traced(from), failedLines(unknownOutcome, 0) + goneLines);
  EXPECT_EQ(MailClientProcess::field(itemOf("Outbox"), "mileage"), "1");
  restartPhone();
  expectFailures(1, 2);
  ASSERT_TRUE(waitForItems("Deleted Items", 1));
  EXPECT_EQ(items(), (Lines{"Inbox: " + reportOf("Perhaps sent"), "Deleted Items: Perhaps sent"}));
  EXPECT_EQ(sent(), Lines{}) << "since it was started again";

  // Other messages go out.
  compose(addressOfBo, "Another one");
  ASSERT_TRUE(waitForItems("Sent Items", 1));
  EXPECT_EQ(sent().size(), 1u);
}

TEST_F(LostPhone, PulledOutWhenTheAnswerIsLost_IsReportedAndNeverRepeated) {
  start();
  phone("lose");
  composeUntilHandedOver("Sent without an answer");
  ASSERT_TRUE(awaitSent(1));
  unplug();
  plug();
  expectFailures(1, 2);
  ASSERT_TRUE(waitForItems("Deleted Items", 1));
  EXPECT_EQ(items(), (Lines{"Inbox: " + reportOf("Sent without an answer"), "Deleted Items: Sent without an answer"}));
  EXPECT_EQ(sent().size(), 1u);
}

// The server reads the memories when it has found the phone.
TEST_F(LostPhone, KilledWhileItsMemoriesAreRead_LosesAndDoublesNothing) {
  startPhone();
  phone("slow list 1000");
  const Lines texts{"Number 1", "Number 2", "Number 3"};
  for (const std::string& text : texts) phone("deliver +46701112233 " + MailClientProcess::quoted(text));
  phone_->startServer();
  // A listing marks them as read at once, and takes three seconds.
  ASSERT_TRUE(testing_support::waitUntil([&] { return phone("list SM").back().find(" unread ") == std::string::npos; },
                                         patience));
  phone_->kill();
  startClient();
  EXPECT_FALSE(isSendReceiveEnabled());
  restartPhone();
  clickSendReceive();
  EXPECT_EQ(bodies("Inbox"), texts);
  clickSendReceive();
  EXPECT_EQ(bodies("Inbox"), texts);
}

// The add-in asks for the messages, and the phone goes in the middle of the answers: for longer than the add-in waits
// for the next one, or back before that.
class LostWhileReceiving : public LostPhone {
 protected:
  static constexpr std::size_t many = 30;

  void beginToReceive() {
    start();
    phone("capacity SM 100");
    for (std::size_t i = 1; i <= many; ++i)
      phone("deliver +46701112233 " + MailClientProcess::quoted("Number " + std::to_string(i)));
    ASSERT_TRUE(phone_->awaitCopy());
    const std::size_t from = mark();
    click_ = client_->send(sendReceive);
    ASSERT_TRUE(waitForTrace("More data to come", from));
    killPhone();
  }
  void endOfCommand() {
    EXPECT_EQ(client_->answerTo(click_, patience).result, "clicked");
    EXPECT_LT(bodies("Inbox").size(), many);
  }
  void expectEachOnce() {
    clickSendReceive();
    Lines texts;
    for (std::size_t i = 1; i <= many; ++i) texts.push_back("Number " + std::to_string(i));
    Lines received = bodies("Inbox");
    std::sort(texts.begin(), texts.end());
    std::sort(received.begin(), received.end());
    EXPECT_EQ(received, texts);
  }

 private:
  int click_ = 0;
};

TEST_F(LostWhileReceiving, BackAfterTheWait_BringsTheRest) {
  ASSERT_NO_FATAL_FAILURE(beginToReceive());
  endOfCommand();
  restartPhone();
  expectEachOnce();
}

TEST_F(LostWhileReceiving, BackDuringTheWait_BringsTheRest) {
  ASSERT_NO_FATAL_FAILURE(beginToReceive());
  restartPhone();
  endOfCommand();
  expectEachOnce();
}

}  // namespace
}  // namespace phone_tests
