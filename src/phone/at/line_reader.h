// Lines out of the octets that a modem sends (ITU-T V.250, 5.7.1), whatever it ends them with: every CR and every LF
// ends a line, and empty lines mean nothing.
#pragma once

#include <deque>
#include <optional>
#include <string>
#include <string_view>

namespace phone::at {

class LineReader {
 public:
  // Nothing that a phone has to say is that long: a longer line is noise and is dropped as a whole.
  static constexpr std::size_t longestLine = 4096;

  void take(std::string_view octets);

  // The next whole line, without control characters (the echoes of SUB and ESC, stray NULs) and outer spaces.
  std::optional<std::string> next();

  // True when all that waits is a prompt, which has no line end: "> " or ">" (3GPP TS 27.005, 3.5.1).
  bool endsWithPrompt() const;

  // Forgets a line that has begun and whose rest will never come.
  void dropPartial();

  // The prompt has been seen, or nobody waits for it any more; a line that has begun stays.
  void dropPrompt() {
    if (endsWithPrompt()) dropPartial();
  }

 private:
  void endLine();

  std::string partial_;
  bool overlong_ = false;
  std::deque<std::string> lines_;
};

}  // namespace phone::at
