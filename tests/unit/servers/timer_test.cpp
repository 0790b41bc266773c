#include "servers/timermm/timer.h"

#include <gtest/gtest.h>

#include "support/errors.h"
#include "support/native_time.h"
#include "unit/servers/recording.h"

namespace {

using namespace platform;
using servers::timermm::Timer;
using servers_testing::TickRecorder;
using testing_support::errorNumberOf;
using Ticks = std::vector<std::int32_t>;

class TimerTest : public testing::Test {
 protected:
  ~TimerTest() override {
    ticks = nullptr;
    EXPECT_EQ(Counted::census, census);
    EXPECT_EQ(time.pendingWork(), 0u);
  }

  void create(servers::timermm::MinuteLength minute = [] { return 60000; }) {
    ticks = make<TickRecorder>(make<Timer>(time, std::move(minute)).get()->object());
  }
  void arm(std::int32_t interval, std::int32_t periodic) {
    const auto timer = ticks->timer();
    timer.Enabled(false);
    timer.Periodic(periodic);
    timer.Interval(interval);
    timer.Resolution(100);
    timer.Enabled(true);
  }
  bool enabled() const { return LateBound(ticks->timer()).get<bool>(u"Enabled"); }

  const std::int32_t census = Counted::census;
  testing_support::Journal journal;
  testing_support::NativeTime time{journal};
  Ref<TickRecorder> ticks;
};

TEST_F(TimerTest, OneShot_TicksOnceAtItsInterval) {
  create();
  arm(500, 0);
  time.run(499);
  EXPECT_EQ(ticks->ticks, Ticks{});
  EXPECT_TRUE(enabled());
  time.run(1);
  EXPECT_EQ(ticks->ticks, Ticks{500});
  EXPECT_FALSE(enabled());
  time.run(5000);
  EXPECT_EQ(ticks->ticks, Ticks{500});
}

TEST_F(TimerTest, OneShot_IsDisarmedBeforeItsEvent) {
  create();
  arm(500, 0);
  bool enabledInside = true;
  ticks->inside = [&] { enabledInside = enabled(); };
  time.run(500);
  EXPECT_FALSE(enabledInside);
}

TEST_F(TimerTest, Periodic_TicksEveryIntervalUntilDisabled) {
  create();
  arm(25000, 1);
  time.run(75000);
  EXPECT_EQ(ticks->ticks, (Ticks{25000, 25000, 25000}));
  EXPECT_TRUE(enabled());
  ticks->timer().Enabled(false);
  EXPECT_FALSE(enabled());
  time.run(100000);
  EXPECT_EQ(ticks->ticks.size(), 3u);
}

TEST_F(TimerTest, Enabled_WhenArmedAlready_RestartsTheInterval) {
  create();
  arm(500, 0);
  time.run(400);
  ticks->timer().Enabled(true);
  time.run(499);
  EXPECT_EQ(ticks->ticks, Ticks{});
  time.run(1);
  EXPECT_EQ(ticks->ticks, Ticks{500});
}

TEST_F(TimerTest, ArmedTimer_KeepsTheIntervalItWasArmedWith) {
  create();
  arm(500, 1);
  ticks->timer().Interval(50);
  ticks->timer().Periodic(0);
  time.run(1000);
  EXPECT_EQ(ticks->ticks, (Ticks{500, 500}));
  ticks->timer().Enabled(true);
  time.run(1000);
  EXPECT_EQ(ticks->ticks, (Ticks{500, 500, 50}));
}

TEST_F(TimerTest, Tick_IsNeverPartOfTheCallThatArms) {
  create();
  arm(0, 0);
  EXPECT_EQ(ticks->ticks, Ticks{});
  time.runDue();
  EXPECT_EQ(ticks->ticks, Ticks{0});
}

TEST_F(TimerTest, Rearmed_InItsOwnEvent_TicksAgain) {
  create();
  arm(500, 0);
  ticks->inside = [&] {
    if (ticks->ticks.size() < 3) ticks->timer().Enabled(true);
  };
  time.run(10000);
  EXPECT_EQ(ticks->ticks, (Ticks{500, 500, 500}));
}

TEST_F(TimerTest, DisabledAndEnabled_InItsOwnEvent_StartsAnewFromThere) {
  create();
  arm(60000, 1);
  ticks->inside = [&] {
    ticks->timer().Enabled(false);
    time.advance(30000);  // a long run inside the handler
    ticks->timer().Enabled(true);
  };
  time.run(60000);
  EXPECT_EQ(ticks->ticks.size(), 1u);
  time.run(59999);
  EXPECT_EQ(ticks->ticks.size(), 1u);
  time.run(1);
  EXPECT_EQ(ticks->ticks.size(), 2u);
}

TEST_F(TimerTest, Released_InItsOwnEvent_EndsQuietly) {
  for (const std::int32_t periodic : {0, 1}) {
    create();
    arm(500, periodic);
    ticks->inside = [&] { ticks->releaseTimer(); };
    time.run(5000);
    EXPECT_EQ(ticks->ticks, Ticks{500});
    EXPECT_EQ(time.pendingWork(), 0u);
  }
}

TEST_F(TimerTest, Released_WhileArmed_NeverTicks) {
  create();
  arm(500, 1);
  ticks->releaseTimer();
  EXPECT_EQ(time.pendingWork(), 0u);
  time.run(5000);
  EXPECT_EQ(ticks->ticks, Ticks{});
}

TEST_F(TimerTest, PeriodicTick_WhoseListenerServesMessages_IsFollowedByTheNextInside) {
  create();
  arm(1000, 1);
  ticks->inside = [&] {
    if (ticks->ticks.size() == 1) time.run(1000);
  };
  time.run(1000);
  EXPECT_EQ(ticks->ticks, (Ticks{1000, 1000}));
  EXPECT_EQ(time.elapsed(), 2000);
}

TEST_F(TimerTest, FailingListener_DoesNotStopThePeriod) {
  create();
  arm(1000, 1);
  ticks->inside = [] { raiseError(5); };
  time.run(3000);
  EXPECT_EQ(ticks->ticks, (Ticks{1000, 1000, 1000}));
}

TEST_F(TimerTest, Interval_BelowZero_IsRefused) {
  create();
  const auto timer = ticks->timer();
  timer.Interval(300);
  EXPECT_EQ(errorNumberOf([&] { timer.Interval(-1); }), 5);
  EXPECT_EQ(LateBound(timer).get<std::int32_t>(u"Interval"), 300);
}

TEST_F(TimerTest, Properties_ReadAsTheyWereSet) {
  create();
  arm(25000, 1);
  const LateBound timer(ticks->timer());
  EXPECT_EQ(timer.get<std::int32_t>(u"Interval"), 25000);
  EXPECT_EQ(timer.get<std::int32_t>(u"Resolution"), 100);
  EXPECT_EQ(timer.get<std::int32_t>(u"Periodic"), 1);
}

TEST_F(TimerTest, ShortenedMinute_ShortensLongIntervalsOnly) {
  std::int32_t minute = 2000;
  create([&] { return minute; });
  arm(60000, 1);
  time.run(2000);
  EXPECT_EQ(ticks->ticks, Ticks{60000});  // the listener hears of the interval that it set
  arm(300000, 0);
  time.run(9999);
  EXPECT_EQ(ticks->ticks.size(), 1u);
  time.run(1);
  EXPECT_EQ(ticks->ticks, (Ticks{60000, 300000}));
  arm(59999, 0);
  time.run(59998);
  EXPECT_EQ(ticks->ticks.size(), 2u);
  time.run(1);
  EXPECT_EQ(ticks->ticks.back(), 59999);
}

TEST_F(TimerTest, ShortenedMinute_OfNonsense_IsAsShortAsItCanBe) {
  for (const std::int32_t minute : {0, -1, INT32_MIN}) {
    create([minute] { return minute; });
    arm(60000, 0);
    time.run(1);
    EXPECT_EQ(ticks->ticks, Ticks{60000});
  }
  create([] { return INT32_MAX; });  // a day that does not fit
  arm(INT32_MAX, 0);
  time.run(INT32_MAX - 1);
  EXPECT_EQ(ticks->ticks, Ticks{});
  time.run(1);
  EXPECT_EQ(ticks->ticks, Ticks{INT32_MAX});
}

}  // namespace
