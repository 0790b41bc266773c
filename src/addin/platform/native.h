// Objects written in C++: a class, and a table with one line per member. The table serves calls by name, calls by
// dispatch identifier and the exported IDispatch.
//
//   std::span<const Member> Item::members() const {
//     static constexpr Member table[] = {
//         field<&Item::body>(u"Body", 0x9100),
//         readOnly<&Item::entryId>(u"EntryID", 0xF01E),
//         method<&Item::move>(u"Move", 0xF034),
//     };
//     return table;
//   }
#pragma once

#include <span>

#include "addin/platform/event_source.h"

namespace platform {

struct Member {
  StringView name;
  std::int32_t dispid;
  std::uint8_t access;  // the Access values that it admits, joined
  Variant (*run)(Automation& self, Access access, Args args);
};

class NativeObject : public Automation, public EventSource {
 public:
  virtual std::span<const Member> members() const = 0;
  // The source interface that subscribe() admits; all zero when the object raises no events.
  virtual Guid events() const { return {}; }

  // Nothing of ours is found by "" unless a member has dispatch identifier 0.
  const Member* find(StringView name) const;
  const Member* find(std::int32_t dispid) const;

  Variant invoke(StringView member, Access access, Args args) override;
  Ref<Counted> subscribe(const Guid& events, const Ref<EventSink>& sink) override;
  Object object() { return Object(Ref<Automation>(this)); }
};

// The object of ours behind a reference; null when it is somebody else's, or of another class.
template <class T>
T* nativeOf(const Object& object) {
  return dynamic_cast<T*>(object.automation().get());
}

namespace detail {

template <class T>
concept RefToNative = requires(const T& ref) { ref.get()->object(); };

template <class T>
Variant box(T&& value) {
  using D = std::remove_cvref_t<T>;
  if constexpr (RefToNative<D>) {
    return value ? Variant(value.get()->object()) : Variant(Object());
  } else if constexpr (std::derived_from<D, Object>) {
    return Variant(static_cast<const Object&>(value));
  } else {
    return Variant(D(std::forward<T>(value)));
  }
}

template <class>
struct FieldTraits;
template <class C, class V>
struct FieldTraits<V C::*> {
  using Class = C;
  using Value = V;
};

template <auto F>
Variant runField(Automation& self, Access access, Args args) {
  using Traits = FieldTraits<decltype(F)>;
  auto& place = static_cast<typename Traits::Class&>(self).*F;
  if (access == Access::Get || access == Access::Call) return args.empty() ? box(place) : (raiseError(450), Variant());
  if (args.size() != 1) raiseError(450);
  if constexpr (Readable<typename Traits::Value>) {
    place = to<typename Traits::Value>(args[0]);
  } else {
    raiseError(438);
  }
  return {};
}

template <class Self, class R, class... P>
Variant runWith(Self& self, auto function, Args args) {
  constexpr std::size_t count = sizeof...(P);
  if (args.size() > count) raiseError(450);
  std::array<Variant, count> full;  // trailing arguments that the caller left out arrive as missing
  for (std::size_t i = 0; i < count; ++i) full[i] = i < args.size() ? args[i] : Variant(missing);
  return withArguments<P...>(full, [&](auto&... values) -> Variant {
    if constexpr (std::is_void_v<R>) {
      (self.*function)(values...);
      return {};
    } else {
      return box((self.*function)(values...));
    }
  });
}

template <auto F>
struct MethodCall;
template <class C, class R, class... P, R (C::*F)(P...)>
struct MethodCall<F> {
  static Variant run(Automation& self, Access, Args args) {
    return runWith<C, R, P...>(static_cast<C&>(self), F, args);
  }
};
template <class C, class R, class... P, R (C::*F)(P...) const>
struct MethodCall<F> {
  static Variant run(Automation& self, Access, Args args) {
    return runWith<const C, R, P...>(static_cast<const C&>(self), F, args);
  }
};

inline constexpr std::uint8_t reads = static_cast<std::uint8_t>(Access::Call) | static_cast<std::uint8_t>(Access::Get);
inline constexpr std::uint8_t writes = static_cast<std::uint8_t>(Access::Let) | static_cast<std::uint8_t>(Access::Set);

}  // namespace detail

// A late-bound caller cannot tell a call from a get, so either admits both.
template <auto F>
constexpr Member readOnly(StringView name, std::int32_t dispid) {
  return {name, dispid, detail::reads, detail::runField<F>};
}
template <auto F>
constexpr Member field(StringView name, std::int32_t dispid) {
  return {name, dispid, detail::reads | detail::writes, detail::runField<F>};
}
template <auto F>
constexpr Member method(StringView name, std::int32_t dispid) {
  return {name, dispid, detail::reads, detail::MethodCall<F>::run};
}
template <auto Put>
constexpr Member writeOnly(StringView name, std::int32_t dispid) {
  return {name, dispid, detail::writes, detail::MethodCall<Put>::run};
}
template <auto Read, auto Put>
constexpr Member property(StringView name, std::int32_t dispid) {
  return {name, dispid, detail::reads | detail::writes, [](Automation& self, Access access, Args args) {
            return access == Access::Let || access == Access::Set ? detail::MethodCall<Put>::run(self, access, args)
                                                                  : detail::MethodCall<Read>::run(self, access, args);
          }};
}

}  // namespace platform
