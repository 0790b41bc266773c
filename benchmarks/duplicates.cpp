// The duplicate check against many records with distinct time stamps.
#include <cstdio>
#include <random>
#include <vector>

#include "addin/diag/basDbgOut.h"
#include "measure.h"
#include "support/native_system.h"
#include "unit/sms/sms_handler_probe.h"

namespace bench {
namespace {

using namespace addin;

constexpr StringView me = u"Anna Berg [+46701234567]";
constexpr std::int32_t probes = 20'000;

// A time stamp of its own for every number below 60 to the power of 5: minute by minute, as texts come in.
String stampOf(std::int32_t n) {
  const auto two = [](std::int32_t k) { return concat(k < 10 ? u"0" : u"", k); };
  return concat(two(n / 60 / 24 / 28 / 12 % 50), two(n / 60 / 24 / 28 % 12 + 1), two(n / 60 / 24 % 28 + 1),
                two(n / 60 % 24), two(n % 60), u"30");
}

String bodyOf(std::int32_t n) { return concat(u"This is text number ", n, u"\r\nSee you at the station at eight"); }

String normalised(String body) {
  std::erase_if(body, [](char16_t c) { return c == u' ' || c == u'\r' || c == u'\n'; });
  return body;
}

struct Probe {
  String sentOn;
  String body;
};

// Half of them are there, in random order; the others have a time stamp that no record has.
std::vector<Probe> randomProbes(std::int32_t records) {
  std::mt19937 random(1);
  std::vector<Probe> result;
  for (std::int32_t i = 0; i < probes; ++i) {
    const auto n = std::uniform_int_distribution<std::int32_t>(0, records - 1)(random);
    result.push_back({stampOf(i % 2 ? n + records : n), bodyOf(n)});
  }
  return result;
}

std::int32_t plainWalk(const coltextmessage& records, const Probe& probe) {
  for (std::int32_t i = 1; i <= records.Count(); ++i) {
    const Ref<clstextmessage> record = records.Item(i);
    if (record->SentOn() == probe.sentOn && record->Recipient() == me) return 1;
  }
  return 0;
}

// Seconds for one check among so many records.
double check(std::int32_t records) {
  const auto engine = make<clsSMSHandler>();
  const SMSHandlerProbe inside(*engine);
  const auto cache = make<coltextmessage>();
  for (std::int32_t n = 0; n < records; ++n) cache->Add(me, stampOf(n), normalised(bodyOf(n)));
  inside.colInbox() = cache;
  std::vector<Probe> all = randomProbes(records);

  std::int32_t found = 0;
  const double seconds = medianOf([&] {
    found = 0;
    return secondsOf([&] {
      for (Probe& p : all) found += inside.FindTextMessage(FOLDER_INBOX, me, u"", p.body, p.sentOn) ? 1 : 0;
    });
  });
  require(found == probes / 2, "every second probe is found");
  const std::string work = grouped(probes) + " probes a run, " + grouped(found) + " found";
  report(grouped(records) + " records", seconds / probes, 2e-6, work);

  const std::int32_t walks = std::max(100, 2'000'000 / records);
  const double walked = medianOf([&] {
    return secondsOf([&] {
      std::int32_t hits = 0;
      for (std::int32_t i = 0; i < walks; ++i) hits += plainWalk(*cache, all[static_cast<std::size_t>(i)]);
      require(hits == walks / 2, "every second walk finds");
    });
  });
  report("  the same by a plain walk", walked / walks, grouped(walks) + " probes a run");
  return seconds / probes;
}

}  // namespace

void duplicates() {
  const testing_support::NativeSystem system;
  dbgChannel = {};
  dbgChannel.Level = 1;
  std::printf("Duplicate check, normalising of the text included (median of %d runs)\n", runs);
  const double few = check(1'000);
  check(10'000);
  const double many = check(100'000);
  reportRatio("100,000 records : 1,000 records", many / few, 2.0);
  dbgChannel = {};
}

}  // namespace bench
