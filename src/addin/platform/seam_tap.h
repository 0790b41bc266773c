// The place where everything that crosses the seam can be watched, counted or made to fail.
//
// Tests install a tap; the product never does. It sits in Object itself, not in a decorator around objects: a
// decorator would have to wrap every result and event argument, and would break identity.
#pragma once

#include "addin/platform/variant.h"

namespace platform {

class SeamTap {
 public:
  virtual Variant invoke(Automation& object, StringView member, Access access, Args args) = 0;
  virtual Ref<Counted> subscribe(Automation& object, const Guid& events, const Ref<EventSink>& sink) = 0;

 protected:
  ~SeamTap() = default;
};

inline SeamTap* seamTap = nullptr;

}  // namespace platform
