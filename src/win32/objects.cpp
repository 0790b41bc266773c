#include "win32/objects.h"

#include "com/bridge.h"
#include "com/create_object.h"
#include "win32/text.h"

namespace win32 {

platform::Object Objects::create(platform::StringView progId) {
  CLSID clsid{};
  com::Ptr<IDispatch> made;
  const bool known = SUCCEEDED(CLSIDFromProgID(wide(platform::String(progId)), &clsid));
  if (!known || FAILED(com::createObject(clsid, made))) platform::raiseError(429);
  return com::import(made.get());
}

}  // namespace win32
