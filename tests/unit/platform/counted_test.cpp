#include "addin/platform/counted.h"

#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/errors.h"
#include "support/seam_recorder.h"

namespace platform {
namespace {

using testing_support::Census;
using testing_support::errorNumberOf;

using Log = std::vector<std::string>;

struct Thing : Counted {
  explicit Thing(Log& l) : log(l) {}
  ~Thing() override {
    log.emplace_back("destroyed");
    if (inDestructor) inDestructor(*this);
  }
  void terminate() noexcept override {
    log.emplace_back("ended");
    if (atEnd) atEnd(*this);
  }
  void say(const std::string& text) { log.push_back(text); }
  void run(const std::function<void()>& work) {
    say("in");
    work();
    say("out " + marker);  // touches the object after whatever `work` did to it
  }

  Log& log;
  std::string marker = "a text that is long enough to live on the heap";
  std::function<void(Thing&)> atEnd;
  std::function<void(Thing&)> inDestructor;
};

struct SpecialThing : Thing {
  using Thing::Thing;
};

const std::string out = "out a text that is long enough to live on the heap";

TEST(Ref, LastReference_EndsAndDestroysAtOnce) {
  const Census census;
  Log log;
  Ref<Thing> a = make<Thing>(log);
  Ref<Thing> b = a;
  EXPECT_EQ(census.more(), 1);
  a = nullptr;
  EXPECT_TRUE(log.empty());
  b = nullptr;
  EXPECT_EQ(log, (Log{"ended", "destroyed"}));
  EXPECT_EQ(census.more(), 0);
}

TEST(Ref, CallThroughNothing_Is91) {
  const Ref<Thing> nothing;
  EXPECT_FALSE(nothing);
  EXPECT_EQ(errorNumberOf([&] { nothing->say("x"); }), 91);
  EXPECT_EQ(errorNumberOf([&] { (*nothing).say("x"); }), 91);
}

TEST(Ref, CopyMoveAssignAndConvert_KeepTheCountRight) {
  const Census census;
  Log log;
  {
    const Ref<SpecialThing> special = make<SpecialThing>(log);
    const Ref<Thing> base = special;
    Ref<Thing> moved = Ref<Thing>(base);
    Ref<Thing> other = std::move(moved);
    EXPECT_FALSE(moved);  // NOLINT: what a moved-from reference is, is promised
    moved = other;
    const Ref<Thing>& alias = moved;
    moved = alias;
    EXPECT_EQ(moved, base);
    EXPECT_TRUE(log.empty());
    EXPECT_EQ(census.more(), 1);
  }
  EXPECT_EQ(log, (Log{"ended", "destroyed"}));
}

TEST(Ref, Assign_TheNewObjectIsInPlaceBeforeTheOldGoes) {
  const Census census;
  Log log;
  Log other;
  Ref<Thing> field = make<Thing>(log);
  const Ref<Thing> next = make<Thing>(other);
  field.get()->atEnd = [&](Thing&) { log.emplace_back(field == next ? "field holds the new one" : "field is stale"); };
  field = next;
  EXPECT_EQ(log, (Log{"ended", "field holds the new one", "destroyed"}));
}

TEST(Ref, AssignNothing_TheFieldIsEmptyBeforeTheOldGoes) {
  Log log;
  Ref<Thing> field = make<Thing>(log);
  field.get()->atEnd = [&](Thing&) { log.emplace_back(field ? "field is stale" : "field is empty"); };
  field = nullptr;
  EXPECT_EQ(log, (Log{"ended", "field is empty", "destroyed"}));
}

// The mail client's "disconnect" may come in while a call pumps messages.
TEST(Ref, LetGoFromInsideItsOwnCall_EndsAtOnceAndIsDestroyedAfterTheCall) {
  const Census census;
  Log log;
  Ref<Thing> field = make<Thing>(log);
  field->run([&] { field = nullptr; });
  EXPECT_EQ(log, (Log{"in", "ended", out, "destroyed"}));
}

TEST(Ref, LetGoFromInsideNestedCalls_IsDestroyedAfterTheOutermost) {
  const Census census;
  Log log;
  Ref<Thing> field = make<Thing>(log);
  field->run([&] { field->run([&] { field = nullptr; }); });
  EXPECT_EQ(log, (Log{"in", "in", "ended", out, out, "destroyed"}));
}

TEST(Counted, HasEnded_FromTheMomentTheLastReferenceWent) {
  Log log;
  Ref<Thing> field = make<Thing>(log);
  Thing* const thing = field.get();
  EXPECT_FALSE(thing->hasEnded());
  thing->atEnd = [](Thing& t) { t.say(t.hasEnded() ? "has ended" : "has not"); };
  field->run([&] {
    field = nullptr;
    EXPECT_TRUE(thing->hasEnded());
  });
  EXPECT_EQ(log, (Log{"in", "ended", "has ended", out, "destroyed"}));
}

TEST(Counted, ReferencesTakenAtTheEnd_AreHarmless) {
  const Census census;
  Log log;
  Ref<Thing> field = make<Thing>(log);
  field.get()->atEnd = [](Thing& t) {
    const Ref<Thing> again(&t);
    const Ref<Thing> more = again;
    more->say("in use");
  };
  field = nullptr;
  EXPECT_EQ(log, (Log{"ended", "in use", "destroyed"}));
}

TEST(Counted, AReferenceKeptAtTheEnd_KeepsTheMemory_AndTheEndRunsOnce) {
  const Census census;
  Log log;
  Ref<Thing> kept;
  Ref<Thing> field = make<Thing>(log);
  field.get()->atEnd = [&](Thing& t) { kept = Ref<Thing>(&t); };
  field = nullptr;
  EXPECT_EQ(log, (Log{"ended"}));
  kept->say("still there");
  EXPECT_TRUE(kept->hasEnded());
  kept = nullptr;
  EXPECT_EQ(log, (Log{"ended", "still there", "destroyed"}));
}

TEST(Counted, AReferenceTakenByTheDestructor_DoesNotDestroyTwice) {
  const Census census;
  Log log;
  Ref<Thing> field = make<Thing>(log);
  field.get()->inDestructor = [](Thing& t) {
    const Ref<Thing> late(&t);
    const Hold<Thing> hold(&t);
    hold->say("late");
  };
  field = nullptr;
  EXPECT_EQ(log, (Log{"ended", "destroyed", "late"}));
}

TEST(Counted, TheEndOfACallInsideTheEnd_DoesNotDestroyEarly) {
  const Census census;
  Log log;
  Ref<Thing> field = make<Thing>(log);
  field.get()->atEnd = [](Thing& t) {
    { const Hold<Thing> hold(&t); }  // a held call that ends while terminate runs
    t.say(t.marker);
  };
  field = nullptr;
  EXPECT_EQ(log, (Log{"ended", "a text that is long enough to live on the heap", "destroyed"}));
}

TEST(Hold, KeepsTheMemoryButIsNoReference) {
  const Census census;
  Log log;
  Ref<Thing> field = make<Thing>(log);
  {
    const Hold<Thing> hold(field.get());
    const Hold<Thing> copy = hold;  // NOLINT: the copy is the point
    field = nullptr;
    EXPECT_EQ(log, (Log{"ended"}));
    copy->say("still valid");
  }
  EXPECT_EQ(log, (Log{"ended", "still valid", "destroyed"}));
}

TEST(Hold, AloneDoesNotEndAnObjectThatIsStillReferenced) {
  const Census census;
  Log log;
  const Ref<Thing> field = make<Thing>(log);
  { const Hold<Thing> hold(field.get()); }
  EXPECT_TRUE(log.empty());
}

}  // namespace
}  // namespace platform
