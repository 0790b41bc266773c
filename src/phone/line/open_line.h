// Lines by their names.
#pragma once

#include <memory>

#include "phone/line/line.h"
#include "phone/line/line_name.h"

namespace phone {

// LineLost when there is no such port, when it belongs to another program, or when nobody answers there by `deadline`
// (on the SteadyClock, as for all of the line's deadlines). Not for Kind::Simulated.
std::unique_ptr<Line> openLine(const LineName& name, Instant deadline);

}  // namespace phone
