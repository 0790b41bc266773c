// A handset with one port, a network that writes down what it is given, and a clock moved by hand.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "phone/pdu/hex.h"
#include "phonesim/handset/port.h"

namespace phonesim {

// To +46708251358, "hellohello", with and without a validity period of four days; 23 and 22 octets.
inline constexpr char submitPdu[] = "0011000B916407281553F80000AA0AE8329BFD4697D9EC37";
inline constexpr char shortSubmitPdu[] = "0001000B916407281553F800000AE8329BFD4697D9EC37";
// The same text from +46700000001 at 2026-02-03 04:05:06, one hour east, by way of +46700000000; 28 octets.
inline constexpr char deliverPdu[] = "07916407000000F0040B916407000000F10000622030405060400AE8329BFD4697D9EC37";
// The same with data coding 12 (class 2) and 13 (class 3).
inline constexpr char deliverClass2[] = "07916407000000F0040B916407000000F10012622030405060400AE8329BFD4697D9EC37";
inline constexpr char deliverClass3[] = "07916407000000F0040B916407000000F10013622030405060400AE8329BFD4697D9EC37";

inline phone::Address number(std::u16string_view typed) { return phone::parseNumber(typed).value(); }
inline Octets octets(std::string_view hex) { return phone::fromHex(hex).value(); }

class RecordingNetwork : public Network {
 public:
  phone::TimeStamp time() override { return {2026, 2, 3, 4, 5, 6, 4}; }
  void take(const Submission& message) override { taken.push_back(message); }
  void stored(Slot slot) override {
    said.push_back(std::string(nameOf(slot.place)) + ' ' + std::to_string(slot.number));
  }
  void directly(const Octets&) override { said.push_back("direct"); }

  std::vector<Submission> taken;
  std::vector<std::string> said;
};

class HandsetTest : public testing::Test {
 protected:
  static State initialState() {
    State state;
    state.centre = "+46700000000";
    state.memories = {5, 3};
    return state;
  }

  // What the port says by now.
  std::string heard() { return port.take(now); }
  std::string type(std::string_view octets_) {
    port.receive(octets_, now);
    return heard();
  }
  // A command's answer without the echo, each line in the frame of ATV1 cut to "line|".
  std::string ask(const std::string& command) { return lines(type(command + '\r')); }
  // Answers the prompt.
  std::string answerPrompt(const std::string& data) { return lines(type(data + '\x1A')); }
  static std::string lines(std::string text) {
    std::string result;
    while (text.starts_with("\r\n")) {
      text.erase(0, 2);
      const auto end = text.find("\r\n\r\n");
      const auto last = text.ends_with("\r\n") ? text.size() - 2 : text.size();
      result += text.substr(0, std::min(end, last)) + '|';
      text.erase(0, std::min(end, last) + 2);
    }
    return result + text;
  }
  void quiet() { EXPECT_EQ(ask("ATE0"), "ATE0\r\r\nOK\r\n"); }
  void put(Place place, int slot, Status status, std::string_view hex) {
    handset.memories().at(place).slots[slot] = {status, octets(hex)};
  }

  RecordingNetwork network;
  Handset handset{Identity{}, initialState(), network};
  Port port{handset};
  Time now{1000};
};

// Echo off, errors as numbers.
class DialogueTest : public HandsetTest {
 protected:
  void SetUp() override {
    quiet();
    EXPECT_EQ(ask("AT+CMEE=1"), "OK|");
  }
};

}  // namespace phonesim
