// The two-way bridge between Object and IDispatch.
//
// A foreign IDispatch is imported as an Object: calls, by-reference arguments, errors, events and enumeration work as
// they do with objects of ours. An object of ours is exported as an IDispatch with connection points; it has one face,
// so that its identity holds outside too, and it is recognised when it comes back. Everything here belongs to the
// thread (the apartment) that uses it.
#pragma once

#include "addin/platform/native.h"
#include "com/errors.h"
#include "com/pointers.h"

namespace com {

// Null becomes Nothing.
platform::Object import(IDispatch* foreign);

// Nothing becomes null. Error 430 for an object that is neither foreign nor a NativeObject.
Ptr<IDispatch> exported(const platform::Object& object);

// ---- values ---------------------------------------------------------------------------------------------------------

// Follows by-reference values. Error 458 for types that automation values do not have here (arrays, records), 5 for a
// by-reference value without a place behind it. An IUnknown that has IDispatch is an Object, any other an Opaque.
platform::Variant fromVariant(const VARIANT& value);

// `to` is initialised here (its old content is not looked at) and cleared by the caller.
void toVariant(const platform::Variant& value, VARIANT& to);

// Writes through a by-reference VARIANT, in the type that its owner gave it. Error 13 or 6 when the value does not fit.
void assignByRef(VARIANT& target, const platform::Variant& value);

// A foreign interface that is no automation object, inside an Opaque.
class UnknownBox final : public platform::Counted {
 public:
  explicit UnknownBox(Ptr<IUnknown> unknown) noexcept : unknown_(std::move(unknown)) {}
  const Ptr<IUnknown>& unknown() const noexcept { return unknown_; }

 private:
  Ptr<IUnknown> unknown_;
};

// The interface that stands for an Opaque outside: a box's content, or what the converter makes of a thing of ours.
// Null for an empty one; error 430 when nobody knows the thing.
Ptr<IUnknown> unknownOf(const platform::Opaque& opaque);

// Offers real COM interfaces for Opaque things that are written in portable C++. The converter returns null for things
// that it does not know. One per module, set before the first object is exported.
using OpaqueConverter = Ptr<IUnknown> (*)(platform::Counted& thing);
inline constinit OpaqueConverter opaqueConverter = nullptr;

// ---- life of the module ---------------------------------------------------------------------------------------------

// Counts one thing of this module that outside code may hold: an exported face, a sink, an enumerator.
class LiveExport {
 public:
  LiveExport() noexcept { enter(); }
  LiveExport(const LiveExport&) = delete;
  LiveExport& operator=(const LiveExport&) = delete;
  ~LiveExport() { leave(); }

  // What is counted without an object: a client's lock on a class factory.
  static void enter() noexcept { InterlockedIncrement(&count_); }
  static void leave() noexcept {
    if (InterlockedDecrement(&count_) == 0 && whenNoneIsLeft) whenNoneIsLeft();
  }
  static LONG count() noexcept { return count_; }

  // Runs when the last one has gone: a local server's cue to end. It must not throw.
  static inline void (*whenNoneIsLeft)() = nullptr;

 private:
  static inline volatile LONG count_ = 0;
};

inline LONG liveExports() noexcept { return LiveExport::count(); }

// Tests switch this off, so that an object of this module that comes back is called through its IDispatch all the same.
inline constinit bool recogniseOwn = true;

}  // namespace com
