// WithEvents<T>: a field that holds an object and receives its events.
//
// Assigning an object subscribes, emptying the field unsubscribes, and its destructor does too. A handler is a member
// function of the owner named field + "_" + event; it is bound at compile time, so that a handler whose parameters
// disagree with the event does not compile:
//
//   WithEvents<outlook::Items> m_objOutboxItems{this, on<outlook::ItemsEvents::ItemAdd,
//   &Owner::m_objOutboxItems_ItemAdd>};
//
// T is a facade, which names its source interface in T::Events, or a Ref to a class of ours that is an EventSource.
#pragma once

#include <initializer_list>
#include <vector>

#include "addin/platform/arguments.h"
#include "addin/platform/event.h"
#include "addin/platform/object.h"

namespace platform {

struct Handler {
  std::int32_t dispid;
  void (*run)(Counted& owner, Args args);
};

namespace detail {

template <auto H>
struct HandlerCall;

template <class C, class... P, void (C::*H)(P...)>
struct HandlerCall<H> {
  static void run(Counted& owner, Args args) {
    withArguments<P...>(args, [&](auto&... values) { (static_cast<C&>(owner).*H)(values...); });
  }

  template <class E, class Q>
  static constexpr bool sameParameter =
      std::same_as<std::remove_cvref_t<E>, std::remove_cvref_t<Q>> &&
      std::is_lvalue_reference_v<E> == (std::is_lvalue_reference_v<Q> && !std::is_const_v<std::remove_reference_t<Q>>);

  template <class... E>
  static constexpr bool fits(const Event<E...>& /*event*/) {
    if constexpr (sizeof...(E) != sizeof...(P)) {
      return false;
    } else {
      return (sameParameter<E, P> && ...);
    }
  }
};

}  // namespace detail

template <const auto& E, auto H>
inline constexpr Handler on{E.dispid, [](Counted& owner, Args args) {
                              static_assert(detail::HandlerCall<H>::fits(E), "handler and event disagree");
                              detail::HandlerCall<H>::run(owner, args);
                            }};

template <class T>
class WithEvents {
 public:
  template <std::same_as<Handler>... H>
  explicit WithEvents(Counted* owner, const H&... handlers)
      : sink_(make<Sink>(owner, std::initializer_list<Handler>{handlers...})) {}
  ~WithEvents() { sink_.get()->owner = nullptr; }
  WithEvents(const WithEvents&) = delete;

  WithEvents& operator=(const T& object) {
    // A copy, because `object` may be this very field's.
    const T incoming = object;
    Ref<Counted> fresh = incoming ? subscribeTo(incoming) : Ref<Counted>();  // a failure leaves the field as it was
    subscription_ = std::move(fresh);
    const T old = std::exchange(object_, incoming);  // goes last, when the field already holds the new one
    return *this;
  }
  WithEvents& operator=(const WithEvents&) = delete;
  WithEvents& operator=(std::nullptr_t) { return *this = T(); }

  explicit operator bool() const { return bool(object_); }
  operator const T&() const { return object_; }
  const T& get() const { return object_; }

  // Error 91 when the field is empty: of a facade by its first call, of a class of ours by the Ref.
  auto operator->() const {
    if constexpr (std::derived_from<T, Object>) {
      return &object_;
    } else {
      return object_.operator->();
    }
  }

 private:
  struct Sink final : EventSink {
    Sink(Counted* o, std::initializer_list<Handler> h) : owner(o), handlers(h) {}

    void onEvent(std::int32_t dispid, Args args) override {
      if (!owner || owner->hasEnded()) return;  // an owner that is being destroyed hears nothing more
      for (const Handler& handler : handlers) {
        if (handler.dispid != dispid) continue;
        const Hold<Counted> keep(owner);  // the handler may let the last reference to its owner go
        handler.run(*keep, args);
        return;
      }
    }

    Counted* owner;
    std::vector<Handler> handlers;
  };

  Ref<Counted> subscribeTo(const T& object) {
    if constexpr (std::derived_from<T, Object>) {
      return object.subscribe(T::Events::iid, sink_);
    } else {
      return object->subscribe(sink_);
    }
  }

  T object_;
  Ref<Sink> sink_;
  Ref<Counted> subscription_;
};

}  // namespace platform
