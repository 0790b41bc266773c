// An object of ours that raises events: it keeps its listeners and calls them one after the other.
#pragma once

#include <array>
#include <vector>

#include "addin/platform/arguments.h"
#include "addin/platform/event.h"
#include "addin/platform/object.h"

namespace platform {

class EventSource {
 public:
  // Adds a listener until the result is released; the result keeps `self`, the object that this source is part of
  // (the same each time).
  Ref<Counted> addListener(Counted* self, const Ref<EventSink>& sink);
  std::size_t listenerCount() const noexcept { return sinks_.size(); }

  // Calls every listener. A failing one ends the round and its error goes to the raiser, as between two classes of
  // one program; by-reference arguments carry what the listeners made of them.
  template <class... P, class... A>
  void raiseEvent(const Event<P...>& event, A&&... args) {
    send(Failures::GoToRaiser, event, args...);
  }

  // The same for a source outside the add-in: such a source does not care whether a listener failed.
  template <class... P, class... A>
  void fire(const Event<P...>& event, A&&... args) {
    send(Failures::AreIgnored, event, args...);
  }

 protected:
  ~EventSource() = default;

 private:
  enum class Failures : std::uint8_t { GoToRaiser, AreIgnored };
  struct Subscription;

  template <class... P, class... A>
  void send(Failures failures, const Event<P...>& event, A&... args) {
    static_assert(sizeof...(P) == sizeof...(A), "one value per declared argument");
    [[maybe_unused]] std::array<Variant, sizeof...(P)> values{Variant(args)...};
    std::array<Variant, sizeof...(P)> passed;
    std::size_t i = 0;
    ((passed[i] = std::is_lvalue_reference_v<P> ? Variant::byRef(values[i]) : values[i], ++i), ...);
    deliver(failures, event.dispid, passed);
    i = 0;
    (takeBack<P>(values[i++], args), ...);
  }

  template <class P, class A>
  static void takeBack(const Variant& value, A& argument) {
    if constexpr (std::is_lvalue_reference_v<P>) argument = to<std::remove_reference_t<P>>(value);
  }

  void deliver(Failures failures, std::int32_t dispid, Args args);

  std::vector<EventSink*> sinks_;  // each is kept by its Subscription
  Counted* self_ = nullptr;        // the object that this is part of, once somebody has listened
};

}  // namespace platform
