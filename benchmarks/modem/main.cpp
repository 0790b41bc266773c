// Our driver and gammu at the same simulated handset, in turns: listing 1,000 messages, sending 100.
//
//   bench_modem PHONESIM FOLDER
//
// with a folder for what the programs write. What our driver adds to a dialogue is measured against the dialogue alone:
// a client that writes the same octets and waits for the same answers, see tape.h. That is done on a line with a speed,
// because without one the dialogue takes no more than the processors do for both sides of it, and the other programs of
// the machine decide which side waits.
//
// gammu is its library, measured without opening the line and getting to know the phone; of our driver the same is left
// out.
#include <algorithm>
#include <cstdio>
#include <fstream>

#include <fcntl.h>
#include <sys/ioctl.h>

#include "measure.h"
#include "modem/gammu.h"
#include "modem/handset.h"
#include "modem/tape.h"
#include "phone/line/open_line.h"
#include "phone/line/steady_clock.h"
#include "phone/modem/modem.h"
#include "phone/pdu/decode.h"

namespace bench {
namespace {

constexpr int messages = 1'000;
constexpr int sends = 100;
constexpr int fast = 921'600;  // bits per second
// Each message is several turns from one program to the other, and other programs of the machine get in between.
constexpr int sendingRuns = 15;
constexpr int gammuSendingRuns = 3;  // it pauses half a second before each message
constexpr double mostOverhead = 1.10;
const std::string destination = "+46701234567";

using phone::LineName;
using phone::Memory;
using phone::Modem;

std::string waiting(int n) { return "Text " + std::to_string(n) + " of those that wait to be listed"; }
std::string outgoing(int n) { return "Text " + std::to_string(n) + " of those that are to be sent"; }

bool isWaiting(const std::string& text) {
  return text.starts_with("Text ") && text.ends_with(" of those that wait to be listed");
}

// ---- our driver ----

// Everything in both memories, decoded.
double listAll(Modem& modem) {
  const double begin = wallClock();
  int count = 0;
  for (const Memory memory : {Memory::Sim, Memory::Phone}) {
    const phone::Listing listing = modem.list(memory);
    require(listing.outcome.done(), "the memory is listed");
    for (const phone::StoredPdu& stored : listing.messages) {
      const std::u16string text = phone::decodePdu(stored.pdu).content.text;
      if (isWaiting({text.begin(), text.end()})) ++count;
    }
  }
  const double seconds = wallClock() - begin;
  require(count == messages, "every message is listed");
  return seconds;
}

double sendAll(Modem& modem) {
  const std::u16string to(destination.begin(), destination.end());
  const double begin = wallClock();
  for (int n = 0; n < sends; ++n) {
    const std::string ascii = outgoing(n);
    const std::u16string text(ascii.begin(), ascii.end());
    phone::Sending sending;
    require(Modem::prepare({}, to, text, 1, sending).done(), "the message can be sent");
    require(modem.send(sending).done(), "the message is sent");
  }
  return wallClock() - begin;
}

// ---- the measurements ----

double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

class Comparison {
 public:
  struct Times {
    double ours = 0, alone = 0;
    // The median of each run's own: its two times lie side by side, so what else the machine does hits both.
    double ratio = 0;
  };

  Comparison(const std::string& phonesim, const std::string& folder)
      : settings_(folder + "/gammurc"),
        handset_(phonesim, {"--link", folder + "/tty", "--sm", "500", "--me", "500"}),
        serial_{LineName::Kind::Serial, folder + "/tty", ""},
        terminal_(open(serial_.device.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC)) {
    for (int n = 0; n < messages; ++n)
      handset_.tell("deliver +4670" + std::to_string(1'000'000 + n) + " \"" + waiting(n) + '"');
    require(handset_.tell("list") == std::to_string(messages), "the memories are full");
    const auto colon = handset_.tcp().rfind(':');
    tcp_ = {LineName::Kind::Tcp, handset_.tcp().substr(0, colon), handset_.tcp().substr(colon + 1)};
    std::ofstream(settings_) << "[gammu]\nport=" << serial_.device << "\nconnection=at115200\nmodel=at\n";
    // Who lists first finds unread messages; everybody shall find the same.
    once(serial_, listAll);
  }

  const LineName& serial() const { return serial_; }
  const LineName& tcp() const { return tcp_; }
  void speed(int bits) { handset_.tell("speed " + std::to_string(bits)); }

