#include "phone/at/dialogue.h"

#include <array>

#include "phone/at/characters.h"

namespace phone::at {

namespace {

constexpr std::string_view escape = "\x1B";
constexpr char submit = '\x1A';

constexpr Milliseconds writeLimit{10000};
constexpr Milliseconds attentionLimit{3000};
constexpr int attentionAttempts = 3;
constexpr Milliseconds promptLimit{10000};
constexpr Milliseconds resultLimit{5000};
constexpr Milliseconds lateQuiet{300};   // after a command without an answer
constexpr Milliseconds strayQuiet{100};  // after an error: the stray "OK" comes at once if it comes
constexpr Milliseconds longestDrain{2000};
constexpr Milliseconds afterReset{3000};
constexpr std::size_t mostInformation = 10000;

// 3GPP TS 27.005, 3.4.1: the message follows on a line of its own.
bool bringsData(std::string_view line) { return after("+CMT", line) || after("+CDS", line) || after("+CBM", line); }

// Said after switching on. The first two are never said otherwise; the others may be said once more while the modem
// finds its network, which costs no more than setting everything again.
bool saysReset(std::string_view line) { return sameWord(line, "RDY") || after("+CFUN", line) == "1"; }
// What modems say of themselves has a name and a colon; the rest is known.
bool isStrange(std::string_view line) {
  static constexpr std::array<std::string_view, 8> words{"RING",        "NO CARRIER", "NO ANSWER",  "BUSY",
                                                         "NO DIALTONE", "RDY",        "Call Ready", "SMS Ready"};
  if (line.size() > 1 && (line.front() == '+' || line.front() == '^' || line.front() == '*')) {
    std::size_t end = 1;
    while (end < line.size() && (isLetter(line[end]) || isDigit(line[end]) || line[end] == '_')) ++end;
    const std::string_view rest = trimmed(line.substr(end));
    return end == 1 || ((rest.empty() || rest.front() != ':') && !sameWord(line, "+SMS FULL"));
  }
  return std::none_of(words.begin(), words.end(), [line](std::string_view word) { return sameWord(line, word); });
}

bool saysReady(std::string_view line) { return sameWord(line, "Call Ready") || sameWord(line, "SMS Ready"); }

// "V0" results, which a modem gives until it is told ATV1.
std::optional<Result> parseNumericResult(std::string_view line) {
  if (line == "0") return Result{Result::Kind::Ok, 0, "0"};
  if (line == "4") return Result{Result::Kind::Error, 0, "4"};
  return std::nullopt;
}

}  // namespace

Dialogue::Dialogue(Line& line, const Clock& clock, Listener listener, Trace* trace)
    : line_(line), clock_(clock), listener_(std::move(listener)), trace_(trace) {}

void Dialogue::requireThere() const {
  if (gone_) throw NotAnswering("the modem does not answer");
}

void Dialogue::note(std::string_view text) const {
  if (trace_) trace_->note(text);
}

void Dialogue::sendLine(const std::string& text) {
  if (trace_) trace_->sent(text, Content::Syntax);
  line_.write(text + "\r", in(writeLimit));
}

void Dialogue::sendRaw(std::string_view octets) { line_.write(octets, in(writeLimit)); }

// False when nothing came.
bool Dialogue::readUntil(Instant deadline) {
  const std::string octets = line_.read(deadline);
  reader_.take(octets);
  return !octets.empty();
}

// Reads what is there, and goes on until nothing has come for a while. A modem that never stops talking ends it too.
void Dialogue::drain(Milliseconds quiet) {
  const Instant end = in(longestDrain);
  for (Instant deadline = in(quiet);;) {
    const bool came = readUntil(std::min(deadline, end));
    sortAll(nullptr);
    const Instant now = clock_.now();
    if (came) deadline = now + quiet;
    if (now >= end || (!came && now >= deadline)) return;
  }
}

void Dialogue::sortAll(Running* running) {
  while (!(running && running->answer.result)) {
    const auto line = reader_.next();
    if (!line) return;
    sort(*line, running);
  }
}

void Dialogue::sort(const std::string& received, Running* running) {
  std::string_view rest = received;
  // What is left of a prompt in front of the line that follows it.
  while (rest.size() > 1 && (rest.front() == '>' || rest.front() == ' ')) rest.remove_prefix(1);
  const std::string line(rest);

  if (incomplete_) {
    Unsolicited unsolicited = std::move(*incomplete_);
    incomplete_.reset();
    if (allHex(line)) {
      if (trace_) trace_->received(line, Content::Pdu);
      unsolicited.data = line;
      return deliver(std::move(unsolicited));
    }
    deliver(std::move(unsolicited));
  }
  if (running && sortAnswer(line, *running)) return;
  if (!running && parseResult(line)) {
    if (trace_) trace_->received(line, Content::Syntax);
    note("nobody waits for that");
    stray_ = true;
    return;
  }
  sortUnsolicited(line, running);
}

bool Dialogue::sortAnswer(const std::string& line, Running& running) {
  const Command& command = running.command;
  // Echoes. With the message, some modems echo part of it in front of their own line ends.
  if (line == command.text) return true;
  if (!running.data.empty() && allHex(line)) return true;
  if (running.awaitsPrompt && line == ">") {
    running.prompted = true;
    return true;
  }
  if (running.awaitsData && allHex(line)) {
    if (trace_) trace_->received(line, Content::Pdu);
    running.answer.information.back().data = line;
    running.awaitsData = false;
    if (command.hasData) running.deadline = in(command.limit);
    return true;
  }
  auto result = parseResult(line);
  if (!result && command.prefix.empty() && !command.bare) result = parseNumericResult(line);
  if (result) {
    if (trace_) trace_->received(line, Content::Syntax);
    // No prompt will follow it; an "OK" before the prompt is somebody else's.
    if (!running.awaitsPrompt || !result->ok()) running.answer.result = std::move(result);
    return true;
  }
  return sortInformation(line, running);
}

bool Dialogue::sortInformation(const std::string& line, Running& running) {
  const Command& command = running.command;
  if (command.prefix.empty()) return false;
  auto text = after(command.prefix, line);
  if (!text && command.bare) {
    const bool named = line.front() == '+' || line.front() == '^' || line.front() == '*';
    // An echo of which the beginning or the end was lost is no name of a maker.
    const bool echo = line.find("AT+") != std::string::npos || command.text.ends_with(line);
    if (!named && !echo && !saysReset(line) && !saysReady(line) && !sameWord(line, "RING")) text = line;
  }
  if (!text || running.answer.information.size() >= mostInformation) return false;
  if (trace_) trace_->received(line, Content::Syntax);
  running.answer.information.push_back({std::string(*text), std::nullopt});
  running.awaitsData = command.hasData;
  if (command.hasData) running.deadline = in(command.limit);
  // The network has answered; only the modem's own OK is missing.
  if (!running.data.empty()) running.deadline = std::min(running.deadline, in(resultLimit));
  return true;
}

void Dialogue::sortUnsolicited(const std::string& line, Running* running) {
  const bool named = line.front() == '+' || line.front() == '^' || line.front() == '*';
  // A text may begin like a name.
  const bool known = (named && !isStrange(line)) || saysReset(line) || saysReady(line);
  if (trace_) trace_->received(line, known ? Content::Syntax : Content::Unknown);
  if (saysReset(line) || saysReady(line)) reset_ = true;
  if (saysReset(line) && running) {
    // Nobody remembers the command. Only its answer may have been on the way.
    note("the modem began anew");
    running->reset = true;
    running->deadline = std::min(running->deadline, in(afterReset));
  }
  if (running && allHex(line))
    ++running->answer.messagesWithoutHeader;
  else if (running && isStrange(line))
    ++running->answer.strangeLines;
  // The answer of a command that was given up.
  if (late_ && !late_->command.prefix.empty() && late_->answer.information.size() < mostInformation)
    if (const auto text = after(late_->command.prefix, line))
      return late_->answer.information.push_back({std::string(*text), std::nullopt});
  if (bringsData(line)) {
    incomplete_ = Unsolicited{line, {}};
    return;
  }
  deliver({line, {}});
}

void Dialogue::deliver(Unsolicited unsolicited) {
  if (listener_) listener_(unsolicited);
}

// Waits for the result, or for the prompt.
void Dialogue::waitFor(Running& running) {
  for (;;) {
    sortAll(&running);
    if (running.answer.result || running.prompted) return;
    if (running.awaitsPrompt && reader_.endsWithPrompt()) {
      reader_.dropPrompt();
      running.prompted = true;
      return;
    }
    if (clock_.now() >= running.deadline) return;
    readUntil(running.deadline);
  }
}

// Before a command: what waits has nothing to do with it.
void Dialogue::settle() {
  requireThere();
  drain(Milliseconds(0));
  if (std::exchange(stray_, false)) {
    drain(strayQuiet);
    // Where one came, another may.
    if (!attention(stray_ ? strayQuiet : Milliseconds(0))) recover(Stuck::No);
    stray_ = false;
  }
}

void Dialogue::beginCommand(Running& running) {
  settle();
  reader_.dropPrompt();
  running.deadline = in(running.command.limit);
  sendLine(running.command.text);
}

Answer Dialogue::run(const Command& command) {
  Answer answer;
  Running running{command, answer};
  beginCommand(running);
  waitFor(running);
  finish(running, Stuck::No);
  return answer;
}

DataAnswer Dialogue::runWithData(const Command& command, std::string_view data) {
  DataAnswer answer;
  Running running{command, answer};
  running.awaitsPrompt = true;
  beginCommand(running);
  running.deadline = in(promptLimit);
  waitFor(running);
  if (running.prompted) {
    const Instant end = in(pause_);
    do readUntil(end);
    while (clock_.now() < end);
    sortAll(&running);
  }
  // A modem that began anew meanwhile may have taken the length for a telephone number, in text mode. An error behind
  // the prompt would be taken for what became of the message.
  if (!running.prompted || running.reset || answer.result) {
    finish(running, Stuck::BeforeData);
    return answer;
  }
  // What was said so far has nothing to do with the message: its answer begins here.
  answer = {};
  running.awaitsPrompt = running.prompted = running.awaitsData = false;
  running.data = data;
  running.deadline = in(command.limit);
  if (trace_) trace_->sent(data, Content::Pdu);
  try {
    // From here on the modem may have it all, even when the line breaks.
    answer.dataSent = true;
    sendRaw(std::string(data) + submit);
    waitFor(running);
    finish(running, Stuck::AfterData);
  } catch (const PhoneGone& gone) {
    note(gone.what());
  }
  return answer;
}

void Dialogue::finish(Running& running, Stuck stuck) {
  if (running.answer.result && !running.prompted) {
    stray_ = !running.answer.result->ok();
    return;
  }
  // Perhaps it still waits for a message.
  note(running.answer.result ? "an error behind the prompt" : "no answer");
  late_ = &running;
  try {
    recover(stuck);
  } catch (...) {
    late_ = nullptr;
    throw;
  }
  late_ = nullptr;
}

// "AT", answered. A second final result right behind means that the first was another command's.
bool Dialogue::attention(Milliseconds quiet) {
  static const Command at{"AT", {}, false, false, attentionLimit};
  Answer answer;
  Running running{at, answer};
  running.deadline = in(at.limit);
  sendLine(at.text);
  waitFor(running);
  if (!answer.result) return false;
  stray_ = false;
  drain(quiet);
  return !std::exchange(stray_, false);
}

void Dialogue::recover(Stuck stuck) {
  // Lines that were expected may come for longer than nothing comes, so there are attempts, not one long wait.
  for (int attempt = 0; attempt < attentionAttempts; ++attempt) {
    reader_.dropPartial();
    if (stuck != Stuck::No || attempt > 0) sendRaw("\x1B\r");
    drain(lateQuiet);
    if (attention(lateQuiet)) return;
  }
  if (stuck == Stuck::BeforeData) {
    // A modem that does not know ESC took all that for the message. It is none, so it can be handed in: it will be
    // refused. Not so once a real message may be waiting there.
    note("ESC did not help");
    sendRaw(std::string_view(&submit, 1));
    drain(lateQuiet);
    if (attention(lateQuiet)) return;
  }
  giveUp();
}

void Dialogue::greet(int attempts) {
  requireThere();
  drain(Milliseconds(0));
  for (int attempt = 0; attempt < attempts; ++attempt) {
    reader_.dropPartial();
    if (attempt > 0) sendRaw("\x1B\r");
    if (attention(strayQuiet)) return;
  }
  giveUp();
}

void Dialogue::giveUp() {
  gone_ = true;
  note("the modem does not answer any more");
  throw NotAnswering("the modem does not answer");
}

void Dialogue::listen(Instant deadline) {
  requireThere();
  readUntil(deadline);
  sortAll(nullptr);
}

}  // namespace phone::at
