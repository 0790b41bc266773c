// A modem phone whose two threads are one: each does its part when it is told to.
#pragma once

#include <deque>

#include <gtest/gtest.h>

#include "servers/modem/line_worker.h"
#include "servers/modem/modem_phone.h"
#include "support/native_time.h"
#include "support/scripted_modem.h"

namespace modem_testing {

using testing_support::ScriptedModem;

// Goes on while modems come and go, each of which has a time of its own.
class RigClock final : public phone::Clock {
 public:
  phone::Instant now() const override { return passed_ + (modem_ ? modem_->now() : phone::Instant(0)); }
  void follow(ScriptedModem* modem) {
    passed_ = now() - (modem ? modem->now() : phone::Instant(0));
    modem_ = modem;
  }
  void pass(phone::Milliseconds time) { passed_ += time; }
  phone::Instant toModem(phone::Instant time) const { return time - passed_; }

 private:
  phone::Instant passed_{5000000};
  ScriptedModem* modem_ = nullptr;
};

class RigLine final : public phone::Line {
 public:
  RigLine(ScriptedModem& modem, const RigClock& clock) : modem_(modem), clock_(clock) {}
  void write(std::string_view octets, phone::Instant deadline) override {
    modem_.write(octets, clock_.toModem(deadline));
  }
  std::string read(phone::Instant deadline) override { return modem_.read(clock_.toModem(deadline)); }
  void wake() noexcept override { modem_.wake(); }
  void end() noexcept override { modem_.end(); }

 private:
  ScriptedModem& modem_;
  const RigClock& clock_;
};

// What would be a file.
struct Notebook {
  std::string text;
  std::int64_t day = 11000;
  int saves = 0;
  bool isFull = false;
};

class NotebookNotes final : public servers::modem::SendNotes {
 public:
  explicit NotebookNotes(Notebook& notebook) : notebook_(notebook) {}
  std::string load() override { return notebook_.text; }
  bool save(const std::string& text) noexcept override {
    if (notebook_.isFull) return false;
    notebook_.text = text;
    ++notebook_.saves;
    return true;
  }
  std::int64_t today() const override { return notebook_.day; }

 private:
  Notebook& notebook_;
};

class Rig : public servers::modem::Mailbox {
 public:
  void plug(const std::string& script) {
    auto next = std::make_unique<ScriptedModem>(script);
    clock.follow(next.get());
    modem = std::move(next);
  }
  void unplug() { modem->end(); }

  std::unique_ptr<phone::Line> open() {
    if (!modem) throw phone::LineLost("nothing is plugged in");
    return std::make_unique<RigLine>(*modem, clock);
  }

  // Everything that can be done without waiting for the modem to say something.
  void work() {
    do {
      while (!letters.empty() && worker->step()) {
      }
      answerAll();
    } while (!letters.empty());
  }
  // One step of the line's thread, then the phone's thread.
  bool step() {
    const bool there = worker->step();
    answerAll();
    return there;
  }

  // The record as a server that begins finds it.
  void beginRecord() {
    record = std::make_shared<servers::modem::SendRecord>(time, clock, std::make_unique<NotebookNotes>(notebook));
  }

  // Mailbox.
  std::optional<Letter> take() override {
    if (letters.empty()) return std::nullopt;
    Letter letter = std::move(letters.front());
    letters.pop_front();
    return letter;
  }
  void give(servers::modem::Wire::Answer answer) override { answers.push_back(std::move(answer)); }
  void lineIs(phone::Line* line) noexcept override { hasLine = line != nullptr; }

  testing_support::Journal journal;
  testing_support::NativeTime time{journal};
  RigClock clock;
  Notebook notebook;
  std::shared_ptr<servers::modem::SendRecord> record;
  bool isHeard = true;
  std::unique_ptr<ScriptedModem> modem;
  std::unique_ptr<servers::modem::LineWorker> worker;
  bool isTraced = false;  // to be said before there is a phone
  std::vector<std::string> traced;
  phone::at::Trace trace{[this](std::string_view line) { traced.emplace_back(line); }};
  std::deque<Letter> letters;
  std::deque<servers::modem::Wire::Answer> answers;
  bool hasLine = false;

 private:
  void answerAll() {
    while (!answers.empty()) {
      const auto answer = std::move(answers.front());
      answers.pop_front();
      answer();
    }
  }
};

class RigWire final : public servers::modem::Wire {
 public:
  explicit RigWire(Rig& rig) : rig_(rig) {}
  ~RigWire() override {
    rig_.worker.reset();
    rig_.letters.clear();
    rig_.answers.clear();
  }
  void open(servers::modem::WireEvents events) override {
    rig_.worker =
        std::make_unique<servers::modem::LineWorker>([rig = &rig_] { return rig->open(); }, rig_.clock, rig_,
                                                     std::move(events), rig_.isTraced ? &rig_.trace : nullptr);
  }
  void ask(std::uint32_t life, Deed deed) override { rig_.letters.push_back({life, std::move(deed)}); }

 private:
  Rig& rig_;
};

}  // namespace modem_testing
