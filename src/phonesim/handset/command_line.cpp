#include "phonesim/handset/command_line.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "phonesim/handset/answer_text.h"

namespace phonesim {

namespace {

constexpr std::string_view extendedMarks = "+*^$%#!@-";

char capital(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }
bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isLetter(char c) { return capital(c) >= 'A' && capital(c) <= 'Z'; }

std::string_view trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::optional<int> digitsAsNumber(std::string_view text) {
  if (text.empty() || text.size() > 9 || text.find_first_not_of("0123456789") != text.npos) return std::nullopt;
  int value = 0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

// Up to, not including, the first of `ends` that is not in quotes; nothing when quotes stay open.
std::optional<std::string_view> takeUntil(std::string_view& text, std::string_view ends) {
  bool quoted = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '"') quoted = !quoted;
    if (quoted || ends.find(text[i]) == ends.npos) continue;
    const auto piece = text.substr(0, i);
    text.remove_prefix(i);
    return piece;
  }
  if (quoted) return std::nullopt;
  return std::exchange(text, {});
}

std::optional<Argument> readArgument(std::string_view text) {
  text = trimmed(text);
  if (text.find('"') == text.npos) return Argument{std::string(text), false};
  if (text.size() < 2 || text.front() != '"' || text.find('"', 1) != text.size() - 1) return std::nullopt;
  return Argument{fromConstant(text.substr(1, text.size() - 2)), true};
}

std::optional<std::vector<Argument>> readArguments(std::string_view text) {
  std::vector<Argument> arguments;
  while (true) {
    const auto piece = takeUntil(text, ",");
    if (!piece) return std::nullopt;
    auto argument = readArgument(*piece);
    if (!argument) return std::nullopt;
    arguments.push_back(std::move(*argument));
    if (text.empty()) return arguments;
    text.remove_prefix(1);
  }
}

std::optional<Invocation> takeExtended(std::string_view& body) {
  auto piece = takeUntil(body, ";");
  if (!piece) return std::nullopt;
  if (!body.empty()) body.remove_prefix(1);
  const std::string_view text = trimmed(*piece);
  const auto nameEnd = std::min(text.find_first_of("=?"), text.size());
  Invocation command;
  for (const char c : trimmed(text.substr(0, nameEnd))) command.name += capital(c);
  if (command.name.size() < 2 || !isLetter(command.name[1])) return std::nullopt;
  const std::string_view rest = trimmed(text.substr(nameEnd));
  if (rest.empty()) return command;
  if (rest == "?") {
    command.form = Form::Read;
  } else if (rest == "=?") {
    command.form = Form::Test;
  } else if (rest.front() == '=') {
    auto arguments = readArguments(rest.substr(1));
    if (!arguments) return std::nullopt;
    command.form = Form::Set;
    command.arguments = std::move(*arguments);
  } else {
    return std::nullopt;
  }
  return command;
}

std::optional<int> takeNumber(std::string_view& body) {
  std::size_t digits = 0;
  while (digits < body.size() && isDigit(body[digits])) ++digits;
  const auto number = digitsAsNumber(body.substr(0, digits));
  body.remove_prefix(digits);
  return number;
}

std::optional<Invocation> takeBasic(std::string_view& body) {
  Invocation command;
  if (body.front() == '&' || body.front() == '\\') {
    command.name = body.front();
    body.remove_prefix(1);
  }
  if (body.empty() || !isLetter(body.front())) return std::nullopt;
  command.name += capital(body.front());
  body.remove_prefix(1);
  if (command.name == "D") {  // everything behind it is the number to dial
    command.arguments.push_back({std::string(std::exchange(body, {})), false});
    return command;
  }
  if (!body.empty() && isDigit(body.front())) {
    command.number = takeNumber(body);
    if (!command.number) return std::nullopt;
  }
  if (command.name == "S" && !body.empty() && (body.front() == '?' || body.front() == '=')) {
    command.form = body.front() == '?' ? Form::Read : Form::Set;
    body.remove_prefix(1);
    if (command.form == Form::Set) command.arguments.push_back({std::to_string(takeNumber(body).value_or(0)), false});
  }
  return command;
}

}  // namespace

std::optional<int> Argument::number() const { return quoted ? std::nullopt : digitsAsNumber(text); }

std::optional<int> Invocation::numberAt(std::size_t position, int least, int most) const {
  if (position >= arguments.size()) return std::nullopt;
  const auto value = arguments[position].number();
  return value && *value >= least && *value <= most ? value : std::nullopt;
}

std::optional<int> Invocation::numberAt(std::size_t position, int least, int most, int absent) const {
  if (position >= arguments.size() || arguments[position].isEmpty()) return absent;
  return numberAt(position, least, most);
}

std::optional<std::string_view> bodyOf(std::string_view line) {
  for (std::size_t i = 0; i + 1 < line.size(); ++i)
    if (capital(line[i]) == 'A' && capital(line[i + 1]) == 'T') return line.substr(i + 2);
  return std::nullopt;
}

std::optional<Invocation> takeCommand(std::string_view& body) {
  while (!body.empty() && (body.front() == ' ' || body.front() == ';')) body.remove_prefix(1);
  if (body.empty()) return std::nullopt;
  return extendedMarks.find(body.front()) != extendedMarks.npos ? takeExtended(body) : takeBasic(body);
}

}  // namespace phonesim
