// What facades are made of: a facade is a class derived from Object with one inline member per member of the outside
// class, named as that class names it. It holds no state and makes no decisions.
#pragma once

#include <array>
#include <utility>

#include "addin/platform/convert.h"
#include "addin/platform/event.h"
#include "addin/platform/variant.h"

namespace platform {

template <class R, class... A>
R Object::get(StringView member, A&&... args) const {
  std::array<Variant, sizeof...(A)> values{Variant(std::forward<A>(args))...};
  return to<R>(invoke(member, Access::Get, values));
}

template <class R, class... A>
R Object::call(StringView member, A&&... args) const {
  std::array<Variant, sizeof...(A)> values{Variant(std::forward<A>(args))...};
  if constexpr (std::is_void_v<R>) {
    invoke(member, Access::Call, values);
  } else {
    return to<R>(invoke(member, Access::Call, values));
  }
}

template <class V>
void Object::let(StringView member, V&& value) const {
  Variant v(std::forward<V>(value));
  invoke(member, Access::Let, {&v, 1});
}

template <class V>
void Object::set(StringView member, V&& value) const {
  Variant v(std::forward<V>(value));
  invoke(member, Access::Set, {&v, 1});
}

// A member of an object whose class is not known, called by name: how late-bound code reads an item's MessageClass.
class LateBound : public Object {
 public:
  using Object::Object;
  explicit LateBound(const Object& object) : Object(object.automation()) {}
  using Object::call;
  using Object::get;
  using Object::let;
  using Object::set;
};

// An outside object seen as another class; nothing is asked of the object.
template <std::derived_from<Object> Facade>
Facade as(const Object& object) {
  return Facade(object.automation());
}

}  // namespace platform
