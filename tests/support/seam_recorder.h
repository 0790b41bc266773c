// Tools at the seam: they see every call that passes through an Object while they live. Several can be in use at once;
// the one made last sees a call first, and they end in the opposite order of their making.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "addin/platform/seam_tap.h"
#include "support/seam_text.h"

namespace testing_support {

class Tap : public platform::SeamTap {
 public:
  Tap() : before_(platform::seamTap) { platform::seamTap = this; }
  ~Tap();
  Tap(const Tap&) = delete;
  Tap& operator=(const Tap&) = delete;

  platform::Variant invoke(platform::Automation& object, platform::StringView member, platform::Access access,
                           platform::Args args) override;
  platform::Ref<platform::Counted> subscribe(platform::Automation& object, const platform::Guid& events,
                                             const platform::Ref<platform::EventSink>& sink) override;

 private:
  platform::SeamTap* before_;
};

// Writes down every call, in the order of their beginnings: what a call causes comes below it.
// Besides the forms of lineOf: `connect Items` for a subscription, ` -> error 438` behind what failed.
class Recorder final : public Tap {
 public:
  platform::Variant invoke(platform::Automation& object, platform::StringView member, platform::Access access,
                           platform::Args args) override;
  platform::Ref<platform::Counted> subscribe(platform::Automation& object, const platform::Guid& events,
                                             const platform::Ref<platform::EventSink>& sink) override;

  void name(const platform::Object& object, std::string label) { labels_.name(object, std::move(label)); }
  const std::vector<std::string>& lines() const { return lines_; }
  std::vector<std::string> linesWith(std::string_view part) const;
  void clear() {
    lines_.clear();
    ++clears_;
  }

 private:
  template <class F>
  auto recorded(std::string line, F&& call);

  Labels labels_;
  std::vector<std::string> lines_;
  int clears_ = 0;
};

// Lets one call fail instead of passing it on.
class FaultInjector final : public Tap {
 public:
  FaultInjector() = default;
  // The n-th call from now (counted from 1, subscriptions too) fails.
  FaultInjector(std::int32_t n, platform::RuntimeError error) { failCall(n, std::move(error)); }
  void failCall(std::int32_t n, platform::RuntimeError error);
  // Every call of that member fails; names ignore case.
  void failMember(platform::StringView member, platform::RuntimeError error);
  void failNoMore();

  std::int32_t calls() const { return calls_; }                       // since the last failCall
  const std::vector<std::string>& failed() const { return failed_; }  // what was made to fail, as lines

  platform::Variant invoke(platform::Automation& object, platform::StringView member, platform::Access access,
                           platform::Args args) override;
  platform::Ref<platform::Counted> subscribe(platform::Automation& object, const platform::Guid& events,
                                             const platform::Ref<platform::EventSink>& sink) override;

 private:
  void fail(std::string line, const platform::RuntimeError& error);
  void count(const std::function<std::string()>& line);

  struct MemberFault {
    platform::String member;
    platform::RuntimeError error;
  };

  std::int32_t calls_ = 0;
  std::int32_t failAt_ = 0;
  std::optional<platform::RuntimeError> error_;
  std::vector<MemberFault> members_;
  std::vector<std::string> failed_;
};

// Runs `scenario` undisturbed, and then once for each call that it made, with that call failing. Gives the number of
// calls. The scenario builds everything anew each time; what it asserts must hold whichever call fails.
std::int32_t failEachCall(const platform::RuntimeError& error, const std::function<void(FaultInjector&)>& scenario);

class CallCounter final : public Tap {
 public:
  platform::Variant invoke(platform::Automation& object, platform::StringView member, platform::Access access,
                           platform::Args args) override;
  platform::Ref<platform::Counted> subscribe(platform::Automation& object, const platform::Guid& events,
                                             const platform::Ref<platform::EventSink>& sink) override;

  std::int32_t total() const { return total_; }
  std::int32_t of(const std::string& member) const;  // "connect" for subscriptions
  void clear();

 private:
  void count(std::string member);

  std::int32_t total_ = 0;
  std::map<std::string, std::int32_t> members_;
};

// Everything counted that was made while this lived must be gone at its end; else the test fails.
class Census {
 public:
  Census() = default;
  ~Census();
  Census(const Census&) = delete;
  Census& operator=(const Census&) = delete;
  std::int32_t more() const { return platform::Counted::census - start_; }

 private:
  std::int32_t start_ = platform::Counted::census;
};

}  // namespace testing_support
