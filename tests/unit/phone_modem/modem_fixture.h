// The driver and a modem that keeps to a script, see tests/data/modems.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "phone/modem/modem.h"
#include "support/scripted_modem.h"

namespace phone {

inline void PrintTo(const StoredPdu& message, std::ostream* out) {
  *out << message.index << " (" << static_cast<int>(message.status) << ") " << message.pdu;
}

inline void PrintTo(const Outcome& outcome, std::ostream* out) {
  *out << static_cast<int>(outcome.kind) << " " << outcome.error.text;
}

// The messages of plain.txt.
inline const std::string hello = "07916407058099F9040B916407214365F70000102030405060000AE8329BFD4697D9EC37";
inline const std::string hej = "07916407058099F9040B916407214365F70008102030405061000600480065006A";
// "hellohello" to +46701234567, by way of the SIM's own service centre.
inline const std::string helloOut = "0001000B916407214365F700000AE8329BFD4697D9EC37";

inline const std::vector<StoredPdu> bothMessages{{1, Status::ReceivedRead, hello}, {3, Status::ReceivedUnread, hej}};

class ModemTest : public testing::Test {
 protected:
  using Heard = std::vector<std::string>;
  using Kind = Outcome::Kind;
  using ScriptedModem = testing_support::ScriptedModem;

  // In this order: the modem's clock and line must outlive their user.
  void begin(ScriptedModem script) {
    modem_.reset();
    script_ = std::make_unique<ScriptedModem>(std::move(script));
    modem_ = std::make_unique<Modem>(*script_, *script_);
  }
  void attach(const std::string& name) { begin(ScriptedModem::fromFile(name)); }
  void connect(const std::string& name) {
    attach(name);
    connect();
  }
  // A modem like plain.txt, but for this.
  void connectTo(const std::string& script) {
    begin(ScriptedModem("like plain\n" + script));
    connect();
  }
  void connect() {
    modem_->connect();
    script_->heard.clear();
  }
  std::vector<StoredPdu> listed(Memory memory) {
    const Listing listing = modem_->list(memory);
    EXPECT_EQ(listing.outcome, Outcome());
    return listing.messages;
  }
  Outcome send(std::u16string_view text, std::u16string_view centre = {}) {
    sending_ = {};
    const Outcome prepared = Modem::prepare(centre, u"+46701234567", text, 9, sending_);
    return prepared.done() ? modem_->send(sending_) : prepared;
  }
  void expectWorking() {
    EXPECT_EQ(listed(Memory::Phone), std::vector<StoredPdu>());
    EXPECT_EQ(listed(Memory::Sim), bothMessages);
  }
  static Outcome refused(int cms) {
    return {Kind::Refused, {at::Result::Kind::CmsError, cms, "+CMS ERROR: " + std::to_string(cms)}};
  }

  std::unique_ptr<ScriptedModem> script_;
  std::unique_ptr<Modem> modem_;
  Sending sending_;
};

}  // namespace phone
