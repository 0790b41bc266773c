// What the engine does is the same whether its trace is wanted or not.
#include "addin/diag/basDbgOut.h"
#include "support/errors.h"
#include "unit/sms/receiving_fixture.h"

namespace sms_tests {
namespace {

using testing_support::errorOf;
using testing_support::Recorder;

struct Deeds {
  Lines calls;
  std::vector<Lines> folders;  // Inbox, Outbox, Sent Items, Deleted Items
  Lines trace;
  std::int32_t state = -1;
};

// Prepares a fresh world with the trace on, and runs the scenario with the trace at that level.
Deeds deedsAt(std::int16_t level, const std::function<void(EngineWorld&)>& prepare,
              const std::function<void(EngineWorld&)>& scenario) {
  EngineWorld world;
  world.start();
  prepare(world);
  world.clear();
  dbgChannel.Level = level;
  Deeds deeds;
  {
    const Recorder recorder;
    scenario(world);
    deeds.calls = recorder.lines();
  }
  for (const FakeFolder* const folder : {&world.inbox, &world.outbox, &world.sentMail, &world.deletedItems})
    deeds.folders.push_back(folder->entryIds());
  deeds.trace = world.trace();
  deeds.state = world.probe().state();
  return deeds;
}

// What was done with the trace on, having compared it with what is done without.
Deeds sameWithoutTrace(const std::function<void(EngineWorld&)>& prepare,
                       const std::function<void(EngineWorld&)>& scenario) {
  const Deeds traced = deedsAt(2, prepare, scenario);
  const Deeds untraced = deedsAt(-1, prepare, scenario);
  EXPECT_GT(traced.trace.size(), 0u);
  EXPECT_EQ(untraced.trace, Lines{});
  EXPECT_EQ(untraced.calls, traced.calls);
  EXPECT_EQ(untraced.folders, traced.folders);
  EXPECT_EQ(untraced.state, traced.state);
  return traced;
}

TEST(Untraced, Send_IsTheSame) {
  const Deeds deeds = sameWithoutTrace([](EngineWorld&) {},
                                       [](EngineWorld& world) {
                                         world.arrive(world.outbox, world.newItem(u"Anna [1]", u"Hello"));
                                         world.tick(world.sendTimer(), 500);
                                         world.tick(world.sendTimer(), 500);  // refused, and counted
                                         world.answer(17, 0);
                                       });
  EXPECT_EQ(deeds.folders, (std::vector<Lines>{{}, {}, {"ID-1"}, {}}));
  EXPECT_EQ(std::count(deeds.calls.begin(), deeds.calls.end(), "Item ID-1.Mileage = \"1\""), 1);
}

TEST(Untraced, ThirdFailure_IsTheSame) {
  const Deeds deeds = sameWithoutTrace(
      [](EngineWorld& world) {
        world.addItem(world.outbox, u"Anna [1]", u"Hello")->value(u"Mileage", u"2");
        world.tick(world.sendTimer(), 500);
      },
      [](EngineWorld& world) { world.tick(world.guardTimer(), 25000); });
  EXPECT_EQ(deeds.folders, (std::vector<Lines>{{"ID-2"}, {}, {}, {"ID-1"}}));
}

TEST(Untraced, ReceiveWithAutoRemove_IsTheSame) {
  const Deeds deeds = sameWithoutTrace(
      [](EngineWorld& world) {
        world.system.registry.setDword(rootCurrentUser, optionsKey, "SendReceive_AutoRemove", 1);
        world.store({.text = u"one", .store = 1, .index = 4});
        world.store({.text = u"two", .index = 5});
        world.addItem(world.inbox,
                      u"\x01"
                      u"010203040507",
                      u"old");
      },
      [](EngineWorld& world) {
        EXPECT_TRUE(world.handler().ReceiveAll());
        EXPECT_EQ(world.handler().isSimFull(), 0);
      });
  EXPECT_EQ(deeds.folders, (std::vector<Lines>{{"ID-1", "ID-2", "ID-3"}, {}, {}, {}}));
  EXPECT_EQ(std::count(deeds.calls.begin(), deeds.calls.end(), "SMS.DeleteMessage(1, 4)"), 1);
  EXPECT_EQ(std::count(deeds.calls.begin(), deeds.calls.end(), "SMS.DeleteMessage(2, 5)"), 1);
}

// A line that nobody wants is computed all the same where computing it can fail.
TEST(Untraced, GuardBeyondTheRange_IsOverflow) {
  EngineWorld world;
  world.start();
  dbgChannel.Level = -1;
  const auto error = errorOf([&] { world.probe().SetupGuard(85900); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number, 6);
  EXPECT_EQ(error->description, u"Overflow");
  EXPECT_EQ(world.guardTimer().calls(), Lines{});
  EXPECT_EQ(world.trace(), Lines{});
}

}  // namespace
}  // namespace sms_tests
