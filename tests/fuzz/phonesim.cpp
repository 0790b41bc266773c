// A host that types anything at the simulated handset, while its operator does anything to it: no octets do harm, what
// is kept can be written and read again, and once the host has given up what it was at, the handset answers.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz/check.h"
#include "phonesim/console/console.h"
#include "phonesim/handset/port.h"

namespace {

using namespace phonesim;

class Surroundings final : public Network, public ConsoleHost {
 public:
  phone::TimeStamp time() override { return {2026, 2, 3, 4, 5, 6, 4}; }
  void take(const Submission& message) override {
    fuzz::require(message.deliver.size() <= longestPdu, "what is handed on is a message");
    if (sent_.size() < 100) sent_.push_back(message);
    arriving = message.deliver;
  }
  void setPlugged(bool) override {}
  bool isPlugged() const override { return true; }
  bool hasHost() const override { return true; }
  void quit() override {}
  const std::vector<Submission>& sent() const override { return sent_; }
  void clearSent() override { sent_.clear(); }

  Octets arriving;  // it comes back to the handset

 private:
  std::vector<Submission> sent_;
};

// The input up to the next "end", FF.
std::string_view takePiece(std::string_view& input) {
  const auto end = std::min(input.find('\xFF'), input.size());
  const std::string_view piece = input.substr(0, end);
  input.remove_prefix(std::min(end + 1, input.size()));
  return piece;
}

State smallState() {
  State state;
  state.centre = "+46700000000";
  state.memories = {4, 3};
  return state;
}

void play(std::string_view input) {
  Surroundings surroundings;
  Handset handset(Identity{}, smallState(), surroundings);
  Time now{1000};
  std::size_t told = 0;
  Console console(handset, surroundings, [&](const std::string& line) { told += line.size(); });
  Port port(handset);
  {
    Port other(handset);
    while (!input.empty()) {
      const std::string_view piece = takePiece(input);
      const bool toConsole = piece.starts_with('\xFE'), toOther = piece.starts_with('\xFD');
      if (toConsole) {
        console.receive(piece.substr(1));
        console.receive("\n");
      } else {
        (toOther ? other : port).receive(piece.substr(toOther ? 1 : 0), now);
      }
      console.advance(now);
      port.take(now);
      other.take(now);
      if (!surroundings.arriving.empty()) handset.deliver(std::exchange(surroundings.arriving, {}));
      now += Time(piece.size() * 10);
    }
  }
  const State& state = handset.state();
  for (const Place place : {Place::Phone, Place::Sim}) {
    const Memory& memory = state.memories.at(place);
    fuzz::require(memory.used() <= std::max(memory.capacity, 4), "no more messages than slots");
    fuzz::require(state.contacts.at(place).used() <= PhoneBook::capacity, "no more entries than places");
  }
  const std::string text = toText(state);
  const ReadState again = fromText(text, {});
  fuzz::require(again.passedOver == 0 && toText(again.state) == text, "the memory can be written and read again");
  // Whatever was prepared is over; the answer to the question is the last that is said.
  handset.faults() = {};
  now += std::chrono::hours(24 * 365);
  port.take(now);
  port.receive("\x1B\r\x1B\r", now);
  port.take(now);
  port.receive("ATE0V1Q0\r", now);
  port.take(now);
  port.receive("ATZE0\r", now);
  port.take(now);
  port.receive("AT\r", now);
  fuzz::require(port.take(now).starts_with("\r\nOK\r\n"), "the handset answers");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  play({reinterpret_cast<const char*>(data), size});
  return 0;
}
