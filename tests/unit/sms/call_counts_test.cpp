// How many calls leave the add-in for one message: each may go to another process, at a thousandth of a second or so.
// Whoever changes one of these numbers should know why.
#include "unit/sms/engine_fixture.h"

namespace sms_tests {
namespace {

using testing_support::CallCounter;

constexpr std::int32_t callsWhenItArrives = 11;       // its class, and the send timer armed twice
constexpr std::int32_t callsToHandItOver = 22;        // the look through the Outbox, the guard, the message itself
constexpr std::int32_t callsForItsAnswer = 18;        // the guard, the move to Sent Items, the send timer once
constexpr std::int32_t callsOfTheLastTick = 3;        // it finds nothing more
constexpr std::int32_t callsForTheAssistant = 8 + 4;  // animated and set back, on top of the question whether it is on

class CallCounts : public EngineFixture {
 protected:
  CallCounts() { start(); }
};

TEST_F(CallCounts, PerSentMessage) {
  CallCounter counter;
  const auto since = [&] {
    const std::int32_t calls = counter.total();
    counter.clear();
    return calls;
  };
  arrive(outbox, newItem(u"Anna [1]", u"Hello"));
  EXPECT_EQ(since(), callsWhenItArrives);
  tick(sendTimer(), 500);
  EXPECT_EQ(since(), callsToHandItOver);
  answer(17, 0);
  EXPECT_EQ(since(), callsForItsAnswer);
  tick(sendTimer(), 500);
  EXPECT_EQ(since(), callsOfTheLastTick);
}

// A message behind others in the Outbox costs no more than the first.
TEST_F(CallCounts, PerMessageOfAFullOutbox) {
  constexpr std::int32_t messages = 20;
  for (std::int32_t i = 0; i < messages; ++i) addItem(outbox, u"Anna [1]", u"Hello");
  CallCounter counter;
  for (std::int32_t i = 0; i < messages; ++i) {
    tick(sendTimer(), 500);
    answer(17 + i, 0);
  }
  EXPECT_EQ(sentMail.contents.size(), static_cast<std::size_t>(messages));
  EXPECT_EQ(counter.total(), messages * (callsToHandItOver + callsForItsAnswer));
}

TEST_F(CallCounts, PerSentMessageWithTheAssistantOn) {
  assistant->value(u"On", true);
  addItem(outbox, u"Anna [1]", u"Hello");
  CallCounter counter;
  tick(sendTimer(), 500);
  answer(17, 0);
  EXPECT_EQ(counter.total(), callsToHandItOver + callsForItsAnswer + callsForTheAssistant);
}

}  // namespace
}  // namespace sms_tests
