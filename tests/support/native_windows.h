// Windows that exist for the tests only, and what they were sent.
#pragma once

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "addin/platform/system.h"
#include "support/journal.h"
#include "support/native_time.h"

namespace testing_support {

struct CopyData {
  std::uint32_t dwData = 0;
  std::string bytes;  // with every NUL
  friend bool operator==(const CopyData&, const CopyData&) = default;
};

struct FakeWindow {
  std::string className;
  std::string title;
  platform::WindowHandle handle = 0;
  bool open = true;
  std::int32_t opensAtLookUp = 0;   // the look-up, counted from 1, that finds it for the first time
  std::int64_t opensAtElapsed = 0;  // NativeTime::elapsed() from which on it is there
  std::vector<CopyData> received;
  std::function<void(const CopyData&)> whenReceiving;  // runs inside the send
};

// A line of the debug channel, taken apart.
struct TraceLine {
  std::string process;
  std::int32_t level = 0;
  std::string text;  // UTF-8, without the line end
  friend bool operator==(const TraceLine&, const TraceLine&) = default;
};

class NativeWindows final : public platform::Windows {
 public:
  NativeWindows(Journal& journal, NativeTime& time) : journal_(journal), time_(time) {}

  platform::WindowHandle findWindow(const std::string& className, const std::string& title) override;
  void sendCopyData(platform::WindowHandle to, std::uint32_t dwData, std::string_view data) override;
  void beep() override;

  // For tests --------------------------------------------------------------------------------------------------------

  FakeWindow& open(const std::string& className, const std::string& title);
  FakeWindow& openViewer() { return viewer_ = &open("DebugOut Window", "DebugOutput"), *viewer_; }
  FakeWindow& viewer() { return *viewer_; }

  // What the viewer received, line by line; a line whose form is not "NAME (LEVEL) :TEXT" and NUL is a test failure.
  std::vector<TraceLine> traceLines() const;
  std::vector<std::string> trace() const;  // the texts alone
  void clearTrace() { viewer_->received.clear(); }

  std::int32_t lookUps() const { return lookUps_; }
  std::int32_t beeps() const { return beeps_; }

 private:
  bool isThere(const FakeWindow& window) const;

  Journal& journal_;
  NativeTime& time_;
  std::deque<FakeWindow> windows_;  // references stay valid
  FakeWindow* viewer_ = nullptr;
  std::int32_t lookUps_ = 0;
  std::int32_t beeps_ = 0;
};

}  // namespace testing_support
