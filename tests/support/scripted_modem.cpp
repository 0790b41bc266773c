#include "support/scripted_modem.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace testing_support {

using phone::Instant;
using phone::Milliseconds;

namespace {

std::string fileText(const std::string& name) {
  const std::string here = __FILE__;
  const std::string folder = here.substr(0, here.find_last_of("/\\")) + "/../data/modems/";
  std::ifstream file(folder + name + ".txt", std::ios::binary);
  if (!file) throw std::runtime_error("no such modem: " + folder + name + ".txt");
  return {std::istreambuf_iterator<char>(file), {}};
}

std::string octetsOf(std::string text) {
  static const std::pair<std::string, char> names[] = {{"<CR>", '\r'},    {"<LF>", '\n'},    {"<NUL>", '\0'},
                                                       {"<SUB>", '\x1A'}, {"<ESC>", '\x1B'}, {"<SP>", ' '}};
  for (const auto& [name, octet] : names)
    for (std::size_t at; (at = text.find(name)) != std::string::npos;)
      text.replace(at, name.size(), std::string(1, octet));
  return text;
}

}  // namespace

ScriptedModem ScriptedModem::fromFile(const std::string& name) { return ScriptedModem(fileText(name)); }

ScriptedModem::ScriptedModem(const std::string& script) { load(script); }

void ScriptedModem::load(const std::string& script) {
  std::istringstream lines(script);
  Events events;
  Steps* steps = nullptr;
  for (std::string line; std::getline(lines, line);) {
    const std::size_t begin = line.find_first_not_of(' ');
    if (begin == std::string::npos || line[begin] == '#') continue;
    const std::size_t space = std::min(line.find(' ', begin), line.size());
    const std::string verb = line.substr(begin, space - begin);
    const std::string argument = space < line.size() ? line.substr(space + 1) : std::string();
    if (begin > 0) {
      static const std::vector<std::string> known{"say", "raw", "pause", "prompt", "lose", "begin"};
      if (!steps || std::find(known.begin(), known.end(), verb) == known.end())
        throw std::runtime_error("not understood: " + line);
      steps->push_back({verb, argument});
    } else if (verb == "on") {
      steps = &events[argument].emplace_back();
    } else if (verb == "at") {
      steps = &timed_.emplace_back(begin_ + Milliseconds(std::stoi(argument)), Steps()).second;
    } else {
      option(verb, argument);
    }
  }
  layers_.insert(layers_.begin(), std::move(events));
}

void ScriptedModem::option(const std::string& verb, const std::string& argument) {
  if (verb == "like") {
    load(fileText(argument));
  } else if (verb == "echo" && argument == "off") {
    echoes_ = false;
  } else if (verb == "echo" && argument == "always") {
    echoSwitches_ = false;
  } else if (verb == "lines") {
    lineEnd_ = octetsOf(argument);
  } else if (verb == "pieces") {
    piece_ = static_cast<std::size_t>(std::stoi(argument));
  } else if (verb == "escape" && argument == "ignored") {
    escapes_ = false;
  } else if (verb != "echo" || argument != "on") {
    throw std::runtime_error("not understood: " + verb + " " + argument);
  }
}

std::vector<std::string> ScriptedModem::heardOf(std::string_view beginning) const {
  std::vector<std::string> some;
  for (const std::string& text : heard)
    if (text.starts_with(beginning)) some.push_back(text);
  return some;
}

void ScriptedModem::write(std::string_view octets, Instant) {
  if (lost_) throw phone::LineLost("lost");
  for (const char c : octets) hear(c);
}

void ScriptedModem::hear(char c) {
  if (echoes_ && !(takesMessage_ && c == '\x1A')) put(std::string(1, c), now_);
  if (takesMessage_ && (c == '\x1A' || (c == '\x1B' && escapes_))) {
    takesMessage_ = false;
    heard.push_back(c == '\x1A' ? "message " + input_ : "escape");
    input_.clear();
    if (const auto steps = stepsFor(heard.back())) act(*steps, std::max(now_, busyUntil_));
  } else if (takesMessage_) {
    input_ += c;
  } else if (c == '\x1B') {
    input_.clear();  // gives up what was typed
  } else if (c == '\r') {
    if (!input_.empty()) command(std::exchange(input_, {}));
  } else if (c != '\n') {
    input_ += c;
  }
}

