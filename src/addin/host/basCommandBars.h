// Buttons in the mail client's menus.
#pragma once

#include "addin/common/basGlobal.h"
#include "addin/platform/office.h"

namespace addin {

// Finds the button with this tag on `Bar`, or adds one at its end, and sets all of its properties. The button is
// permanent; one left over from an earlier run is found again by its tag. Every statement is attempted: a property that
// cannot be set is skipped. Nothing when there is neither a button nor a way to add one.
office::CommandBarButton AddCommandBarButton(StringView ProgId, const office::CommandBar& Bar, StringView Caption,
                                             StringView Tag, StringView TooltipText, std::int16_t FaceId,
                                             std::int16_t BeginGroup, std::int16_t Style);

}  // namespace addin
