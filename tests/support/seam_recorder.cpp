#include "support/seam_recorder.h"

#include <algorithm>
#include <utility>

#include <gtest/gtest.h>

#include "support/text.h"

namespace testing_support {

using platform::Access;
using platform::Args;
using platform::Automation;
using platform::Counted;
using platform::EventSink;
using platform::Guid;
using platform::Ref;
using platform::RuntimeError;
using platform::StringView;
using platform::Variant;

Tap::~Tap() {
  EXPECT_EQ(platform::seamTap, this) << "tools at the seam end in the opposite order of their making";
  platform::seamTap = before_;
}

Variant Tap::invoke(Automation& object, StringView member, Access access, Args args) {
  return before_ ? before_->invoke(object, member, access, args) : object.invoke(member, access, args);
}

Ref<Counted> Tap::subscribe(Automation& object, const Guid& events, const Ref<EventSink>& sink) {
  return before_ ? before_->subscribe(object, events, sink) : object.subscribe(events, sink);
}

template <class F>
auto Recorder::recorded(std::string line, F&& call) {
  const auto place = lines_.size();
  const int clears = clears_;
  lines_.push_back(std::move(line));
  try {
    return call();
  } catch (const RuntimeError& error) {
    if (clears == clears_) lines_[place] += " -> error " + std::to_string(error.number);
    throw;
  }
}

Variant Recorder::invoke(Automation& object, StringView member, Access access, Args args) {
  return recorded(lineOf(labels_, labels_.of(object), member, access, args),
                  [&] { return Tap::invoke(object, member, access, args); });
}

Ref<Counted> Recorder::subscribe(Automation& object, const Guid& events, const Ref<EventSink>& sink) {
  return recorded("connect " + labels_.of(object), [&] { return Tap::subscribe(object, events, sink); });
}

std::vector<std::string> Recorder::linesWith(std::string_view part) const {
  std::vector<std::string> result;
  std::copy_if(lines_.begin(), lines_.end(), std::back_inserter(result),
               [&](const std::string& line) { return line.find(part) != std::string::npos; });
  return result;
}

void FaultInjector::failCall(std::int32_t n, RuntimeError error) {
  calls_ = 0;
  failAt_ = n;
  error_ = std::move(error);
}

void FaultInjector::failMember(StringView member, RuntimeError error) {
  members_.push_back({platform::String(member), std::move(error)});
}

void FaultInjector::failNoMore() {
  failAt_ = 0;
  members_.clear();
}

void FaultInjector::fail(std::string line, const RuntimeError& error) {
  failed_.push_back(std::move(line));
  throw RuntimeError(error);
}

void FaultInjector::count(const std::function<std::string()>& line) {
  if (++calls_ == failAt_ && error_) fail(line(), *error_);
}

Variant FaultInjector::invoke(Automation& object, StringView member, Access access, Args args) {
  const auto line = [&] {
    const Labels labels;
    return lineOf(labels, labels.of(object), member, access, args);
  };
  count(line);
  for (const MemberFault& fault : members_)
    if (platform::sameName(fault.member, member)) fail(line(), fault.error);
  return Tap::invoke(object, member, access, args);
}

Ref<Counted> FaultInjector::subscribe(Automation& object, const Guid& events, const Ref<EventSink>& sink) {
  count([&] { return "connect " + Labels().of(object); });
  return Tap::subscribe(object, events, sink);
}

std::int32_t failEachCall(const RuntimeError& error, const std::function<void(FaultInjector&)>& scenario) {
  std::int32_t calls = 0;
  {
    FaultInjector undisturbed;
    scenario(undisturbed);
    calls = undisturbed.calls();
  }
  for (std::int32_t n = 1; n <= calls; ++n) {
    FaultInjector injector(n, error);
    SCOPED_TRACE("call " + std::to_string(n) + " of " + std::to_string(calls) + " fails");
    scenario(injector);
    EXPECT_EQ(injector.failed().size(), 1u) << "the scenario did not come to this call";
  }
  return calls;
}

Variant CallCounter::invoke(Automation& object, StringView member, Access access, Args args) {
  count(utf8(member));
  return Tap::invoke(object, member, access, args);
}

Ref<Counted> CallCounter::subscribe(Automation& object, const Guid& events, const Ref<EventSink>& sink) {
  count("connect");
  return Tap::subscribe(object, events, sink);
}

void CallCounter::count(std::string member) {
  ++total_;
  ++members_[std::move(member)];
}

std::int32_t CallCounter::of(const std::string& member) const {
  const auto at = members_.find(member);
  return at == members_.end() ? 0 : at->second;
}

void CallCounter::clear() {
  total_ = 0;
  members_.clear();
}

Census::~Census() { EXPECT_EQ(more(), 0) << "counted objects are left over"; }

}  // namespace testing_support
