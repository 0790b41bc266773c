// A native object as an IDispatch with connection points.
#pragma once

#include "com/bridge.h"

namespace com {

// The one face of a native object: made when it is needed, gone with its last outside reference.
Ptr<IDispatch> faceOf(platform::NativeObject& object);

// The native object behind a face of this module; null for anybody else's IDispatch. Nothing is called.
platform::NativeObject* behindFace(IDispatch* dispatch) noexcept;

}  // namespace com
