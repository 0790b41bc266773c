#include "support/fake_object.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "support/text.h"

namespace testing_support {

using platform::Access;
using platform::Args;
using platform::Counted;
using platform::EventSink;
using platform::Guid;
using platform::Ref;
using platform::RuntimeError;
using platform::StringView;
using platform::Variant;

namespace {

struct ElementWalk final : platform::Enumerator {
  explicit ElementWalk(std::vector<Variant> e) : elements(std::move(e)) {}
  bool next(Variant& element) override {
    if (at == elements.size()) return false;
    element = elements[at++];
    return true;
  }

  std::vector<Variant> elements;
  std::size_t at = 0;
};

}  // namespace

FakeObject::~FakeObject() {
  if (whenDestroyed) whenDestroyed();
}

void FakeObject::terminate() noexcept {
  if (whenTerminated) whenTerminated();
  const auto gone = std::move(entries_);  // scripts and values may hold the object itself by way of others
}

FakeObject::Entry& FakeObject::entryOf(StringView member) {
  removed(member);
  return entries_.emplace_back(Entry{platform::String(member), false, {}, {}});
}

FakeObject& FakeObject::value(StringView member, Variant value) {
  Entry& entry = entryOf(member);
  entry.isValue = true;
  entry.value = std::move(value);
  return *this;
}

FakeObject& FakeObject::method(StringView member, Method method) {
  return script(member, [method = std::move(method)](Access access, Args args) {
    if (access == Access::Let || access == Access::Set) platform::raiseError(438);
    return method(args);
  });
}

FakeObject& FakeObject::script(StringView member, Script script) {
  entryOf(member).script = std::move(script);
  return *this;
}

FakeObject& FakeObject::fails(StringView member, std::int32_t number) {
  return fails(member, RuntimeError(number, u"mrktxtmsg", platform::standardText(number)));
}

FakeObject& FakeObject::fails(StringView member, RuntimeError error) {
  return script(member, [error = std::move(error)](Access, Args) -> Variant { throw RuntimeError(error); });
}

FakeObject& FakeObject::removed(StringView member) {
  std::erase_if(entries_, [&](const Entry& e) { return platform::sameName(e.member, member); });
  return *this;
}

FakeObject& FakeObject::elements(std::vector<Variant> elements) {
  elements_ = std::move(elements);
  return *this;
}

FakeObject& FakeObject::hasEvents(const Guid& events) {
  events_ = events;
  return *this;
}

FakeObject& FakeObject::failsToSubscribe(std::optional<std::int32_t> number) {
  subscribeError_ = number;
  return *this;
}

const FakeObject::Entry* FakeObject::find(StringView member) const {
  const auto at = std::find_if(entries_.begin(), entries_.end(),
                               [&](const Entry& e) { return platform::sameName(e.member, member); });
  return at == entries_.end() ? nullptr : &*at;
}

Variant FakeObject::valueOf(StringView member) const {
  const Entry* const entry = find(member);
  if (entry && entry->isValue) return entry->value;
  ADD_FAILURE() << label_ << " has no value " << utf8(member);
  return {};
}

Variant FakeObject::invoke(StringView member, Access access, Args args) {
  const std::string line = lineOf(Labels(), "", member, access, args);
  const auto dot = line.find('.');
  calls_.push_back(dot == std::string::npos || member.empty() ? line : line.substr(0, dot) + line.substr(dot + 1));

  const Entry* const entry = find(member);
  if (!entry) platform::raiseError(438);
  if (!entry->isValue) {
    const Script script = entry->script;  // it may rewrite this very member
    return script(access, args);
  }
  if (access == Access::Let || access == Access::Set) {
    if (args.size() != 1) platform::raiseError(450);
    const Variant old = entry->value;  // goes last
    value(member, args[0].plain());
    return {};
  }
  if (!args.empty()) platform::raiseError(450);
  return entry->value;
}

Ref<Counted> FakeObject::subscribe(const Guid& events, const Ref<EventSink>& sink) {
  calls_.emplace_back("connect");
  if (subscribeError_) platform::raiseError(*subscribeError_);
  if (events_ && *events_ != events) platform::raiseError(459);
  return addListener(this, sink);
}

Ref<platform::Enumerator> FakeObject::enumerate() {
  calls_.emplace_back("enumerate");
  if (!elements_) platform::raiseError(438);
  return platform::make<ElementWalk>(*elements_);
}

}  // namespace testing_support
