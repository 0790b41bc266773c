// Values of the automation world: Variant, and Object, the counted reference to an automation object.
//
// Object is the one door to objects that the add-in did not write. Behind it stands the small class Automation, with
// two families of implementations: the bridge to IDispatch, and objects written in C++ (see native.h).
#pragma once

#include <concepts>
#include <cstdint>
#include <span>
#include <type_traits>
#include <variant>

#include "addin/platform/counted.h"
#include "addin/platform/guid.h"
#include "addin/platform/text.h"

namespace platform {

// One callable made of several, for std::visit. The guide is for compilers that do not find it themselves.
template <class... F>
struct Overload : F... {
  using F::operator()...;
};
template <class... F>
Overload(F...) -> Overload<F...>;

class Variant;
using Args = std::span<Variant>;

// How a member is used; the values are those of DISPATCH_METHOD, _PROPERTYGET, _PROPERTYPUT and _PROPERTYPUTREF.
enum class Access : std::uint8_t { Call = 1, Get = 2, Let = 4, Set = 8 };

// Receives the events of one source interface. Arguments come in declared order; a by-reference one has a target.
class EventSink : public Counted {
 public:
  virtual void onEvent(std::int32_t dispid, Args args) = 0;
};

// Walks the elements of a collection object.
class Enumerator : public Counted {
 public:
  virtual bool next(Variant& element) = 0;  // false at the end
};

// One automation object. Failures are thrown as RuntimeError.
class Automation : public Counted {
 public:
  // Member names compare without case; "" is the default member (dispatch identifier 0).
  virtual Variant invoke(StringView member, Access access, Args args) = 0;
  // Connects `sink` to the source interface `events`; the subscription ends when the result is released.
  virtual Ref<Counted> subscribe(const Guid& events, const Ref<EventSink>& sink) = 0;
  // The object's enumerator (dispatch identifier -4); error 438 when it is no collection.
  virtual Ref<Enumerator> enumerate() { raiseError(438); }
  // Equal for two references to the same object, whatever road they came by.
  virtual const void* identity() noexcept { return this; }
};

class Object {
 public:
  Object() = default;
  Object(std::nullptr_t) {}
  explicit Object(Ref<Automation> automation) noexcept : automation_(std::move(automation)) {}

  explicit operator bool() const noexcept { return bool(automation_); }
  friend bool operator==(const Object& a, const Object& b) noexcept {
    return a.automation_ == b.automation_ ||
           (a.automation_ && b.automation_ && a.automation_.get()->identity() == b.automation_.get()->identity());
  }

  // The one door. Error 91 when this is Nothing. The object is kept until the call returns.
  Variant invoke(StringView member, Access access, Args args) const;
  Ref<Counted> subscribe(const Guid& events, const Ref<EventSink>& sink) const;
  Ref<Enumerator> enumerate() const;

  const Ref<Automation>& automation() const noexcept { return automation_; }

 protected:
  // What facades are written with (object.h): members by name, typed.
  template <class R, class... A>
  R get(StringView member, A&&... args) const;
  template <class R = void, class... A>
  R call(StringView member, A&&... args) const;
  template <class V>
  void let(StringView member, V&& value) const;
  template <class V>
  void set(StringView member, V&& value) const;

 private:
  Ref<Automation> automation_;
};

// Days since 30 December 1899; the fraction is the time of day.
struct Date {
  double days = 0;
  friend bool operator==(const Date&, const Date&) = default;
};

struct Null {
  friend bool operator==(const Null&, const Null&) = default;
};

// A status code as a value (VT_ERROR).
struct ErrorCode {
  std::int32_t scode = 0;
  friend bool operator==(const ErrorCode&, const ErrorCode&) = default;
};

// A reference to something that is no automation object (an item's MAPIOBJECT): it is passed on, never called.
struct Opaque {
  Ref<Counted> thing;
  friend bool operator==(const Opaque&, const Opaque&) = default;
};

inline constexpr ErrorCode missing{static_cast<std::int32_t>(0x80020004)};  // an optional argument left out

class Variant {
 public:
  using Value = std::variant<std::monostate, Null, ErrorCode, bool, std::int16_t, std::int32_t, double, Date, String,
                             Object, Opaque, Variant*>;

  Variant() = default;
  Variant(std::same_as<bool> auto value) : value_(value) {}
  Variant(std::int16_t value) : value_(value) {}
  Variant(std::int32_t value) : value_(value) {}
  Variant(double value) : value_(value) {}
  Variant(Date value) : value_(value) {}
  Variant(Null value) : value_(value) {}
  Variant(ErrorCode value) : value_(value) {}
  Variant(String value) : value_(std::move(value)) {}
  Variant(StringView value) : value_(String(value)) {}
  Variant(const char16_t* value) : value_(String(value)) {}
  Variant(Object value) : value_(std::move(value)) {}
  Variant(Opaque value) : value_(std::move(value)) {}
  template <class E>
    requires std::is_enum_v<E>
  Variant(E value) : value_(static_cast<std::int32_t>(value)) {}
  template <class T>
  Variant(T*) = delete;  // else every pointer would be True

  // A by-reference argument: who receives it may assign to `target`.
  static Variant byRef(Variant& target) {
    Variant v;
    v.value_ = &target;
    return v;
  }

  const Value& value() const noexcept { return value_; }
  Variant* target() const noexcept {
    const auto* p = std::get_if<Variant*>(&value_);
    return p ? *p : nullptr;
  }
  // The value itself, behind a by-reference argument too.
  const Variant& plain() const noexcept {
    const Variant* t = target();
    return t ? *t : *this;
  }
  template <class T>
  const T* as() const noexcept {
    return std::get_if<T>(&plain().value_);
  }
  bool isEmpty() const noexcept { return as<std::monostate>() != nullptr; }
  bool isMissing() const noexcept {
    const auto* e = as<ErrorCode>();
    return e && *e == missing;
  }
  friend bool operator==(const Variant& a, const Variant& b) { return a.value_ == b.value_; }

 private:
  Value value_;
};

}  // namespace platform
