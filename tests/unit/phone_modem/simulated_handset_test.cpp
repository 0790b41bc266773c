// The driver against the simulated handset, with faults by chance: whatever goes wrong on the line, no message is sent
// that is called refused, none is called sent that was not, and a listing that is called complete is.
#include <optional>
#include <random>

#include <gtest/gtest.h>

#include "phone/modem/modem.h"
#include "phone/pdu/hex.h"
#include "unit/phonesim/fixture.h"

namespace {

using namespace phone;
using phonesim::Handset;
using phonesim::Operation;
using phonesim::Place;
using phonesim::Port;

class HandsetLine final : public Line, public Clock {
 public:
  explicit HandsetLine(Port& port) : port_(port) {}
  Instant now() const override { return now_; }
  void write(std::string_view octets, Instant) override { port_.receive(octets, now_); }
  std::string read(Instant deadline) override {
    for (;;) {
      if (std::string octets = port_.take(now_); !octets.empty()) return octets;
      const auto next = port_.nextOutput();
      if (!next || *next > deadline) break;
      now_ = std::max(now_, *next);
    }
    now_ = std::max(now_, deadline);
    return {};
  }
  void wake() noexcept override {}
  void end() noexcept override {}
  void pass(Milliseconds time) { now_ += time; }

 private:
  Port& port_;
  Instant now_{1000000};
};

class SimulatedHandset : public testing::Test {
 protected:
  static phonesim::State state() {
    phonesim::State state;
    state.centre = "+46700000000";
    state.memories = {5, 8};
    for (const int slot : {1, 2, 5})
      state.memories.at(Place::Sim).slots[slot] = {phonesim::Status::ReceivedRead, *fromHex(phonesim::deliverPdu)};
    return state;
  }
  std::vector<StoredPdu> stored() {
    std::vector<StoredPdu> all;
    for (const auto& [slot, message] : handset.memories().at(Place::Sim).slots)
      all.push_back({slot, Status::ReceivedRead, toHex(message.pdu)});
    return all;
  }
  Sending message(std::u16string_view text) {
    Sending sending;
    EXPECT_TRUE(Modem::prepare({}, u"+46701234567", text, 1, sending).done());
    return sending;
  }

  phonesim::RecordingNetwork network;
  Handset handset{phonesim::Identity{}, state(), network};
  Port port{handset};
  HandsetLine line{port};
  std::optional<Modem> modem{std::in_place, line, line};
};

TEST_F(SimulatedHandset, WithoutFaults_DoesAsItIsTold) {
  modem->connect();
  EXPECT_EQ(modem->name(), "Marrick Simulated handset");
  EXPECT_EQ(modem->memory(Memory::Phone).capacity, 5);
  EXPECT_EQ(modem->list(Memory::Sim).messages, stored());
  EXPECT_EQ(modem->list(Memory::Phone).messages, std::vector<StoredPdu>());
  Sending sending = message(std::u16string(459, u'x'));
  EXPECT_EQ(modem->send(sending), Outcome());
  EXPECT_EQ(network.taken.size(), 3u);
  EXPECT_EQ(modem->remove({Memory::Sim, 2}, phonesim::deliverPdu), Outcome());
  EXPECT_EQ(modem->remove({Memory::Sim, 2}, phonesim::deliverPdu), Outcome{Outcome::Kind::Empty});
  EXPECT_EQ(stored().size(), 2u);
  EXPECT_EQ(modem->serviceCentre(), "+46700000000");
  EXPECT_EQ(modem->registration(), Registration::Home);
}

TEST_F(SimulatedHandset, ArrivingMessage_IsAnnouncedWhereItLies) {
  modem->connect();
  handset.deliver(*fromHex(phonesim::deliverPdu));
  modem->listen(line.now() + Milliseconds(1000));
  EXPECT_EQ(modem->takeNotices(), (std::vector<Notice>{{Notice::Kind::Stored, Slot{Memory::Sim, 3}, {}}}));
  EXPECT_EQ(modem->read({Memory::Sim, 3}).message, (StoredPdu{3, Status::ReceivedUnread, phonesim::deliverPdu}));
}

class WithFaults : public SimulatedHandset, public testing::WithParamInterface<unsigned> {
 protected:
  int upTo(int most) { return static_cast<int>(chance() % static_cast<unsigned>(most + 1)); }
  int oneOf(std::initializer_list<int> some) { return *(some.begin() + upTo(static_cast<int>(some.size()) - 1)); }

  void spoil() {
    phonesim::Faults& faults = handset.faults();
    faults = {};
    switch (upTo(7)) {
      case 0:
        faults.garbledLines = 1 + upTo(3);
        break;
      case 1:
        faults.halvedLines = 1 + upTo(3);
        break;
      case 2:
        faults.lateAnswers = 1;
        faults.lateness = Milliseconds(1000 * upTo(150));
        break;
      case 3:
        faults.lostAnswers = 1;
        break;
      case 4:
        faults.failures[Operation::Send] = {1 + upTo(1), oneOf({38, 42, 304, 331, 500, 512})};
        break;
      case 5:
        faults.failures[Operation::List] = {1 + upTo(3), oneOf({300, 314, 500})};
        break;
      case 6:
        port.restart();
        break;
      default:
        break;
    }
  }

  void listSomehow() {
    const Listing listing = modem->list(Memory::Sim);
    if (listing.outcome.done()) {
      EXPECT_EQ(listing.messages, stored());
    }
  }

  void sendSomehow() {
    network.taken.clear();
    Sending sending = message(u"hellohello");
    Outcome outcome;
    try {
      outcome = modem->send(sending);
    } catch (const PhoneGone&) {
      EXPECT_EQ(network.taken.size(), 0u);
      throw;
    }
    const std::size_t taken = network.taken.size();
    if (outcome.done()) {
      EXPECT_EQ(taken, 1u);
    } else if (outcome.kind == Outcome::Kind::Unknown) {
      EXPECT_LE(taken, 1u);
    } else {
      EXPECT_EQ(taken, 0u) << "and said: " << outcome.error.text;
    }
  }

  // Nobody waits for minutes, or goes on with a modem whose every line is damaged.
  void findAgain() {
    handset.faults() = {};
    line.pass(Milliseconds(200000));
    modem.emplace(line, line);
    modem->connect();
  }

  std::mt19937 chance{GetParam()};
};

TEST_P(WithFaults, NothingIsLostDoubledOrMadeUp) {
  modem->connect();
  for (int i = 0; i < 30; ++i) {
    SCOPED_TRACE(testing::Message() << "request " << i);
    spoil();
    try {
      if (upTo(1) == 0)
        listSomehow();
      else
        sendSomehow();
    } catch (const PhoneGone&) {
      findAgain();
    }
  }
  findAgain();
  EXPECT_EQ(modem->list(Memory::Sim).messages, stored());
}

INSTANTIATE_TEST_SUITE_P(ByChance, WithFaults, testing::Range(1u, 41u));

}  // namespace
