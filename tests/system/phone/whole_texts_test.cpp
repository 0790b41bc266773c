// Long texts go out in parts and come in whole.

#include "phone_test.h"

namespace phone_tests {
namespace {

class WholeTexts : public PhoneTest {
 protected:
  // Whoever is written to writes the same back.
  void SetUp() override { start(L"--elsewhere answered"); }

  // The text behind the last number in front of it, of each message that the phone has sent.
  Lines sentParts() {
    Lines parts;
    for (const std::string& line : sent()) {
      const std::size_t begin = line.find(" \"", line.find("part ")) + 2;
      parts.push_back(line.substr(line.find("part "), 8) + ' ' + line.substr(begin, line.rfind('"') - begin));
    }
    return parts;
  }
  void expectThereAndBack(const std::string& text, const Lines& parts) {
    compose(addressOfAnna, text);
    ASSERT_TRUE(waitForItems("Sent Items", 1));
    EXPECT_EQ(sentParts(), parts);
    ASSERT_TRUE(phone_->awaitCopy());
    EXPECT_EQ(phone("list").size(), parts.size());
    clickSendReceive();
    EXPECT_EQ(bodies("Inbox"), Lines{text});
    EXPECT_EQ(MailClientProcess::field(itemOf("Inbox"), "sender"), addressOfAnna);
    // Everything once more.
    disconnectAddIn();
    connectAddIn();
    clickSendReceive();
    EXPECT_EQ(bodies("Inbox"), Lines{text});
    EXPECT_EQ(bodies("Sent Items"), Lines{text});
    EXPECT_EQ(sent().size(), parts.size());
  }
};

TEST_F(WholeTexts, Of459Characters_GoOutInThreePartsAndComeBackAsOneMessage) {
  const std::string a(153, 'a');
  const std::string b(153, 'b');
  const std::string c(153, 'c');
  const std::size_t from = mark();
  expectThereAndBack(a + b + c, {"part 1/3 " + a, "part 2/3 " + b, "part 3/3 " + c});
  EXPECT_EQ(trace_->count("Guard timmer set to [3] parts", from), 1u);
}

// A part has room for 67 units of these: the first face would begin in the last of them, the second one ends in it.
TEST_F(WholeTexts, WithFacesAtTheBoundariesOfParts_AreNotCutThroughThem) {
  const std::string face = "\xF0\x9F\x98\x80";
  const std::string a(66, 'a');
  const std::string b(63, 'b');
  const std::string c(60, 'c');
  expectThereAndBack(a + face + b + face + c, {"part 1/3 " + a, "part 2/3 " + face + b + face, "part 3/3 " + c});
}

TEST_F(WholeTexts, ThatAnotherPhoneHasCut_ArriveOnceAndWithTheContactsName) {
  const std::string text = std::string(66, 'z') + "\xF0\x9F\x98\x80" + std::string(100, 'y') + "\xC3\xA5\xE2\x82\xAC";
  arrives(text);
  EXPECT_EQ(phone("list").size(), 3u);
  clickSendReceive();
  EXPECT_EQ(bodies("Inbox"), Lines{text});
  EXPECT_EQ(MailClientProcess::field(itemOf("Inbox"), "sender"), addressOfAnna);
  // Deleted in the mail client, it goes from the SIM card with all its parts.
  ASSERT_TRUE(ask("delete " + MailClientProcess::field(itemOf("Inbox"), "id")).ok);
  EXPECT_TRUE(testing_support::waitUntil([&] { return phone("list").empty(); }, patience)) << phone("list").size();
}

}  // namespace
}  // namespace phone_tests
