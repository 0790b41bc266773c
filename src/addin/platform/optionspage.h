// The options page (mrktxtmsgpp.dll): an ActiveX control that the mail client shows in its Options dialog.
#pragma once

#include "addin/platform/object.h"

namespace platform::optionspage {

inline constexpr StringView progIdPage = u"mrktxtmsgpp.textmessage";

}  // namespace platform::optionspage
