// The modem's driver and the simulated handset, which were written from the same standards, with each other: what one
// says the other understands, also on a bad day.
#include "phone/joining/joining.h"
#include "phone/modem/modem.h"
#include "unit/phonesim/fixture.h"

namespace phonesim {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

class HandClock final : public phone::Clock {
 public:
  phone::Instant now() const override { return time; }
  phone::Instant time{1000};
};

// A port as the other end of a line. Waiting moves the clock.
class PortLine final : public phone::Line {
 public:
  PortLine(Port& port, HandClock& clock) : port_(port), clock_(clock) {}

  void write(std::string_view octets, phone::Instant) override { port_.receive(octets, clock_.time); }
  std::string read(phone::Instant deadline) override {
    while (true) {
      std::string said = port_.take(clock_.time);
      if (!said.empty() || clock_.time >= deadline) return said;
      clock_.time = std::min(port_.nextOutput().value_or(deadline), deadline);
    }
  }
  void wake() noexcept override {}
  void end() noexcept override {}

 private:
  Port& port_;
  HandClock& clock_;
};

class ModemOnHandset : public testing::Test {
 protected:
  static State initialState() {
    State state;
    state.centre = "+46700000000";
    state.memories = {20, 10};
    return state;
  }

  void SetUp() override { modem.connect(); }

  phone::Outcome send(std::u16string_view text, std::u16string_view number = u"+46701234567") {
    phone::Sending sending;
    const phone::Outcome prepared = phone::Modem::prepare(u"", number, text, 7, sending);
    return prepared.done() ? modem.send(sending) : prepared;
  }
  // What was sent arrives.
  void returnSent() {
    for (const Submission& message : std::exchange(network.taken, {})) handset.deliver(message.deliver);
  }
  std::vector<std::u16string> listedTexts() {
    phone::Joining joining;
    for (const phone::Memory memory : {phone::Memory::Phone, phone::Memory::Sim}) {
      const phone::Listing listing = modem.list(memory);
      EXPECT_TRUE(listing.outcome.done());
      joining.update(memory, listing.messages, {});
    }
    std::vector<std::u16string> texts;
    for (const phone::JoinedMessage& message : joining.messages({})) texts.push_back(message.text);
    return texts;
  }

