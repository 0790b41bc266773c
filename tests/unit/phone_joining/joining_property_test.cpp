// Whatever happens: splitting and joining gives the text back, and no part is lost or shown twice.

#include <algorithm>
#include <deque>
#include <random>
#include <set>

#include "phone/joining/joining.h"
#include "unit/phone_joining/joining_fixture.h"

namespace phone {
namespace {

class JoiningPropertyTest : public JoiningTest {
 protected:
  std::size_t below(std::size_t limit) { return random() % limit; }

  std::mt19937 random;
};

TEST_F(JoiningPropertyTest, SplitTexts_AreJoinedInAnyOrder) {
  constexpr std::u16string_view narrow = u"abc @£€[]{}~^|\\\r\nØå";
  constexpr char16_t wide[] = {u'a', u'Ж', u'中', u'€', 0xD83D, 0xDE00};
  random.seed(314159);
  for (int round = 0; round < 60; ++round) {
    phone.clear();
    joining = Joining();
    Texts expected;
    std::vector<std::string> pdus;
    for (std::uint8_t message = 0; message < 6; ++message) {
      const std::u16string_view letters = below(2) ? narrow : std::u16string_view(wide, std::size(wide));
      std::u16string text;
      for (std::size_t left = below(1200); left > 0; --left) text += letters[below(letters.size())];
      const Deliver like{.originator = parseNumber(below(2) ? u"+4670" : u"0701").value(),
                         .timeStamp = stampAt(std::chrono::seconds(message))};
      for (const EncodedPdu& pdu : encodeDeliver(like, text, message)) {
        pdus.push_back(toHex(pdu.octets));
        if (below(5) == 0) pdus.push_back(pdus.back());
      }
      expected.push_back(text);
    }
    std::ranges::shuffle(pdus, random);
    for (std::size_t at = 0; at < pdus.size(); ++at)
      put({below(2) ? Memory::Phone : Memory::Sim, static_cast<int>(at)}, pdus[at]);
    list();
    Texts joined = texts();
    std::ranges::sort(expected);
    std::ranges::sort(joined);
    ASSERT_EQ(joined, expected) << "round " << round;
  }
}

// A network that delays, reorders, repeats and loses parts and uses few references; somebody who lists, takes messages
// and deletes them, sometimes without luck. Each part's text is its name, so that it can be found in what was shown.
class LongRunTest : public JoiningPropertyTest {
 protected:
  struct Arrival {
    std::chrono::seconds at;
    std::u16string name;
    std::string pdu;
  };

  void plan() {
    arrivals.clear();
    for (int message = 0; message < 12; ++message) {
      const int total = 1 + static_cast<int>(below(3));
      const auto reference = static_cast<std::uint16_t>(below(2));
      const auto start = std::chrono::seconds(below(4 * 3600));
      bool repeated = false;
      for (int part = 1; part <= total; ++part) {
        if (total > 1 && below(8) == 0) continue;  // lost
        const auto sent = start + std::chrono::seconds(below(20));
        const auto at = sent + std::chrono::seconds(below(5) == 0 ? below(3600) : below(60));
        const std::u16string name = nameOf(message, part);
        const std::string pdu =
            pduOf({.text = name, .part = part, .total = total, .reference = reference, .sent = sent});
        arrivals.push_back({at, name, pdu});
        // A short message that comes again after it was deleted is a new one.
        if (total == 1 || repeated || below(6) != 0) continue;
        repeated = true;
        arrivals.push_back({at + std::chrono::seconds(below(500)), name, pdu});
      }
    }
    std::ranges::stable_sort(arrivals, {}, &Arrival::at);
  }

  static std::u16string nameOf(int message, int part) {
    return {u'<', static_cast<char16_t>(u'A' + message), static_cast<char16_t>(u'0' + part), u'>'};
  }

  void arrive() {
    for (; !arrivals.empty() && begin + arrivals.front().at <= now; arrivals.pop_front()) {
      Slot slot{.memory = below(2) ? Memory::Phone : Memory::Sim, .index = 0};
      while (phone.contains(slot)) ++slot.index;
      put(slot, arrivals.front().pdu);
      nameOfPdu[arrivals.front().pdu] = arrivals.front().name;
      arrived.insert(arrivals.front().name);
    }
  }

  void take(const JoinedMessage& message) {
    joining.handedOver(message);
    for (const std::u16string& name : arrived)
      if (message.text.find(name) != message.text.npos) {
        ASSERT_TRUE(shown.insert(name).second) << "shown twice in round " << round;
      }
  }

  void removeWithLuck(Slot slot) {
    for (const Slot part : joining.slotsToDelete(slot)) {
      if (below(6) == 0) break;
      ASSERT_TRUE(phone.contains(part));
      ASSERT_TRUE(shown.contains(nameOfPdu.at(phone.at(part).second))) << "deleted unseen in round " << round;
      phone.erase(part);
      joining.deleted(part);
    }
  }

  void step() {
    now += std::chrono::seconds(below(300));
    arrive();
    if (below(4) != 0) list(Memory::Phone);
    if (below(4) != 0) list(Memory::Sim);
    for (const JoinedMessage& message : joining.messages(now)) {
      if (!message.handedOver && below(3) != 0) take(message);
      if (below(4) == 0) removeStored(message.handle);
    }
    for (const Slot slot : joining.leftovers(now))
      if (below(2) != 0) removeStored(slot);
  }

  // Short ones can be deleted unseen; this somebody does not.
  void removeStored(Slot slot) {
    list();
    const auto messages = joining.messages(now);
    const auto found = std::ranges::find_if(messages, [&](const JoinedMessage& message) {
      return std::ranges::find(message.slots, slot) != message.slots.end();
    });
    if (found == messages.end() || found->handedOver) removeWithLuck(slot);
  }

  int round = 0;
  Joining::Instant begin;
  std::deque<Arrival> arrivals;
  std::map<std::string, std::u16string> nameOfPdu;
  std::set<std::u16string> arrived;
  std::set<std::u16string> shown;
};

TEST_F(LongRunTest, EveryPartThatArrived_IsShownExactlyOnce) {
  std::size_t parts = 0;
  for (round = 0; round < 100; ++round) {
    random.seed(static_cast<unsigned>(round));
    phone.clear();
    joining = Joining();
    nameOfPdu.clear();
    arrived.clear();
    shown.clear();
    begin = now;
    plan();
    while (!arrivals.empty() && !HasFailure()) step();
    // Whatever is left gets its time.
    for (int rest = 0; rest < 20; ++rest) step();
    list();
    now += 1h;
    for (const JoinedMessage& message : joining.messages(now))
      if (!message.handedOver) take(message);
    ASSERT_FALSE(HasFailure());
    ASSERT_EQ(shown, arrived) << "round " << round;
    parts += shown.size();
  }
  EXPECT_GT(parts, 1500U);
}

}  // namespace
}  // namespace phone
