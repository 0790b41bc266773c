// Lets the simulated handset answer: each text message that is sent comes back with a few words, from the number that
// it went to. Puts the stand-in help viewer in its place, too. Runs until it is ended.
#include <cstdio>

#include "com/bridge.h"
#include "support/win32/product.h"

namespace {

using platform::String;
using testing_support::Handset;

constexpr std::int32_t sim = 2;
constexpr std::uint32_t thinkingTime = 3000;  // milliseconds

// The present time as a phone writes it: YYMMDDhhmmss.
String stamp() {
  SYSTEMTIME now{};
  GetLocalTime(&now);
  char text[40];
  std::snprintf(text, sizeof text, "%02d%02d%02d%02d%02d%02d", now.wYear % 100, now.wMonth, now.wDay, now.wHour,
                now.wMinute, now.wSecond);
  return String(text, text + 12);
}

String answerTo(const String& text) {
  constexpr std::size_t quoted = 80;
  const bool isQuestion = text.find(u'?') != String::npos;
  return (isQuestion ? u"Yes, of course. You wrote: " : u"Thank you! You wrote: ") + text.substr(0, quoted);
}

void pauseFor(std::uint32_t milliseconds) {
  testing_support::waitUntil([] { return false; }, milliseconds);
}

void serve() {
  const Handset handset = Handset::connect();
  handset.Plug();
  std::int32_t answered = handset.SentCount();
  if (handset.StoredCount(sim) == 0) handset.Deliver(u"+46735556677", u"Hello! Are you coming on Sunday?", stamp());
  while (true) {
    pauseFor(500);
    const std::int32_t sent = handset.SentCount();
    if (sent <= answered) continue;
    pauseFor(thinkingTime);
    handset.Deliver(handset.SentDestination(answered), answerTo(handset.SentText(answered)), stamp());
    ++answered;
  }
}

}  // namespace

int main() {
  if (FAILED(OleInitialize(nullptr))) return 1;
  testing_support::installHelpViewer();
  try {
    serve();
  } catch (const platform::RuntimeError& error) {
    std::fprintf(stderr, "answering_phone: error %d\n", static_cast<int>(error.number));
  }
  OleUninitialize();
  return 1;
}
