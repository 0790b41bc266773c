// A phone with a modem that keeps to a script, and what whoever uses the phone is told.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/text.h"
#include "unit/modem_phone/rig.h"

namespace modem_testing {

using namespace handset;
using platform::Counted;
using platform::Ref;
using platform::String;
using platform::StringView;
using servers::modem::ModemPhone;
using testing_support::utf8;
using Lines = std::vector<std::string>;

class ModemPhoneTest : public testing::Test {
 protected:
  ~ModemPhoneTest() override {
    watching = nullptr;
    phone = nullptr;
    rig.record = nullptr;
    EXPECT_EQ(Counted::census, census);
    EXPECT_EQ(rig.time.pendingWork(), 0u);
  }

  Ref<ModemPhone> newPhone() {
    if (!rig.record) rig.beginRecord();
    return platform::make<ModemPhone>(
        rig.time, rig.clock, rig.record, [this] { return rig.isHeard; }, std::make_unique<RigWire>(rig),
        std::uint8_t{7});
  }
  // A phone with such a modem, found and with nothing to do.
  void begin(const std::string& script) {
    rig.plug(script);
    if (!phone) {
      phone = newPhone();
      watching = phone->watch([this](bool connected) { told.push_back(connected); });
    }
    ASSERT_TRUE(rig.step());
    rig.modem->heard.clear();
  }

  Lines listed(Store store, std::int32_t filter = allStatuses) {
    Lines lines;
    const auto request = phone->list(
        store, filter,
        [&](const StoredMessage& m) {
          lines.push_back(std::to_string(m.index) + " " + std::to_string(static_cast<int>(m.status)) + " " +
                          utf8(m.number) + " " + utf8(m.timeStamp) + " " + utf8(m.text));
        },
        [&](std::int32_t result) { lines.push_back("end " + hex(result)); });
    rig.time.runDue();
    return lines;
  }
  std::string removed(Store store, std::int16_t index) {
    std::string result;
    const auto request = phone->remove(store, index, [&](std::int32_t code) { result = hex(code); });
    rig.time.runDue();
    rig.work();
    return result;
  }
  // The server is killed, and another one begins.
  void restart() {
    watching = nullptr;
    phone = nullptr;
    rig.beginRecord();
    told.clear();
  }
  // What is answered, once everything is done that is under way; empty when nothing was.
  struct Sent {
    std::string result;
    Phone::Request request;
  };
  std::shared_ptr<Sent> hand(StringView text, StringView number = u"+46701234567") {
    auto sent = std::make_shared<Sent>();
    sent->request = phone->send({u"", String(number), String(text)},
                                [raw = sent.get()](std::int32_t code) { raw->result = hex(code); });
    return sent;
  }
  std::string sent(StringView text) {
    const auto handed = hand(text);
    rig.time.runDue();
    rig.work();
    return handed->result;
  }
  static std::string hex(std::int32_t code) {
    char text[9];
    std::snprintf(text, sizeof text, "%X", static_cast<unsigned>(code));
    return text;
  }
  Lines heardOf(const char* beginning) const { return rig.modem->heardOf(beginning); }

  const std::int32_t census = Counted::census;
  Rig rig;
  std::vector<bool> told;
  Ref<ModemPhone> phone;
  Ref<Counted> watching;
};

}  // namespace modem_testing
