#include "addin/platform/with_events.h"

#include <functional>
#include <optional>

#include <gtest/gtest.h>

#include "addin/platform/outlook.h"
#include "addin/platform/timermm.h"
#include "support/errors.h"
#include "support/fake_object.h"
#include "support/seam_recorder.h"
#include "support/text.h"

namespace platform {
namespace {

using testing_support::Census;
using testing_support::errorNumberOf;
using testing_support::fake;
using testing_support::FakeObject;
using testing_support::utf8;
using Log = std::vector<std::string>;

struct Owner : Counted {
  explicit Owner(Log& l) : log(l) {}
  ~Owner() override { log.emplace_back("owner destroyed"); }
  void terminate() noexcept override {
    log.emplace_back("owner ended");
    if (atEnd) atEnd();
  }

  void m_Timer_Timer(std::int32_t milliseconds) {
    log.push_back("tick " + std::to_string(milliseconds));
    if (atTick) atTick();
    log.push_back("ticked" + marker);  // touches the owner after whatever the tick did
  }
  void m_Item_Reply(const Object& response, bool& cancel) {
    log.push_back(response ? "reply" : "reply to nothing");
    cancel = !cancel;
    if (atReply) atReply(cancel);
  }
  void m_Item_Forward(const Object&, bool& cancel) { log.emplace_back(cancel ? "forward, cancelled" : "forward"); }

  Log& log;
  std::string marker = ", and a text that is long enough to live on the heap";
  std::function<void()> atTick;
  std::function<void()> atEnd;
  std::function<void(bool&)> atReply;
  WithEvents<timermm::Timer> m_Timer{this, on<timermm::TimerEvents::Timer, &Owner::m_Timer_Timer>};
  WithEvents<outlook::MailItem> m_Item{this, on<outlook::ItemEvents::Reply, &Owner::m_Item_Reply>,
                                       on<outlook::ItemEvents::Forward, &Owner::m_Item_Forward>};
};

const std::string ticked = "ticked, and a text that is long enough to live on the heap";

class WithEventsTest : public testing::Test {
 protected:
  void tick(std::int32_t n) { timer->fire(timermm::TimerEvents::Timer, n); }

