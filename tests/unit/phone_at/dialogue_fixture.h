// A dialogue with a modem that keeps to a script, its trace, and what it says unasked.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "phone/at/dialogue.h"
#include "support/scripted_modem.h"

namespace phone::at {

class AtDialogue : public testing::Test {
 protected:
  using Heard = std::vector<std::string>;
  using Infos = std::vector<Information>;
  using Kind = Result::Kind;
  using ScriptedModem = testing_support::ScriptedModem;

  void modem(const std::string& script) {
    modem_ = std::make_unique<ScriptedModem>(script);
    dialogue_ = std::make_unique<Dialogue>(
        *modem_, *modem_, [this](const Unsolicited& unsolicited) { unsolicited_.push_back(unsolicited); }, &trace_);
  }
  Answer run(const Command& command) { return dialogue_->run(command); }
  Milliseconds timeOf(const std::function<void()>& work) const {
    const Instant begin = modem_->now();
    work();
    return modem_->now() - begin;
  }
  static Command listing() { return {"AT+CMGL=4", "+CMGL", true, false, Milliseconds(20000)}; }
  static Command sending() { return {"AT+CMGS=3", "+CMGS", false, false, Milliseconds(120000)}; }

  std::unique_ptr<ScriptedModem> modem_;
  std::unique_ptr<Dialogue> dialogue_;
  std::vector<Unsolicited> unsolicited_;
  std::vector<std::string> traced_;
  Trace trace_{[this](std::string_view line) { traced_.emplace_back(line); }};
};

}  // namespace phone::at
