// A modem that behaves as a text file says, at the other end of a line, on a clock that moves only while somebody
// reads.
//
//   # a comment
//   like plain               first all that plain.txt says; what follows here comes before it
//   echo on                  until ATE0 (as if this were not said); or "off", or "always", whatever ATE0 is answered
//   lines <LF>               what is behind each line, with nothing in front; otherwise <CR><LF> in front and behind
//   pieces 3                 octets arrive in such pieces, a millisecond apart
//   escape ignored           ESC is part of a message, not its end
//   at 3000                  three seconds after the beginning, the modem does the following
//   on AT+CMGL=*             when it gets that command (* at the end is for anything): the same
//     say +CPIN: READY       a line
//     raw <CR><LF>           octets
//     pause 400              milliseconds
//     prompt ><SP>           these octets, then a message is expected, to its SUB
//     lose                   the line breaks
//     begin                  the modem begins anew: it echoes again, and whatever it had to say is forgotten
//   on SM: AT+CMGL=*         only while that memory is the one chosen by AT+CPMS="SM"...; comes before the others
//   on message *             when it has a message: the same
//   on escape                when ESC ended it
//
// Several "on" for the same command are taken in turn; the last stays. "AT" is answered OK, and everything that is not
// named ERROR. A modem does one thing after the other: an answer waits until the one before is out.
#pragma once

#include <deque>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "phone/line/line.h"

namespace testing_support {

class ScriptedModem final : public phone::Line, public phone::Clock {
 public:
  // From tests/data/modems/NAME.txt. Mistakes in it throw.
  static ScriptedModem fromFile(const std::string& name);
  explicit ScriptedModem(const std::string& script);

  void write(std::string_view octets, phone::Instant deadline) override;
  std::string read(phone::Instant deadline) override;
  void wake() noexcept override { woken_ = true; }
  void end() noexcept override { lost_ = true; }
  phone::Instant now() const override { return now_; }

  // What the modem has heard: commands without their CR, "message HEX", "escape".
  std::vector<std::string> heard;
  // Only what begins so.
  std::vector<std::string> heardOf(std::string_view beginning) const;

  void say(std::string_view line) { put(framed(line), now_); }

 private:
  struct Step {
    std::string verb;
    std::string argument;
  };
  using Steps = std::vector<Step>;
  struct Output {
    phone::Instant due;
    std::string octets;
    bool lose = false;
  };

  void load(const std::string& script);
  void option(const std::string& verb, const std::string& argument);
  void hear(char c);
  void command(const std::string& text);
  void act(const Steps& steps, phone::Instant when);
  std::optional<Steps> stepsFor(const std::string& event);
  std::string framed(std::string_view line) const;
  void put(std::string_view octets, phone::Instant when);

  using Events = std::map<std::string, std::deque<Steps>>;
  static std::deque<Steps>* bestMatch(Events& events, const std::string& event);

  std::vector<Events> layers_;  // what a file is like comes behind what it says itself
  std::vector<std::pair<phone::Instant, Steps>> timed_;
  bool echoes_ = true;
  bool echoSwitches_ = true;
  bool escapes_ = true;
  std::string lineEnd_;
  std::size_t piece_ = 0;

  phone::Instant now_{1000000};
  phone::Instant busyUntil_{0};
  phone::Instant begin_ = now_;
  std::deque<Output> outputs_;
  std::string input_;
  std::string memory_;
  bool takesMessage_ = false;
  bool woken_ = false;
  bool lost_ = false;
};

}  // namespace testing_support
