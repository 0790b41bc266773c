#include "addin/platform/native.h"

#include <algorithm>

namespace platform {

struct EventSource::Subscription final : Counted {
  Subscription(EventSource* s, Counted* self, const Ref<EventSink>& k) : source(s), keep(self), sink(k) {}
  ~Subscription() override {  // one entry only: a sink may be subscribed twice for a moment
    auto& sinks = source->sinks_;
    if (const auto at = std::find(sinks.begin(), sinks.end(), sink.get()); at != sinks.end()) sinks.erase(at);
  }

  EventSource* source;
  Ref<Counted> keep;
  Ref<EventSink> sink;
};

Ref<Counted> EventSource::addListener(Counted* self, const Ref<EventSink>& sink) {
  self_ = self;
  sinks_.push_back(sink.get());
  return make<Subscription>(this, self, sink);
}

void EventSource::deliver(Failures failures, std::int32_t dispid, Args args) {
  if (sinks_.empty()) return;
  const Hold<Counted> keep(self_);  // a listener may let the last reference to the source go
  std::vector<Ref<EventSink>> listeners;
  for (EventSink* const sink : sinks_) listeners.emplace_back(sink);
  for (const auto& listener : listeners) {
    if (std::find(sinks_.begin(), sinks_.end(), listener.get()) == sinks_.end()) continue;  // left meanwhile
    try {
      listener->onEvent(dispid, args);
    } catch (const RuntimeError&) {
      if (failures == Failures::GoToRaiser) throw;
    }
  }
}

const Member* NativeObject::find(StringView name) const {
  if (name.empty()) return find(0);
  const auto table = members();
  const auto at = std::find_if(table.begin(), table.end(), [&](const Member& m) { return sameName(m.name, name); });
  return at == table.end() ? nullptr : &*at;
}

const Member* NativeObject::find(std::int32_t dispid) const {
  const auto table = members();
  const auto at = std::find_if(table.begin(), table.end(), [&](const Member& m) { return m.dispid == dispid; });
  return at == table.end() ? nullptr : &*at;
}

Variant NativeObject::invoke(StringView name, Access access, Args args) {
  const Member* const member = find(name);
  if (!member || !(member->access & static_cast<std::uint8_t>(access))) raiseError(438);
  return member->run(*this, access, args);
}

Ref<Counted> NativeObject::subscribe(const Guid& wanted, const Ref<EventSink>& sink) {
  if (wanted == Guid{} || wanted != events()) raiseError(459);
  return addListener(this, sink);
}

}  // namespace platform
