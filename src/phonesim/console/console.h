// What can be done to the handset from outside, one command per line: by hand, from a script, or over a control
// connection. Each of these has a console of its own.
//
// An answer is any number of lines that begin with "- ", and then one line "ok", which may tell something, or "error"
// and what is wrong. After `wait` the lines behind it wait too. The commands: `help`.
#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "phonesim/console/words.h"
#include "phonesim/handset/handset.h"

namespace phonesim {

// What the consoles need of the program around them.
class ConsoleHost {
 public:
  virtual void setPlugged(bool plugged) = 0;
  virtual bool isPlugged() const = 0;
  virtual bool hasHost() const = 0;  // a program is connected
  virtual void quit() = 0;
  virtual const std::vector<Submission>& sent() const = 0;
  virtual void clearSent() = 0;

 protected:
  ~ConsoleHost() = default;
};

class Console {
 public:
  Console(Handset& handset, ConsoleHost& host, std::function<void(const std::string&)> answer)
      : handset_(handset), host_(host), answer_(std::move(answer)) {}

  // Any piece of what is typed. Empty lines and those that begin with # are passed over.
  void receive(std::string_view octets);
  // Goes on when a `wait` is over.
  void advance(Time now);
  // When advance() should be called again without anything having happened.
  std::optional<Time> nextWork() const { return waitsUntil_; }
  // Nothing is left to do.
  bool isIdle() const { return lines_.empty() && !isWaiting(); }

  static std::string_view helpText();

 private:
  using Words = std::vector<std::u16string>;
  struct Command;
  static const Command* find(std::u16string_view name);

  bool isWaiting() const { return waitsUntil_ || waitsForSent_ || waitsForHost_; }
  void execute(const std::string& line);
  void tell(const std::string& text) { answer_("- " + text); }

  std::string help(const Words& words);
  std::string status(const Words& words);
  std::string list(const Words& words);
  std::string sent(const Words& words);
  std::string contact(const Words& words);
  std::string contacts(const Words& words);
  std::string deliver(const Words& words);
  std::string deliverPdu(const Words& words);
  std::string store(const Words& words);
  std::string fill(const Words& words);
  std::string take(const Words& words);
  std::string clear(const Words& words);
  std::string capacity(const Words& words);
  std::string centre(const Words& words);
  std::string fail(const Words& words);
  std::string late(const Words& words);
  std::string slow(const Words& words);
  std::string speed(const Words& words);
  std::string lose(const Words& words);
  std::string garble(const Words& words);
  std::string halve(const Words& words);
  std::string silent(const Words& words);
  std::string speak(const Words& words);
  std::string noise(const Words& words);
  std::string restart(const Words& words);
  std::string unplug(const Words& words);
  std::string plug(const Words& words);
  std::string network(const Words& words);
  std::string signal(const Words& words);
  std::string sim(const Words& words);
  std::string wait(const Words& words);
  std::string quit(const Words& words);

  Handset& handset_;
  ConsoleHost& host_;
  std::function<void(const std::string&)> answer_;
  std::string typed_;
  std::deque<std::string> lines_;
  Time now_{0};
  std::optional<Time> waitsUntil_;
  std::optional<std::size_t> waitsForSent_;  // until more than that many messages were sent
  bool waitsForHost_ = false;
  std::uint8_t reference_ = 0;  // of the last long message
};

}  // namespace phonesim