void ScriptedModem::command(const std::string& text) {
  heard.push_back(text);
  if (text == "ATE0" && echoSwitches_) echoes_ = false;
  if (text.starts_with("AT+CPMS=\"")) memory_ = text.substr(9, 2);
  auto steps = stepsFor(memory_ + ": " + text);
  if (!steps) steps = stepsFor(text);
  static const Steps ok{{"say", "OK"}};
  static const Steps error{{"say", "ERROR"}};
  act(steps ? *steps : text == "AT" ? ok : error, std::max(now_, busyUntil_));
}

std::deque<ScriptedModem::Steps>* ScriptedModem::bestMatch(Events& events, const std::string& event) {
  std::deque<Steps>* best = nullptr;
  std::size_t length = 0;
  for (auto& [pattern, turns] : events) {
    const bool open = !pattern.empty() && pattern.back() == '*';
    const std::string fixed = pattern.substr(0, pattern.size() - (open ? 1 : 0));
    const bool matches = open ? event.starts_with(fixed) : event == pattern;
    const std::size_t closeness = fixed.size() + (open ? 1 : 2);
    if (!matches || closeness <= length) continue;
    best = &turns;
    length = closeness;
  }
  return best;
}

std::optional<ScriptedModem::Steps> ScriptedModem::stepsFor(const std::string& event) {
  for (Events& events : layers_) {
    std::deque<Steps>* const turns = bestMatch(events, event);
    if (!turns) continue;
    Steps steps = turns->front();
    if (turns->size() > 1) turns->pop_front();
    return steps;
  }
  return std::nullopt;
}

void ScriptedModem::act(const Steps& steps, Instant when) {
  for (const Step& step : steps) {
    if (step.verb == "say") {
      put(framed(octetsOf(step.argument)), when);
    } else if (step.verb == "raw") {
      put(octetsOf(step.argument), when);
    } else if (step.verb == "pause") {
      when += Milliseconds(std::stoi(step.argument));
    } else if (step.verb == "prompt") {
      put(octetsOf(step.argument), when);
      takesMessage_ = true;
    } else if (step.verb == "lose") {
      outputs_.push_back({when, {}, true});
    } else {
      outputs_.clear();
      memory_.clear();
      echoes_ = true;
      takesMessage_ = false;
    }
  }
  busyUntil_ = when;
}

std::string ScriptedModem::framed(std::string_view line) const {
  return lineEnd_.empty() ? "\r\n" + std::string(line) + "\r\n" : std::string(line) + lineEnd_;
}

void ScriptedModem::put(std::string_view octets, Instant when) {
  if (piece_ > 0 && !outputs_.empty()) when = std::max(when, outputs_.back().due);
  while (!octets.empty()) {
    const std::string_view piece = octets.substr(0, piece_ == 0 ? octets.size() : piece_);
    octets.remove_prefix(piece.size());
    if (piece_ > 0) when += Milliseconds(1);
    // Octets never overtake each other, but those of a late answer come after an echo.
    const auto later = std::upper_bound(outputs_.begin(), outputs_.end(), when,
                                        [](Instant due, const Output& output) { return due < output.due; });
    outputs_.insert(later, {when, std::string(piece)});
  }
}

std::string ScriptedModem::read(Instant deadline) {
  for (;;) {
    if (lost_) throw phone::LineLost("lost");
    const auto event =
        std::min_element(timed_.begin(), timed_.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    if (event != timed_.end() && event->first <= std::max(now_, deadline) &&
        (outputs_.empty() || event->first < outputs_.front().due)) {
      const auto [when, steps] = *event;
      timed_.erase(event);
      now_ = std::max(now_, when);
      act(steps, now_);
      continue;
    }
    if (!outputs_.empty() && outputs_.front().due <= std::max(now_, deadline)) {
      const Output output = outputs_.front();
      outputs_.pop_front();
      now_ = std::max(now_, output.due);
      if (output.lose) lost_ = true;
      if (!output.lose) return output.octets;
      continue;
    }
    if (!std::exchange(woken_, false)) now_ = std::max(now_, deadline);
    return {};
  }
}

}  // namespace testing_support
