#include "com/bridge.h"

#include "com/exported_object.h"
#include "com/foreign_object.h"

namespace com {

using platform::Automation;
using platform::NativeObject;
using platform::Object;
using platform::Ref;

Object import(IDispatch* foreign) {
  if (!foreign) return {};
  if (recogniseOwn)
    if (NativeObject* const own = behindFace(foreign)) return own->object();
  return Object(importForeign(foreign));
}

Ptr<IDispatch> exported(const Object& object) {
  Automation* const automation = object.automation().get();
  if (!automation) return nullptr;
  if (auto* const native = dynamic_cast<NativeObject*>(automation)) return faceOf(*native);
  IDispatch* const foreign = foreignDispatch(*automation);
  if (!foreign) platform::raiseError(430);
  return Ptr<IDispatch>(foreign);
}

}  // namespace com
