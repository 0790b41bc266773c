// The MAPI properties of a real mail client's item: IMAPIProp behind the portable interface.
//
// Unproven against the mail client itself; the stand-in offers the same interface.
#pragma once

#include "addin/platform/variant.h"
#include "mapi/mapi_props.h"

namespace servers::txtmsghelper {

// Of an item's MAPIOBJECT, when that is an interface from outside with IMAPIProp or IMessage; else nothing.
platform::Ref<mapi::MessageProps> propertiesOf(const platform::Opaque& mapiObject);

// By the rules of this machine's time zone at that date. Dates outside 1970 to 2037 are moved by today's difference.
platform::Date toUtc(platform::Date local);

}  // namespace servers::txtmsghelper
