// An item's MAPIOBJECT as other programs get it: a real IMessage.
#pragma once

#include "com/bridge.h"

namespace mailclient::win {

// For com::opaqueConverter: the IMessage of a MapiMessage; null for anything else.
com::Ptr<IUnknown> mapiFace(platform::Counted& thing);

}  // namespace mailclient::win
