// A modem that does anything: answers, half answers, answers of other commands, resets, silence. The driver comes to an
// end with each request in a time that its limits allow, and after it the dialogue is in step: a modem that answers
// properly from then on is understood at once, whatever it had still to say.

#include "phone/modem/modem.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>

#include "fuzz/check.h"

namespace {

using namespace phone;

class Anything final : public Line, public Clock {
 public:
  explicit Anything(std::string_view input) : input_(input) {}

  Instant now() const override { return now_; }
  void wake() noexcept override {}
  void end() noexcept override {}

  void write(std::string_view octets, Instant) override {
    if (lost_) throw LineLost("lost");
    if (proper_) return answerProperly(octets);
    if (octets.find_first_of("\r\x1A\x1B") == std::string_view::npos) return;
    // One answer: the octets of the input up to the next "end".
    for (bool more = true; more && !input_.empty();) more = act(next());
    if (input_.empty() && octets.ends_with('\r')) say("\r\nOK\r\n");
  }

  std::string read(Instant deadline) override {
    if (!said_.empty() && said_.front().first <= std::max(now_, deadline)) {
      now_ = std::max(now_, said_.front().first);
      std::string octets = std::move(said_.front().second);
      said_.pop_front();
      return octets;
    }
    if (lost_) throw LineLost("lost");
    now_ = std::max(now_, deadline);
    return {};
  }

  // What it had still to say has arrived by now, and the line that it was in is at its end.
  void becomeProper() {
    if (lost_) throw LineLost("lost");
    proper_ = true;
    for (auto& [when, octets] : said_) when = now_;
    when_ = now_;
    say("\r\n");
  }

 private:
  unsigned next() {
    if (input_.empty()) return 0;
    const auto octet = static_cast<unsigned char>(input_.front());
    input_.remove_prefix(1);
    return octet;
  }

  void say(std::string_view octets) {
    when_ = std::max(when_, now_);
    said_.emplace_back(when_, octets);
  }

  // False at the end of an answer.
  bool act(unsigned what) {
    static constexpr std::string_view lines[] = {
        "OK",
        "ERROR",
        "+CMS ERROR: 321",
        "+CMS ERROR: 515",
        "+CME ERROR: 14",
        "> ",
        "RDY",
        "+CMTI: \"SM\",3",
        "+CPMS: 1,20,1,20,1,20",
        "+CPMS: (\"ME\",\"SM\"),(\"SM\"),(\"MT\")",
        "+CMGL: 1,1,,28",
        "+CMGL: 2,0,,24",
        "07916407058099F9040B916407214365F70000102030405060000AE8329BFD4697D9EC37",
        "+CMGR: 1,,28",
        "+CMGS: 7",
        "+CMT: ,28",
        "+CPIN: READY",
        "+CPIN: SIM PIN",
        "0",
        "+CREG: 0,1",
        "AT+CMGL=4",
        "+CPMS: 2,2147483647,2,2147483647,2,2147483647",
        "+CMTI: \"SM\",70000",
        "+CMGL: 70000,0,,28",
        "+CMGL: 29999,0,,28",
        "+CM#R: 0,,28",
        "+CMS ERROR: 332",
        "+CMEE: 0"};
    switch (what % 8) {
      case 0:
      case 1:
      case 2: {
        const std::string_view line = lines[(what / 8) % std::size(lines)];
        say(line == "> " ? "\r\n> " : "\r\n" + std::string(line) + "\r\n");
        return line != "OK" && line != "ERROR";
      }
      case 3:
        when_ = std::max(when_, now_) + Milliseconds(100 * (what / 8) * (what / 8));
        return true;
      case 4: {
        const std::size_t count = std::min<std::size_t>(what / 8, input_.size());
        say(input_.substr(0, count));
        input_.remove_prefix(count);
        return true;
      }
      case 5:
        say("\r\nOK\r\n");
        return false;
      case 6:
        if (what == 0xFE) lost_ = true;
        return false;
      default:
        return false;
    }
  }

  void answerProperly(std::string_view octets) {
    if (octets == "AT+CSQ\r")
      say("\r\n+CSQ: 17,99\r\n\r\nOK\r\n");
    else if (octets.starts_with("AT"))
      say("\r\nOK\r\n");
  }

  std::string_view input_;
  Instant now_{1000000};
  Instant when_{0};
  std::deque<std::pair<Instant, std::string>> said_;
  bool proper_ = false;
  bool lost_ = false;
};

template <class Request>
void withinLimits(Anything& modem, const Request& request) {
  const Instant begin = modem.now();
  request();
  // Reading slot by slot is what takes longest: each with its limit, twice, until too many are silent.
  fuzz::require(modem.now() - begin < std::chrono::hours(12), "a request comes to an end");
}

void play(Anything& line) {
  std::size_t traced = 0;
  at::Trace trace([&](std::string_view text) { traced += text.size(); });
  Modem modem(line, line, &trace);
  withinLimits(line, [&] { modem.connect(); });
  withinLimits(line, [&] {
    for (const StoredPdu& message : modem.list(Memory::Sim).messages)
      fuzz::require(message.index >= 0 && message.index <= mostIndex, "a message has a slot that can be told");
  });
  Sending sending;
  fuzz::require(Modem::prepare({}, u"+46701234567", std::u16string(200, u'x'), 1, sending).done(), "it can be sent");
  withinLimits(line, [&] {
    const Outcome outcome = modem.send(sending);
    fuzz::require(outcome.done() == (sending.sent == sending.parts.size()), "done is when all parts are sent");
  });
  withinLimits(line, [&] { modem.remove({Memory::Sim, 1}, "00"); });
  withinLimits(line, [&] { modem.check(); });
  for (const Notice& notice : modem.takeNotices())
    fuzz::require(!notice.slot || notice.slot->index <= mostIndex, "a slot has a number that can be told");
  line.becomeProper();
  bool inStep = false;
  try {
    inStep = modem.signal() == 17;
  } catch (const PhoneGone&) {
    // Nothing is gone.
  }
  fuzz::require(inStep, "the dialogue is in step");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Anything line({reinterpret_cast<const char*>(data), size});
  try {
    play(line);
  } catch (const PhoneGone&) {
    // Reported.
  }
  return 0;
}
