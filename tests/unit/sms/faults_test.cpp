// Whole scenarios with each call at the boundary made to fail in turn. Nothing escapes, no text is lost, nothing is
// doubled, and every object is gone at the end (the world's own census).
#include <algorithm>
#include <set>

#include "unit/sms/engine_fixture.h"

namespace sms_tests {
namespace {

using testing_support::failEachCall;
using testing_support::FaultInjector;

const RuntimeError serverGone(-2147023174, u"Server", u"The RPC server is unavailable.");

// Runs `pass` on a fresh world once for each call that it makes, with that call failing, and then `after` without
// faults. Before all that, once without a fault. The number of calls.
std::int32_t failEachCallOf(const std::function<void(EngineWorld&)>& prepare,
                            const std::function<void(EngineWorld&)>& pass,
                            const std::function<void(EngineWorld&, const std::string& failed)>& after) {
  std::int32_t calls = 0;
  for (std::int32_t n = 0; n <= calls; ++n) {
    EngineWorld world;
    world.start();
    prepare(world);
    std::string failed;
    {
      FaultInjector injector(n, serverGone);
      EXPECT_NO_THROW(pass(world));
      if (n == 0) calls = injector.calls();
      EXPECT_EQ(injector.failed().size(), n == 0 ? 0u : 1u);
      for (const auto& line : injector.failed()) failed = line;
    }
    SCOPED_TRACE("call " + std::to_string(n) + " of " + std::to_string(calls) + ": " + failed);
    after(world, failed);
  }
  return calls;
}

// How many items of the mail client hold the text, wherever they lie.
std::int32_t itemsWith(const EngineWorld& world, const std::string& text) {
  std::int32_t found = 0;
  for (const FakeFolder* folder : {&world.inbox, &world.outbox, &world.sentMail, &world.deletedItems})
    for (const auto& body : folder->bodies()) found += body.find(text) != std::string::npos ? 1 : 0;
  return found;
}

std::int32_t timesSent(const EngineWorld& world) {
  std::int32_t sent = 0;
  for (const auto& message : world.created)
    sent += static_cast<std::int32_t>(std::count(message->calls().begin(), message->calls().end(), "Send()"));
  return sent;
}

void replug(EngineWorld& world) {
  world.notifyConnected(0, world.phone->object());
  world.notifyConnected(1, world.phone->object());
}

// ---- start ----------------------------------------------------------------------------------------------------------

TEST(Faults, EachCallOfTheStart_NothingEscapesAndTheEndIsClean) {
  const auto calls = failEachCall(serverGone, [](FaultInjector&) {
    EngineWorld world;
    EXPECT_NO_THROW(world.start());
    EXPECT_NO_THROW(world.letGo());
    EXPECT_EQ(world.worker->listeners() + world.sms->listeners() + world.outbox.items->listeners() +
                  world.deletedItems.items->listeners(),
              0u);
  });
  EXPECT_GT(calls, 15);
}

// ---- sending --------------------------------------------------------------------------------------------------------

void writeMessage(EngineWorld& world) {
  world.assistant->value(u"On", true);
  world.arrive(world.outbox, world.newItem(u"Anna [1]", u"Precious"));
  world.clear();
}

// The send timer's tick and what the phone says: success when it was given the message, else silence and the guard.
void sendOne(EngineWorld& world) {
  const std::int32_t before = timesSent(world);
  const std::int32_t id = world.nextTransaction;
  world.tick(world.sendTimer(), 500);
  if (timesSent(world) > before) {
    world.answer(id, 0);
  } else if (world.probe().state() == STATE_SEND) {
    world.tick(world.guardTimer(), 25000);
  }
}

TEST(Faults, EachCallOfASend_LosesAndDoublesNoItem) {
  std::set<std::string> sentTwice;
  const auto calls = failEachCallOf(writeMessage, sendOne, [&](EngineWorld& world, const std::string& failed) {
    EXPECT_EQ(itemsWith(world, "Precious"), 1);
    EXPECT_LE(timesSent(world), 1);
    // What the user does about it: plugs the phone in again and sends once more.
    replug(world);
    world.handler().SendAll();
    sendOne(world);
    EXPECT_EQ(itemsWith(world, "Precious"), 1);
    EXPECT_EQ(world.sentMail.bodies(), Lines{"Precious"});
    if (timesSent(world) != 1) sentTwice.insert(failed);
    EXPECT_LE(timesSent(world), 2);
  });
  EXPECT_GT(calls, 40);
  // Only where the success could not be written down: the item is still in the Outbox, and goes out again.
  EXPECT_EQ(sentTwice,
            (std::set<std::string>{"GuardTimer.Enabled = False", "Outbox.Items",
                                   "Outbox.Items.Restrict(\"[MessageClass] = 'IPM.Note.TxtMsg'\")",
                                   "Outbox.Items restricted.Count", "Outbox.Items restricted.Item(1)",
                                   "Item ID-1.EntryID", "Item ID-1.UnRead = False", "Item ID-1.Move(<Sent Items>)"}));
}

// A third failure, so that the report is made, moved and the item deleted; the phone refuses the message.
TEST(Faults, EachCallOfAThirdFailure_LosesNoText) {
  const auto prepare = [](EngineWorld& world) {
    const auto item = world.addItem(world.outbox, u"Anna [1]", u"Precious");
    item->value(u"Mileage", u"2");
    world.tick(world.sendTimer(), 500);
    ASSERT_EQ(timesSent(world), 1);
  };
  const auto calls = failEachCallOf(
      prepare, [](EngineWorld& world) { world.answer(17, -1); },
      [](EngineWorld& world, const std::string& failed) {
        EXPECT_GE(itemsWith(world, "Precious"), 1);
        EXPECT_LE(itemsWith(world, "Precious"), 2) << "the item and its report";
        EXPECT_LE(world.inbox.contents.size(), 1u);
        EXPECT_EQ(world.probe().state(), failed == "GuardTimer.Enabled = False" ? STATE_SEND : IDLE);
      });
  EXPECT_GT(calls, 20);
}

// ---- receiving ------------------------------------------------------------------------------------------------------

const std::vector<std::string> phoneTexts{"Alpha", "Beta", "Gamma"};

bool onPhone(const EngineWorld& world, const std::string& text) {
  for (const auto& [store, messages] : world.stored)
    for (const auto& message : messages)
      if (message->valueOf(u"Text") == Variant(String(text.begin(), text.end()))) return true;
  return false;
}

// One message in each memory, and one on the SIM that the user has deleted in the mail client.
void fillPhone(EngineWorld& world) {
  world.store({.text = u"Alpha", .store = 1, .index = 1});
  world.store({.text = u"Beta", .timeStamp = u"010203040507", .store = 2, .index = 1});
  world.store({.text = u"Gamma", .timeStamp = u"010203040508", .store = 2, .index = 2});
  world.addItem(world.deletedItems,
                u"\x01"
                u"010203040508",
                u"Gamma");
}

// The mail client ends after an hour: a deletion whose answer is lost waits as long as that.
void receive(EngineWorld& world) {
  const auto end = world.system.time.after(3'600'000, [&] { world.system.time.postQuit(); });
  world.handler().ReceiveAll();
  world.system.time.takeQuit();
}

// The calls that read the Deleted Items folder, and those that bring a created item from the Outbox into the Inbox.
bool readsDeletedItems(const std::string& call) {
  return call.starts_with("Deleted Items.Items") || call == "Item ID-1.ConversationTopic" || call == "Item ID-1.Body";
}
bool movesTheItem(const std::string& call) {
  return call.starts_with("Outbox.Items") || call.ends_with(".EntryID") || call.ends_with(".Move(<Inbox>)");
}

TEST(Faults, EachCallOfAReceive_LosesNothingAndDoublesNothing) {
  const auto calls = failEachCallOf(fillPhone, receive, [&](EngineWorld& world, const std::string& failed) {
    for (const auto& text : phoneTexts) EXPECT_TRUE(onPhone(world, text) || itemsWith(world, text) > 0) << text;
    EXPECT_LE(itemsWith(world, "Alpha"), 1);
    EXPECT_LE(itemsWith(world, "Beta"), 1);
    // A folder that cannot be read is an empty one, so that what was deleted comes in again.
    EXPECT_EQ(itemsWith(world, "Gamma"), readsDeletedItems(failed) ? 2 : 1);
    // A message whose way into the Inbox failed stays where the helper made it.
    EXPECT_EQ(world.outbox.contents.size(), movesTheItem(failed) ? 1u : 0u);

    // What was pending is over; the phone is plugged in again and everything listed anew.
    world.system.time.runDue();
    replug(world);
    receive(world);
    for (const auto* text : {"Alpha", "Beta"}) {
      const auto bodies = world.inbox.bodies();
      EXPECT_EQ(std::count(bodies.begin(), bodies.end(), text), 1) << text;
    }
    EXPECT_EQ(onPhone(world, "Gamma"), readsDeletedItems(failed)) << "deleted in the mail client, it goes from the SIM";
    EXPECT_EQ(world.outbox.contents.size(), movesTheItem(failed) ? 1u : 0u);
  });
  EXPECT_GT(calls, 60);
}

}  // namespace
}  // namespace sms_tests
