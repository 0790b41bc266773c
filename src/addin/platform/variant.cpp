#include "addin/platform/variant.h"

#include "addin/platform/seam_tap.h"

namespace platform {

Variant Object::invoke(StringView member, Access access, Args args) const {
  if (!automation_) raiseError(91);
  const Ref<Automation> keep = automation_;  // the call may empty the field that this is
  return seamTap ? seamTap->invoke(*keep, member, access, args) : keep.get()->invoke(member, access, args);
}

Ref<Counted> Object::subscribe(const Guid& events, const Ref<EventSink>& sink) const {
  if (!automation_) raiseError(91);
  const Ref<Automation> keep = automation_;
  return seamTap ? seamTap->subscribe(*keep, events, sink) : keep.get()->subscribe(events, sink);
}

Ref<Enumerator> Object::enumerate() const {
  if (!automation_) raiseError(91);
  const Ref<Automation> keep = automation_;
  return keep.get()->enumerate();
}

}  // namespace platform
