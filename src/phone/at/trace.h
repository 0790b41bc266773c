// A record of a dialogue, for people who look for the reason why a modem does not do what it should. People post such
// records in public: texts and numbers are masked unless they were asked for.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace phone::at {

// How much of a line may be told.
enum class Content : std::uint8_t {
  Syntax,   // commands, answers and results: all but telephone numbers and names
  Pdu,      // hexadecimal messages: their length
  Unknown,  // lines of which nobody knows what they are: their length
};

// A line without what belongs to the user: texts in quotes (but not the names of memories and character sets), numbers
// of five digits and more, long hexadecimal numbers.
std::string masked(std::string_view line, Content content);

class Trace {
 public:
  using Sink = std::function<void(std::string_view line)>;  // without a line end

  explicit Trace(Sink sink, bool everything = false) : sink_(std::move(sink)), everything_(everything) {}

  void sent(std::string_view line, Content content) { write("> ", line, content); }
  void received(std::string_view line, Content content) { write("< ", line, content); }
  void note(std::string_view text) const { sink_("- " + std::string(text)); }
  // With something of the user's in it, perhaps.
  void noteAbout(std::string_view text) const { write("- ", text, Content::Syntax); }

 private:
  void write(std::string_view direction, std::string_view line, Content content) const;

  Sink sink_;
  bool everything_;
};

}  // namespace phone::at
