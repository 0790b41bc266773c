#include "support/native_windows.h"

#include <algorithm>
#include <charconv>
#include <optional>

#include <gtest/gtest.h>

#include "support/native_locale.h"
#include "support/text.h"

namespace testing_support {
namespace {

std::optional<TraceLine> takenApart(std::string_view bytes) {
  if (bytes.empty() || bytes.back() != '\0') return std::nullopt;
  bytes.remove_suffix(1);
  const auto open = bytes.find(" (");
  const auto close = bytes.find(") :");
  if (open == std::string_view::npos || close == std::string_view::npos || close < open) return std::nullopt;

  TraceLine line;
  line.process = bytes.substr(0, open);
  const char* const end = bytes.data() + close;
  if (std::from_chars(bytes.data() + open + 2, end, line.level).ptr != end) return std::nullopt;
  std::string_view text = bytes.substr(close + 3);
  if (text.ends_with("\r\n")) text.remove_suffix(2);
  line.text = utf8(NativeLocale().fromAnsi(text));
  return line;
}

}  // namespace

platform::WindowHandle NativeWindows::findWindow(const std::string& className, const std::string& title) {
  ++lookUps_;
  const auto at = std::find_if(windows_.begin(), windows_.end(), [&](const FakeWindow& w) {
    return isThere(w) && sameAnsiName(w.className, className) && sameAnsiName(w.title, title);
  });
  const bool found = at != windows_.end();
  journal_.write("find \"" + className + "\" \"" + title + (found ? "\"" : "\" -> none"));
  return found ? at->handle : 0;
}

bool NativeWindows::isThere(const FakeWindow& window) const {
  return window.open && lookUps_ >= window.opensAtLookUp && time_.elapsed() >= window.opensAtElapsed;
}

void NativeWindows::sendCopyData(platform::WindowHandle to, std::uint32_t dwData, std::string_view data) {
  const auto at = std::find_if(windows_.begin(), windows_.end(), [&](const FakeWindow& w) { return w.handle == to; });
  if (at == windows_.end() || !isThere(*at)) return;  // the system does not deliver to a window that has gone
  const CopyData received{dwData, std::string(data)};
  at->received.push_back(received);
  journal_.write("send " + std::to_string(data.size()) + " bytes to \"" + at->title + "\"");
  if (at->whenReceiving) at->whenReceiving(received);
}

void NativeWindows::beep() {
  ++beeps_;
  journal_.write("beep");
}

FakeWindow& NativeWindows::open(const std::string& className, const std::string& title) {
  windows_.push_back({.className = className,
                      .title = title,
                      .handle = 0x5000 + windows_.size(),
                      .received = {},
                      .whenReceiving = {}});
  return windows_.back();
}

std::vector<TraceLine> NativeWindows::traceLines() const {
  std::vector<TraceLine> lines;
  if (!viewer_) {
    ADD_FAILURE() << "no viewer was opened";
    return lines;
  }
  for (const CopyData& data : viewer_->received) {
    const auto line = takenApart(data.bytes);
    if (line && data.dwData == 0)
      lines.push_back(*line);
    else
      ADD_FAILURE() << "not a line of the debug channel: " << testing::PrintToString(data.bytes);
  }
  return lines;
}

std::vector<std::string> NativeWindows::trace() const {
  std::vector<std::string> texts;
  for (TraceLine& line : traceLines()) texts.push_back(std::move(line.text));
  return texts;
}

}  // namespace testing_support