  RecordingNetwork network;
  Handset handset{Identity{}, initialState(), network};
  Port port{handset};
  HandClock clock;
  PortLine line{port, clock};
  phone::Modem modem{line, clock};
};

TEST_F(ModemOnHandset, Connect_FindsNameMemoriesAndNetwork) {
  EXPECT_EQ(modem.name(), "Marrick Simulated handset");
  EXPECT_EQ(modem.simState(), phone::SimState::Ready);
  EXPECT_EQ(modem.memory(phone::Memory::Phone).name, "ME");
  EXPECT_EQ(modem.memory(phone::Memory::Phone).capacity, 20);
  EXPECT_EQ(modem.memory(phone::Memory::Sim).name, "SM");
  EXPECT_EQ(modem.memory(phone::Memory::Sim).capacity, 10);
  EXPECT_TRUE(modem.announces());
  EXPECT_EQ(modem.serviceCentre(), "+46700000000");
  EXPECT_EQ(modem.registration(), phone::Registration::Home);
  EXPECT_EQ(modem.signal(), 23);
}

TEST_F(ModemOnHandset, Arrival_IsAnnouncedWithItsSlot) {
  handset.deliver(octets(deliverPdu));
  modem.listen(clock.time + Time{10});
  EXPECT_THAT(modem.takeNotices(),
              ElementsAre(phone::Notice{phone::Notice::Kind::Stored, phone::Slot{phone::Memory::Sim, 1}}));
}

TEST_F(ModemOnHandset, LongTextsAndEmoji_GoOutAndComeBackWhole) {
  std::u16string longText;
  for (int i = 0; i < 459; ++i) longText += static_cast<char16_t>(u'a' + i % 26);
  std::u16string emoji;
  for (int i = 0; i < 50; ++i) emoji += u"x😀";
  EXPECT_TRUE(send(longText).done());
  EXPECT_THAT(network.taken, SizeIs(3));
  EXPECT_TRUE(send(emoji, u"+46709999999").done());
  EXPECT_THAT(network.taken, SizeIs(6));
  returnSent();
  EXPECT_THAT(listedTexts(), testing::UnorderedElementsAre(longText, emoji));
}

TEST_F(ModemOnHandset, Remove_TakesOnlyWhatIsExpected) {
  handset.deliver(octets(deliverPdu));
  const phone::Slot slot{phone::Memory::Sim, 1};
  EXPECT_EQ(modem.remove(slot, submitPdu).kind, phone::Outcome::Kind::Empty);
  EXPECT_EQ(handset.memories().used(View::Sim), 1);
  EXPECT_TRUE(modem.remove(slot, deliverPdu).done());
  EXPECT_EQ(handset.memories().used(View::Sim), 0);
  EXPECT_EQ(modem.remove(slot, deliverPdu).kind, phone::Outcome::Kind::Empty);
}

TEST_F(ModemOnHandset, RefusedSend_TellsTheNumber) {
  handset.faults().failures[Operation::Send] = {1, 50};
  const phone::Outcome outcome = send(u"Hello");
  EXPECT_EQ(outcome.kind, phone::Outcome::Kind::Refused);
  EXPECT_EQ(phone::resultCode(outcome), static_cast<std::int32_t>(0x88881000 + 50));
  EXPECT_TRUE(send(u"Hello").done());
  EXPECT_THAT(network.taken, SizeIs(1));
}

TEST_F(ModemOnHandset, LostAnswer_IsUnknownAndNotSentAgain) {
  handset.faults().lostAnswers = 1;
  EXPECT_EQ(send(u"Hello").kind, phone::Outcome::Kind::Unknown);
  EXPECT_THAT(network.taken, SizeIs(1));
  EXPECT_TRUE(send(u"Next").done());
  EXPECT_THAT(network.taken, SizeIs(2));
}

TEST_F(ModemOnHandset, SlowSend_IsWaitedFor) {
  handset.faults().sendTime = Time{20000};
  EXPECT_TRUE(send(u"Hello").done());
}

TEST_F(ModemOnHandset, DamagedLinesOfAListing_AreReadAgain) {
  for (int i = 0; i < 5; ++i) handset.deliver(octets(deliverPdu));
  handset.faults().garbledLines = 3;
  const phone::Listing listing = modem.list(phone::Memory::Sim);
  EXPECT_TRUE(listing.outcome.done());
  EXPECT_THAT(listing.messages, SizeIs(5));
  for (const phone::StoredPdu& message : listing.messages) EXPECT_EQ(message.pdu, deliverPdu);
}

TEST_F(ModemOnHandset, NoiseInAListing_ChangesNothing) {
  for (int i = 0; i < 3; ++i) handset.deliver(octets(deliverPdu));
  handset.faults().listingTime = Time{100};
  port.interject("^RSSI:12");
  port.interject("+CREG: 1");
  const phone::Listing listing = modem.list(phone::Memory::Sim);
  EXPECT_TRUE(listing.outcome.done());
  EXPECT_THAT(listing.messages, SizeIs(3));
}

TEST_F(ModemOnHandset, Restart_IsNoticedAndTheModemSetUpAgain) {
  handset.deliver(octets(deliverPdu));
  port.restart();
  modem.listen(clock.time + Time{10});
  modem.check();
  EXPECT_THAT(modem.list(phone::Memory::Sim).messages, SizeIs(1));
  EXPECT_EQ(port.settings.routing.messages, 1);
}

TEST_F(ModemOnHandset, SilentPhone_IsGone) {
  handset.faults().silent = true;
  EXPECT_THROW(modem.check(), phone::PhoneGone);
  handset.faults().silent = false;
  phone::Modem again(line, clock);
  again.connect();
  EXPECT_EQ(again.signal(), 23);
}

TEST_F(ModemOnHandset, MissingSimMemory_IsTolerated) {
  handset.memories().at(Place::Sim).capacity = 0;
  phone::Modem other(line, clock);
  other.connect();
  EXPECT_FALSE(other.isSupported(phone::Memory::Sim));
  EXPECT_TRUE(other.isSupported(phone::Memory::Phone));
}

}  // namespace
}  // namespace phonesim