  Census census;
  Log log;
  Ref<Owner> owner = make<Owner>(log);
  Ref<FakeObject> timer = fake("Timer");
};

TEST_F(WithEventsTest, Assign_Subscribes_AndNothingUnsubscribes) {
  tick(1);
  owner->m_Timer = timer->as<timermm::Timer>();
  EXPECT_EQ(timer->listeners(), 1u);
  tick(2);
  owner->m_Timer = nullptr;
  EXPECT_EQ(timer->listeners(), 0u);
  EXPECT_FALSE(owner->m_Timer);
  tick(3);
  EXPECT_EQ(log, (Log{"tick 2", ticked}));
}

TEST_F(WithEventsTest, Assign_AnotherObject_ChangesOver) {
  const auto other = fake("Other");
  owner->m_Timer = timer->as<timermm::Timer>();
  owner->m_Timer = other->as<timermm::Timer>();
  EXPECT_EQ(timer->listeners(), 0u);
  EXPECT_EQ(other->listeners(), 1u);
  tick(1);
  other->fire(timermm::TimerEvents::Timer, 2);
  EXPECT_EQ(log, (Log{"tick 2", ticked}));
}

TEST_F(WithEventsTest, Assign_TheSameObjectAgain_HearsEachEventOnce) {
  owner->m_Timer = timer->as<timermm::Timer>();
  owner->m_Timer = timer->as<timermm::Timer>();
  EXPECT_EQ(timer->listeners(), 1u);
  tick(1);
  EXPECT_EQ(log, (Log{"tick 1", ticked}));
}

TEST_F(WithEventsTest, Assign_TheFieldToItself_KeepsTheObject) {
  owner->m_Timer = timer->as<timermm::Timer>();
  Automation* const object = timer.get();
  timer = nullptr;  // only the field has it now
  owner->m_Timer = owner->m_Timer.get();
  EXPECT_EQ(owner->m_Timer.get().automation().get(), object);
  timer = Ref<FakeObject>(static_cast<FakeObject*>(object));
  EXPECT_EQ(timer->listeners(), 1u);
  tick(1);
  EXPECT_EQ(log, (Log{"tick 1", ticked}));
}

TEST_F(WithEventsTest, FailedSubscription_LeavesTheFieldAsItWas) {
  owner->m_Timer = timer->as<timermm::Timer>();
  const auto refusing = fake("Refusing");
  refusing->failsToSubscribe(459);
  EXPECT_EQ(errorNumberOf([&] { owner->m_Timer = refusing->as<timermm::Timer>(); }), 459);
  EXPECT_EQ(owner->m_Timer.get().automation().get(), timer.get());
  EXPECT_EQ(timer->listeners(), 1u);
  tick(1);
  EXPECT_EQ(log, (Log{"tick 1", ticked}));
}

TEST_F(WithEventsTest, Subscription_AsksForTheFacadesInterface) {
  timer->hasEvents(outlook::ItemEvents::iid);
  EXPECT_EQ(errorNumberOf([&] { owner->m_Timer = timer->as<timermm::Timer>(); }), 459);
  owner->m_Item = timer->as<outlook::MailItem>();
  EXPECT_EQ(timer->listeners(), 1u);
}

TEST_F(WithEventsTest, CallThroughAnEmptyField_Is91) {
  EXPECT_EQ(errorNumberOf([&] { owner->m_Timer->Enabled(true); }), 91);
}

TEST_F(WithEventsTest, UnknownDispid_IsIgnored) {
  owner->m_Timer = timer->as<timermm::Timer>();
  timer->fire(Event<>{u"Other", 99});
  EXPECT_TRUE(log.empty());
}

TEST_F(WithEventsTest, Assign_TheOldObjectGoesLast_WhenTheFieldHoldsTheNewOne) {
  const auto next = fake("Next");
  timer->whenTerminated = [&] {
    log.emplace_back(owner->m_Timer.get().automation().get() == next.get() ? "field holds the new one"
                                                                           : "field is stale");
    log.push_back("new one has " + std::to_string(next->listeners()) + " listener");
  };
  owner->m_Timer = timer->as<timermm::Timer>();
  timer = nullptr;
  owner->m_Timer = next->as<timermm::Timer>();
  EXPECT_EQ(log, (Log{"field holds the new one", "new one has 1 listener"}));
}

TEST_F(WithEventsTest, ByReferenceArgument_WritesBackToTheRaiser) {
  owner->m_Item = timer->as<outlook::MailItem>();
  bool cancel = false;
  timer->fire(outlook::ItemEvents::Reply, Object(), cancel);
  EXPECT_TRUE(cancel);
  timer->fire(outlook::ItemEvents::Reply, timer->object(), cancel);
  EXPECT_FALSE(cancel);
  EXPECT_EQ(log, (Log{"reply to nothing", "reply"}));
}

TEST_F(WithEventsTest, ByReferenceArgument_WritesBackEvenWhenTheHandlerFails) {
  owner->m_Item = timer->as<outlook::MailItem>();
  owner->atReply = [](bool&) { raiseError(13); };
  bool cancel = false;
  timer->fire(outlook::ItemEvents::Reply, Object(), cancel);
  EXPECT_TRUE(cancel);
}

TEST_F(WithEventsTest, SeveralHandlers_EachHearsItsOwnEvent) {
  owner->m_Item = timer->as<outlook::MailItem>();
  bool cancel = true;
  timer->fire(outlook::ItemEvents::Forward, Object(), cancel);
  timer->fire(outlook::ItemEvents::ReplyAll, Object(), cancel);
  EXPECT_EQ(log, (Log{"forward, cancelled"}));
}

TEST_F(WithEventsTest, WrongNumberOfArguments_Is450ToTheRaiser) {
  owner->m_Timer = timer->as<timermm::Timer>();
  EXPECT_EQ(errorNumberOf([&] { timer->raiseEvent(Event<>{u"Timer", 1}); }), 450);
  EXPECT_EQ(errorNumberOf([&] { timer->raiseEvent(Event<String>{u"Timer", 1}, u"x"); }), 13);
  timer->raiseEvent(Event<String>{u"Timer", 1}, u"12");  // converted, as automation does
  EXPECT_EQ(log, (Log{"tick 12", ticked}));
}

// Teardown from inside a handler -----------------------------------------------------------------------------------

TEST_F(WithEventsTest, HandlerEmptiesItsField_AndRunsOn) {
  owner->m_Timer = timer->as<timermm::Timer>();
  owner->atTick = [&] { owner->m_Timer = nullptr; };
  tick(1);
  tick(2);
  EXPECT_EQ(log, (Log{"tick 1", ticked}));
}

TEST_F(WithEventsTest, HandlerEmptiesItsField_WhichWasTheLastReferenceToTheSource) {
  owner->m_Timer = timer->as<timermm::Timer>();
  FakeObject* const source = timer.get();
  timer->whenTerminated = [&] { log.emplace_back("source ended"); };
  timer->whenDestroyed = [&] { log.emplace_back("source destroyed"); };
  timer = nullptr;
  owner->atTick = [&] { owner->m_Timer = nullptr; };
  source->fire(timermm::TimerEvents::Timer, 1);
  EXPECT_EQ(log, (Log{"tick 1", "source ended", ticked, "source destroyed"}));
}

TEST_F(WithEventsTest, HandlerReassignsItsField_TheNewSourceIsHeard) {
  const auto other = fake("Other");
  owner->m_Timer = timer->as<timermm::Timer>();
  owner->atTick = [&] { owner->m_Timer = other->as<timermm::Timer>(); };
  tick(1);
  owner->atTick = nullptr;
  tick(2);
  other->fire(timermm::TimerEvents::Timer, 3);
  EXPECT_EQ(log, (Log{"tick 1", ticked, "tick 3", ticked}));
}

TEST_F(WithEventsTest, OwnerTornDownInsideItsHandler_EndsAtOnceAndIsDestroyedAfterTheHandler) {
  owner->m_Timer = timer->as<timermm::Timer>();
  owner->atTick = [&] { owner = nullptr; };
  tick(1);
  EXPECT_EQ(log, (Log{"tick 1", "owner ended", ticked, "owner destroyed"}));
  EXPECT_EQ(timer->listeners(), 0u);
}

TEST_F(WithEventsTest, OwnerThatHasEnded_HearsNothingMore) {
  owner->m_Timer = timer->as<timermm::Timer>();
  Owner* const raw = owner.get();
  owner->atTick = [&] {
    raw->atTick = nullptr;
    owner = nullptr;
    EXPECT_EQ(timer->listeners(), 1u);  // the field still stands, only its owner has ended
    tick(2);
  };
  tick(1);
  EXPECT_EQ(log, (Log{"tick 1", "owner ended", ticked, "owner destroyed"}));
}

TEST_F(WithEventsTest, EventDuringTheOwnersEnd_IsNotHeard) {
  owner->m_Timer = timer->as<timermm::Timer>();
  owner->atEnd = [&] { tick(1); };
  owner = nullptr;
  EXPECT_EQ(log, (Log{"owner ended", "owner destroyed"}));
}

TEST_F(WithEventsTest, AnEventThatASourceStillHasForAFieldThatIsGone_IsNotHeard) {
  Ref<EventSink> sink;  // as an outside source keeps it over its own Unadvise
  struct Keeper final : Automation {
    explicit Keeper(Ref<EventSink>& s) : sink(s) {}
    Variant invoke(StringView, Access, Args) override { return {}; }
    Ref<Counted> subscribe(const Guid&, const Ref<EventSink>& s) override {
      sink = s;
      return make<Connection>();
    }
    struct Connection final : Counted {};
    Ref<EventSink>& sink;
  };
  owner->m_Timer = timermm::Timer(Ref<Automation>(make<Keeper>(sink)));
  Variant seven(7);
  sink->onEvent(1, {&seven, 1});
  owner = nullptr;
  sink->onEvent(1, {&seven, 1});
  EXPECT_EQ(log, (Log{"tick 7", ticked, "owner ended", "owner destroyed"}));
}

TEST_F(WithEventsTest, SourceEndsTheOwner_WhileTheSubscriptionIsTheSourcesLastReference) {
  owner->m_Timer = timer->as<timermm::Timer>();
  FakeObject* const source = timer.get();
  source->whenDestroyed = [&] { log.emplace_back("source destroyed"); };
  timer = nullptr;
  owner->atTick = [&] { owner = nullptr; };
  source->fire(timermm::TimerEvents::Timer, 1);
  EXPECT_EQ(log, (Log{"tick 1", "owner ended", ticked, "owner destroyed", "source destroyed"}));
}

// A class of ours as the source --------------------------------------------------------------------------------------

struct Engine : Counted, EventSource {
  static constexpr Event<std::int32_t> Changed{u"Changed", 1};
  Ref<Counted> subscribe(const Ref<EventSink>& sink) { return addListener(this, sink); }
  void change(std::int32_t n) { raiseEvent(Changed, n); }
};

struct EngineOwner : Counted {
  void m_Engine_Changed(std::int32_t n) {
    heard.push_back(n);
    if (n < 0) raiseError(5);
  }
  std::vector<std::int32_t> heard;
  WithEvents<Ref<Engine>> m_Engine{this, on<Engine::Changed, &EngineOwner::m_Engine_Changed>};
};

TEST(WithEventsOfOurs, HearsAndPassesFailuresToTheRaiser) {
  const Census census;
  const auto owner = make<EngineOwner>();
  const auto engine = make<Engine>();
  owner->m_Engine = engine;
  owner->m_Engine->change(5);
  EXPECT_EQ(errorNumberOf([&] { engine->change(-1); }), 5);
  owner->m_Engine = nullptr;
  engine->change(7);
  EXPECT_EQ(owner->heard, (std::vector<std::int32_t>{5, -1}));
  EXPECT_EQ(errorNumberOf([&] { owner->m_Engine->change(1); }), 91);
}

TEST(WithEventsOfOurs, OwnerGoes_TheSourceGoesWithIt) {
  const Census census;
  auto owner = make<EngineOwner>();
  owner->m_Engine = make<Engine>();
  EXPECT_EQ(census.more(), 4);  // owner, its sink, the engine, the subscription
  owner = nullptr;
  EXPECT_EQ(census.more(), 0);
}

}  // namespace
}  // namespace platform