  Times listing(const LineName& line) {
    return medians(runs, [&] { return once(line, listAll); });
  }
  Times sending(const LineName& line) {
    return medians(sendingRuns, [&] {
      return once(line, [this](Modem& modem) { return counted([&] { return sendAll(modem); }); });
    });
  }

  double gammuListing() {
    std::vector<double> seconds;
    Gammu gammu(settings_);
    for (int run = 0; run < runs; ++run) {
      const double begin = wallClock();
      const auto texts = gammu.list();
      seconds.push_back(wallClock() - begin);
      require(std::ranges::count_if(texts, isWaiting) == messages, "gammu lists every message");
    }
    return median(seconds);
  }

  double gammuSending() {
    std::vector<double> seconds;
    Gammu gammu(settings_);
    for (int run = 0; run < gammuSendingRuns; ++run) {
      seconds.push_back(counted([&] {
        const double begin = wallClock();
        for (int n = 0; n < sends; ++n) gammu.send(destination, outgoing(n));
        return wallClock() - begin;
      }));
    }
    return median(seconds);
  }

 private:
  template <class Run>
  static Times medians(int count, const Run& run) {
    std::vector<double> ours, alone, ratio;
    for (int i = 0; i < count; ++i) {
      const Times times = run();
      ours.push_back(times.ours);
      alone.push_back(times.alone);
      ratio.push_back(times.ours / times.alone);
    }
    return {median(ours), median(alone), median(ratio)};
  }

  // Our driver, and then its dialogue alone.
  template <class Work>
  Times once(const LineName& name, const Work& work) {
    Times times;
    const phone::SteadyClock clock;
    Tape tape;
    std::size_t begin = 0;
    {
      TapedLine line(phone::openLine(name, clock.now() + phone::Milliseconds(5000)));
      Modem modem(line, clock);
      modem.connect();
      begin = line.tape().size();
      times.ours = work(modem);
      tape = line.tape();
    }
    // The driver has taken the terminal for itself, which outlives it as long as the handset has it open.
    ioctl(terminal_.get(), TIOCNXCL);
    times.alone = secondsOfReplay(name, tape, begin);
    return times;
  }

  // The handset has sent the messages.
  template <class Work>
  double counted(const Work& work) {
    handset_.tell("sent clear");
    const double seconds = work();
    require(handset_.tell("sent") == std::to_string(sends), "the handset has sent every message");
    return seconds;
  }

  std::string settings_;
  Handset handset_;
  LineName serial_, tcp_;
  Descriptor terminal_;
};

const std::string listed = grouped(messages) + " listed", sent = std::to_string(sends) + " sent";

// What our driver adds to the dialogue, where the line is what takes the time.
void overhead(Comparison& comparison) {
  comparison.speed(fast);
  for (const bool serial : {true, false}) {
    const std::string where = std::string(serial ? ", serial" : ", TCP") + " at " + grouped(fast) + " bit/s";
    const LineName& line = serial ? comparison.serial() : comparison.tcp();
    const auto show = [](const std::string& what, const Comparison::Times& times, const std::string& work) {
      report(what, times.ours, work);
      report("  the dialogue alone", times.alone, "");
      reportRatio("  our driver, times that", times.ratio, mostOverhead);
    };
    show("listing" + where, comparison.listing(line), listed);
    show("sending" + where, comparison.sending(line), sent);
  }
}

// Where the line takes no time, what a program does with it shows.
void besideGammu(Comparison& comparison) {
  comparison.speed(0);
  const auto show = [](const std::string& what, double ours, double gammu, const std::string& work) {
    report(what + ", our driver", ours, work);
    report("  gammu", gammu, "");
    reportRatio("  our driver, times that", ours / gammu, 1.0);
  };
  const double listing = comparison.listing(comparison.serial()).ours;
  show("listing, serial, as fast as it can", listing, comparison.gammuListing(), listed);
  const double sending = comparison.sending(comparison.serial()).ours;
  show("sending, serial, as fast as it can", sending, comparison.gammuSending(), sent);
}

void compare(const std::string& phonesim, const std::string& folder) {
  Comparison comparison(phonesim, folder);
  std::printf(
      "\nA modem: our driver and gammu at the same simulated handset\n(median of %d runs; sending, of %d, and of %d by "
      "gammu)\n",
      runs, sendingRuns, gammuSendingRuns);
  overhead(comparison);
  besideGammu(comparison);
}

}  // namespace
}  // namespace bench

int main(int count, char** words) {
  bench::require(count == 3, "two arguments: phonesim and a folder");
  bench::compare(words[1], words[2]);
  return bench::limitsKept() ? 0 : 1;
}
