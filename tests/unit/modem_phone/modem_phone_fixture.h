// A phone with a modem that keeps to a script, and what whoever uses the phone is told.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "phone/pdu/decode.h"
#include "phone/pdu/hex.h"
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

// "hellohello" from +46701234567, as plain.txt has it in slot 1 of the SIM.
inline const std::string hello = "07916407058099F9040B916407214365F70000102030405060000AE8329BFD4697D9EC37";

inline std::string entryOf(const std::string& head, const std::string& pdu, int status) {
  return "  say " + head + std::to_string(status) + ",," + std::to_string(*phone::tpduLength(*phone::fromHex(pdu))) +
         "\n  say " + pdu + '\n';
}

// What a modem says to AT+CMGL=4 and AT+CMGR.
inline std::string listingOf(const std::string& memory, const std::vector<std::pair<int, std::string>>& messages,
                             int status = 0) {
  std::string script = "on " + memory + ": AT+CMGL=4\n";
  for (const auto& [index, pdu] : messages) script += entryOf("+CMGL: " + std::to_string(index) + ',', pdu, status);
  return script + "  say OK\n";
}

inline std::string readingOf(const std::string& memory, int index, const std::string& pdu, int status = 0) {
  return "on " + memory + ": AT+CMGR=" + std::to_string(index) + '\n' + entryOf("+CMGR: ", pdu, status) + "  say OK\n";
}

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
