// The dialogue with a modem over its line: one command at a time, each answered within a limit (ITU-T V.250, 5;
// 3GPP TS 27.005, 3). Whatever a modem does wrong, after a call the dialogue is in step again (the next final result
// will belong to the next command), or PhoneGone says that there is no modem any more. For that the modem is asked "AT"
// until it answers:
//
//   after a command that nobody answered     its answer may still come, and must not be taken for the next one's
//   after an error, and a final result that nobody waits for    some modems add an "OK" to an error
//   after a prompt that never came, or a message without an answer    first ESC, or the command would become part of
//                                                                      the message
//
// Everything happens on the thread that calls, which is the line's.
#pragma once

#include <optional>
#include <utility>
#include <vector>

#include "phone/at/line_reader.h"
#include "phone/at/result.h"
#include "phone/at/trace.h"
#include "phone/line/line.h"

namespace phone::at {

// The modem does not answer any more, though its line is there.
class NotAnswering final : public PhoneGone {
 public:
  using PhoneGone::PhoneGone;
};

struct Command {
  std::string text;          // "AT+CMGL=4"
  std::string prefix;        // of its information lines, "+CMGL"; empty: none are expected
  bool hasData = false;      // a line of hexadecimal digits follows each of them
  bool bare = false;         // information lines without the prefix count too (identification)
  Milliseconds limit{5000};  // without an answer or, in a listing, without the next part of it
};

struct Information {
  std::string text;  // what followed the prefix
  std::optional<std::string> data;
  friend bool operator==(const Information&, const Information&) = default;
};

struct Answer {
  std::optional<Result> result;  // none: the modem did not say, within the limit, how it ended
  std::vector<Information> information;
  // Lines that came meanwhile and that nobody says: rests of lines that were damaged on their way. Of a message whose
  // header is missing there is no doubt; other lines may be something that a maker thought of.
  int messagesWithoutHeader = 0;
  int strangeLines = 0;

  bool damaged() const noexcept { return messagesWithoutHeader + strangeLines > 0; }
  bool ok() const noexcept { return result && result->ok(); }
};

struct DataAnswer : Answer {
  bool dataSent = false;  // the modem has had the whole message
};

// A line that no command had asked for. `data` is the message that came with it (+CMT, +CDS, +CBM).
struct Unsolicited {
  std::string line;
  std::string data;
  friend bool operator==(const Unsolicited&, const Unsolicited&) = default;
};

class Dialogue {
 public:
  using Listener = std::function<void(const Unsolicited&)>;

  // `trace` may be null. `listener` is called from within the calls below; it must not call back. It hears of every
  // line that is nothing else, noise included.
  Dialogue(Line& line, const Clock& clock, Listener listener, Trace* trace = nullptr);

  Answer run(const Command& command);

  // A command with a prompt and `data` behind it. An answer without a result is one of two things: no prompt came and
  // nothing was sent, or (dataSent) what became of the message is unknown; then the line may be gone too, which the
  // next call tells.
  DataAnswer runWithData(const Command& command, std::string_view data);

  // Waits until the modem says something that nobody asked for, `deadline` has passed, or the line was woken.
  void listen(Instant deadline);

  // The first contact: `attempts` times "AT", from the second on behind an ESC, in case somebody left the modem waiting
  // for a message.
  void greet(int attempts);

  // True after a line that says that the modem began anew: it has forgotten what was set. Asking forgets it.
  bool takeReset() noexcept { return std::exchange(reset_, false); }
  bool heardReset() const noexcept { return reset_; }

  // Before a message, for modems that lose what follows the prompt too soon.
  void pauseBeforeData(Milliseconds pause) noexcept { pause_ = pause; }
  Milliseconds pauseBeforeData() const noexcept { return pause_; }

 private:
  struct Running {
    const Command& command;
    Answer& answer;
    std::string_view data{};  // sent already: may be echoed
    bool awaitsPrompt = false;
    bool prompted = false;
    bool awaitsData = false;
    bool reset = false;
    Instant deadline{};
  };
  enum class Stuck : std::uint8_t { No, BeforeData, AfterData };

  void requireThere() const;
  Instant in(Milliseconds time) const { return clock_.now() + time; }
  void note(std::string_view text) const;
  void sendLine(const std::string& text);
  void sendRaw(std::string_view octets);

  bool readUntil(Instant deadline);
  void drain(Milliseconds quiet);
  void waitFor(Running& running);
  void sortAll(Running* running);
  void sort(const std::string& line, Running* running);
  bool sortAnswer(const std::string& line, Running& running);
  bool sortInformation(const std::string& line, Running& running);
  void sortUnsolicited(const std::string& line, Running* running);
  void deliver(Unsolicited unsolicited);

  void settle();
  void beginCommand(Running& running);
  void finish(Running& running, Stuck stuck);
  bool attention(Milliseconds quiet);
  void recover(Stuck stuck);
  [[noreturn]] void giveUp();

  Line& line_;
  const Clock& clock_;
  Listener listener_;
  Trace* trace_;
  LineReader reader_;
  std::optional<Unsolicited> incomplete_;  // its message is the next line
  const Running* late_ = nullptr;          // given up, but its information may still come
  bool stray_ = false;                     // a final result came that nobody waited for, or may come
  bool reset_ = false;
  bool gone_ = false;
  Milliseconds pause_{0};
};

}  // namespace phone::at
