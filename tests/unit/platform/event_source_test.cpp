#include "addin/platform/event_source.h"

#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "support/errors.h"
#include "support/seam_recorder.h"

namespace platform {
namespace {

using testing_support::Census;
using testing_support::errorNumberOf;
using Log = std::vector<std::string>;

constexpr Event<std::int32_t> Happened{u"Happened", 7};
constexpr Event<bool&, String&> Asked{u"Asked", 8};

struct Source : Counted, EventSource {
  Ref<Counted> listen(const Ref<EventSink>& sink) { return addListener(this, sink); }
};

struct Listener : EventSink {
  Listener(Log& l, std::string n) : log(l), name(std::move(n)) {}
  void onEvent(std::int32_t dispid, Args args) override {
    log.push_back(name + " hears " + std::to_string(dispid));
    if (then) then(args);
  }
  Log& log;
  std::string name;
  std::function<void(Args)> then;
};

class EventSourceTest : public testing::Test {
 protected:
  Ref<Counted> listen(const Ref<Listener>& listener) { return source->listen(listener); }

  Census census;
  Log log;
  Ref<Source> source = make<Source>();
  Ref<Listener> a = make<Listener>(log, "a");
  Ref<Listener> b = make<Listener>(log, "b");
};

TEST_F(EventSourceTest, WithoutListeners_NothingHappens) {
  source->fire(Happened, 1);
  source->raiseEvent(Happened, 1);
  EXPECT_EQ(source->listenerCount(), 0u);
}

TEST_F(EventSourceTest, Listeners_HearInTheOrderOfTheirComing) {
  const auto first = listen(a);
  const auto second = listen(b);
  source->fire(Happened, 1);
  EXPECT_EQ(log, (Log{"a hears 7", "b hears 7"}));
}

TEST_F(EventSourceTest, ReleasedSubscription_EndsTheListening) {
  auto first = listen(a);
  const auto second = listen(b);
  first = nullptr;
  EXPECT_EQ(source->listenerCount(), 1u);
  source->fire(Happened, 1);
  EXPECT_EQ(log, (Log{"b hears 7"}));
}

TEST_F(EventSourceTest, TwoSubscriptionsOfOneSink_EndOneByOne) {
  auto first = listen(a);
  const auto second = listen(a);
  first = nullptr;
  EXPECT_EQ(source->listenerCount(), 1u);
  source->fire(Happened, 1);
  EXPECT_EQ(log, (Log{"a hears 7"}));
}

TEST_F(EventSourceTest, Subscription_KeepsTheSource) {
  const auto subscription = listen(a);
  source = nullptr;
  EXPECT_EQ(census.more(), 4);  // source, a, b and the subscription
}

TEST_F(EventSourceTest, RaiseEvent_AFailingListenerEndsTheRoundAndFailsTheRaiser) {
  const auto first = listen(a);
  const auto second = listen(b);
  a->then = [](Args) { raiseError(91); };
  EXPECT_EQ(errorNumberOf([&] { source->raiseEvent(Happened, 1); }), 91);
  EXPECT_EQ(log, (Log{"a hears 7"}));
}

TEST_F(EventSourceTest, Fire_AFailingListenerIsIgnoredAndTheOthersHear) {
  const auto first = listen(a);
  const auto second = listen(b);
  a->then = [](Args) { raiseError(91); };
  source->fire(Happened, 1);
  EXPECT_EQ(log, (Log{"a hears 7", "b hears 7"}));
}

TEST_F(EventSourceTest, Arguments_ArriveInDeclaredOrder_ByReferenceOnesWithATarget) {
  const auto subscription = listen(a);
  bool flag = true;
  String text = u"old";
  a->then = [](Args args) {
    ASSERT_EQ(args.size(), 2u);
    ASSERT_TRUE(args[0].target() && args[1].target());
    EXPECT_EQ(*args[0].target(), Variant(true));
    EXPECT_EQ(*args[1].target(), Variant(u"old"));
    *args[0].target() = Variant(false);
    *args[1].target() = Variant(12);  // of another type: converted on the way back
  };
  source->fire(Asked, flag, text);
  EXPECT_FALSE(flag);
  EXPECT_EQ(text, u"12");
}

TEST_F(EventSourceTest, ByReferenceArguments_TheNextListenerSeesWhatTheOneBeforeMade) {
  const auto first = listen(a);
  const auto second = listen(b);
  bool flag = false;
  String text;
  a->then = [](Args args) { *args[1].target() = Variant(u"from a"); };
  b->then = [&](Args args) { log.push_back(CStr(*args[1].target()) == u"from a" ? "b sees it" : "b does not"); };
  source->fire(Asked, flag, text);
  EXPECT_EQ(log, (Log{"a hears 8", "b hears 8", "b sees it"}));
  EXPECT_EQ(text, u"from a");
}

TEST_F(EventSourceTest, ByValueArguments_HaveNoTarget) {
  const auto subscription = listen(a);
  a->then = [](Args args) { EXPECT_FALSE(args[0].target()); };
  source->fire(Happened, 1);
  EXPECT_EQ(log.size(), 1u);
}

TEST_F(EventSourceTest, ListenerThatLeavesDuringTheRound_IsNotCalled) {
  const auto first = listen(a);
  auto second = listen(b);
  a->then = [&](Args) { second = nullptr; };
  source->fire(Happened, 1);
  EXPECT_EQ(log, (Log{"a hears 7"}));
}

TEST_F(EventSourceTest, ListenerThatLeavesItself_TheOthersStillHear) {
  auto first = listen(a);
  const auto second = listen(b);
  a->then = [&](Args) { first = nullptr; };
  source->fire(Happened, 1);
  EXPECT_EQ(log, (Log{"a hears 7", "b hears 7"}));
}

TEST_F(EventSourceTest, ListenersThatLeaveThemselves_EachHearsOnce) {
  auto first = listen(a);
  auto second = listen(b);
  const Ref<Listener> c = make<Listener>(log, "c");
  const auto third = listen(c);
  a->then = [&](Args) { first = nullptr; };
  b->then = [&](Args) { second = nullptr; };
  source->fire(Happened, 1);
  EXPECT_EQ(log, (Log{"a hears 7", "b hears 7", "c hears 7"}));
  EXPECT_EQ(source->listenerCount(), 1u);
}

TEST_F(EventSourceTest, ListenerThatComesDuringTheRound_HearsTheNextOne) {
  const auto first = listen(a);
  const Ref<Listener> c = make<Listener>(log, "c");
  const auto second = listen(c);  // the round goes on after the list has moved
  std::vector<Ref<Counted>> more;
  std::vector<Ref<Listener>> listeners;
  a->then = [&](Args) {
    for (int i = 0; i < 50; ++i) more.push_back(listen(b));  // many, so that the list moves
  };
  source->fire(Happened, 1);
  EXPECT_EQ(log, (Log{"a hears 7", "c hears 7"}));
  log.clear();
  a->then = nullptr;
  more.resize(1);
  source->fire(Happened, 1);
  EXPECT_EQ(log, (Log{"a hears 7", "c hears 7", "b hears 7"}));
}

TEST_F(EventSourceTest, ListenerWhoseSubscriptionWasItsLastReference_LivesUntilItReturns) {
  auto subscription = listen(a);
  Listener* const raw = a.get();
  a = nullptr;
  raw->then = [&, raw](Args) {
    subscription = nullptr;
    raw->log.push_back(raw->name + " still there");
  };
  source->fire(Happened, 1);
  EXPECT_EQ(log, (Log{"a hears 7", "a still there"}));
}

TEST_F(EventSourceTest, SourceWhoseLastReferenceGoesDuringTheRound_FinishesTheRound) {
  auto first = listen(a);
  auto second = listen(b);
  Source* const raw = source.get();
  source = nullptr;
  a->then = [&](Args) { first = second = nullptr; };
  raw->fire(Happened, 1);
  EXPECT_EQ(log, (Log{"a hears 7"}));
}

TEST_F(EventSourceTest, NestedRounds_EachListenerHearsBoth) {
  const auto first = listen(a);
  const auto second = listen(b);
  a->then = [&](Args args) {
    if (CLng(args[0]) == 1) source->fire(Happened, 2);
  };
  source->fire(Happened, 1);
  EXPECT_EQ(log, (Log{"a hears 7", "a hears 7", "b hears 7", "b hears 7"}));
}

}  // namespace
}  // namespace platform
