#include "addin/diag/basDbgOut.h"

#include <algorithm>
#include <iterator>

#include "addin/common/basapi.h"
#include "addin/settings/basRegistry.h"

namespace addin {

thread_local constinit DbgChannel dbgChannel{};

namespace {

constexpr const char* viewerClass = "DebugOut Window";
constexpr const char* viewerTitle = "DebugOutput";
constexpr int lookUps = 11;
constexpr std::int32_t lookUpPause = 100;  // milliseconds

StringView processName() { return {dbgChannel.ProcessName, dbgChannel.ProcessNameLength}; }

void setProcessName(StringView name) {
  const std::size_t length = std::min(name.size(), std::size(dbgChannel.ProcessName));
  std::copy_n(name.begin(), length, dbgChannel.ProcessName);
  dbgChannel.ProcessNameLength = static_cast<std::uint16_t>(length);
}

WindowHandle findViewer() { return FindWindow(viewerClass, viewerTitle); }

void waitForViewer() {
  for (int i = 0; i < lookUps; ++i) {
    if (findViewer()) return;
    Sleep(lookUpPause);
  }
}

void sendLine(std::int16_t level, StringView text) {
  const String line = concat(processName(), u" (", level, u") :", text);
  const WindowHandle viewer = findViewer();
  if (!viewer) return;
  const std::string ansi = system().locale.toAnsi(line);
  // One byte a character, with the NUL behind the text.
  SendCopyData(viewer, {0, static_cast<std::uint32_t>(ansi.size() + 1), ansi.c_str()});
}

}  // namespace

void DbgOutInit(StringView ProcessName) {
  if (dbgChannel.Initialized) return;
  try {
    dbgChannel.Level = 2;
    dbgChannel.Enabled = 1;
    dbgChannel.Visible = 0;
    setProcessName(u"?");
    dbgChannel.Initialized = true;

    dbgChannel.Enabled = CInt(GetRegValue(rootLocalMachine, KEY_DEBUG, u"Enabled"));
    if (dbgChannel.Enabled == 0) return;
    dbgChannel.Visible = CInt(GetRegValue(rootLocalMachine, KEY_DEBUG, u"Visible"));
    dbgChannel.Level = CInt(GetRegValue(rootLocalMachine, concat(KEY_DEBUG, u"\\", ProcessName), u"Level"));
    const String path = CStr(GetRegValue(rootLocalMachine, KEY_DEBUG, u"Path"));
    Shell(path, SHELL_MINIMIZED_FOCUS);  // also when a viewer runs: it keeps a single instance by itself
    waitForViewer();
    setProcessName(ProcessName);
    DbgOut(DBG_HEADER, u" *********** ProcessName: ", ProcessName, u" - Level: ", dbgChannel.Level, u" - Time: ", Now(),
           CRLF);
  } catch (const std::exception&) {  // initialisation ends where it failed; what was read so far stays
  }
}

void DbgOut(std::int16_t Level, String& Text) {
  if (!DbgOutPasses(Level)) return;
  try {
    if (Level == 0 && dbgChannel.Visible != 0) Beep();
    if (!Text.empty() && Text.back() != u'\n') Text += CRLF;
    sendLine(Level, Text);
  } catch (const std::exception&) {  // the line is dropped
  }
}

}  // namespace addin
