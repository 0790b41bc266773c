// The time-out by the tick count.
#include <limits>

#include "addin/sms/clstimeout.h"
#include "support/errors.h"
#include "unit/sms/engine_fixture.h"

namespace sms_tests {
namespace {

using testing_support::errorOf;
using testing_support::NativeSystem;

constexpr std::int32_t top = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t bottom = std::numeric_limits<std::int32_t>::min();

class TimeOut : public ::testing::Test {
 protected:
  testing_support::Census census;
  NativeSystem system;
  Ref<clstimeout> timeOut = make<clstimeout>();
};

TEST_F(TimeOut, AtOnce_IsFalse) {
  timeOut->InitTimeOut(5000);
  EXPECT_FALSE(timeOut->TimeOut());
}

TEST_F(TimeOut, ExactlyAtTheEnd_IsFalse_AndTrueOneMillisecondLater) {
  timeOut->InitTimeOut(5000);
  system.time.advance(5000);
  EXPECT_FALSE(timeOut->TimeOut());
  system.time.advance(1);
  EXPECT_TRUE(timeOut->TimeOut());
}

TEST_F(TimeOut, InitAgain_StartsAnew) {
  timeOut->InitTimeOut(10);
  system.time.advance(11);
  EXPECT_TRUE(timeOut->TimeOut());
  timeOut->InitTimeOut(10);
  EXPECT_FALSE(timeOut->TimeOut());
}

TEST_F(TimeOut, NegativeWait_IsOverAtOnce) {
  timeOut->InitTimeOut(-1);
  EXPECT_TRUE(timeOut->TimeOut());
}

TEST_F(TimeOut, NeverInitialised_ComparesTickZero) {
  system.time.setTicks(0);
  EXPECT_FALSE(timeOut->TimeOut());
  system.time.setTicks(1);
  EXPECT_TRUE(timeOut->TimeOut());
  system.time.setTicks(-1);
  EXPECT_FALSE(timeOut->TimeOut());
}

TEST_F(TimeOut, EndJustInsideTheRange_IsNoOverflow) {
  system.time.setTicks(top - 5000);
  timeOut->InitTimeOut(5000);
  EXPECT_FALSE(timeOut->TimeOut());
  system.time.setTicks(top);
  EXPECT_FALSE(timeOut->TimeOut());
}

TEST_F(TimeOut, EndBeyondTheRange_IsOverflow) {
  system.time.setTicks(top - 4999);
  timeOut->InitTimeOut(5000);
  const auto error = errorOf([&] { timeOut->TimeOut(); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number, 6);
  EXPECT_EQ(error->description, u"Overflow");
  EXPECT_EQ(error->source, u"mrktxtmsg");
}

TEST_F(TimeOut, StartBelowTheRange_IsOverflowToo) {
  system.time.setTicks(bottom);
  timeOut->InitTimeOut(-1);
  EXPECT_EQ(errorOf([&] { timeOut->TimeOut(); })->number, 6);
}

TEST_F(TimeOut, NegativeTicks_WorkLikeOthers) {
  system.time.setTicks(-2000);
  timeOut->InitTimeOut(5000);
  system.time.advance(5000);
  EXPECT_FALSE(timeOut->TimeOut());
  system.time.advance(1);
  EXPECT_TRUE(timeOut->TimeOut());
}

// Signed ticks: once they have gone round, the end lies far ahead of them.
TEST_F(TimeOut, TicksThatWentRound_AreBeforeTheEnd) {
  system.time.setTicks(top - 5000);
  timeOut->InitTimeOut(5000);
  system.time.advance(5001);
  EXPECT_EQ(system.time.ticks(), bottom);
  EXPECT_FALSE(timeOut->TimeOut());
}

TEST_F(TimeOut, MillisecondsLeft_ReachesJustBeyondTheEnd) {
  timeOut->InitTimeOut(5000);
  EXPECT_EQ(timeOut->MillisecondsLeft(), 5001);
}

}  // namespace
}  // namespace sms_tests
