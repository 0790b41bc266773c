// Items that the add-in has not made itself, and texts that no phone would write.

#include <filesystem>
#include <fstream>

#include "product_test.h"

namespace failures_tests {
namespace {

class OddItems : public ProductTest {
 protected:
  void SetUp() override { startHandset(); }

  std::wstring onDisk() const { return L"--store \"" + store() + L"\""; }
  std::wstring store() const { return folder_ + L"\\store"; }

  // As another program would leave it there. Texts in the form of the store's headers: a blank is "_".
  void writeItem(const char* name, const std::string& entryId, const std::string& topic,
                 const std::string& body) const {
    const std::filesystem::path outbox = std::filesystem::path(store()) / ".Outbox";
    for (const char* const part : {"tmp", "new", "cur"}) std::filesystem::create_directories(outbox / part);
    const std::filesystem::path folder = outbox / "cur";
    std::ofstream(folder / (std::string("1700000000.") + name + ";2,"), std::ios::binary)
        << "Subject: x\r\nX-Mailclient-Version: 1\r\nX-Mailclient-EntryID: " << entryId
        << "\r\nX-Mailclient-MessageClass: IPM.Note.TxtMsg\r\nX-Mailclient-ConversationTopic: " << topic << "\r\n\r\n"
        << body;
  }
  std::string field(const std::string& folder, const std::string& name, std::size_t position = 0) {
    return MailClientProcess::field(itemOf(folder, position), name);
  }
  // Lists all messages of the phone once more, as after each start.
  void listEverythingAgain() {
    disconnectAddIn();
    connectAddIn();
    clickSendReceive();
  }
};

const std::string reportOn =
    "The TextMessage Service was unable to deliver the following message.\\u000d\\u000a\\u000d\\u000a";

// ---- without a topic ------------------------------------------------------------------------------------------------

TEST_F(OddItems, OutboxItemWithoutTopic_FailsThreeTimesBecomesAReportAndLetsTheNextOnePass) {
  testing_support::setOption(L"Sim_Full_Warning", 0u);
  startClient();
  std::size_t from = mark();
  EXPECT_TRUE(ask("item Outbox IPM.Note.TxtMsg \"\" \"To nobody\"").ok);
  EXPECT_EQ(field("Outbox", "topic"), "");
  const auto failed = [&](int before) {
    return Lines{"m_objTimer_Timer: #", "Inside Function SendMessage",        "[SendMessage]EntryID:#",
                 "[SendMessage]To:",    "[SendMessage]MessageText:To nobody", "Failed count:" + std::to_string(before)};
  };
  ASSERT_TRUE(waitForTrace("Failed count:0", from));
  EXPECT_EQ(traced(from), Lines{"m_objOutboxItems_ItemAdd, trigger a sendall"} + sendTimerArmed() + failed(0));

  from = mark();
  compose(addressOfBo, "To Bo");
  ASSERT_TRUE(waitForTrace("Failed count:1", from));
  EXPECT_EQ(traced(from), Lines{"m_objOutboxItems_ItemAdd, trigger a sendall"} + sendTimerArmed() + failed(1));
  EXPECT_EQ(items(), (Lines{"Outbox: To nobody", "Outbox: To Bo"}));

  clickSendReceive();
  from = mark();
  ASSERT_TRUE(waitForTrace("ReceiveAll function called.", from));
  const Lines reported =
      Lines{"m_objOutboxItems_ItemAdd, trigger a sendall"} + sendTimerArmed() + reportMovedAndItemDeleted();
  Lines until = traced(from);
  const Lines expected = failed(2) + reported + receivedNothing(true) + Lines{"ReceiveAll function called."};
  until.resize(std::min(until.size(), expected.size()));
  EXPECT_EQ(until, expected);
  EXPECT_TRUE(waitForItems("Sent Items", 1));
  EXPECT_EQ(items(), (Lines{"Inbox: " + reportOn + "To nobody", "Sent Items: To Bo", "Deleted Items: To nobody"}));
  EXPECT_EQ(handset_.SentCount(), 1);
}

TEST_F(OddItems, InboxItemWithoutTopic_IsNoDuplicateOfAReceivedMessage) {
  startClient();
  EXPECT_TRUE(ask("item Inbox IPM.Note.TxtMsg \"\" \"Hello\"").ok);
  handset_.Deliver(u"+46701112233", u"Hello", u"261120080000");
  const std::size_t from = mark();
  clickSendReceive();
  EXPECT_EQ(trace_->count("colfolder.Add called", from), 1u);
  EXPECT_EQ(trace_->count("SAME DATE", from), 0u);
  EXPECT_EQ(items(), (Lines{"Inbox: Hello", "Inbox: Hello"}));
  listEverythingAgain();
  EXPECT_EQ(trace_->count("FOUND DUPLICATE!", from), 1u);
  EXPECT_EQ(items(), (Lines{"Inbox: Hello", "Inbox: Hello"}));
}

// ---- long and broken texts ------------------------------------------------------------------------------------------

TEST_F(OddItems, BodiesOf100000Characters_GoOutAndComeInWhole) {
  constexpr std::size_t length = 100000;
  startClient(onDisk());
  const std::string text = std::string(length - 1, 'x') + "!";
  const std::u16string wideText(text.begin(), text.end());
  std::size_t from = mark();
  compose(addressOfBo, text);
  EXPECT_TRUE(waitForItems("Sent Items", 1));
  EXPECT_EQ(trace_->count("Guard timmer set to [626] parts", from), 1u);
  EXPECT_EQ(trace_->count("SetupGuard [15650000]ms", from), 1u);
  EXPECT_EQ(handset_.SentCount(), 1);
  EXPECT_TRUE(handset_.SentText(0) == wideText);

  handset_.Deliver(u"+46701112233", wideText, u"261120080000");
  clickSendReceive();
  const Lines both{"Inbox: xxxxxxxxxxxxxxxxxxxx... 100000", "Sent Items: xxxxxxxxxxxxxxxxxxxx... 100000"};
  EXPECT_EQ(items(), both);
  EXPECT_EQ(field("Inbox", "subject"), "xxxxxxxxxx...");
  restartClient(onDisk());
  EXPECT_TRUE(field("Inbox", "body") == text);
  EXPECT_TRUE(field("Sent Items", "body") == text);
  from = mark();
  clickSendReceive();
  EXPECT_EQ(trace_->count("FOUND DUPLICATE!", from), 1u);
  EXPECT_EQ(items(), both);
}

TEST_F(OddItems, LoneSurrogates_AreKeptUnitByUnit) {
  startClient(onDisk());
  const std::u16string units = {u'a', 0xD83D, u'b', 0xDE00, u'c', 0xDC00, 0xD800};
  const std::string shown = "a\\ud83db\\ude00c\\udc00\\ud800";
  EXPECT_TRUE(ask("contact \"Halves \\ud800\" \"+46701112233\"").ok);
  compose(addressOfBo, shown);
  EXPECT_TRUE(waitForItems("Sent Items", 1));
  EXPECT_EQ(handset_.SentCount(), 1);
  EXPECT_TRUE(handset_.SentText(0) == units);

  handset_.Deliver(u"+46701112233", units, u"261120080000");
  clickSendReceive();
  const Lines both{"Inbox: " + shown, "Sent Items: " + shown};
  EXPECT_EQ(items(), both);
  EXPECT_EQ(field("Inbox", "sender"), "Halves \\ud800 [+46701112233]");
  EXPECT_EQ(field("Inbox", "subject"), shown + "...") << "seven units are fewer than ten";
  restartClient(onDisk());
  EXPECT_EQ(items(), both);
  const std::size_t from = mark();
  clickSendReceive();
  EXPECT_EQ(trace_->count("FOUND DUPLICATE!", from), 1u);
  EXPECT_EQ(items(), both);
}

// ---- equal EntryIDs -------------------------------------------------------------------------------------------------

// A copied file, for instance.
TEST_F(OddItems, EqualEntryIdsInTheOutbox_BothGoOutOnce) {
  writeItem("000001_a", "SAME", "Bo_[+46707778899]", "One");
  writeItem("000002_b", "SAME", "Bo_[+46707778899]", "Two");
  startClient(onDisk());
  EXPECT_EQ(items(), (Lines{"Outbox: One", "Outbox: Two"}));
  clickSendReceive();
  EXPECT_TRUE(waitForItems("Sent Items", 2));
  EXPECT_EQ(items(), (Lines{"Sent Items: One", "Sent Items: Two"}));
  ASSERT_EQ(handset_.SentCount(), 2);
  EXPECT_EQ(handset_.SentText(0), u"One");
  EXPECT_EQ(handset_.SentText(1), u"Two");
  restartClient(onDisk());
  EXPECT_EQ(items(), (Lines{"Sent Items: One", "Sent Items: Two"}));
}

TEST_F(OddItems, EqualEntryIdsInTheOutbox_ARefusedOneBecomesOneReport) {
  writeItem("000001_a", "SAME", "Bo_[+46707778899]", "One");
  writeItem("000002_b", "SAME", "Bo_[+46707778899]", "Two");
  startClient(onDisk());
  for (int attempt = 0; attempt < 3; ++attempt) {
    handset_.AnswerNext(u"send", 17);
    const std::size_t from = mark();
    clickSendReceive();
    ASSERT_TRUE(waitForTrace("Failed count:" + std::to_string(attempt), from));
  }
  ASSERT_TRUE(waitForItems("Deleted Items", 1));
  EXPECT_EQ(items(), (Lines{"Inbox: " + reportOn + "One", "Outbox: Two", "Deleted Items: One"}));
  clickSendReceive();
  EXPECT_TRUE(waitForItems("Sent Items", 1));
  EXPECT_EQ(items(), (Lines{"Inbox: " + reportOn + "One", "Sent Items: Two", "Deleted Items: One"}));
  ASSERT_EQ(handset_.SentCount(), 1);
  EXPECT_EQ(handset_.SentText(0), u"Two");
}

}  // namespace
}  // namespace failures_tests
