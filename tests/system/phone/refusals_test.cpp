// What the phone or the network refuses, and memories without room.

#include "phone_test.h"

namespace phone_tests {
namespace {

constexpr std::int32_t cmsError = static_cast<std::int32_t>(0x88881000);

using Refusals = PhoneTest;

TEST_F(Refusals, OfTheNetwork_AreFailuresOfTheMessageAndTheThirdOneAReport) {
  constexpr std::int32_t congestion = cmsError + 42;
  start();
  phone("fail send 3 42");
  std::size_t from = mark();
  compose(addressOfBo, "Not wanted");
  ASSERT_TRUE(waitForTrace("Failed count:0", from));
  EXPECT_EQ(traced(from), Lines{"m_objOutboxItems_ItemAdd, trigger a sendall"} + sendTimerArmed() +
                              messageHandedOver("+46707778899", "Not wanted") + failedLines(congestion, 0));
  for (int failure = 1; failure <= 2; ++failure) {
    from = mark();
    clickSendReceive();
    ASSERT_TRUE(waitForTrace("Failed count:" + std::to_string(failure), from));
    EXPECT_EQ(tracedOf(from, {"SendMessage Failed!!!", "Failed count:"}),
              (Lines{"SendMessage Failed!!! TransactionID: # Status: " + std::to_string(congestion),
                     "Failed count:" + std::to_string(failure)}));
  }
  ASSERT_TRUE(waitForItems("Deleted Items", 1));
  EXPECT_EQ(items(), (Lines{"Inbox: The TextMessage Service was unable to deliver the following message."
                            "\\u000d\\u000a\\u000d\\u000aNot wanted",
                            "Deleted Items: Not wanted"}));
  EXPECT_EQ(sent(), Lines{});
  // The next one is taken.
  compose(addressOfBo, "Wanted");
  ASSERT_TRUE(waitForItems("Sent Items", 1));
  EXPECT_EQ(sent().size(), 1u);
}

TEST_F(Refusals, OfTheSecondPart_AreOvercomeWithoutRepeatingTheFirst) {
  start();
  phone("slow send 300");
  const std::string a(153, 'a');
  compose(addressOfBo, a + "second part");
  ASSERT_TRUE(awaitSent(1));
  phone("fail send 1 500");
  ASSERT_TRUE(testing_support::waitUntil([&] { return trace_->count("Failed count:0") == 1; }, patience));
  clickSendReceive();
  ASSERT_TRUE(waitForItems("Sent Items", 1));
  EXPECT_EQ(sent().size(), 2u) << "the first part, and once the second";
}

TEST_F(Refusals, OfAFullSimCard_WarnAndWhatArrivesNowGoesToThePhone) {
  start(L"--sm 3 --me 1");
  for (const char* const text : {"One", "Two", "Three"}) arrives(text);
  std::size_t from = mark();
  const int click = client_->send(sendReceive);
  ASSERT_TRUE(testing_support::closeWindow(L"Marrick Text Message Add-In For Outlook", patience));
  EXPECT_EQ(client_->answerTo(click, patience).result, "clicked");
  EXPECT_EQ(tracedOf(from, {"Max SIM", "Used SIM", "isSimFull", "Show message"}),
            (Lines{"Max SIM Capacity = 3", "Used SIM Memory = 3", "isSimFull=1", "Show message SIM card is full"}));
  arrives("Four");
  EXPECT_EQ(phone("list ME").size(), 1u);

  // Now there is no room at all: the network keeps the message until the mail client's user deletes another one.
  testing_support::setOption(L"Sim_Full_Warning", 0u);
  phone("deliver +46701112233 Five");
  clickSendReceive();
  EXPECT_EQ(bodies("Inbox"), (Lines{"One", "Two", "Three", "Four"}));
  ASSERT_TRUE(ask("delete " + MailClientProcess::field(itemOf("Inbox"), "id")).ok);
  ASSERT_TRUE(testing_support::waitUntil(
      [&] {
        const Lines stored = phone("list SM");
        return stored.size() == 3 && stored[0].ends_with("\"Five\"");
      },
      patience));
  ASSERT_TRUE(phone_->awaitCopy());
  clickSendReceive();
  EXPECT_EQ(bodies("Inbox"), (Lines{"Two", "Three", "Four", "Five"}));
  EXPECT_EQ(bodies("Deleted Items"), Lines{"One"});
}

}  // namespace
}  // namespace phone_tests
