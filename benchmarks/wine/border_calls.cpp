// How many calls leave the add-in for one message. Each is a call into the mail client, or a round trip to the server.
// The servers are the real ones.
#include <cstdio>

#include "../measure.h"
#include "stage.h"
#include "support/seam_recorder.h"

namespace bench {
namespace {

constexpr int messages = 20;

void reportCalls(const char* what, std::int32_t calls, const char* work) {
  std::printf("  %-44s %10.1f   %d messages; %s\n", what, static_cast<double>(calls) / messages, messages, work);
}

void sent() {
  ConnectedStage stage;
  const testing_support::CallCounter counter;
  for (int i = 1; i <= messages; ++i) {
    stage->tell("compose \"Anna Berg [+46701112233]\" \"Hello Anna\"");
    stage->awaitItems("Sent Items", i);
    stage->tell("idle 700");  // the last tick of the send timer finds nothing more
  }
  require(stage->tell("wait Outbox 0 0") == "ok yes", "the Outbox is empty");
  reportCalls("calls per sent message", counter.total(), "one at a time, from the Outbox to Sent Items");
}

void received() {
  ConnectedStage stage;
  const auto handset = testing_support::Handset::connect();
  stage->tell("contact \"Anna Berg\" \"+46701112233\"");
  std::int32_t none = 0;
  {
    const testing_support::CallCounter counter;
    stage->tell(sendReceive);
    stage->tell("idle 700");
    none = counter.total();
  }
  for (int i = 0; i < messages; ++i)
    handset.Put(1, 0, u"+46701112233", u"Hello Eva", platform::concat(u"0102030405", i + 10));
  const testing_support::CallCounter counter;
  stage->tell(sendReceive);
  stage->awaitItems("Inbox", messages);
  stage->tell("idle 700");
  reportCalls("calls per received message", counter.total() - none, "sender among the contacts");
  std::printf("  %-44s %10d\n", "calls of a run without any message", none);
  handset.Clear(1);
}

}  // namespace

void borderCalls() {
  std::printf("Calls at the border\n");
  sent();
  received();
}

}  // namespace bench
