// The body of a command line (ITU-T V.250, 5.2 and 5.4): basic commands, S-registers and extended commands in a row.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace phonesim {

enum class Form { Execute, Read, Test, Set };

struct Argument {
  std::string text;
  bool quoted = false;
  bool isEmpty() const { return text.empty() && !quoted; }
  // Digits only, at most nine, and not in quotes.
  std::optional<int> number() const;
  friend bool operator==(const Argument&, const Argument&) = default;
};

// One command of a line. The name is in capitals: "E", "&F", "S" (with the register as its number), "+CMGL", "*CNTI".
struct Invocation {
  std::string name;
  Form form = Form::Execute;
  std::optional<int> number;        // of a basic command, or the register
  std::vector<Argument> arguments;  // of an extended command, or the value of a register
  friend bool operator==(const Invocation&, const Invocation&) = default;

  std::size_t count() const { return arguments.size(); }
  // Nothing when it is not there, not a number, or outside the limits.
  std::optional<int> numberAt(std::size_t position, int least, int most) const;
  // The same with a value for an argument that was left out.
  std::optional<int> numberAt(std::size_t position, int least, int most, int absent) const;
};

// What stands behind "AT" in a line, or nothing when the line is no command line. Rubbish before it is passed over, as
// a modem does that hunts for the prefix.
std::optional<std::string_view> bodyOf(std::string_view line);

// Takes the first command off the body; nothing when it cannot be read.
std::optional<Invocation> takeCommand(std::string_view& body);

}  // namespace phonesim
