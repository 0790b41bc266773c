// The debug output channel: trace lines for an outside viewer window.
//
// The viewer is looked up afresh for every line, so one that is closed or started later is picked up by itself. When
// there is none, lines are dropped. The channel never raises an error and never tells the user anything.
#pragma once

#include "addin/common/basGlobal.h"

namespace addin {

// The channel's state, one copy per thread. All zero until DbgOutInit. It is trivial on purpose: per-thread state with
// a destructor would keep the DLL loaded for ever.
struct DbgChannel {
  std::int16_t Level;
  std::int16_t Enabled;  // looked at by DbgOutInit only: a disabled channel still passes lines to a running viewer
  std::int16_t Visible;
  bool Initialized;
  std::uint16_t ProcessNameLength;
  char16_t ProcessName[64];  // a longer name is cut
};
extern thread_local constinit DbgChannel dbgChannel;

// Level of the channel's own header line: never filtered.
inline constexpr std::int16_t DBG_HEADER = 255;

// Opens the channel for the writer named ProcessName; only the first call on a thread does anything.
void DbgOutInit(StringView ProcessName);

// Passes one line on. Appends CR LF to the caller's text unless it is empty or ends in LF already, but leaves it alone
// when the level filters the line out.
void DbgOut(std::int16_t Level, String& Text);

inline bool DbgOutPasses(std::int16_t level) { return level == DBG_HEADER || level <= dbgChannel.Level; }

// What a trace line may be joined from. Values whose conversion could fail are converted by the caller, so that what a
// procedure does never depends on whether its lines are wanted.
template <class P>
concept TracePiece = std::convertible_to<P, StringView> || std::same_as<P, bool> || std::same_as<P, std::int16_t> ||
                     std::same_as<P, std::int32_t> || std::same_as<P, Date>;

// Joins a line from its pieces, which the caller has evaluated; a line that the level filters out builds no text.
template <TracePiece... P>
void DbgOut(std::int16_t level, const P&... pieces) noexcept {
  if (!DbgOutPasses(level)) return;
  try {
    String text = concat(pieces...);
    DbgOut(level, text);
  } catch (const std::exception&) {  // no memory for the line: it is dropped
  }
}

}  // namespace addin
