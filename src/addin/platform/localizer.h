// The resource localizer (mrktxtmsgres.dll): texts in the user's language.
#pragma once

#include "addin/platform/object.h"

namespace platform::localizer {

inline constexpr StringView progIdLocalizer = u"mrktxtmsgres.localizer";

class Localizer : public Object {
 public:
  using Object::Object;
  String getlocalizedresstring(std::int16_t id, StringView englishText) const {
    return call<String>(u"getlocalizedresstring", id, englishText);
  }
};

}  // namespace platform::localizer
